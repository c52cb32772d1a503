#pragma once

#include "visa/VisaTypes.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QLoggingCategory>

// The log of VISA calls, one line each on standard error. The environment variable
// QT_LOGGING_RULES="orvanta.visa.debug=true" switches it on.

/// The logging category "orvanta.visa".
Q_DECLARE_LOGGING_CATEGORY(exchangeLog)

/// Log a VISA call that has just returned: when it began, its session, its function, its data, the
/// name of its status, and how many milliseconds it took.
void logCall(const char *function, ViObject session, const QByteArray &content, ViStatus status,
             const QElapsedTimer &sinceStart);

/// Returns a message as the log shows it. Text stands in quotes, with escapes for what cannot be
/// printed. Of a definite-length block (IEEE 488.2 8.7.9) only the header and the number of bytes
/// are shown.
QByteArray readable(const QByteArray &message);
