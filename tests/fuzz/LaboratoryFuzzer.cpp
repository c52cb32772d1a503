// Any calls of the bench's VISA functions in any order, with any handles, texts and attributes.

#include "Require.h"
#include "simulator/Laboratory.h"
#include "simulator/VisaFunctions.h"

#include <QTemporaryDir>

#include <array>
#include <deque>
#include <functional>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>

namespace {

constexpr std::array<ViAttr, 12> attributes = {
    VI_ATTR_TERMCHAR,          VI_ATTR_TMO_VALUE,       VI_ATTR_RM_SESSION,
    VI_ATTR_RSRC_IMPL_VERSION, VI_ATTR_RSRC_LOCK_STATE, VI_ATTR_RSRC_SPEC_VERSION,
    VI_ATTR_TERMCHAR_EN,       VI_ATTR_SEND_END_EN,     VI_ATTR_INTF_TYPE,
    VI_ATTR_IO_PROT,           VI_ATTR_RSRC_NAME,       VI_ATTR_RSRC_CLASS};

/// Bytes that an attribute has (VPP-4.3, table 3.1).
std::size_t widthOf(ViAttr attribute)
{
    const bool isWord = attribute == VI_ATTR_TMO_VALUE || attribute == VI_ATTR_RM_SESSION ||
                        attribute == VI_ATTR_RSRC_IMPL_VERSION ||
                        attribute == VI_ATTR_RSRC_LOCK_STATE ||
                        attribute == VI_ATTR_RSRC_SPEC_VERSION;
    return attribute == VI_ATTR_TERMCHAR ? 1 : isWord ? 4 : (attribute >> 31U) != 0 ? 256 : 2;
}

ViStatus call(FuzzedDataProvider &input, ViObject handle, ViObject *opened)
{
    const std::string text = input.ConsumeRandomLengthString();
    const auto size = static_cast<ViUInt32>(text.size());
    const bool isNull = input.ConsumeIntegralInRange(0, 9) == 0;
    const char *name = isNull ? nullptr : text.c_str();
    const auto *bytes = reinterpret_cast<const ViByte *>(name);
    const auto number = input.ConsumeBool() ? input.PickValueInArray(attributes)
                                            : input.ConsumeIntegral<std::uint32_t>();
    const auto word = static_cast<ViUInt16>(number);
    // On the heap, of just the size that is allowed: an overrun is noticed.
    const auto place = [&](std::size_t room) {
        return std::unique_ptr<char[]>(isNull ? nullptr : new char[room]);
    };
    const auto big = place(VI_FIND_BUFLEN);
    const auto other = place(VI_FIND_BUFLEN);
    const auto read = place(word);
    const auto value = place(widthOf(number));
    std::unique_ptr<ViUInt16> half(isNull ? nullptr : new ViUInt16);
    std::unique_ptr<ViUInt32> count(isNull ? nullptr : new ViUInt32);
    std::array<char, 64> word64{};
    const std::array<std::function<ViStatus()>, 18> calls = {
        [&] { return viOpen(handle, name, word, number, opened); },
        [&] { return viFindRsrc(handle, name, opened, count.get(), big.get()); },
        [&] { return viFindNext(handle, big.get()); },
        [&] {
            return viParseRsrcEx(handle, name, half.get(), half.get(), big.get(), other.get(),
                                 nullptr);
        },
        [&] { return viClose(handle); },
        [&] { return viSetAttribute(handle, number, size); },
        [&] { return viGetAttribute(handle, number, value.get()); },
        [&] { return viWrite(handle, bytes, size, count.get()); },
        [&] { return viRead(handle, reinterpret_cast<ViByte *>(read.get()), word, count.get()); },
        [&] { return viClear(handle); },
        [&] { return viReadSTB(handle, half.get()); },
        [&] { return viGpibControlREN(handle, word); },
        [&] { return viSetBuf(handle, word, number); },
        [&] { return viDisableEvent(handle, number, 1); },
        [&] { return viPrintf(handle, "%s\n", text.c_str()); },
        [&] { return viScanf(handle, "%63[^,;]%*c", word64.data()); },
        [&] {
            return viQueryf(handle, "%s;:%.20s?\n", "%63c", text.c_str(), text.c_str(),
                            word64.data());
        },
        [&] {
            return viWrite(handle, reinterpret_cast<const ViByte *>(text.data()), size, nullptr);
        }};
    return calls.at(input.ConsumeIntegralInRange<std::size_t>(0, calls.size() - 1))();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    simulator::bench().link() = {}; // every input starts alike
    for (const std::string &host : simulator::bench().hosts()) {
        simulator::bench().find(host)->switchOn();
    }
    FuzzedDataProvider input(data, size);
    ViSession manager = 0;
    viOpenDefaultRM(&manager);
    std::deque<ViObject> handles = {manager};
    for (int host = 0; host < 3; ++host) {
        ViSession session = 0;
        viOpen(manager, "TCPIP::scope::INSTR", VI_NO_LOCK, 0, &session);
        handles.push_back(session);
    }
    while (input.remaining_bytes() > 0 && handles.size() < 16) {
        const auto which = input.ConsumeIntegralInRange<std::size_t>(0, handles.size());
        const ViObject handle =
            which < handles.size() ? handles[which] : input.ConsumeIntegral<ViObject>();
        ViObject opened = 0;
        const ViStatus status = call(input, handle, &opened);
        if (opened != 0) {
            handles.push_back(opened);
        }
        char text[256];
        ViSession other = 0;
        require(viOpenDefaultRM(&other) == VI_SUCCESS &&
                    viStatusDesc(other, status, text) == VI_SUCCESS,
                "every status has a text");
        viClose(other);
    }
    viClose(manager);
    return 0;
}
