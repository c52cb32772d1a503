#pragma once

#include "simulator/server/CoreChannel.h"

#include <QHostAddress>
#include <QStringList>

class QTcpServer;

namespace server {

/// How the bench is put on the network.
struct ServerOptions
{
    QHostAddress address{QHostAddress::LocalHost}; ///< IPv4, as resource strings have no other
    quint16 scpiPort = 5025;                       ///< of the first raw socket; 0: any
    bool hasPortmapper = true;
    double timeScale = 1.0;
};

/// Serves every instrument of the bench by VXI-11 and as a raw socket. On loopback each is the only
/// one at an address of its own, counted from the one after that of the options in the order of
/// their names. Elsewhere they share the address, as "inst0" to "inst5" and with consecutive ports,
/// in the handbook's order.
class Server
{
public:
    explicit Server(const ServerOptions &options);

    /// Listen. Returns why that failed and what may help, or nothing.
    QString start();

    /// Returns the names of the instruments and the resource strings by which they can be reached,
    /// a line for each instrument and address.
    [[nodiscard]] QStringList resources() const { return listening; }

private:
    QString startOnLoopback();
    QString startAtOneAddress();
    QString startVxi11(const QHostAddress &address, const CoreChannel::Devices &numbered);
    QString startScpi(const QHostAddress &address, quint16 port, simulator::Device &device,
                      quint16 *listeningPort);
    void addResource(const QHostAddress &address, const simulator::Device &device,
                     std::size_t number, quint16 scpiPort);

    ServerOptions options;
    SharedBench shared;
    QObject sockets; // the parent of all, which need the bench when they go
    QStringList listening;
};

} // namespace server
