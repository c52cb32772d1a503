#pragma once

#include "simulator/server/Laboratory.h"

#include <QHostAddress>
#include <QObject>
#include <QStringList>

class QTcpServer;

namespace server {

/// How the bench is put on the network.
struct ServerOptions
{
    QHostAddress address{QHostAddress::LocalHost}; ///< IPv4, as resource strings have no other
    quint16 scpiPort = 5025;                       ///< of the first raw socket; 0: any
    bool hasPortmapper = true;
    quint16 mapperPort = 111;
    double timeScale = 1.0;
};

/// Serves every instrument of the bench by VXI-11 and as a raw socket. On loopback each has an
/// address of its own, counted from the one after that of the options, since VXI-11 clients ask
/// for "inst0"; elsewhere they share the address and go by their names.
class Server : public QObject
{
    Q_OBJECT

public:
    explicit Server(const ServerOptions &options);

    /// Listen. Returns why that failed, or nothing.
    QString start();

    /// Its name and the resource strings by which it can be reached, for each instrument.
    [[nodiscard]] QStringList resources() const { return listening; }

    /// Tell whether a failure to listen was for want of a privilege.
    [[nodiscard]] bool isUnprivileged() const { return unprivileged; }

private:
    QString startHost(const QHostAddress &address, Device *device);
    QString startScpi(const QHostAddress &address, quint16 port, Device &device,
                      quint16 *listeningPort);
    QString listen(QTcpServer *server, const QHostAddress &address, quint16 port);
    QString failure(const QHostAddress &address, quint16 port, const QString &reason,
                    bool isRefused);

    ServerOptions options;
    Laboratory laboratory;
    QStringList listening;
    bool unprivileged = false;
};

} // namespace server
