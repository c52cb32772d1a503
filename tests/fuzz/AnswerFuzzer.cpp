// An instrument on the network that answers what it likes.

#include "Require.h"
#include "tests/ScriptedHost.h"
#include "visa/lan/Vxi11Link.h"

#include <fuzzer/FuzzedDataProvider.h>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const auto before = input.ConsumeIntegralInRange<std::size_t>(0, 4); // sane answers
    std::size_t calls = 0;
    const auto bytes = [&](std::size_t most) { return input.ConsumeRandomLengthString(most); };
    // Whatever it is, the connection ends after it: nobody waits for more.
    const auto script = [&](const wire::RpcCall &call) -> ScriptedHost::Pieces {
        if (calls++ < before) {
            return {};
        }
        if (input.ConsumeBool()) {
            return {bytes(200), bytes(200), ""};
        }
        const std::string results = wire::xdrWords(
            {input.ConsumeIntegralInRange(0U, 20U), input.ConsumeIntegralInRange(0U, 9U)});
        const std::string whole = ScriptedHost::reply(call, results + bytes(200)).front();
        return {whole.substr(0, input.ConsumeIntegralInRange<std::size_t>(1, whole.size())),
                bytes(50), ""};
    };
    ScriptedHost host(script, input.ConsumeIntegral<std::uint32_t>());
    lan::Vxi11Link link;
    const auto soon = [] { return visa::deadlineAfter(50); };
    if (link.open("127.0.0.1", host.port, "inst0", soon()) != VI_SUCCESS) {
        return 0;
    }
    const std::unique_ptr<ViByte[]> buffer(new ViByte[10]); // of just the size that is allowed
    std::size_t written = 0;
    link.write(reinterpret_cast<const ViByte *>("*IDN?"), 5, true, soon(), &written);
    require(written <= 5, "no more is written than there was");
    for (int i = 0; i < 3; ++i) {
        require(link.read(buffer.get(), 10, '\n', soon()).count <= 10, "what is read has room");
    }
    return 0;
}
