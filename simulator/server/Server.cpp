#include "simulator/server/Server.h"

#include "simulator/server/CoreChannel.h"
#include "simulator/server/PortmapService.h"
#include "simulator/server/ScpiSocket.h"

#include <QNetworkDatagram>
#include <QTcpServer>
#include <QUdpSocket>

namespace server {

namespace {

constexpr std::size_t mapperCallLimit = 1024; // bytes
constexpr std::size_t lastPort = 65535;

/// Give every connection to a server to `serve`.
template <typename Serve>
void onConnection(QTcpServer *server, Serve serve)
{
    QObject::connect(server, &QTcpServer::newConnection, server, [server, serve] {
        while (QTcpSocket *socket = server->nextPendingConnection()) {
            serve(socket);
        }
    });
}

void servePortmap(QTcpSocket *socket, quint16 corePort)
{
    const auto reader = std::make_shared<wire::RecordReader>(mapperCallLimit);
    QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket, reader, corePort] {
        const auto source = [socket](char *to, std::size_t size) {
            return socket->read(to, static_cast<qint64>(size));
        };
        wire::RecordReader::State state;
        while ((state = reader->read(source)) == wire::RecordReader::State::Complete) {
            const std::string record = reader->take();
            if (const auto call = wire::decodedCall(record)) {
                socket->write(
                    QByteArray::fromStdString(wire::asRecord(portmapAnswer(*call, corePort))));
            }
        }
        if (state == wire::RecordReader::State::TooLong) {
            socket->abort();
        }
    });
}

void servePortmap(QUdpSocket *socket, quint16 corePort)
{
    QObject::connect(socket, &QUdpSocket::readyRead, socket, [socket, corePort] {
        while (socket->hasPendingDatagrams()) {
            const QNetworkDatagram datagram = socket->receiveDatagram();
            const std::string message = datagram.data().toStdString();
            if (const auto call = wire::decodedCall(message)) {
                socket->writeDatagram(
                    datagram.makeReply(QByteArray::fromStdString(portmapAnswer(*call, corePort))));
            }
        }
    });
}

QString resource(const QHostAddress &address, const QString &rest)
{
    return "TCPIP0::" + address.toString() + "::" + rest;
}

} // namespace

Server::Server(const ServerOptions &options) : options(options), laboratory(options.timeScale) {}

QString Server::start()
{
    const bool isAlone = options.address.isLoopback();
    const bool isRange = !isAlone && options.scpiPort != 0; // 0: any port, for each
    if (isRange && options.scpiPort + laboratory.devices.size() - 1 > lastPort) {
        return QString("The instruments need %1 ports from %2 on, but the last port is %3.")
            .arg(laboratory.devices.size())
            .arg(options.scpiPort)
            .arg(lastPort);
    }
    QString error = isAlone ? QString() : startHost(options.address, nullptr);
    quint32 offset = 0;
    for (const auto &device : laboratory.devices) {
        ++offset;
        const QHostAddress address =
            isAlone ? QHostAddress(options.address.toIPv4Address() + offset) : options.address;
        const auto port = static_cast<quint16>(options.scpiPort + (isRange ? offset - 1 : 0));
        error = error.isEmpty() && isAlone ? startHost(address, device.get()) : error;
        quint16 scpiPort = 0;
        error = error.isEmpty() ? startScpi(address, port, *device, &scpiPort) : error;
        const QString name = QString::fromStdString(device->name);
        const QString vxi11 = resource(address, isAlone ? "inst0::INSTR" : name + "::INSTR");
        listening << name + ": " + (options.hasPortmapper ? vxi11 + ", " : "") +
                         resource(address, QString::number(scpiPort) + "::SOCKET");
    }
    return error;
}

/// Serve a host's core channel and its portmapper.
QString Server::startHost(const QHostAddress &address, Device *device)
{
    auto *const core = new QTcpServer(this);
    onConnection(core, [this, device](QTcpSocket *socket) {
        new CoreChannel(socket, laboratory, device); // the socket's
    });
    QString error = listen(core, address, 0);
    if (!error.isEmpty() || !options.hasPortmapper) {
        return error;
    }
    const quint16 corePort = core->serverPort();
    auto *const mapper = new QTcpServer(this);
    onConnection(mapper, [corePort](QTcpSocket *socket) { servePortmap(socket, corePort); });
    error = listen(mapper, address, options.mapperPort);
    if (!error.isEmpty()) {
        return error;
    }
    auto *const datagrams = new QUdpSocket(this);
    servePortmap(datagrams, corePort);
    if (!datagrams->bind(address, mapper->serverPort(), QAbstractSocket::DontShareAddress)) {
        return failure(address, mapper->serverPort(), datagrams->errorString(),
                       datagrams->error() == QAbstractSocket::SocketAccessError);
    }
    return {};
}

/// Serve an instrument's raw socket; sets the port that it got, which differs for port 0.
QString Server::startScpi(const QHostAddress &address, quint16 port, Device &device,
                          quint16 *listeningPort)
{
    auto *const server = new QTcpServer(this);
    onConnection(server, [&device](QTcpSocket *socket) {
        new ScpiSocket(socket, device); // the socket's
    });
    QString error = listen(server, address, port);
    *listeningPort = server->serverPort();
    return error;
}

QString Server::listen(QTcpServer *server, const QHostAddress &address, quint16 port)
{
    return server->listen(address, port)
               ? QString()
               : failure(address, port, server->errorString(),
                         server->serverError() == QAbstractSocket::SocketAccessError);
}

QString Server::failure(const QHostAddress &address, quint16 port, const QString &reason,
                        bool isRefused)
{
    unprivileged = isRefused && port != 0 && port < 1024;
    return QString("Cannot listen at %1, port %2: %3.")
        .arg(address.toString())
        .arg(port)
        .arg(reason);
}

} // namespace server
