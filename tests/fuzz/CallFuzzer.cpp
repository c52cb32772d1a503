// Clients on the network that call what they like.

#include "Require.h"
#include "simulator/server/CoreChannel.h"
#include "simulator/server/PortmapService.h"
#include "visa/wire/Portmapper.h"
#include "visa/wire/Vxi11.h"
#include "visa/wire/Xdr.h"

#include <fuzzer/FuzzedDataProvider.h>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    static server::Laboratory laboratory(0.0);
    laboratory.nextLink = 0; // every input starts alike
    for (const auto &device : laboratory.devices) {
        device->instrument.execute("*RST;*CLS;BENCH:FAULT NONE");
    }
    {
        QTcpSocket socket;
        auto *const channel =
            new server::CoreChannel(&socket, laboratory, laboratory.find("scope"));
        while (input.remaining_bytes() > 0) {
            const std::string text = input.ConsumeRandomLengthString(300);
            const QByteArray bytes(text.data(), static_cast<int>(text.size()));
            lan::decodedCall(bytes);
            lan::RpcCall call;
            call.procedure = {lan::vxi11::coreProgram, lan::vxi11::coreVersion,
                              input.ConsumeIntegralInRange(9U, 27U)};
            switch (call.procedure.procedure) {
            case lan::vxi11::CreateLink:
                call.arguments = lan::xdrWords({0, input.ConsumeIntegralInRange(0U, 1U), 0}) +
                                 lan::xdrOpaque("inst0", 5);
                break;
            case lan::vxi11::DeviceWrite:
                call.arguments = lan::xdrWords({input.ConsumeIntegralInRange(0U, 3U), 0, 0,
                                                input.ConsumeIntegral<quint8>()}) +
                                 lan::xdrOpaque(bytes.data(), bytes.size());
                break;
            default:
                call.arguments = lan::xdrWords({input.ConsumeIntegralInRange(0U, 3U),
                                                input.ConsumeIntegral<quint32>(), 0, 0}) +
                                 bytes;
            }
            channel->answer(call, server::Clock::now());
            call.procedure = {lan::portmapperProgram, input.ConsumeIntegralInRange(2U, 4U),
                              input.ConsumeIntegralInRange(0U, 5U)};
            server::portmapAnswer(call, 1);
        }
    }
    for (const auto &device : laboratory.devices) {
        require(device->links == 0 && device->lockHolder == nullptr, "who goes leaves nothing");
    }
    return 0;
}
