#include "simulator/server/PortmapService.h"

#include "visa/wire/Portmapper.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

namespace server {

namespace {

constexpr quint32 nullProcedure = 0;
constexpr quint32 dumpProcedure = 4;

} // namespace

lan::RpcReply portmapAnswer(const lan::RpcCall &call, quint16 corePort)
{
    using lan::RpcOutcome;
    using lan::xdrWords;
    namespace vxi11 = lan::vxi11;

    lan::RpcReply reply{call.xid, RpcOutcome::Success, {}};
    if (call.procedure.program != lan::portmapperProgram) {
        reply.outcome = RpcOutcome::ProgramUnavailable;
        return reply;
    }
    if (call.procedure.version != lan::portmapperVersion) {
        reply.outcome = RpcOutcome::ProgramMismatch;
        reply.results = xdrWords({lan::portmapperVersion, lan::portmapperVersion});
        return reply;
    }
    QDataStream from(call.arguments);
    quint32 program = 0;
    quint32 version = 0;
    quint32 protocol = 0;
    switch (call.procedure.procedure) {
    case nullProcedure:
        break;
    case lan::getPortProcedure:
        from >> program >> version >> protocol;
        reply.results = xdrWords(
            {program == vxi11::coreProgram && protocol == lan::tcpProtocol ? corePort : 0U});
        break;
    case dumpProcedure: // a list: 1 before each entry, 0 at its end
        reply.results =
            xdrWords({1, vxi11::coreProgram, vxi11::coreVersion, lan::tcpProtocol, corePort, 0});
        break;
    default:
        reply.outcome = RpcOutcome::ProcedureUnavailable;
        return reply;
    }
    if (from.status() != QDataStream::Ok) {
        reply = {call.xid, RpcOutcome::GarbageArguments, {}};
    }
    return reply;
}

} // namespace server
