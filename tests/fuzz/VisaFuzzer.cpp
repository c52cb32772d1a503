// Calls the VISA functions on the bench in any order, with any handles, texts and attributes.

#include "Require.h"
#include "simulator/InProcessBackend.h"
#include "visa/VisaFunctions.h"

#include <QTemporaryDir>

#include <array>
#include <deque>
#include <functional>
#include <fuzzer/FuzzedDataProvider.h>
#include <vector>

namespace {

ViStatus call(FuzzedDataProvider &input, ViObject handle, const char *fileName, ViObject *opened)
{
    const std::string text = input.ConsumeRandomLengthString();
    const auto size = static_cast<ViUInt32>(text.size());
    const bool isNull = input.ConsumeIntegralInRange(0, 9) == 0;
    const char *name = isNull ? nullptr : text.c_str();
    const char *file = isNull ? nullptr : fileName;
    const auto number = input.ConsumeBool() // most attributes have these numbers
                            ? input.ConsumeIntegralInRange<std::uint32_t>(0x3FFF0000, 0x3FFF01FF)
                            : input.ConsumeIntegral<std::uint32_t>();
    const auto number16 = static_cast<ViUInt16>(number);
    // Each buffer has exactly the size that VISA allows, so that an overrun is found.
    const bool isTextAttribute = (number >> 31U) != 0;
    std::vector<char> value(isTextAttribute ? VI_FIND_BUFLEN : sizeof(ViAttrState));
    std::vector<char> description(VI_FIND_BUFLEN);
    std::vector<char> fullName(VI_FIND_BUFLEN);
    std::vector<ViByte> bytes(number16);
    ViUInt16 half = 0;
    ViUInt32 count = 0;
    const auto orNull = [=](auto *pointer) { return isNull ? nullptr : pointer; };
    char *const found = orNull(description.data());
    const std::array<std::function<ViStatus()>, 17> calls = {
        // A lock would be waited for in vain: no other thread unlocks.
        [&] { return viOpen(handle, name, number16 & ~VI_EXCLUSIVE_LOCK, number, opened); },
        [&] { return viFindRsrc(handle, name, opened, orNull(&count), found); },
        [&] { return viFindNext(handle, found); },
        [&] {
            return viParseRsrcEx(handle, name, orNull(&half), &half, found, fullName.data(),
                                 nullptr);
        },
        [&] { return viClose(handle); },
        [&] { return viSetAttribute(handle, number, size); },
        [&] { return viGetAttribute(handle, number, orNull(value.data())); },
        [&] { return viWrite(handle, reinterpret_cast<const ViByte *>(name), size, &count); },
        [&] { return viRead(handle, orNull(bytes.data()), number16, orNull(&count)); },
        [&] { return viReadToFile(handle, file, number16, orNull(&count)); },
        [&] { return viClear(handle); },
        [&] { return viReadSTB(handle, orNull(&half)); },
        [&] { return viGpibControlREN(handle, number16); },
        [&] { return viSetBuf(handle, number16, number); },
        [&] { return viAssertTrigger(handle, number16); },
        [&] { return viLock(handle, number % 3, 0, name, found); },
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
        device->instrument->execute("*RST;*CLS;BENCH:FAULT NONE"); // the same for every input
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
