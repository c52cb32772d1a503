// Any calls of the VISA functions on the bench in any order, with any handles, texts and
// attributes.

#include "Require.h"
#include "simulator/server/InProcessBackend.h"
#include "visa/VisaFunctions.h"

#include <QTemporaryDir>

#include <array>
#include <deque>
#include <functional>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>
#include <vector>

namespace {

ViStatus call(FuzzedDataProvider &input, ViObject handle, const char *fileName, ViObject *opened)
{
    const std::string text = input.ConsumeRandomLengthString();
    const auto size = static_cast<ViUInt32>(text.size());
    const bool isNull = input.ConsumeIntegralInRange(0, 9) == 0;
    const char *name = isNull ? nullptr : text.c_str();
    const auto *bytes = reinterpret_cast<const ViByte *>(name);
    const auto number = input.ConsumeBool() // most attributes lie here
                            ? input.ConsumeIntegralInRange<std::uint32_t>(0x3FFF0000, 0x3FFF01FF)
                            : input.ConsumeIntegral<std::uint32_t>();
    const auto word = static_cast<ViUInt16>(number);
    // On the heap, of just the size that is allowed: an overrun is noticed. Texts have the room
    // that VISA gives them, numbers eight bytes at most.
    const auto place = [](std::size_t room) { return std::vector<char>(room); };
    const auto at = [&](std::vector<char> &room) { return isNull ? nullptr : room.data(); };
    auto big = place(VI_FIND_BUFLEN);
    auto other = place(VI_FIND_BUFLEN);
    auto read = place(word);
    auto value = place((number >> 31U) != 0 ? VI_FIND_BUFLEN : sizeof(ViAttrState));
    std::unique_ptr<ViUInt16> half(isNull ? nullptr : new ViUInt16);
    std::unique_ptr<ViUInt32> count(isNull ? nullptr : new ViUInt32);
    const std::array<std::function<ViStatus()>, 18> calls = {
        // Nobody else is here to unlock what would be waited for.
        [&] { return viOpen(handle, name, word & ~VI_EXCLUSIVE_LOCK, number, opened); },
        [&] { return viFindRsrc(handle, name, opened, count.get(), at(big)); },
        [&] { return viFindNext(handle, at(big)); },
        [&] {
            return viParseRsrcEx(handle, name, half.get(), half.get(), at(big), at(other), nullptr);
        },
        [&] { return viClose(handle); },
        [&] { return viSetAttribute(handle, number, size); },
        [&] { return viGetAttribute(handle, number, at(value)); },
        [&] { return viWrite(handle, bytes, size, count.get()); },
        [&] { return viRead(handle, reinterpret_cast<ViByte *>(at(read)), word, count.get()); },
        [&] { return viReadToFile(handle, isNull ? nullptr : fileName, word, count.get()); },
        [&] { return viWriteFromFile(handle, isNull ? nullptr : fileName, word, count.get()); },
        [&] { return viClear(handle); },
        [&] { return viReadSTB(handle, half.get()); },
        [&] { return viGpibControlREN(handle, word); },
        [&] { return viSetBuf(handle, word, number); },
        [&] { return viAssertTrigger(handle, word); },
        [&] { return viLock(handle, number % 3, 0, name, at(big)); },
        [&] { return viUnlock(handle); },
    };
    return calls.at(input.ConsumeIntegralInRange<std::size_t>(0, calls.size() - 1))();
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir directory;
    static const QByteArray fileName = directory.filePath("file").toLocal8Bit();
    FuzzedDataProvider input(data, size);
    ViSession manager = 0;
    viOpenDefaultRM(&manager);
    std::deque<ViObject> handles = {manager};
    for (const auto &device : bench().devices()) {
        ViSession session = 0;
        // Every input starts alike, but for the events.
        device->instrument->execute("*RST;*CLS;BENCH:FAULT NONE");
        viOpen(manager, ("TCPIP::" + device->name).c_str(), VI_NO_LOCK, 0, &session);
        handles.push_back(session);
    }
    while (input.remaining_bytes() > 0 && handles.size() < 16) {
        const auto which = input.ConsumeIntegralInRange<std::size_t>(0, handles.size());
        const ViObject handle =
            which < handles.size() ? handles[which] : input.ConsumeIntegral<ViObject>();
        ViObject opened = 0;
        const ViStatus status = call(input, handle, fileName.constData(), &opened);
        if (opened != 0) {
            handles.push_back(opened);
        }
        std::array<char, VI_FIND_BUFLEN> text{};
        require(viStatusDesc(handles.front(), status, text.data()) != VI_WARN_UNKNOWN_STATUS,
                "every status has a text");
    }
    viClose(manager);
    return 0;
}
