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

constexpr std::size_t lastPort = 65535;
constexpr quint16 lastPrivilegedPort = 1023;

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

/// Answer the calls to the portmapper that come to one socket by way of another, which has an
/// address of its own.
void servePortmap(QUdpSocket *from, QUdpSocket *by, quint16 corePort)
{
    QObject::connect(from, &QUdpSocket::readyRead, from, [=] {
        while (from->hasPendingDatagrams()) {
            const QNetworkDatagram datagram = from->receiveDatagram();
            const std::string message = datagram.data().toStdString();
            if (const auto call = wire::decodedCall(message)) {
                by->writeDatagram(
                    datagram.makeReply(QByteArray::fromStdString(portmapAnswer(*call, corePort))));
            }
        }
    });
}

/// Returns what may help when nobody can listen at a port.
QString advice(quint16 port, QAbstractSocket::SocketError error)
{
    const QString ownNetwork =
        "have a network of your own by 'unshare --user --map-root-user --net sh -c \"ip link set "
        "lo up; exec $SHELL\"' and start this and its clients there.";
    if (error == QAbstractSocket::SocketAccessError && port <= lastPrivilegedPort) {
        return "VXI-11 clients ask at port 111, which needs a privilege: type 'sudo setcap "
               "cap_net_bind_service=+ep " +
               QCoreApplication::applicationFilePath() + "' once, or " + ownNetwork;
    }
    if (error != QAbstractSocket::AddressInUseError) {
        return {};
    }
    if (port == wire::portmapperPort) {
        return "As a rule rpcbind is there: type 'sudo systemctl stop rpcbind.socket "
               "rpcbind.service' before you start this, or " +
               ownNetwork;
    }
    return "Perhaps OrvantaBench is already running; with --port this one takes other ports.";
}

template <typename Socket>
QString failure(const QHostAddress &address, quint16 port, const Socket &socket,
                QAbstractSocket::SocketError error)
{
    return QString("Cannot listen at %1, port %2: %3.\n%4")
        .arg(address.toString())
        .arg(port)
        .arg(socket.errorString(), advice(port, error))
        .trimmed();
}

QString listen(QTcpServer *server, const QHostAddress &address, quint16 port)
{
    if (!server->listen(address, port)) {
        return failure(address, port, *server, server->serverError());
    }
    return {};
}

QString listen(QUdpSocket *socket, const QHostAddress &address, quint16 port)
{
    if (!socket->bind(address, port, QAbstractSocket::DontShareAddress)) {
        return failure(address, port, *socket, socket->error());
    }
    return {};
}

/// Returns the interface addresses at which a socket is reached that is bound to an address.
QList<QNetworkAddressEntry> reachableAt(const QHostAddress &address)
{
    QList<QNetworkAddressEntry> reachable;
    for (const QNetworkInterface &interface : QNetworkInterface::allInterfaces()) {
        for (const QNetworkAddressEntry &entry : interface.addressEntries()) {
            const bool isAny = address == QHostAddress(QHostAddress::AnyIPv4) &&
                               entry.ip().protocol() == QAbstractSocket::IPv4Protocol;
            if (isAny || entry.ip() == address) {
                reachable << entry;
            }
        }
    }
    return reachable;
}

} // namespace

Server::Server(const ServerOptions &options) : options(options), shared(options.timeScale) {}

QString Server::start()
{
    return options.address.isLoopback() ? startOnLoopback() : startAtOneAddress();
}

QString Server::startOnLoopback()
{
    CoreChannel::Devices devices;
    for (const auto &device : shared.bench.devices()) {
        devices.push_back(device.get());
    }
    std::sort(devices.begin(), devices.end(),
              [](const auto *a, const auto *b) { return a->name < b->name; });
    QHostAddress address = options.address;
    for (simulator::Device *device : devices) {
        address = QHostAddress(address.toIPv4Address() + 1);
        QString error = startVxi11(address, {device});
        if (!error.isEmpty()) {
            return error;
        }
        quint16 scpiPort = 0;
        error = startScpi(address, options.scpiPort, *device, &scpiPort);
        if (!error.isEmpty()) {
            return error;
        }
        addResource(address, *device, 0, scpiPort);
    }
    return {};
}

QString Server::startAtOneAddress()
{
    const auto &devices = shared.bench.devices();
    if (options.scpiPort + devices.size() - 1 > lastPort) {
        return QString("The instruments need %1 ports from %2 on, but the last port is %3.")
            .arg(devices.size())
            .arg(options.scpiPort)
            .arg(lastPort);
    }
    CoreChannel::Devices numbered;
    std::vector<quint16> scpiPorts;
    for (const auto &device : devices) {
        const bool isAny = options.scpiPort == 0;
        const auto port = static_cast<quint16>(isAny ? 0 : options.scpiPort + numbered.size());
        numbered.push_back(device.get());
        scpiPorts.push_back(port);
        QString error = startScpi(options.address, port, *device, &scpiPorts.back());
        if (!error.isEmpty()) {
            return error;
        }
    }
    for (const QNetworkAddressEntry &entry : reachableAt(options.address)) {
        for (std::size_t i = 0; i < numbered.size(); ++i) {
            addResource(entry.ip(), *numbered[i], i, scpiPorts[i]);
        }
    }
    return startVxi11(options.address, numbered);
}

/// Serve a host's core channel and its portmapper.
QString Server::startVxi11(const QHostAddress &address, const CoreChannel::Devices &numbered)
{
    if (!options.hasPortmapper) {
        return {};
    }
    auto *const core = new QTcpServer(&sockets);
    onConnection(core, [this, numbered](QTcpSocket *socket) {
        new CoreChannel(socket, shared, numbered); // the socket's
    });
    QString error = listen(core, address, 0);
    if (!error.isEmpty()) {
        return error;
    }
    const quint16 corePort = core->serverPort();
    auto *const mapper = new QTcpServer(&sockets);
    onConnection(mapper, [corePort](QTcpSocket *socket) {
        new PortmapConnection(socket, corePort); // the socket's
    });
    error = listen(mapper, address, wire::portmapperPort);
    if (!error.isEmpty()) {
        return error;
    }
    auto *const datagrams = new QUdpSocket(&sockets);
    servePortmap(datagrams, datagrams, corePort);
    error = listen(datagrams, address, wire::portmapperPort);
    if (!error.isEmpty()) {
        return error;
    }
    if (address == QHostAddress(QHostAddress::AnyIPv4)) {
        return {};
    }
    // Clients look for instruments by broadcasts, which a socket at a single address does not get.
    for (const QNetworkAddressEntry &entry : reachableAt(address)) {
        if (entry.broadcast().isNull()) {
            continue;
        }
        auto *const broadcasts = new QUdpSocket(&sockets);
        servePortmap(broadcasts, datagrams, corePort);
        error = listen(broadcasts, entry.broadcast(), wire::portmapperPort);
        if (!error.isEmpty()) {
            return error;
        }
    }
    return {};
}

/// Serve an instrument's raw socket; sets the port that it got, which differs for port 0.
QString Server::startScpi(const QHostAddress &address, quint16 port, simulator::Device &device,
                          quint16 *listeningPort)
{
    auto *const server = new QTcpServer(&sockets);
    onConnection(server, [this, &device](QTcpSocket *socket) {
        new ScpiSocket(socket, shared, device); // the socket's
    });
    QString error = listen(server, address, port);
    *listeningPort = server->serverPort();
    return error;
}

void Server::addResource(const QHostAddress &address, const simulator::Device &device,
                         std::size_t number, quint16 scpiPort)
{
    const QString host = "TCPIP0::" + address.toString();
    const QString vxi11 = QString("%1::inst%2::INSTR, ").arg(host).arg(number);
    const QString socket = QString("%1::%2::SOCKET").arg(host).arg(scpiPort);
    listening << QString::fromStdString(device.name) + ": " + (options.hasPortmapper ? vxi11 : "") +
                     socket;
}

} // namespace server
