#pragma once

#include "simulator/MessageExchange.h"
#include "simulator/server/Connection.h"

namespace server {

/// One client's connection to a raw socket of an instrument: lines of SCPI in, answers out.
class ScpiSocket : public Connection
{
    Q_OBJECT

public:
    ScpiSocket(QTcpSocket *socket, SharedBench &shared, simulator::Device &device);

private:
    bool serveNext() override;

    SharedBench &shared;
    simulator::MessageExchange exchange;
};

} // namespace server
