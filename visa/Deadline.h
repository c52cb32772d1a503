#pragma once

#include "visa/VisaTypes.h"

#include <chrono>

namespace visa {

/// By when a call must have ended; time_point::max() waits for ever.
using Deadline = std::chrono::steady_clock::time_point;

/// Returns the instant at which a VISA time-out in milliseconds has passed.
inline Deadline deadlineAfter(ViUInt32 timeout)
{
    return timeout == VI_TMO_INFINITE
               ? Deadline::max()
               : std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout);
}

/// Returns whether a deadline has passed.
inline bool isOver(Deadline deadline)
{
    return std::chrono::steady_clock::now() >= deadline;
}

/// Returns the milliseconds until a deadline, rounded up; `limit` when there are more.
inline int millisecondsUntil(Deadline deadline, int limit)
{
    using std::chrono::milliseconds;
    const Deadline now = std::chrono::steady_clock::now();
    if (deadline <= now) {
        return 0;
    }
    // The distance to Deadline::max() may overflow, so the deadlines are compared first.
    const bool isNear = deadline < now + milliseconds(limit);
    return isNear ? static_cast<int>(std::chrono::ceil<milliseconds>(deadline - now).count())
                  : limit;
}

} // namespace visa
