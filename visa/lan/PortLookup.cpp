#include "visa/lan/PortLookup.h"

#include "visa/lan/RpcClient.h"
#include "visa/wire/Portmapper.h"
#include "visa/wire/Xdr.h"

#include <limits>

namespace lan {

ViStatus findPort(const QHostAddress &address, quint16 mapperPort, const RpcProcedure &program,
                  visa::Deadline deadline, quint16 *port)
{
    RpcClient mapper;
    ViStatus status = mapper.connectTo(address, mapperPort, deadline);
    QByteArray results;
    if (status == VI_SUCCESS) {
        status = mapper.call({portmapperProgram, portmapperVersion, getPortProcedure},
                             xdrWords({program.program, program.version, tcpProtocol, 0}), deadline,
                             &results);
    }
    if (status != VI_SUCCESS) {
        return status == VI_ERROR_TMO ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
    }
    quint32 found = 0; // which is what the portmapper answers, too, when there is none
    QDataStream(results) >> found;
    *port = static_cast<quint16>(found);
    return found > 0 && found <= std::numeric_limits<quint16>::max() ? VI_SUCCESS
                                                                     : VI_ERROR_RSRC_NFOUND;
}

} // namespace lan
