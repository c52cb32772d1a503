#include "instrument/ExchangeLog.h"

#include "visa/StatusText.h"

#include <QDateTime>
#include <QDebug>
#include <QRegularExpression>

Q_LOGGING_CATEGORY(exchangeLog, "orvanta.visa", QtWarningMsg)

void logCall(const char *function, ViObject session, const QByteArray &content, ViStatus status,
             const QElapsedTimer &sinceStart)
{
    const double milliseconds = static_cast<double>(sinceStart.nsecsElapsed()) / 1e6;
    const QDateTime start = QDateTime::currentDateTime().addMSecs(-sinceStart.elapsed());
    const QByteArray call = function + (content.isEmpty() ? QByteArray() : ' ' + content);
    qCDebug(exchangeLog, "%s session %u %s %s %.2f ms",
            qPrintable(start.toString(Qt::ISODateWithMs)), session, call.constData(),
            visa::statusName(status).c_str(), milliseconds);
}

QByteArray readable(const QByteArray &message)
{
    // Text may begin with '#', too: only a block has a digit n after it, and then n more digits.
    static const QRegularExpression header("^#([1-9])([0-9]{1,9})");
    const QRegularExpressionMatch match = header.match(QString::fromLatin1(message.left(11)));
    const int digits = match.captured(1).toInt();
    if (match.hasMatch() && match.capturedLength(2) >= digits) {
        return message.left(2 + digits) + "... " + QByteArray::number(message.size()) + " bytes";
    }
    QString text;
    QDebug(&text).nospace() << message;
    return text.toLatin1();
}
