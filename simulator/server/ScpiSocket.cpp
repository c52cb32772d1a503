#include "simulator/server/ScpiSocket.h"

#include <limits>
#include <utility>

namespace server {

namespace {

constexpr qint64 pieceSize = 65536; // bytes
constexpr int pollInterval = 1;     // ms

} // namespace

ScpiSocket::ScpiSocket(QTcpSocket *socket, Device &device)
    : QObject(socket), socket(socket), device(device), client(device.instrument)
{
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    retry.setTimerType(Qt::PreciseTimer);
    connect(&retry, &QTimer::timeout, this, &ScpiSocket::serve);
    connect(socket, &QTcpSocket::readyRead, this, &ScpiSocket::serve);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
}

void ScpiSocket::serve()
{
    for (;;) {
        if (client.hasAnswer()) { // which leaves before the next line is looked at
            if (!device.isReady()) {
                retry.start(pollInterval);
                return;
            }
            if (std::exchange(device.faults.connectionLost, false)) {
                socket->abort();
                return;
            }
            const Device::Part part =
                device.read(client, std::numeric_limits<std::size_t>::max(), {});
            socket->write(part.bytes.data(), static_cast<qint64>(part.bytes.size()));
        }
        retry.stop();
        const QByteArray line = socket->readLine(pieceSize);
        if (line.isEmpty()) {
            return;
        }
        device.write(client, {line.constData(), static_cast<std::size_t>(line.size())}, false);
    }
}

} // namespace server
