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

/// The bench and what else all connections share.
struct SharedBench
{
    explicit SharedBench(double timeScale) : bench(timeScale) { changed.setSingleShot(true); }

    simulator::Bench bench;
    QTimer changed;             ///< started by whoever may have changed what others wait for
    std::uint32_t nextLink = 0; ///< no two links of VXI-11 have the same number
};

/// A client's connection. It reads on only when its answers have left, so that a client that never
/// reads takes little memory. It deletes its socket, and itself with it, when the client has gone.
class Connection : public QObject
{
    Q_OBJECT

public:
    /// Serve a connection; at most `readLimit` bytes are taken from it in advance.
    Connection(QTcpSocket *socket, qint64 readLimit);

protected:
    /// Serve what has come next. Returns false when nothing can be served for the time being.
    virtual bool serveNext() = 0;
    /// Serve until serveNext() returns false or an answer has yet to leave.
    void serve();
    /// Serve again at an instant, if not before.
    void serveAt(Clock::time_point instant);

    QTcpSocket *const socket;

private:
    QTimer timer;
};

/// A connection whose messages are records of remote procedure calls.
class RpcConnection : public Connection
{
public:
    RpcConnection(QTcpSocket *socket, std::size_t recordLimit);

protected:
    /// Take the next record, if it is complete. A longer one than the limit ends the connection.
    std::optional<std::string> takeRecord();
    void send(std::string_view message);

private:
    wire::RecordReader reader;
};

} // namespace server
