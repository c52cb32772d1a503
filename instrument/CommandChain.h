#pragma once

#include "visa/VisaTypes.h"

#include <QStringList>

// Rules for sending a list of commands. Nearly every command ends in ";*OPC?\n", so that the
// instrument answers once it is done. The answer is read and dropped. Status 0 is success, any
// other status is a failure, a positive one too.

/// Send the commands in order until one fails. Returns the status of the last one sent.
[[nodiscard]] ViStatus sendOrStop(ViSession session, const QStringList &commands);

/// Send the commands in order until one succeeds. Returns the status of the last one sent.
[[nodiscard]] ViStatus sendOrFallBack(ViSession session, const QStringList &commands);

/// Send the commands in order until one fails, and ignore the failure.
void sendIgnoringFailure(ViSession session, const QStringList &commands);
