#include "simulator/StatusText.h"

#include <array>
#include <cstdio>

namespace simulator {

namespace {

struct Description
{
    ViStatus status;
    const char *text;
};

constexpr std::array descriptions{
    Description{VI_SUCCESS, "Operation completed successfully."},
    Description{VI_SUCCESS_TERM_CHAR, "The specified termination character was read."},
    Description{VI_SUCCESS_MAX_CNT, "The number of bytes read is equal to the input count."},
    Description{VI_WARN_UNKNOWN_STATUS,
                "The status code passed to the operation could not be interpreted."},
    Description{VI_ERROR_INV_OBJECT, "The given session or object reference is invalid."},
    Description{VI_ERROR_RSRC_NFOUND,
                "Insufficient location information or the resource is not present in the system."},
    Description{VI_ERROR_INV_RSRC_NAME, "Invalid resource reference specified. Parsing error."},
    Description{VI_ERROR_INV_ACC_MODE, "Invalid access mode."},
    Description{VI_ERROR_TMO, "Timeout expired before operation completed."},
    Description{VI_ERROR_NSUP_ATTR,
                "The specified attribute is not defined or supported by the referenced object."},
    Description{VI_ERROR_NSUP_ATTR_STATE,
                "The specified state of the attribute is not valid or is not supported."},
    Description{VI_ERROR_ALLOC,
                "Insufficient system resources to perform the requested operation."},
    Description{VI_ERROR_INV_MASK, "Invalid buffer mask specified."},
    Description{VI_ERROR_IO, "Could not perform operation because of I/O error."},
    Description{VI_ERROR_INV_FMT, "A format specifier in the format string is invalid."},
    Description{VI_ERROR_NSUP_FMT, "A format specifier in the format string is not supported."},
    Description{VI_ERROR_NSUP_OPER, "The given session or object reference does not support this "
                                    "operation."},
    Description{VI_ERROR_USER_BUF, "A specified user buffer is not valid."},
    Description{VI_ERROR_INV_MODE, "The specified mode is invalid."},
    Description{VI_ERROR_LIBRARY_NFOUND, "A code library required by VISA could not be located or "
                                         "loaded."},
    Description{VI_ERROR_FILE_ACCESS, "An error occurred while trying to open the specified "
                                      "file."},
    Description{VI_ERROR_FILE_IO, "An error occurred while accessing the specified file."},
};

} // namespace

std::string statusText(ViStatus status, bool &known)
{
    for (const Description &description : descriptions) {
        if (description.status == status) {
            known = true;
            return description.text;
        }
    }
    known = false;
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "Unknown status code 0x%08X.",
                  static_cast<unsigned>(status));
    return text.data();
}

} // namespace simulator
