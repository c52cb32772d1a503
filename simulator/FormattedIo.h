#pragma once

#include "instrument/VisaTypes.h"

#include <cstdarg>
#include <string>

namespace simulator {

// Both take their arguments from the list by reference, so that a write format and a read format
// can take theirs one after the other.

/// Formats as C's printf does, whatever the process locale, but knows no %n, %p, wide characters
/// and long doubles. Returns VI_ERROR_INV_FMT for a malformed format, VI_ERROR_NSUP_FMT for a
/// conversion that only VISA has, VI_ERROR_USER_BUF for a null string.
ViStatus printText(const char *format, std::va_list &arguments, std::string &text);

/// Reads `buffer` as C's scanf does, whatever the process locale, with VISA's %t (all the rest, a
/// terminated string) besides; removes what it has read. Returns VI_ERROR_TMO when the text ends
/// early, VI_ERROR_INV_FMT when it does not match or the format is malformed, VI_ERROR_NSUP_FMT
/// and VI_ERROR_USER_BUF as above.
ViStatus scanText(std::string &buffer, const char *format, std::va_list &arguments);

} // namespace simulator
