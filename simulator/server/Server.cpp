#include "simulator/server/Server.h"

#include "simulator/server/PortmapService.h"
#include "simulator/server/ScpiSocket.h"
#include "visa/wire/Portmapper.h"

#include <QCoreApplication>
#include <QNetworkAddressEntry>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QTcpServer>
#include <QUdpSocket>

#include <algorithm>

namespace server {

namespace {

constexpr quint16 lastPrivilegedPort = 1023;
constexpr quint32 loopbackBroadcast = 0x7fffffff; // 127.255.255.255

/// Call `serve` with every connection to a server.
template <typename Serve>
void onConnection(QTcpServer *server, Serve serve)
{
    QObject::connect(server, &QTcpServer::newConnection, server, [server, serve] {
        while (QTcpSocket *socket = server->nextPendingConnection()) {
            serve(socket);
        }
    });
}

/// Answer the calls to the portmapper that a socket receives. The answers leave by `sender`.
void servePortmap(QUdpSocket *receiver, QUdpSocket *sender, quint16 corePort)
{
    QObject::connect(receiver, &QUdpSocket::readyRead, receiver, [=] {
        while (receiver->hasPendingDatagrams()) {
            const QNetworkDatagram datagram = receiver->receiveDatagram();
            const std::string message = datagram.data().toStdString();
            if (const auto call = wire::decodedCall(message)) {
                sender->writeDatagram(
                    datagram.makeReply(QByteArray::fromStdString(portmapAnswer(*call, corePort))));
            }
        }
    });
}

/// Returns what may help when listening at a port failed.
QString advice(quint16 port, QAbstractSocket::SocketError error)
{
    const QString ownNetwork =
        "have a network of your own by 'unshare --user --map-root-user --net sh -c \"ip link set "
        "lo up; exec $SHELL\"' and start this and its clients there.";
    if (error == QAbstractSocket::SocketAccessError && port <= lastPrivilegedPort) {
        return "Ports below 1024 need a privilege: type 'sudo setcap cap_net_bind_service=+ep " +
               QCoreApplication::applicationFilePath() + "' once, or " + ownNetwork;
    }
    if (error != QAbstractSocket::AddressInUseError) {
        return {};
    }
    if (port == wire::portmapperPort) {
        return "It is usually rpcbind or another OrvantaBench that listens there: end that bench, "
               "type 'sudo systemctl stop rpcbind.socket rpcbind.service', or " +
               ownNetwork;
    }
    return "Perhaps OrvantaBench is already running; with --port this one takes other ports.";
}

QString failure(const QHostAddress &address, quint16 port, const QString &reason,
                QAbstractSocket::SocketError error)
{
    return QString("Cannot listen at %1, port %2: %3.\n%4")
        .arg(address.toString())
        .arg(port)
        .arg(reason, advice(port, error))
        .trimmed();
}

QString listen(QTcpServer *server, const QHostAddress &address, quint16 port)
{
    if (!server->listen(address, port)) {
        return failure(address, port, server->errorString(), server->serverError());
    }
    return {};
}

QString listen(QUdpSocket *socket, const QHostAddress &address, quint16 port,
               QAbstractSocket::BindMode mode)
{
    if (!socket->bind(address, port, mode)) {
        return failure(address, port, socket->errorString(), socket->error());
    }
    return {};
}

/// Returns this machine's IPv4 addresses, those of interfaces without a cable too.
QList<QNetworkAddressEntry> ownAddresses()
{
    QList<QNetworkAddressEntry> addresses;
    for (const QNetworkInterface &interface : QNetworkInterface::allInterfaces()) {
        for (const QNetworkAddressEntry &entry : interface.addressEntries()) {
            if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol) {
                addresses << entry;
            }
        }
    }
    return addresses;
}

/// Returns the addresses by which clients reach a server that listens at an address. A server can
/// listen at a broadcast or multicast address, too, but no client reaches it there.
QList<QHostAddress> reachableAddresses(const QHostAddress &address)
{
    if (address.isLoopback() && address.toIPv4Address() != loopbackBroadcast) {
        return {address};
    }
    QList<QHostAddress> addresses;
    for (const QNetworkAddressEntry &own : ownAddresses()) {
        if (own.ip() == address || address == QHostAddress(QHostAddress::AnyIPv4)) {
            addresses << own.ip();
        }
    }
    return addresses;
}

/// Returns an address and its network's broadcast address, if there is one. Clients look for
/// instruments by broadcasts, which a socket at a single address does not get.
QList<QHostAddress> datagramAddresses(const QHostAddress &address)
{
    QList<QHostAddress> addresses{address};
    for (const QNetworkAddressEntry &own : ownAddresses()) {
        if (own.ip() == address && !own.broadcast().isNull()) {
            addresses << own.broadcast();
        }
    }
    return addresses;
}

} // namespace

Server::Server(const ServerOptions &options) : options(options), shared(options.timeScale) {}

QString Server::start()
{
    CoreChannel::Devices devices;
    for (const auto &device : shared.bench.devices()) {
        devices.push_back(device.get());
    }
    if (!options.address.isLoopback()) {
        return startHost(options.address, devices);
    }
    std::sort(devices.begin(), devices.end(),
              [](const auto *a, const auto *b) { return a->name < b->name; });
    quint32 address = options.address.toIPv4Address();
    for (simulator::Device *device : devices) {
        QString error = startHost(QHostAddress(++address), {device});
        if (!error.isEmpty()) {
            return error;
        }
    }
    return {};
}

/// Serve some devices at an address.
QString Server::startHost(const QHostAddress &address, const CoreChannel::Devices &devices)
{
    const QList<QHostAddress> reachable = reachableAddresses(address);
    if (reachable.isEmpty()) {
        return "No client can reach " + address.toString() + ": it is no address of this machine.";
    }
    if (options.hasVxi11) {
        QString error = startVxi11(address, devices);
        if (!error.isEmpty()) {
            return error;
        }
    }
    quint16 port = options.scpiPort;
    for (simulator::Device *device : devices) {
        auto *const server = new QTcpServer(&sockets);
        onConnection(server, [this, device](QTcpSocket *socket) {
            if (device->clients >= simulator::Device::clientLimit) {
                delete socket;
                return;
            }
            new ScpiSocket(socket, shared, *device); // owned by the socket
        });
        QString error = listen(server, address, port++);
        if (!error.isEmpty()) {
            return error;
        }
    }
    for (const QHostAddress &at : reachable) {
        addResources(at, devices);
    }
    return {};
}

/// Serve an address's core channel and its portmapper.
QString Server::startVxi11(const QHostAddress &address, const CoreChannel::Devices &devices)
{
    auto *const core = new QTcpServer(&sockets);
    onConnection(core, [this, devices](QTcpSocket *socket) {
        new CoreChannel(socket, shared, devices); // owned by the socket
    });
    QString error = listen(core, address, 0);
    if (!error.isEmpty()) {
        return error;
    }
    const quint16 corePort = core->serverPort();
    auto *const mapper = new QTcpServer(&sockets);
    onConnection(mapper, [corePort](QTcpSocket *socket) {
        new PortmapConnection(socket, corePort); // owned by the socket
    });
    error = listen(mapper, address, wire::portmapperPort);
    if (!error.isEmpty()) {
        return error;
    }
    QUdpSocket *sender = nullptr; // of all answers; it is bound to the address itself
    for (const QHostAddress &at : datagramAddresses(address)) {
        auto *const receiver = new QUdpSocket(&sockets);
        sender = sender != nullptr ? sender : receiver;
        servePortmap(receiver, sender, corePort);
        QAbstractSocket::BindMode mode = QAbstractSocket::DontShareAddress;
        if (at != address) { // all benches of this machine share it
            mode = QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint;
        }
        error = listen(receiver, at, wire::portmapperPort, mode);
        if (!error.isEmpty()) {
            return error;
        }
    }
    return {};
}

void Server::addResources(const QHostAddress &address, const CoreChannel::Devices &devices)
{
    const QString host = "TCPIP0::" + address.toString();
    for (std::size_t i = 0; i < devices.size(); ++i) {
        QString line = QString::fromStdString(devices[i]->name) + ": ";
        if (options.hasVxi11) {
            line += QString("%1::inst%2::INSTR, ").arg(host).arg(i);
        }
        listening << line + QString("%1::%2::SOCKET").arg(host).arg(options.scpiPort + i);
    }
}

} // namespace server
