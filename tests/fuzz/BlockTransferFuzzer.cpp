// Trace transfers from an instrument that sends what it likes, in pieces as it likes.
//
// Input: the number of samples that the trace has before (1 byte), the number of turns (1 byte),
// the turns, then the bytes that the instrument has to send. A turn is what it does at one call:
// a byte of flags and status, the status itself (4 bytes) where that byte says so, and the most
// bytes that it delivers (2 bytes).

#include "Fuzzing.h"
#include "instrument/VisaBinding.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/WaveformTransfer.h"

#include <QVector>

#include <algorithm>
#include <array>
#include <cctype>
#include <limits>
#include <numeric>
#include <optional>
#include <string>

namespace {

constexpr ViSession session = 7;
const QByteArray command = "CURVE?\n";

constexpr int mostTurns = 16;
constexpr unsigned noFileFlag = 0x80;
constexpr unsigned queryFlag = 0x40;
constexpr unsigned statusMask = 0x0F;
constexpr std::array<ViStatus, 9> statuses{
    VI_SUCCESS,
    VI_SUCCESS,
    VI_SUCCESS,
    VI_SUCCESS_MAX_CNT,
    VI_SUCCESS_TERM_CHAR,
    VI_ERROR_TMO,
    VI_ERROR_IO,
    VI_WARN_UNKNOWN_STATUS,
    visaStatus(0xBFFF00A6), // the connection is lost
};

/// What the instrument does at one call. Past the script it sends whatever it has.
struct Turn
{
    ViStatus status = VI_SUCCESS;
    int mostBytes = std::numeric_limits<int>::max();
    bool noFile = false;
    bool isQuery = false; ///< the transfer that begins here sends its query itself
};

/// A call as the instrument saw and answered it.
struct Call
{
    char kind; ///< 'w' write, 'r' read, 'f' read to file
    ViUInt32 asked;
    ViStatus status;
    QByteArray bytes;
    bool made; ///< the file is there
};

QVector<Turn> turns;
QByteArray toSend;
QVector<Call> calls;
QString fileName;

Turn nextTurn()
{
    return turns.isEmpty() ? Turn{} : turns.takeFirst();
}

/// The bytes that one read delivers.
QByteArray deliver(ViUInt32 asked, const Turn &turn)
{
    const int count = static_cast<int>(
        std::min<std::int64_t>({asked, turn.mostBytes, std::int64_t{toSend.size()}}));
    QByteArray bytes = toSend.left(count);
    toSend.remove(0, count);
    return bytes;
}

ViStatus write(ViSession to, const ViByte *buffer, ViUInt32 count, ViUInt32 * /*returnedCount*/)
{
    require(to == session, "the write goes to the instrument");
    require(QByteArray(reinterpret_cast<const char *>(buffer), static_cast<int>(count)) == command,
            "the command goes out as it is");
    const ViStatus status = nextTurn().status;
    calls.append({'w', count, status, {}, false});
    return status;
}

ViStatus read(ViSession from, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    require(from == session, "the read comes from the instrument");
    const Turn turn = nextTurn();
    const QByteArray bytes = deliver(count, turn);
    std::memcpy(buffer, bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (returnedCount != nullptr) {
        *returnedCount = static_cast<ViUInt32>(bytes.size());
    }
    calls.append({'r', count, turn.status, bytes, false});
    return turn.status;
}

ViStatus readToFile(ViSession from, const ViChar *name, ViUInt32 count, ViUInt32 *returnedCount)
{
    require(from == session, "the data comes from the instrument");
    const Turn turn = nextTurn();
    const QByteArray bytes = deliver(count, turn);
    fileName = QFile::decodeName(name);
    require(!QFile::exists(fileName), "no transfer leaves its file to the next");
    if (!turn.noFile) {
        writeFile(fileName, bytes);
    }
    if (returnedCount != nullptr) {
        *returnedCount = static_cast<ViUInt32>(bytes.size());
    }
    calls.append({'f', count, turn.status, bytes, !turn.noFile});
    return turn.status;
}

/// The samples that a transfer brings by the calls it made, or none when it fails. Requires that
/// the calls are the right ones.
std::optional<QVector<double>> outcome()
{
    require(!calls.isEmpty() && calls[0].kind == 'r' && calls[0].asked == 2,
            "a transfer begins with '#' and a digit");
    const QByteArray start = calls[0].bytes;
    const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    if (calls[0].status < 0 || start.size() < 2 || start[0] != '#' || !isDigit(start[1])) {
        require(calls.size() == 1, "nothing is read after what is no block");
        return std::nullopt;
    }

    const int digits = start[1] - '0';
    require(calls.size() >= 2 && calls[1].kind == 'r' &&
                calls[1].asked == static_cast<ViUInt32>(digits),
            "the length has as many digits as announced");
    const QByteArray text = calls[1].bytes;
    if (calls[1].status < 0 || text.size() != digits ||
        !std::all_of(text.begin(), text.end(), isDigit)) {
        require(calls.size() == 2, "nothing is read after what is no length");
        return std::nullopt;
    }

    const int length = std::stoi("0" + text.toStdString());
    require(calls.size() == 3 && calls[2].kind == 'f' &&
                calls[2].asked == static_cast<ViUInt32>(length + 10),
            "the data is read with room for its terminator");
    if (calls[2].status < 0 || !calls[2].made) {
        return std::nullopt;
    }

    QVector<double> samples;
    const QByteArray data = calls[2].bytes.left(length);
    for (int offset = 0; offset + 4 <= data.size(); offset += 4) {
        float value = 0.0F;
        std::memcpy(&value, data.mid(offset, 4).constData(), 4);
        samples.append(static_cast<double>(value));
    }
    return samples;
}

void transfer(bool isQuery, QVector<double> *trace)
{
    const QVector<double> before = *trace;
    calls.clear();
    fileName.clear();
    const bool done = isQuery ? queryTrace(session, QString::fromLatin1(command), trace)
                              : readTrace(session, trace);

    require(fileName.isEmpty() || !QFile::exists(fileName), "the temporary file is gone");
    if (isQuery) {
        require(!calls.isEmpty() && calls[0].kind == 'w', "a query begins with its command");
        if (calls[0].status != VI_SUCCESS) {
            require(calls.size() == 1 && done, "a query that is not sent reads nothing");
            require(bytesOf(*trace) == bytesOf(before), "a query that is not sent keeps the trace");
            return;
        }
        calls.removeFirst();
    }
    const std::optional<QVector<double>> samples = outcome();
    require(done == samples.has_value(), "a transfer tells whether the block came");
    require(bytesOf(*trace) == bytesOf(samples.value_or(before)),
            "a trace is what came, or what it was");
}

} // namespace

QString visaLibraryPath()
{
    return {};
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    p_viWrite = write;
    p_viRead = read;
    p_viReadToFile = readToFile;

    Input input(data, size);
    QVector<double> trace(input.take<std::uint8_t>());
    std::iota(trace.begin(), trace.end(), 1.0);
    turns.clear();
    const int count = input.take<std::uint8_t>() % mostTurns;
    for (int i = 0; i < count; ++i) {
        const unsigned kind = input.take<std::uint8_t>();
        Turn turn;
        turn.status = (kind & statusMask) < statuses.size() ? statuses[kind & statusMask]
                                                            : input.take<ViStatus>();
        turn.mostBytes = input.take<std::uint16_t>();
        turn.noFile = (kind & noFileFlag) != 0;
        turn.isQuery = (kind & queryFlag) != 0;
        turns.append(turn);
    }
    toSend = input.takeRest();

    do {
        transfer(!turns.isEmpty() && turns[0].isQuery, &trace);
    } while (!turns.isEmpty());
    return 0;
}
