#pragma once

#include "visa/VisaTypes.h"

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QLoggingCategory>

// The log of VISA calls, one line each on standard error. The environment variable
// QT_LOGGING_RULES="orvanta.visa.debug=true" switches it on.

/// The logging category "orvanta.visa".
Q_DECLARE_LOGGING_CATEGORY(exchangeLog)

/// Measures how long a VISA call takes, and logs it. The time starts when the object is made.
class CallTimer
{
public:
    CallTimer() { elapsed.start(); }

    /// Log when the call began, its session, its function, what it carried, the name of its status,
    /// and how many milliseconds it took.
    void log(const char *function, ViObject session, const QByteArray &content,
             ViStatus status) const;

private:
    QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer elapsed;
};

/// Returns a message as the log shows it. Text stands in quotes, with escapes for what cannot be
/// printed. Of a definite-length block (IEEE 488.2 8.7.9) only the header and the number of bytes
/// are shown.
QByteArray readable(const void *bytes, ViUInt32 count);
