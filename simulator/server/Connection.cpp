#include "simulator/server/Connection.h"

#include <algorithm>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace server {

namespace {

/// Have the system end an idle connection whose client's host has not answered for half a minute,
/// as after a power failure: other clients need its links and locks. While an answer is on its way,
/// this takes about a quarter of an hour.
void watch(QTcpSocket &socket)
{
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
#ifdef TCP_KEEPIDLE
    const auto set = [&](int option, int value) {
        ::setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, option, &value,
                     sizeof value);
    };
    set(TCP_KEEPIDLE, 10); // s
    set(TCP_KEEPINTVL, 5);
    set(TCP_KEEPCNT, 4);
#endif
}

} // namespace

Connection::Connection(QTcpSocket *socket, qint64 readLimit) : QObject(socket), socket(socket)
{
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setReadBufferSize(readLimit);
    watch(*socket);
    timer.setTimerType(Qt::PreciseTimer);
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, &Connection::serve);
    connect(socket, &QTcpSocket::readyRead, this, &Connection::serve);
    // Queued, since the signal also comes from within a write.
    connect(socket, &QTcpSocket::bytesWritten, this, &Connection::serve, Qt::QueuedConnection);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

void Connection::serve()
{
    while (socket->state() == QAbstractSocket::ConnectedState && socket->bytesToWrite() == 0 &&
           serveNext()) {
    }
}

void Connection::serveAt(Clock::time_point instant)
{
    constexpr std::chrono::milliseconds longest =
        std::chrono::hours(1); // a timer takes no more than 24 days
    const Clock::duration left = std::min<Clock::duration>(instant - Clock::now(), longest);
    timer.start(std::chrono::ceil<std::chrono::milliseconds>(std::max(left, Clock::duration())));
}

RpcConnection::RpcConnection(QTcpSocket *socket, std::size_t recordLimit)
    : Connection(socket, static_cast<qint64>(recordLimit)), reader(recordLimit)
{
}

std::optional<std::string> RpcConnection::takeRecord()
{
    const auto source = [this](char *to, std::size_t size) {
        return socket->read(to, static_cast<qint64>(size));
    };
    switch (reader.read(source)) {
    case wire::RecordReader::State::Complete:
        return reader.take();
    case wire::RecordReader::State::TooLong:
        socket->abort();
        break;
    case wire::RecordReader::State::Incomplete:
        break;
    }
    return std::nullopt;
}

void RpcConnection::send(std::string_view message)
{
    const std::string record = wire::asRecord(message);
    socket->write(record.data(), static_cast<qint64>(record.size()));
    socket->flush();
}

} // namespace server
