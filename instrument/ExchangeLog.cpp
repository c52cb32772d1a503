#include "instrument/ExchangeLog.h"

#include "visa/StatusText.h"

#include <QDateTime>
#include <QDebug>

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
    const int digits = message.startsWith('#') && message.size() > 2 ? message[1] - '0' : 0;
    if (digits >= 1 && digits <= 9 && message.size() > 2 + digits) {
        return message.left(2 + digits) + "... " + QByteArray::number(message.size()) + " bytes";
    }
    QString text;
    QDebug(&text).nospace() << message;
    return text.toLatin1();
}
