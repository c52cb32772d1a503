#pragma once

#include "simulator/server/Device.h"

#include <QObject>
#include <QTcpSocket>
#include <QTimer>

namespace server {

/// One client's connection to a raw socket of an instrument: lines of SCPI in, answers out. It
/// deletes itself when the client has gone.
class ScpiSocket : public QObject
{
    Q_OBJECT

public:
    ScpiSocket(QTcpSocket *socket, Device &device);

private:
    void serve();

    QTcpSocket *socket;
    Device &device;
    simulator::Client client;
    QTimer retry;
};

} // namespace server
