#include "simulator/server/PortmapService.h"

#include "visa/wire/Portmapper.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

namespace server {

namespace {

constexpr std::size_t requestLimit = 1024; // bytes
constexpr std::uint32_t nullProcedure = 0;

} // namespace

std::string portmapAnswer(const wire::RpcCall &call, std::uint16_t corePort)
{
    using wire::encodedReply;
    using wire::RpcOutcome;
    using wire::xdrWords;

    if (call.procedure.program != wire::portmapperProgram) {
        return encodedReply(call.xid, RpcOutcome::ProgramUnavailable);
    }
    if (call.procedure.version != wire::portmapperVersion) {
        return encodedReply(call.xid, RpcOutcome::ProgramMismatch,
                            xdrWords({wire::portmapperVersion, wire::portmapperVersion}));
    }
    if (call.procedure.procedure == nullProcedure) {
        return encodedReply(call.xid, RpcOutcome::Success);
    }
    if (call.procedure.procedure != wire::getPortProcedure) {
        return encodedReply(call.xid, RpcOutcome::ProcedureUnavailable);
    }
    wire::XdrReader from(call.arguments);
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t protocol = 0;
    from >> program >> version >> protocol;
    if (!from.isOk()) {
        return encodedReply(call.xid, RpcOutcome::GarbageArguments);
    }
    const bool isCore = program == wire::vxi11::coreProgram && protocol == wire::tcpProtocol;
    return encodedReply(call.xid, RpcOutcome::Success, xdrWords({isCore ? corePort : 0U}));
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
