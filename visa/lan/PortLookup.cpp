#include "visa/lan/PortLookup.h"

#include "visa/lan/RpcClient.h"
#include "visa/wire/Portmapper.h"
#include "visa/wire/Xdr.h"

#include <limits>

namespace lan {

ViStatus findPort(const QHostAddress &address, std::uint16_t mapperPort,
                  const wire::RpcProcedure &program, visa::Deadline deadline, std::uint16_t *port)
{
    RpcClient mapper;
    ViStatus status = mapper.connectTo(address, mapperPort, deadline);
    std::string_view results;
    if (status == VI_SUCCESS) {
        status =
            mapper.call({wire::portmapperProgram, wire::portmapperVersion, wire::getPortProcedure},
                        wire::xdrWords({program.program, program.version, wire::tcpProtocol, 0}),
                        deadline, &results);
    }
    if (status != VI_SUCCESS) {
        return status == VI_ERROR_TMO ? VI_ERROR_TMO : VI_ERROR_RSRC_NFOUND;
    }
    std::uint32_t found = 0; // which is what the portmapper answers, too, when there is none
    wire::XdrReader(results) >> found;
    *port = static_cast<std::uint16_t>(found);
    return found > 0 && found <= std::numeric_limits<std::uint16_t>::max() ? VI_SUCCESS
                                                                           : VI_ERROR_RSRC_NFOUND;
}

} // namespace lan
