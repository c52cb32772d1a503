#pragma once

#include "visa/Link.h"

namespace visa {

/// Turn a VISA time-out in milliseconds into the instant at which it has passed.
inline Deadline deadlineAfter(ViUInt32 timeout)
{
    return timeout == VI_TMO_INFINITE
               ? Deadline::max()
               : std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
}

} // namespace visa
