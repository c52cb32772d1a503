// Any calls of the bench's VISA functions in any order, with any handles, texts and attributes.
//
// Input: calls, one after the other. Each begins with the function (1 byte; with its top bit set,
// pointers to results are null, with the next, those to texts) and the handle: which of the latest
// 16 (1 byte) or, from 16 on, any handle (4 more bytes). Texts have their length in front (2
// bytes).

#include "Fuzzing.h"
#include "simulator/Laboratory.h"
#include "simulator/VisaFunctions.h"

#include <QTemporaryDir>

#include <array>
#include <deque>
#include <vector>

namespace {

constexpr std::size_t longestRead = std::size_t{1} << 20U;

/// A client that makes the calls of an input.
class Client
{
public:
    Client(const std::uint8_t *data, std::size_t size) : input(data, size)
    {
        simulator::bench().link() = {}; // every input starts alike
        for (const std::string &host : simulator::bench().hosts()) {
            simulator::bench().find(host)->switchOn();
        }
    }
    ~Client()
    {
        for (const ViObject object : opened) {
            viClose(object);
        }
    }
    Client(const Client &) = delete;
    Client &operator=(const Client &) = delete;

    void run()
    {
        while (!input.isEmpty()) {
            const auto function = input.take<std::uint8_t>();
            null = (function & 0x80U) != 0;
            nullText = (function & 0x40U) != 0;
            const ViStatus status = call(function & 0x3FU, takeHandle());

            ViSession manager = 0;
            std::array<ViChar, 256> text{};
            require(viOpenDefaultRM(&manager) == VI_SUCCESS &&
                        viStatusDesc(manager, status, text.data()) == VI_SUCCESS,
                    "every status has a text");
            viClose(manager);
        }
    }

private:
    ViObject takeHandle()
    {
        const auto which = input.take<std::uint8_t>();
        if (which >= 16) {
            return input.take<ViObject>();
        }
        return which < opened.size() ? opened[which] : 0;
    }

    QByteArray takeText() { return input.takeBytes(input.take<std::uint16_t>()); }

    [[nodiscard]] const char *pointer(const QByteArray &text) const
    {
        return nullText ? nullptr : text.constData();
    }

    static std::size_t width(ViAttr attribute)
    {
        switch (attribute) {
        case VI_ATTR_TERMCHAR:
            return 1;
        case VI_ATTR_TMO_VALUE:
        case VI_ATTR_RM_SESSION:
        case VI_ATTR_RSRC_IMPL_VERSION:
        case VI_ATTR_RSRC_LOCK_STATE:
        case VI_ATTR_RSRC_SPEC_VERSION:
            return 4;
        default:
            return (attribute & 0x80000000U) != 0 ? VI_FIND_BUFLEN : 2;
        }
    }

    /// A place of exactly `count` values for a result, on the heap, where an overrun is noticed.
    template <typename Value>
    Value *place(std::vector<Value> &values, std::size_t count = 1) const
    {
        values.resize(count);
        values.shrink_to_fit();
        return null ? nullptr : values.data();
    }

    /// Keeps what was opened: so few objects that their answers have room in memory.
    ViStatus keep(ViStatus status, const std::vector<ViObject> &object)
    {
        if (status == VI_SUCCESS && !null) {
            require(object.front() != 0, "what is open has a handle");
            opened.push_front(object.front());
        }
        if (opened.size() > 16) {
            viClose(opened.back());
            opened.pop_back();
        }
        return status;
    }

    ViStatus call(unsigned function, ViObject handle)
    {
        std::vector<ViObject> object;
        std::vector<ViUInt32> count;
        std::vector<ViUInt16> words;
        std::vector<ViChar> text;
        switch (function) {
        case 0:
            return keep(viOpenDefaultRM(place(object)), object);
        case 1: {
            const auto mode = input.take<std::uint8_t>();
            const QByteArray name = takeText();
            return keep(viOpen(handle, pointer(name), mode, 0, place(object)), object);
        }
        case 2: {
            const QByteArray expression = takeText();
            const ViStatus status = viFindRsrc(handle, pointer(expression), place(object),
                                               place(count), place(text, VI_FIND_BUFLEN));
            return keep(status, object);
        }
        case 3:
            return viFindNext(handle, place(text, VI_FIND_BUFLEN));
        case 4: {
            std::array<std::vector<ViChar>, 3> texts;
            const QByteArray name = takeText();
            words.resize(2);
            return viParseRsrcEx(handle, pointer(name), null ? nullptr : &words[0], &words[1],
                                 place(texts[0], VI_FIND_BUFLEN), place(texts[1], VI_FIND_BUFLEN),
                                 place(texts[2], VI_FIND_BUFLEN));
        }
        case 5:
            return viClose(handle);
        case 6: {
            const auto attribute = input.take<ViAttr>();
            return viSetAttribute(handle, attribute, input.take<ViAttrState>());
        }
        case 7: {
            const auto attribute = input.take<ViAttr>();
            return viGetAttribute(handle, attribute, place(text, width(attribute)));
        }
        case 8: {
            const QByteArray message = takeText();
            return viWrite(handle, reinterpret_cast<const ViByte *>(pointer(message)),
                           static_cast<ViUInt32>(message.size()), place(count));
        }
        case 9:
            return read(handle, input.take<ViUInt32>() % longestRead);
        case 10: {
            static const QTemporaryDir directory;
            const QByteArray name = directory.filePath("answer").toLocal8Bit();
            return viReadToFile(handle, pointer(name), input.take<ViUInt32>(), place(count));
        }
        case 11:
            return viClear(handle);
        case 12:
            return viReadSTB(handle, place(words));
        case 13:
            return viGpibControlREN(handle, input.take<ViUInt16>());
        case 14: {
            const auto mask = input.take<ViUInt16>();
            return viSetBuf(handle, mask, input.take<ViUInt32>());
        }
        case 15:
            return viDisableEvent(handle, input.take<ViEventType>(), 1);
        case 16:
            return viDiscardEvents(handle, input.take<ViEventType>(), 1);
        default:
            return formatted(handle, function);
        }
    }

    [[nodiscard]] ViStatus read(ViObject handle, ViUInt32 size) const
    {
        std::vector<ViByte> bytes;
        std::vector<ViUInt32> count(1);
        const ViStatus status = viRead(handle, place(bytes, size), size, count.data());
        require(count[0] <= size, "no more is read than was asked for");
        require(status >= VI_SUCCESS || count[0] == 0, "a read that fails reads nothing");
        return status;
    }

    /// Formats must suit their arguments, so they are not the input's.
    ViStatus formatted(ViObject handle, unsigned function)
    {
        const QByteArray text = takeText();
        int number = 0;
        double value = 0.0;
        std::array<char, 64> word{};
        switch (function % 4) {
        case 0:
            return viPrintf(handle, "%s\n", text.constData());
        case 1:
            return viScanf(handle, "%d,%lf%63s", &number, &value, word.data());
        case 2:
            return viScanf(handle, "%63[^,;]%*c", word.data());
        default:
            return viQueryf(handle, "%s;:%.20s?\n", "%63c", text.constData(), text.constData(),
                            word.data());
        }
    }

    Input input;
    std::deque<ViObject> opened; // the latest first
    bool null = false;
    bool nullText = false;
};

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Client(data, size).run();
    return 0;
}
