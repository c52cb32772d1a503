#pragma once

#include "visa/VisaTypes.h"

#include <QStringList>

// The rules by which a chain of commands runs. Every command is a query that ends in
// ";*OPC?\n": the instrument answers once the command is done, and only the VISA status of that
// exchange counts. Status 0 is success, all others are failures.

/// Send the commands in order until one fails. Returns the status of the last one sent.
[[nodiscard]] ViStatus sendOrStop(ViSession session, const QStringList &commands);

/// Send the commands in order until one succeeds, each only because the one before it failed.
/// Returns the status of the last one sent.
[[nodiscard]] ViStatus sendOrFallBack(ViSession session, const QStringList &commands);

/// Send the commands in order until one fails, and ignore the failure.
void sendOrStopAndIgnore(ViSession session, const QStringList &commands);
