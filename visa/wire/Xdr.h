#pragma once

#include <QByteArray>
#include <QDataStream>

#include <initializer_list>

namespace lan {

// External data representation (RFC 4506). Of numbers VXI-11 and RPC have only such as take one
// word of 32 bits, big-endian, which is what a QDataStream reads and writes of its own accord.

/// Encode words.
QByteArray xdrWords(std::initializer_list<quint32> words);

/// Encode opaque bytes or a string: the length, the bytes, zeros up to a whole word.
QByteArray xdrOpaque(const char *bytes, int count);

/// Decode opaque bytes or a string from a stream over `message`, whose bytes they share: they are
/// there as long as the message's memory. Where it ends before they do, nothing is returned and the
/// stream's status is not Ok.
QByteArray readOpaque(QDataStream &from, const QByteArray &message);

/// What a stream has not yet read of `message`; the bytes are shared, too.
QByteArray rest(const QDataStream &from, const QByteArray &message);

} // namespace lan
