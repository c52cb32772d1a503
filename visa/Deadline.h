#pragma once

#include "visa/VisaTypes.h"

#include <chrono>

namespace visa {

/// The time by which a call should end. Deadline::max() means no deadline.
using Deadline = std::chrono::steady_clock::time_point;

/// Returns the deadline of a call that begins now and has a VISA time-out in milliseconds.
inline Deadline deadlineAfter(ViUInt32 timeout)
{
    return timeout == VI_TMO_INFINITE
               ? Deadline::max()
               : std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
}

/// Returns the milliseconds until a deadline, rounded up, but at most `limit`.
inline int millisecondsUntil(Deadline deadline, int limit)
{
    using std::chrono::milliseconds;
    const Deadline now = std::chrono::steady_clock::now();
    if (deadline <= now) {
        return 0;
    }
    // The distance to Deadline::max() does not fit an int, so the deadlines are compared first.
    const bool isNear = deadline < now + milliseconds(limit);
    return isNear ? static_cast<int>(std::chrono::ceil<milliseconds>(deadline - now).count())
                  : limit;
}

} // namespace visa
