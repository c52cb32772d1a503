#pragma once

#include "simulator/MessageExchange.h"
#include "simulator/server/Connection.h"

namespace server {

/// One client's connection to the raw socket of an instrument, which takes lines of SCPI and sends
/// answers.
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
