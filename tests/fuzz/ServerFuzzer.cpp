// Clients on the network that call what they like.

#include "Require.h"
#include "simulator/server/CoreChannel.h"
#include "simulator/server/PortmapService.h"
#include "visa/wire/Portmapper.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <QCoreApplication>

#include <fuzzer/FuzzedDataProvider.h>

namespace {

int argumentCount = 0;
const QCoreApplication application(argumentCount, nullptr); // for timers

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    static server::SharedBench shared(0.0);
    shared.nextLink = 0; // every input starts alike
    for (const auto &device : shared.bench.devices()) {
        device->instrument->execute("*RST;*CLS;BENCH:FAULT NONE");
    }
    {
        QTcpSocket socket;
        auto *const channel =
            new server::CoreChannel(&socket, shared, {shared.bench.find("scope")});
        while (input.remaining_bytes() > 0) {
            const std::string bytes = input.ConsumeRandomLengthString(300);
            wire::decodedCall(bytes);
            std::string arguments;
            wire::RpcCall call;
            call.procedure = {wire::vxi11::coreProgram, wire::vxi11::coreVersion,
                              input.ConsumeIntegralInRange(9U, 27U)};
            switch (call.procedure.procedure) {
            case wire::vxi11::CreateLink:
                arguments = wire::xdrWords({0, input.ConsumeIntegralInRange(0U, 1U), 0}) +
                            wire::xdrOpaque("inst0");
                break;
            case wire::vxi11::DeviceWrite:
                arguments = wire::xdrWords({input.ConsumeIntegralInRange(0U, 3U), 0, 0,
                                            input.ConsumeIntegral<std::uint8_t>()}) +
                            wire::xdrOpaque(bytes);
                break;
            default:
                arguments = wire::xdrWords({input.ConsumeIntegralInRange(0U, 3U),
                                            input.ConsumeIntegral<std::uint32_t>(), 0, 0}) +
                            bytes;
            }
            call.arguments = arguments;
            const auto core = server::decodedCoreCall(call);
            if (std::holds_alternative<server::CoreCall>(core)) {
                channel->answer(std::get<server::CoreCall>(core), server::Clock::now());
            }
            call.procedure = {wire::portmapperProgram, input.ConsumeIntegralInRange(2U, 4U),
                              input.ConsumeIntegralInRange(0U, 5U)};
            server::portmapAnswer(call, 1);
        }
    }
    for (const auto &device : shared.bench.devices()) {
        require(device->clients == 0 && device->lockHolder == nullptr, "who goes leaves nothing");
    }
    return 0;
}
