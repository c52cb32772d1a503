#pragma once

#include "visa/VisaTypes.h"

#include <QString>

/// Open a new session to the instrument that the resource string names, and set its I/O time-out in
/// milliseconds. An earlier session in *session is closed first. When the open fails, *session is
/// 0, so that nothing more is sent to the old instrument. Returns the status of the first step that
/// failed, or 0.
[[nodiscard]] ViStatus reopenSession(ViSession resourceManager, const QString &resource,
                                     ViAttrState ioTimeout, ViSession *session);
