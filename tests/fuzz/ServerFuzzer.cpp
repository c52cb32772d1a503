// The server of VXI-11, against a client that calls anything, and the decoders of the client,
// against a server that answers anything.

#include "simulator/server/CoreChannel.h"
#include "simulator/server/PortmapService.h"
#include "visa/wire/Portmapper.h"
#include "visa/wire/Vxi11.h"

#include <QCoreApplication>

#undef NDEBUG
#include <cassert>
#include <fuzzer/FuzzedDataProvider.h>

using namespace wire::vxi11;

namespace {

int argumentCount = 0;
const QCoreApplication application(argumentCount, nullptr); // for timers

/// Decode bytes as a stream of records with replies.
void decodeReplies(std::string_view bytes)
{
    wire::RecordReader reader(1000);
    const auto source = [&bytes](char *to, std::size_t size) {
        const std::size_t count = bytes.copy(to, size);
        bytes.remove_prefix(count);
        return static_cast<std::ptrdiff_t>(count);
    };
    while (reader.read(source) == wire::RecordReader::State::Complete) {
        wire::decodedReply(reader.take());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    static server::SharedBench shared(0.0);
    shared.nextLink = 0; // every input starts alike
    for (const auto &device : shared.bench.devices()) {
        device->instrument->execute("*RST;*CLS;BENCH:FAULT NONE");
    }
    {
        QTcpSocket socket;
        const auto &devices = shared.bench.devices();
        const auto which = input.ConsumeIntegralInRange<std::size_t>(0, devices.size() - 1);
        auto *const channel = new server::CoreChannel(&socket, shared, {devices[which].get()});
        while (input.remaining_bytes() > 0) {
            const std::string bytes = input.ConsumeRandomLengthString(300);
            decodeReplies(bytes);
            wire::decodedReply(bytes);
            wire::decodedCall(bytes);
            server::CoreCall core;
            core.procedure = input.ConsumeIntegralInRange(9U, 27U);
            server::decodedCoreCall({0, {coreProgram, coreVersion, core.procedure}, bytes});
            core.link = input.ConsumeIntegralInRange(0U, 3U);
            core.flags = input.ConsumeIntegral<std::uint8_t>();
            core.requestSize = input.ConsumeIntegral<std::uint32_t>();
            core.terminator = '\n';
            core.lockDevice = input.ConsumeBool();
            core.data = core.procedure == CreateLink ? std::string_view("inst0") : bytes;
            channel->answer(core, server::Clock::now());
            const auto procedure = input.ConsumeIntegralInRange(0U, 5U);
            server::portmapAnswer({0, {wire::portmapperProgram, 2, procedure}, bytes}, 1);
        }
    }
    for (const auto &device : shared.bench.devices()) {
        assert(device->clients == 0);
        assert(device->lockHolder == nullptr);
    }
    return 0;
}
