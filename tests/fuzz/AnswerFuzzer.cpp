// The client of VXI-11, against an instrument that answers anything.

#include "tests/ScriptedHost.h"
#include "visa/lan/Vxi11Link.h"

#undef NDEBUG
#include <cassert>
#include <fuzzer/FuzzedDataProvider.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    auto usualAnswers = input.ConsumeIntegralInRange(0, 4);
    // The connection ends after an answer of the fuzzer's, so that nobody waits for more.
    const auto script = [&](const wire::RpcCall &call) -> ScriptedHost::Pieces {
        if (usualAnswers-- > 0) {
            return {};
        }
        if (input.ConsumeBool()) {
            return {input.ConsumeRandomLengthString(400), ""};
        }
        const std::string results = wire::xdrWords(
            {input.ConsumeIntegralInRange(0U, 20U), input.ConsumeIntegralInRange(0U, 9U)});
        const std::string rest = input.ConsumeRandomLengthString(200);
        const std::string whole = ScriptedHost::reply(call, results + rest).front();
        return {whole.substr(0, input.ConsumeIntegralInRange<std::size_t>(1, whole.size())), ""};
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
    assert(written <= 5);
    for (int i = 0; i < 3; ++i) {
        assert(link.read(buffer.get(), 10, '\n', soon()).count <= 10);
    }
    return 0;
}
