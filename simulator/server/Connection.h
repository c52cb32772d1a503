#pragma once

#include "simulator/Bench.h"
#include "visa/wire/RpcMessage.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

#include <optional>
#include <string>
#include <string_view>

namespace server {

using simulator::Clock;

/// What all connections to instruments share.
struct SharedBench
{
    explicit SharedBench(double timeScale) : bench(timeScale) { changed.setSingleShot(true); }

    simulator::Bench bench;
    QTimer changed;             ///< started after each message; then all connections call serve()
    std::uint32_t nextLink = 0; ///< the number of the next VXI-11 link; no two are equal
};

/// A client's connection. It takes the next message only after its answers have left, so a client
/// that never reads its answers costs little memory. When the client disconnects, the connection
/// deletes its socket, which owns the connection.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// Serve a socket. At most `readLimit` bytes are buffered before they are served.
    Connection(QTcpSocket *socket, qint64 readLimit);

protected:
    /// Serve the next message, or a part of it. Returns false when nothing can be served now.
    virtual bool serveNext() = 0;
    /// Call serveNext() until it returns false or an answer has not left yet.
    void serve();
    /// Call serve() at an instant, or in an hour if that is earlier.
    void serveAt(Clock::time_point instant);

    QTcpSocket *const socket;

private:
    QTimer timer;
};

/// A connection whose messages are remote procedure calls in records.
class RpcConnection : public Connection
{
public:
    RpcConnection(QTcpSocket *socket, std::size_t recordLimit);

protected:
    /// Take the next record; nothing when it is not complete. A record over the limit ends the
    /// connection.
    std::optional<std::string> takeRecord();
    void send(std::string_view message);

private:
    wire::RecordReader reader;
};

} // namespace server
