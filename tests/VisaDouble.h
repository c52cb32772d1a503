#pragma once

#include "instrument/VisaTypes.h"

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <optional>

/// A VISA library in the test: while it lives, the p_ entry points lead to it. It keeps a
/// transcript of what the instruments saw, and answers as the test tells it to.
///
/// In the transcript an instrument goes by its resource string, and a command's "\n" is written
/// out: "osc open", "osc timeout 5000", "osc < *IDN?\n" (written), "osc >" (read), "osc >file",
/// "osc local" (Go To Local), "osc close". What fails has the status behind it.
class VisaDouble
{
public:
    VisaDouble();
    ~VisaDouble();
    VisaDouble(const VisaDouble &) = delete;
    VisaDouble &operator=(const VisaDouble &) = delete;

    enum class At
    {
        Open,
        Timeout,
        Write,
        Read,
        Local
    };

    /// What the binding loads instead, when it is asked to: by default nothing that exists.
    static inline QString libraryPath;

    /// Fail at the n-th call (from 0) of a kind with the status.
    void failAt(At where, int call, ViStatus status) { faults[where][call] = status; }

    /// The transcript since the last call, which starts a new one.
    QStringList takeTranscript();

    /// Open an instrument without a word in the transcript.
    ViSession openQuietly(const QString &resource);

    /// The answer to a command; by default "1\n" to every query. Without one, reads time out.
    std::function<std::optional<QByteArray>(const QString &resource, const QByteArray &command)>
        answer;

private:
    [[nodiscard]] QString name(ViSession session) const;
    ViStatus log(At where, QString entry);
    ViStatus take(ViSession session, const QString &entry, ViUInt32 count, QByteArray *bytes);

    QMap<ViSession, QString> open;
    QMap<ViSession, std::optional<QByteArray>> pending;
    QMap<At, QMap<int, ViStatus>> faults;
    QMap<At, int> calls;
    QStringList transcript;
    ViSession nextSession = 100;
};

/// A definite-length block of 32-bit floats with its terminator, as instruments send it.
QByteArray blockOf(const QVector<double> &samples);
