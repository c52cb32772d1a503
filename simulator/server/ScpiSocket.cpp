#include "simulator/server/ScpiSocket.h"

#include <limits>
#include <utility>

namespace server {

namespace {

constexpr qint64 pieceSize = 65536; // bytes

} // namespace

ScpiSocket::ScpiSocket(QTcpSocket *socket, SharedBench &shared, simulator::Device &device)
    : Connection(socket, pieceSize), shared(shared), exchange(device)
{
    connect(&shared.changed, &QTimer::timeout, this, &ScpiSocket::serve);
}

bool ScpiSocket::serveNext()
{
    if (!exchange.hasAnswer()) {
        const QByteArray line = socket->readLine(pieceSize);
        if (line.isEmpty()) {
            return false;
        }
        exchange.write({line.constData(), static_cast<std::size_t>(line.size())}, false);
        shared.changed.start();
        return true;
    }
    // The next line is taken only after the answer has left.
    if (Clock::now() < exchange.answerAt()) {
        serveAt(exchange.answerAt());
        return false;
    }
    if (std::exchange(exchange.device.faults.connectionLost, false)) {
        socket->abort();
        return false;
    }
    const auto part = exchange.read(std::numeric_limits<std::size_t>::max(), {});
    socket->write(part->bytes.data(), static_cast<qint64>(part->bytes.size()));
    return true;
}

} // namespace server
