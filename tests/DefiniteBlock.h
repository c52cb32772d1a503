#pragma once

#include <QByteArray>

// Definite-length blocks (IEEE 488.2 8.7.9) with the terminator that follows them.

inline QByteArray block(int declared, const QByteArray &data)
{
    const QByteArray digits = QByteArray::number(declared);
    return '#' + QByteArray::number(digits.size()) + digits + data + '\n';
}

/// The length that a block declares, -1 when this is none.
inline int declaredLength(const QByteArray &message)
{
    const int digits = message.startsWith('#') ? message.mid(1, 1).toInt() : 0;
    bool isNumber = false;
    const auto length = message.mid(2, digits).toUInt(&isNumber);
    return isNumber && message.at(2) != '+' && message.at(2) != '-' ? static_cast<int>(length) : -1;
}

/// The data of a block that is one.
inline QByteArray dataOf(const QByteArray &message)
{
    const int length = declaredLength(message);
    return message.right(length + 1).left(length);
}
