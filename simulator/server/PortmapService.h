#pragma once

#include "simulator/server/Connection.h"

namespace server {

/// Answer a call to the portmapper (RFC 1833, version 2) of a host whose only program is VXI-11's
/// core channel at this TCP port. Some clients ask for versions 3 and 4 first, and then for the
/// version that the refusal names.
std::string portmapAnswer(const wire::RpcCall &call, std::uint16_t corePort);

/// One client's connection to the portmapper.
class PortmapConnection : public RpcConnection
{
    Q_OBJECT

public:
    PortmapConnection(QTcpSocket *socket, std::uint16_t corePort);

private:
    bool serveNext() override;

    std::uint16_t corePort;
};

} // namespace server
