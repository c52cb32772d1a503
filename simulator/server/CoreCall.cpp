#include "simulator/server/CoreCall.h"

#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

namespace server {

using namespace wire::vxi11;

std::variant<CoreCall, wire::RpcOutcome> decodedCoreCall(const wire::RpcCall &call)
{
    if (call.procedure.program != coreProgram) {
        return wire::RpcOutcome::ProgramUnavailable;
    }
    if (call.procedure.version != coreVersion) {
        return wire::RpcOutcome::ProgramMismatch;
    }
    CoreCall core;
    core.procedure = call.procedure.procedure;
    if (core.procedure != Null &&
        (core.procedure < CreateLink || core.procedure > DestroyInterruptChannel)) {
        return wire::RpcOutcome::ProcedureUnavailable;
    }
    wire::XdrReader from(call.arguments);
    std::uint32_t ignored = 0;
    std::uint32_t lockDevice = 0;
    switch (core.procedure) { // the order of the parameters differs
    case CreateLink:
        from >> ignored >> lockDevice >> core.lockTimeout >> core.data;
        core.flags = WaitLock;
        core.lockDevice = lockDevice != 0;
        break;
    case DeviceWrite:
        from >> core.link >> core.ioTimeout >> core.lockTimeout >> core.flags >> core.data;
        break;
    case DeviceRead:
        from >> core.link >> core.requestSize >> core.ioTimeout >> core.lockTimeout >> core.flags >>
            core.terminator;
        break;
    case DeviceReadStb:
    case DeviceTrigger:
    case DeviceClear:
    case DeviceRemote:
    case DeviceLocal:
        from >> core.link >> core.flags >> core.lockTimeout >> core.ioTimeout;
        break;
    case DeviceLock:
        from >> core.link >> core.flags >> core.lockTimeout;
        break;
    case DeviceUnlock:
    case DestroyLink:
        from >> core.link;
        break;
    default: // Null has no parameters, and no other procedure is supported
        break;
    }
    if (!from.isOk()) {
        return wire::RpcOutcome::GarbageArguments;
    }
    return core;
}

} // namespace server
