#include "visa/wire/Xdr.h"

#include <QIODevice>

#include <algorithm>

namespace lan {

namespace {

int padding(int count)
{
    return (4 - count % 4) % 4;
}

} // namespace

QByteArray xdrWords(std::initializer_list<quint32> words)
{
    QByteArray bytes;
    QDataStream to(&bytes, QIODevice::WriteOnly);
    for (const quint32 word : words) {
        to << word;
    }
    return bytes;
}

QByteArray xdrOpaque(const char *bytes, int count)
{
    QByteArray encoded = xdrWords({static_cast<quint32>(count)});
    encoded.reserve(encoded.size() + count + padding(count));
    return encoded.append(bytes, count).append(padding(count), '\0');
}

QByteArray readOpaque(QDataStream &from, const QByteArray &message)
{
    quint32 count = 0;
    from >> count;
    const QByteArray bytes = rest(from, message);
    if (from.status() != QDataStream::Ok || count > static_cast<quint32>(bytes.size())) {
        from.setStatus(QDataStream::ReadPastEnd);
        return {};
    }
    const int size = static_cast<int>(count);
    // Some senders end without the zeros.
    from.skipRawData(std::min(size + padding(size), bytes.size()));
    return QByteArray::fromRawData(bytes.constData(), size);
}

QByteArray rest(const QDataStream &from, const QByteArray &message)
{
    const int at = static_cast<int>(from.device()->pos());
    return QByteArray::fromRawData(message.constData() + at, message.size() - at);
}

} // namespace lan
