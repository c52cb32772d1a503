#pragma once

#include "visa/VisaTypes.h"

#include <QString>

/// Open a new session to the instrument that the resource string names, with an I/O time-out in
/// milliseconds. A session that an earlier call left in *session is closed first and replaced by
/// 0, so that no link leaks and a failed open leaves nothing to talk to the old instrument with.
/// Returns the status of the first step that failed, else 0.
[[nodiscard]] ViStatus reopenSession(ViSession resourceManager, const QString &resource,
                                     ViAttrState ioTimeout, ViSession *session);
