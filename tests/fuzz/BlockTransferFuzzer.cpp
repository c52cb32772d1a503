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
constexpr std::array<ViStatus, 9> statuses = {VI_SUCCESS,
                                              VI_SUCCESS,
                                              VI_SUCCESS,
                                              VI_SUCCESS_MAX_CNT,
                                              VI_SUCCESS_TERM_CHAR,
                                              VI_ERROR_TMO,
                                              VI_ERROR_IO,
                                              VI_WARN_UNKNOWN_STATUS,
                                              visaStatus(0xBFFF00A6)}; // the connection is lost

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
    QString asked; ///< "w" write, "r" read, "f" read to file, and how many bytes at most
    ViStatus status = VI_SUCCESS;
    QByteArray bytes;
    bool noFile = false;
};

QVector<Turn> turns;
QByteArray toSend;
QVector<Call> calls;
QString fileName;

Call answer(ViSession asked, const char *kind, ViUInt32 count)
{
    require(asked == session, "the call goes to the instrument");
    const Turn turn = turns.isEmpty() ? Turn{} : turns.takeFirst();
    const auto most = std::min<std::int64_t>({count, turn.mostBytes, toSend.size()});
    const QByteArray bytes = *kind == 'w' ? QByteArray() : toSend.left(static_cast<int>(most));
    toSend.remove(0, bytes.size());
    calls.append({kind + QString::number(count), turn.status, bytes, turn.noFile});
    return calls.last();
}

ViStatus write(ViSession to, const ViByte *buffer, ViUInt32 count, ViUInt32 * /*returnedCount*/)
{
    require(QByteArray(reinterpret_cast<const char *>(buffer), static_cast<int>(count)) == command,
            "the command goes out as it is");
    return answer(to, "w", count).status;
}

ViStatus read(ViSession from, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    const Call call = answer(from, "r", count);
    std::copy(call.bytes.begin(), call.bytes.end(), buffer);
    *returnedCount = static_cast<ViUInt32>(call.bytes.size());
    return call.status;
}

ViStatus readToFile(ViSession from, const ViChar *name, ViUInt32 count, ViUInt32 * /*none*/)
{
    const Call call = answer(from, "f", count);
    fileName = QFile::decodeName(name);
    require(!QFile::exists(fileName), "no transfer leaves its file to the next");
    if (!call.noFile) {
        writeFile(fileName, call.bytes);
    }
    return call.status;
}

/// The samples that a transfer brings by the calls it made, or none when it fails. Requires that
/// the calls are the right ones: nothing is read after what is no block, or has no length.
std::optional<QVector<double>> outcome()
{
    const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    QStringList expected = {"r2"};
    const Call start = calls.value(0);
    const bool isBlock = start.status >= 0 && start.bytes.size() == 2 && start.bytes[0] == '#' &&
                         isDigit(start.bytes[1]);
    const Call digits = calls.value(1);
    const int digitCount = isBlock ? start.bytes[1] - '0' : 0;
    const bool hasLength = isBlock && digits.status >= 0 && digits.bytes.size() == digitCount &&
                           std::all_of(digits.bytes.begin(), digits.bytes.end(), isDigit);
    const int length = hasLength ? std::stoi("0" + digits.bytes.toStdString()) : 0;
    if (isBlock) {
        expected += 'r' + QString::number(digitCount);
    }
    if (hasLength) {
        expected += 'f' + QString::number(length + 10); // with room for the terminator
    }
    QStringList asked;
    for (const Call &call : qAsConst(calls)) {
        asked += call.asked;
    }
    require(asked == expected, "a transfer reads what the block announces");
    const Call data = calls.value(2);
    if (!hasLength || data.status < 0 || data.noFile) {
        return std::nullopt;
    }
    const QVector<float> samples = floatsOf(data.bytes.left(length));
    return QVector<double>(samples.begin(), samples.end());
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
        require(!calls.isEmpty() && calls[0].asked[0] == 'w', "a query begins with its command");
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
