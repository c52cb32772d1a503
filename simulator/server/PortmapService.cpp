#include "simulator/server/PortmapService.h"

#include "visa/wire/Portmapper.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

namespace server {

namespace {

constexpr std::size_t requestLimit = 1024; // bytes
constexpr std::uint32_t nullProcedure = 0;
constexpr std::uint32_t dumpProcedure = 4;

} // namespace

std::string portmapAnswer(const wire::RpcCall &call, std::uint16_t corePort)
{
    using wire::encodedReply;
    using wire::RpcOutcome;
    using wire::xdrWords;
    namespace vxi11 = wire::vxi11;

    if (call.procedure.program != wire::portmapperProgram) {
        return encodedReply(call.xid, RpcOutcome::ProgramUnavailable);
    }
    if (call.procedure.version != wire::portmapperVersion) {
        return encodedReply(call.xid, RpcOutcome::ProgramMismatch,
                            xdrWords({wire::portmapperVersion, wire::portmapperVersion}));
    }
    wire::XdrReader from(call.arguments);
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t protocol = 0;
    std::string results;
    switch (call.procedure.procedure) {
    case nullProcedure:
        break;
    case wire::getPortProcedure:
        from >> program >> version >> protocol;
        results = xdrWords(
            {program == vxi11::coreProgram && protocol == wire::tcpProtocol ? corePort : 0U});
        break;
    case dumpProcedure: // a list: 1 before each entry, 0 at its end
        results =
            xdrWords({1, vxi11::coreProgram, vxi11::coreVersion, wire::tcpProtocol, corePort, 0});
        break;
    default:
        return encodedReply(call.xid, RpcOutcome::ProcedureUnavailable);
    }
    if (!from.isOk()) {
        return encodedReply(call.xid, RpcOutcome::GarbageArguments);
    }
    return encodedReply(call.xid, RpcOutcome::Success, results);
}

PortmapConnection::PortmapConnection(QTcpSocket *socket, std::uint16_t corePort)
    : RpcConnection(socket, requestLimit), corePort(corePort)
{
}

bool PortmapConnection::serveNext()
{
    const std::optional<std::string> record = takeRecord();
    if (!record) {
        return false;
    }
    if (const auto call = wire::decodedCall(*record)) {
        send(portmapAnswer(*call, corePort));
    }
    return true;
}

} // namespace server
