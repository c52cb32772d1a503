#pragma once

#include "visa/VisaTypes.h"

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QLoggingCategory>

// The log of what was said on the wire: a line on standard error for each VISA call, when
// QT_LOGGING_RULES="orvanta.visa.debug=true" asks for it.

/// The category "orvanta.visa", which is off unless a rule switches it on.
Q_DECLARE_LOGGING_CATEGORY(exchangeLog)

/// Times a VISA call, from its making on, and logs it.
class CallTimer
{
public:
    CallTimer() { elapsed.start(); }

    /// Log the call: when it began, its function, its session, what it carried, its status by name,
    /// and the milliseconds that it took.
    void log(const char *function, ViObject session, const QByteArray &content,
             ViStatus status) const;

private:
    QDateTime start = QDateTime::currentDateTime();
    QElapsedTimer elapsed;
};

/// Returns a message for the log: text in quotes with escapes for what cannot be printed, of a
/// definite-length block (IEEE 488.2 8.7.9) its header and the number of bytes.
QByteArray readable(const void *bytes, ViUInt32 count);
