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
    quint16 scpiPort = 5025; ///< of the raw sockets; at a shared address, of the first
    bool hasVxi11 = true;    ///< with its portmapper at port 111
    double timeScale = 1.0;
};

/// Serves every instrument of the bench at a raw socket and, if wanted, by VXI-11. On loopback each
/// has an address of its own, where it is "inst0": the addresses after that of the options, in the
/// order of the names. Elsewhere all share the address, as "inst0" to "inst5" and with consecutive
/// ports, in the order of the table in docs/simulated-bench.md.
class Server
{
public:
    explicit Server(const ServerOptions &options);

    /// Listen. Returns an empty text, or why it failed and what may help.
    QString start();

    /// Returns a line for each instrument and address: the instrument's name and its resource
    /// strings.
    [[nodiscard]] QStringList resources() const { return listening; }

private:
    QString startHost(const QHostAddress &address, const CoreChannel::Devices &devices);
    QString startVxi11(const QHostAddress &address, const CoreChannel::Devices &devices);
    void addResources(const QHostAddress &address, const CoreChannel::Devices &devices);

    ServerOptions options;
    SharedBench shared;
    QObject sockets; // the parent of all sockets, which are deleted before the bench
    QStringList listening;
};

} // namespace server
