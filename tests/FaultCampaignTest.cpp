#include "BoundBench.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TransferFile.h"

#include <QtTest>

#include <csignal>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <sys/resource.h>

QString visaLibraryPath()
{
    return {}; // the bench is linked, and bound by hand
}

namespace {

constexpr ViStatus connectionLost = visaStatus(0xBFFF00A6);

/// What a call is to the program; reads by what they read.
enum class Call
{
    Open,
    Close,
    Attribute,
    Local,
    Write,
    Text,
    Number,
    BlockStart,
    BlockLength,
    BlockData,
};

enum class Fault
{
    None,
    Error,          ///< nothing goes out, or the data breaks off half-way
    Timeout,        ///< the command was obeyed all the same, the reply comes too late
    Remark,         ///< a positive completion code
    InstrumentLost, ///< from here on, for this instrument
    NetworkLost,    ///< from here on, for all
    NothingCame,
    NoTerminator,
    FullBuffer, ///< as many bytes as the program reads at most
    WrongFirstByte,
    WrongDigitCount,
    WrongDigit,
    DeclaresLess,
    DeclaresMore,
    EmptyBlock,
    ThreeBytes,
    OddSamples, ///< not-a-number, infinities and a denormal behind the first sample
    OddRecord,  ///< the same from the first sample on
};

QVector<Fault> faultsOf(Call call)
{
    QVector<Fault> faults = {Fault::Error, Fault::Timeout, Fault::Remark, Fault::InstrumentLost,
                             Fault::NetworkLost};
    switch (call) {
    case Call::Text:
    case Call::Number:
        faults += {Fault::NothingCame, Fault::NoTerminator, Fault::FullBuffer};
        break;
    case Call::BlockStart:
        faults +=
            {Fault::NothingCame, Fault::NoTerminator, Fault::WrongFirstByte, Fault::WrongDigitCount,
             Fault::WrongDigit,  Fault::DeclaresLess, Fault::DeclaresMore,   Fault::EmptyBlock,
             Fault::ThreeBytes,  Fault::OddSamples,   Fault::OddRecord};
        break;
    case Call::BlockLength:
    case Call::BlockData:
        faults += Fault::NothingCame;
        break;
    default:
        break;
    }
    return faults;
}

QByteArray blockHeader(int length)
{
    const QByteArray digits = QByteArray::number(length);
    return '#' + QByteArray::number(digits.size()) + digits;
}

/// The length that a definite-length block declares, -1 when this is none.
int declaredLength(const QByteArray &message)
{
    const int digits = message.startsWith('#') ? message.mid(1, 1).toInt() : 0;
    bool isNumber = false;
    const auto length = message.mid(2, digits).toUInt(&isNumber);
    return isNumber && message.at(2) != '+' && message.at(2) != '-' ? static_cast<int>(length) : -1;
}

/// What comes in place of a reply.
QByteArray spoiled(const QByteArray &reply, Fault fault)
{
    const int length = reply.startsWith('#') ? declaredLength(reply) : 0;
    const QByteArray data = reply.right(length + 1).left(length);
    QByteArray block = reply;
    switch (fault) {
    case Fault::NoTerminator:
        return reply.chopped(1);
    case Fault::WrongFirstByte:
        block[0] = '0';
        return block;
    case Fault::WrongDigitCount:
        block[1] = ':'; // the character after '9'
        return block;
    case Fault::WrongDigit:
        block[2] = '-';
        return block;
    case Fault::DeclaresLess:
        return blockHeader(data.size() / 2) + data + '\n';
    case Fault::DeclaresMore:
        return blockHeader(data.size() * 2) + data + '\n';
    case Fault::EmptyBlock:
        return blockHeader(0) + '\n';
    case Fault::ThreeBytes:
        return blockHeader(3) + data.left(3) + '\n';
    case Fault::OddSamples:
    case Fault::OddRecord: {
        using Limits = std::numeric_limits<float>;
        const QVector<float> odd = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                    Limits::denorm_min(), Limits::signaling_NaN()};
        std::memcpy(block.data() + (reply.size() - data.size() - 1) +
                        (fault == Fault::OddSamples ? sizeof(float) : 0),
                    odd.constData(), sizeof(float) * static_cast<std::size_t>(odd.size()));
        return block;
    }
    default:
        return reply;
    }
}

/// Between the program and the bench: while it lives, the p_ entry points lead through it. It
/// keeps a list of the calls, breaks one of them as it is told, and knows what came of it.
///
/// Traces are asked of the bench once and then served again: what an instrument answers to the
/// same query about the same event in the same format is always the same.
class Line
{
public:
    Line()
    {
        current = this;
        bindBench();
        p_viOpen = [](ViSession manager, const ViChar *resource, ViAccessMode mode,
                      ViUInt32 timeout, ViSession *session) {
            const ViStatus refusal = current->refuse(Call::Open, 0);
            const ViStatus status =
                refusal < 0 ? refusal : viOpen(manager, resource, mode, timeout, session);
            if (status == VI_SUCCESS) { // open, with or without a remark
                current->hosts[*session] = QString(resource).section("::", 1, 1).toStdString();
            }
            return status < 0 ? status : refusal;
        };
        p_viClose = [](ViObject object) { // closed is closed, whatever the status
            const ViStatus refusal = current->refuse(Call::Close, object);
            current->hosts.remove(object);
            const ViStatus status = viClose(object);
            return refusal != VI_SUCCESS ? refusal : status;
        };
        p_viSetAttribute = [](ViObject object, ViAttr attribute, ViAttrState value) {
            const ViStatus refusal = current->refuse(Call::Attribute, object);
            const ViStatus status =
                refusal < 0 ? refusal : viSetAttribute(object, attribute, value);
            return status < 0 ? status : refusal;
        };
        p_viGpibControlREN = [](ViSession session, ViUInt16 mode) {
            const ViStatus refusal = current->refuse(Call::Local, session);
            const ViStatus status = refusal < 0 ? refusal : viGpibControlREN(session, mode);
            return status < 0 ? status : refusal;
        };
        p_viWrite = [](ViSession session, const ViByte *buffer, ViUInt32 count, ViUInt32 *) {
            return current->write(
                session, {reinterpret_cast<const char *>(buffer), static_cast<int>(count)});
        };
        p_viRead = [](ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returned) {
            QByteArray bytes;
            const ViStatus status = current->read(session, count, &bytes);
            std::copy(bytes.begin(), bytes.end(), buffer);
            if (returned != nullptr) {
                *returned = static_cast<ViUInt32>(bytes.size());
            }
            return status;
        };
        p_viReadToFile = [](ViSession session, const ViChar *fileName, ViUInt32 count, ViUInt32 *) {
            return current->readToFile(session, QFile::decodeName(fileName), count);
        };
    }
    ~Line()
    {
        bindBench();
        current = nullptr;
    }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    /// Start new lists, and break the call with this index (from 0).
    void arm(int call = -1, Fault fault = Fault::None)
    {
        calls.clear();
        written.clear();
        faulty = call;
        kind = fault;
        hadToRecover = false;
    }

    QVector<Call> calls;
    QStringList written;                ///< or attempted: the instrument's host and the command
    QMap<ViSession, std::string> hosts; ///< of the open sessions
    /// What the program's traces are to hold, by the query that fetches them.
    QMap<QByteArray, QVector<double>> traces;
    bool transferredRubbish = false; ///< data was fetched although no block was announced
    bool hadToRecover = false;       ///< the run did not end before a lost connection came back

private:
    struct Exchange
    {
        QByteArray command;
        QByteArray reply;
        int reads = 0;
        int declared = -1;
    };

    /// A run that goes on for this many calls on a lost connection is waiting for a record.
    static constexpr int patience = 100;
    static constexpr int endless = 20000;

    static bool isTraceQuery(const QByteArray &command)
    {
        return command.startsWith("CHAN") ? command.endsWith(":DATA?\n")
                                          : command.startsWith("TRAC? ");
    }

    ViStatus refuse(Call call, ViSession session)
    {
        const int index = calls.size();
        calls += call;
        present = index == faulty ? kind : Fault::None;
        if (index > endless) {
            qFatal("a run does not end after call %d broke by fault %d", faulty,
                   static_cast<int>(kind));
        }
        if (present == Fault::InstrumentLost || present == Fault::NetworkLost) {
            lostSession = session;
        }
        if (faulty >= 0 && index >= faulty &&
            (kind == Fault::NetworkLost ||
             (kind == Fault::InstrumentLost && session == lostSession))) {
            hadToRecover = hadToRecover || index > faulty + patience;
            return hadToRecover ? VI_SUCCESS : connectionLost;
        }
        switch (present) {
        case Fault::Error:
            return VI_ERROR_IO;
        case Fault::Timeout:
            return VI_ERROR_TMO;
        case Fault::Remark:
            return VI_SUCCESS_TERM_CHAR;
        default:
            return VI_SUCCESS;
        }
    }

    ViStatus write(ViSession session, const QByteArray &command)
    {
        const ViStatus refusal = refuse(Call::Write, session);
        written += QString::fromStdString(hosts.value(session)) + ' ' + command;
        if (command.startsWith("CHAN2:DATA?")) { // RF is fetched, and normalised
            normaliseEnvelope(&traces["RF"]);
        }
        Exchange &exchange = exchanges[session];
        exchange = {};
        exchange.command = command;
        if (refusal == VI_ERROR_IO || refusal == connectionLost) {
            return refusal;
        }
        if (!hosts.contains(session)) {
            return VI_ERROR_INV_OBJECT;
        }
        exchange.reply = isTraceQuery(command) ? trace(session, command) : ask(session, command);
        return refusal;
    }

    static QByteArray ask(ViSession session, const QByteArray &command)
    {
        viWrite(session, reinterpret_cast<const ViByte *>(command.constData()),
                static_cast<ViUInt32>(command.size()), nullptr);
        QByteArray reply;
        QByteArray part(100000, '\0');
        ViUInt32 count = 0;
        do {
            viRead(session, reinterpret_cast<ViByte *>(part.data()),
                   static_cast<ViUInt32>(part.size()), &count);
            reply += part.left(static_cast<int>(count));
        } while (count > 0);
        return reply;
    }

    QByteArray trace(ViSession session, const QByteArray &command)
    {
        const std::string host = hosts.value(session);
        const std::string state = simulator::bench().find(host)->execute(
            host.rfind("osc", 0) == 0 ? "FORM?;ACQ:POIN?" : "FORM?;SWE:POIN?");
        const QByteArray key = QByteArray::fromStdString(host + state) + command +
                               QByteArray::number(simulator::bench().link().eventCount());
        if (!knownTraces.contains(key)) {
            knownTraces[key] = ask(session, command);
        }
        return knownTraces[key];
    }

    ViStatus read(ViSession session, ViUInt32 count, QByteArray *bytes)
    {
        Exchange &exchange = exchanges[session];
        const bool number = exchange.command.startsWith("READ:");
        const Call call = isTraceQuery(exchange.command)
                              ? (exchange.reads == 0 ? Call::BlockStart : Call::BlockLength)
                          : number ? Call::Number
                                   : Call::Text;
        const ViStatus refusal = refuse(call, session);
        if (present == Fault::FullBuffer) {
            exchange.reply = QByteArray(static_cast<int>(count), number ? '1' : 'x');
        } else {
            exchange.reply = spoiled(exchange.reply, present);
        }
        if (call == Call::BlockStart) {
            exchange.declared = declaredLength(exchange.reply);
        }
        ++exchange.reads;
        return take(&exchange, refusal, count, bytes);
    }

    ViStatus take(Exchange *exchange, ViStatus refusal, ViUInt32 count, QByteArray *bytes) const
    {
        if (present == Fault::NothingCame) {
            exchange->reply.clear();
            return VI_SUCCESS;
        }
        if (refusal < 0 || exchange->reply.isEmpty()) {
            return refusal < 0 ? refusal : VI_ERROR_TMO;
        }
        *bytes = exchange->reply.left(static_cast<int>(count));
        exchange->reply.remove(0, bytes->size());
        return refusal != VI_SUCCESS       ? refusal
               : exchange->reply.isEmpty() ? VI_SUCCESS
                                           : VI_SUCCESS_MAX_CNT;
    }

    ViStatus readToFile(ViSession session, const QString &fileName, ViUInt32 count)
    {
        Exchange &exchange = exchanges[session];
        const ViStatus refusal = refuse(Call::BlockData, session);
        QByteArray bytes;
        const ViStatus status = take(&exchange, refusal, count, &bytes);
        if (refusal < 0) {
            bytes = exchange.reply.left(exchange.reply.size() / 2);
        }
        QFile file(fileName);
        if (!file.open(QIODevice::WriteOnly)) {
            return VI_ERROR_FILE_ACCESS;
        }
        if (file.write(bytes) != bytes.size() || !file.flush()) {
            return VI_ERROR_FILE_IO;
        }
        if (status >= 0) {
            keep(exchange, bytes);
        }
        return status;
    }

    void keep(const Exchange &exchange, const QByteArray &bytes)
    {
        transferredRubbish = transferredRubbish || exchange.declared < 0;
        const int samples =
            qMax(0, qMin(exchange.declared, bytes.size())) / static_cast<int>(sizeof(float));
        QVector<float> values(samples);
        QVector<double> wide(samples);
        std::memcpy(values.data(), bytes.constData(),
                    sizeof(float) * static_cast<std::size_t>(samples));
        std::copy_n(values.constData(), samples, wide.data());
        const QByteArray query = exchange.command.left(5);
        traces[query == "TRAC?" || query == "CHAN3" ? "RF" : query] = wide;
    }

    static inline Line *current = nullptr;
    QMap<ViSession, Exchange> exchanges;
    QMap<QByteArray, QByteArray> knownTraces;
    int faulty = -1;
    Fault kind = Fault::None;
    Fault present = Fault::None; ///< of the call under way
    ViSession lostSession = 0;
};

bool sameBits(const QVector<double> &a, const QVector<double> &b)
{
    return a.size() == b.size() &&
           std::memcmp(a.constData(), b.constData(),
                       sizeof(double) * static_cast<std::size_t>(a.size())) == 0;
}

/// What one series leaves to the next, and to the graph.
struct ProgramState
{
    static ProgramState present()
    {
        return {d1_src, d2_rf, d3_snk, t, NSmp, {t_src, t_rf, t_snk, mS2Rf, mS2Hd, mS2Snk}};
    }
    void restore() const
    {
        d1_src = source;
        d2_rf = rf;
        d3_snk = sink;
        t = axes;
        NSmp = samples;
    }
    [[nodiscard]] bool showsTheSame(const ProgramState &other) const
    {
        return sameBits(source, other.source) && sameBits(rf, other.rf) &&
               sameBits(sink, other.sink) && samples == other.samples &&
               sameBits(figures, other.figures);
    }

    QVector<double> source;
    QVector<double> rf;
    QVector<double> sink;
    QVector<double> axes;
    int samples = 0;
    QVector<double> figures = QVector<double>(6, 0.0);
};

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

QStringList filesIn(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
}

/// What is wrong with the files of a series, whose traces and means the program holds; nothing
/// when they are complete.
QString wrongFiles(const QString &directory, int count)
{
    const QStringList names = filesIn(directory);
    if (names.size() != 1 + 3 * count) {
        return "files: " + names.join(' ');
    }
    const QString file = directory + '/' + names.last(); // digits come before "Results.txt"
    const QStringList lines = QString::fromUtf8(contents(file)).split('\n');
    const QStringList headings = {"Source2RF", "Source2HD", "Source2Snk"};
    const QVector<double> means = {mS2Rf, mS2Hd, mS2Snk};
    bool good = lines.size() == 6;
    for (int i = 0; good && i < 3; ++i) {
        QStringList delays = lines[2 * i].split(' ');
        good = delays.size() == 2 + count && delays.takeFirst() == headings[i] &&
               delays.takeFirst() == "Delay:" &&
               lines[2 * i + 1] == headings[i] + " Mean: " + QString::number(means[i], 'g', 6);
        for (const QString &delay : qAsConst(delays)) {
            bool isNumber = false;
            delay.toDouble(&isNumber);
            good = good && isNumber;
        }
    }
    if (!good) {
        return "results: " + lines.join('|');
    }
    for (const auto &[kind, trace] :
         {std::pair{"_src.bin", d1_src}, {"_rf.bin", d2_rf}, {"_snk.bin", d3_snk}}) {
        const QByteArray raw(reinterpret_cast<const char *>(trace.constData()),
                             8 * qMin(NSmp, trace.size()));
        for (const QString &name : names.filter(kind)) {
            if (contents(directory + '/' + name) != raw) {
                return name + " is not the trace";
            }
        }
    }
    return {};
}

/// The campaign writes gigabytes; it does so in memory where there is such a place.
QString directoryInMemory()
{
    const QString memory = "/dev/shm";
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

/// The directory of the transfers is empty between two of them.
bool removeTransferDirectory()
{
    return QDir().rmdir(QFileInfo(transferFileName()).path());
}

int openDescriptors()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
}

/// Wait until names of files get another time stamp.
void awaitNextStamp()
{
    QThread::msleep(static_cast<unsigned long>(1010 - QTime::currentTime().msec()));
}

} // namespace

/// Faults at every exchange with the instruments, one at a time, and what is left of them.
class FaultCampaignTest : public QObject
{
    Q_OBJECT

    static constexpr int measurements = 3;
    static constexpr int shortRecord = 4000; // eight samples in a row still fit into an RF burst
    QTemporaryDir home{directoryInMemory() + "/FaultCampaignTest-XXXXXX"};
    std::unique_ptr<QTemporaryDir> results;
    int seriesRun = 0;
    int setUpsRun = 0;
    int recoveries = 0;
    int otherAxes = 0;

    /// A new directory for the files of the series that are run next.
    QString emptyDirectory(SeriesSettings *settings)
    {
        results = std::make_unique<QTemporaryDir>(home.path() + "/results-XXXXXX");
        settings->filePrefix = results->path() + '/';
        return results->path();
    }

    int run(const SeriesSettings &settings)
    {
        ++seriesRun;
        return runSeries(settings, &d1_src, &d2_rf, &d3_snk, &t);
    }

    /// The instruments as after their set-up, and the events of the link from one of them on.
    static void rewind(const Line &line, const simulator::LinkModel &events)
    {
        for (const std::string &host : line.hosts) {
            if (host != "video-analyzer") {
                simulator::bench().find(host)->execute("FORM ASC");
            }
            simulator::bench().find(host)->errors().clear();
        }
        simulator::bench().link() = events;
    }

    /// What is wrong after a series in which a call broke.
    static QString wrongs(const Line &line, const SeriesSettings &settings, int result,
                          const QString &directory)
    {
        const bool kvx = settings.oscilloscopeType == 0;
        const QString oscilloscope =
            QString::fromStdString(line.hosts.value(settings.oscilloscope));
        const QString analyzer =
            QString::fromStdString(line.hosts.value(settings.spectrumAnalyzer));
        const QStringList release = {oscilloscope + (kvx ? " RUNC" : " RUN") + ";*OPC?\n",
                                     analyzer + " INIT:CONT ON;*OPC?\n"};
        if (result != 0) {
            return "result " + QString::number(result);
        }
        if (line.written.mid(line.written.size() - 2) != release) {
            return "closing commands";
        }
        if (QFileInfo::exists(transferFileName())) {
            return "transfer file left";
        }
        if (line.transferredRubbish || NSmp != d1_src.size() ||
            !sameBits(d1_src, line.traces.value("CHAN1")) ||
            !sameBits(d2_rf, line.traces.value("RF")) ||
            !sameBits(d3_snk, line.traces.value("CHAN2"))) {
            return "traces";
        }
        return settings.save ? wrongFiles(directory, measurements) : QString();
    }

    /// Whether the first of the axes is that of a record that came whole.
    static bool startsWithAxisOf(const ProgramState &clean)
    {
        return sameBits(t.mid(0, clean.samples), clean.axes.mid(0, clean.samples));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(home.isValid());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(home.path()));
    }

    void init()
    {
        for (QVector<double> *trace : {&d1_src, &d2_rf, &d3_snk, &t}) {
            trace->clear();
        }
        NSmp = 0;
    }

    void series_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("ifOutput");
        QTest::addColumn<bool>("hdmi");
        for (const int type : {0, 1}) {
            for (const bool ifOutput : {false, true}) {
                for (const bool hdmi : {false, true}) {
                    QTest::addRow("%s%s%s", type == 0 ? "KVx" : "LPA4004",
                                  ifOutput ? ", IF output" : "", hdmi ? ", HDMI" : "")
                        << type << ifOutput << hdmi;
                }
            }
        }
    }

    /// A series with a fault, on a program just started or on one that has measured before, then
    /// one without. For an exact comparison the link tells the same events again.
    void series()
    {
        QFETCH(const int, type);
        QFETCH(const bool, ifOutput);
        QFETCH(const bool, hdmi);
        Line line;
        BenchInstruments bench(type, ifOutput);
        QVERIFY(bench.setUpAll() && bench.shortenRecords(shortRecord));
        SeriesSettings &settings = bench.series;
        settings.measureHdmi = hdmi;
        settings.count = measurements;
        settings.save = true;
        emptyDirectory(&settings);

        // The second record of the first series is one to be taken again.
        simulator::LinkModel &link = simulator::bench().link();
        simulator::LinkModel first = link;
        const auto secondIsOverloaded = [](simulator::LinkModel model) {
            model.trigger(0.027);
            model.trigger(0.027);
            return model.lastEvent().isOverloaded();
        };
        while (!secondIsOverloaded(first)) {
            first.trigger(0.027);
        }
        const ProgramState started;
        rewind(line, first);
        line.arm();
        QCOMPARE(run(settings), 0);
        QCOMPARE(t.size(), (measurements + 1) * NSmp);
        const QVector<Call> calls = line.calls;
        const simulator::LinkModel second = link;
        const ProgramState experienced = ProgramState::present();
        QCOMPARE(run(settings), 0);
        const ProgramState expected = ProgramState::present();
        const QMap<QByteArray, QVector<double>> experiencedTraces = {
            {"CHAN1", experienced.source}, {"RF", experienced.rf}, {"CHAN2", experienced.sink}};
        const int descriptors = openDescriptors();

        QStringList failures;
        const int recoveriesBefore = recoveries;
        const int otherAxesBefore = otherAxes;
        const bool fresh = !hdmi; // each start with half of the rows, for time
        for (int call = 0; call < calls.size(); ++call) {
            for (const Fault fault : faultsOf(calls[call])) {
                const QString name = QString("call %1 (%2), fault %3: ")
                                         .arg(call)
                                         .arg(static_cast<int>(calls[call]))
                                         .arg(static_cast<int>(fault));
                (fresh ? started : experienced).restore();
                line.traces = fresh ? QMap<QByteArray, QVector<double>>() : experiencedTraces;
                rewind(line, first);
                line.arm(call, fault);
                settings.save = true;
                const QString directory = emptyDirectory(&settings);
                int result = run(settings);
                QString wrong = wrongs(line, settings, result, directory);
                recoveries += line.hadToRecover ? 1 : 0;
                settings.save = false;

                // The axes that a record of another length left are there to stay.
                ProgramState wanted = expected;
                const QVector<double> axes = t;
                const ProgramState left = ProgramState::present();
                if (!axes.isEmpty() && !startsWithAxisOf(experienced)) {
                    ++otherAxes;
                    started.restore();
                    t = axes;
                    rewind(line, second);
                    line.arm();
                    run(settings);
                    wanted = ProgramState::present();
                    left.restore();
                }
                rewind(line, second);
                line.arm();
                result = run(settings);
                if (wrong.isEmpty()) {
                    wrong = wrongs(line, settings, result, directory);
                }
                if (wrong.isEmpty() && !ProgramState::present().showsTheSame(wanted)) {
                    wrong = "the series after it differs";
                }
                if (!wrong.isEmpty()) {
                    failures += name + wrong;
                }
            }
        }
        QVERIFY2(failures.isEmpty(), qPrintable(failures.mid(0, 20).join('\n')));
        QCOMPARE(openDescriptors(), descriptors);
        QVERIFY(recoveries > recoveriesBefore && (otherAxes > otherAxesBefore || !fresh));
    }

    void setUps_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("ifOutput");
        QTest::addColumn<int>("instrument");
        for (int instrument = 0; instrument < 3; ++instrument) {
            QTest::addRow("KVx, instrument %d", instrument) << 0 << true << instrument;
            QTest::addRow("LPA4004, instrument %d", instrument) << 1 << false << instrument;
        }
    }

    /// After a set-up with a fault one without makes the instrument as good as new.
    void setUps()
    {
        QFETCH(const int, type);
        QFETCH(const bool, ifOutput);
        QFETCH(const int, instrument);
        Line line;
        BenchInstruments bench(type, ifOutput);
        QVERIFY(bench.setUpAll());
        bench.series.measureHdmi = true;
        bench.series.count = 1;
        const auto setUp = [&] {
            ++setUpsRun;
            return instrument == 0   ? bench.setUpOscilloscope()
                   : instrument == 1 ? bench.setUpSpectrumAnalyzer()
                                     : bench.setUpVideoAnalyzer();
        };
        const simulator::LinkModel events = simulator::bench().link();
        const auto measure = [&] {
            init();
            bench.shortenRecords(shortRecord);
            rewind(line, events);
            run(bench.series);
            return ProgramState::present();
        };
        const ProgramState expected = measure();
        line.arm();
        QCOMPARE(setUp(), VI_SUCCESS);
        const QVector<Call> calls = line.calls;

        for (int call = 0; call < calls.size(); ++call) {
            for (const Fault fault : faultsOf(calls[call])) {
                const QByteArray name = QByteArray("call ") + QByteArray::number(call) +
                                        ", fault " + QByteArray::number(static_cast<int>(fault));
                line.arm(call, fault);
                setUp();
                QVERIFY2(line.calls.size() > call && !line.hadToRecover, name);
                line.arm();
                for (const std::string &host : line.hosts) {
                    simulator::bench().find(host)->errors().clear();
                }
                QVERIFY2(setUp() == VI_SUCCESS, name);
                QVERIFY2(line.hosts.size() == 3, name); // none was left open
                for (const std::string &host : line.hosts) {
                    QVERIFY2(simulator::bench().find(host)->errors().isEmpty(), name);
                }
                QVERIFY2(measure().showsTheSame(expected), name);
            }
        }
    }

    /// On a full disk the files of a series are short, or its transfers fail; the files of the
    /// series before it stay as they are.
    void fullDisk()
    {
        Line line;
        BenchInstruments bench(0, false);
        QVERIFY(bench.setUpAll() && bench.shortenRecords(shortRecord));
        bench.series.count = measurements;
        bench.series.save = true;
        const QString directory = emptyDirectory(&bench.series);
        QCOMPARE(run(bench.series), 0);
        QCOMPARE(wrongFiles(directory, measurements), QString());
        const QStringList before = filesIn(directory);
        const QByteArray savedResults = contents(directory + '/' + before.last());
        const QByteArray trace = contents(directory + '/' + before.first());

        std::signal(SIGXFSZ, SIG_IGN);
        rlimit usual{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &usual), 0);
        for (const int room : {0, 50, 4 * shortRecord - 1, 4 * shortRecord + 1}) {
            awaitNextStamp();
            const QVector<double> old = d1_src;
            const rlimit limit{static_cast<rlim_t>(room), usual.rlim_max};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
            const int result = run(bench.series);
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &usual), 0);
            QCOMPARE(result, 0);
            QVERIFY(!QFileInfo::exists(transferFileName()));
            QCOMPARE(sameBits(d1_src, old), room < 4 * shortRecord);
            QVERIFY(sameBits(d1_src, line.traces["CHAN1"]) && sameBits(d2_rf, line.traces["RF"]));
            QStringList added;
            for (const QFileInfo &file : QDir(directory).entryInfoList(QDir::Files)) {
                if (!before.contains(file.fileName())) {
                    added += file.filePath();
                    QVERIFY(file.size() <= room);
                }
            }
            QCOMPARE(added.size(), 1 + 3 * measurements);
            QCOMPARE(contents(directory + '/' + before.last()), savedResults);
            QCOMPARE(contents(directory + '/' + before.first()), trace);
            for (const QString &file : qAsConst(added)) {
                QVERIFY(QFile::remove(file));
            }
        }
        emptyDirectory(&bench.series);
        QCOMPARE(run(bench.series), 0);
        QCOMPARE(wrongFiles(results->path(), measurements), QString());
    }

    /// The directory of the results comes and goes, and so does that of the transfers.
    void vanishedDirectories()
    {
        Line line;
        BenchInstruments bench(1, true);
        QVERIFY(bench.setUpAll());
        bench.series.count = measurements;
        bench.series.save = true;
        const QString directory = emptyDirectory(&bench.series);
        bench.series.filePrefix = directory + "/data";
        for (const bool exists : {true, false, true}) {
            results->remove();
            QVERIFY(!exists || QDir().mkpath(directory));
            QVERIFY(removeTransferDirectory());
            const simulator::LinkModel events = simulator::bench().link();
            QCOMPARE(run(bench.series), exists ? 0 : -1);
            QVERIFY(sameBits(d3_snk, line.traces["CHAN2"]));
            QCOMPARE(QFileInfo::exists(directory), exists);
            if (exists) {
                QCOMPARE(wrongFiles(directory, measurements), QString());
            }
            const QVector<double> source = d1_src;
            init();
            rewind(line, events);
            bench.series.save = false;
            QCOMPARE(run(bench.series), 0);
            QVERIFY(sameBits(d1_src, source));
            bench.series.save = true;
        }
    }

    /// Of a series whose names are taken by directories the other files are written, but no trace
    /// without results.
    void takenNames()
    {
        Line line;
        BenchInstruments bench(1, true);
        QVERIFY(bench.setUpAll());
        bench.series.count = measurements;
        bench.series.save = true;
        for (const auto &[name, result, written] :
             {std::tuple{"Results.txt", -1, 0}, {"002_rf.bin", 0, 3 * measurements}}) {
            const QString directory = emptyDirectory(&bench.series);
            const QDateTime now = QDateTime::currentDateTime();
            for (int seconds = 0; seconds < 60; ++seconds) {
                const QString stamp = now.addSecs(seconds).toString("yyyy-MM-dd_hh-mm-ss_");
                QVERIFY(QDir(directory).mkdir(stamp + name));
            }
            QCOMPARE(run(bench.series), result);
            QCOMPARE(QDir(directory).entryList(QDir::Files).size(), written);
            QCOMPARE(QDir(directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 60);
        }
    }

    /// A directory whose name somebody else has taken is neither used nor removed.
    void takenTransferDirectory()
    {
        const QTemporaryDir other(home.path() + "/other-XXXXXX");
        QVERIFY(QFile(other.filePath("precious")).open(QIODevice::WriteOnly));
        const QString path = QFileInfo(transferFileName()).path();
        QVERIFY(removeTransferDirectory() && QFile::link(other.path(), path));
        QVERIFY(QFileInfo(transferFileName()).path() != path);
        QVERIFY(QFile::exists(other.filePath("precious")));
        QVERIFY(QFile::remove(path));
    }

    /// Without a run-time directory the ordinary temporary one serves.
    void fallBackToTemporaryDirectory()
    {
        QVERIFY(removeTransferDirectory());
        const QByteArray usual = qgetenv("XDG_RUNTIME_DIR");
        for (const QByteArray &parent : {QByteArray("/nowhere"), QByteArray("relative")}) {
            qputenv("XDG_RUNTIME_DIR", parent);
            const QString name = transferFileName();
            qputenv("XDG_RUNTIME_DIR", usual);
            QCOMPARE(QFileInfo(QFileInfo(name).path()).path(), QDir::tempPath());
            QVERIFY(removeTransferDirectory());
        }
    }

    /// Nowhere to keep a block: every transfer fails, until there is a place again.
    void noTemporaryDirectory()
    {
        Line line;
        BenchInstruments bench(1, false);
        QVERIFY(bench.setUpAll());
        bench.series.count = measurements;
        QCOMPARE(run(bench.series), 0);
        bench.series.save = true;
        const QVector<double> source = d1_src;
        const QVector<double> sink = d3_snk;

        const QString plainFile = home.filePath("plain file");
        QVERIFY(QFile(plainFile).open(QIODevice::WriteOnly));
        for (const QString &nowhere : {home.filePath("missing"), plainFile, QString()}) {
            const std::array<const char *, 2> variables = {"XDG_RUNTIME_DIR", "TMPDIR"};
            QVERIFY(removeTransferDirectory());
            QMap<QByteArray, QByteArray> usual;
            for (const char *variable : variables) {
                if (qEnvironmentVariableIsSet(variable)) {
                    usual[variable] = qgetenv(variable);
                }
                if (!nowhere.isEmpty()) {
                    qputenv(variable, QFile::encodeName(nowhere));
                }
            }
            const QString directory = emptyDirectory(&bench.series);
            const int result = run(bench.series);
            const bool isThere = !transferFileName().isEmpty();
            for (const char *variable : variables) {
                usual.contains(variable) ? qputenv(variable, usual[variable]) : qunsetenv(variable);
            }
            QCOMPARE(isThere, nowhere.isEmpty());
            QCOMPARE(result, 0);
            QCOMPARE(wrongFiles(directory, measurements), QString());
            QCOMPARE(sameBits(d1_src, source) && sameBits(d3_snk, sink), !isThere);
            QVERIFY(sameBits(d1_src, line.traces["CHAN1"]));
        }
    }

    void cleanupTestCase()
    {
        qInfo("%d series and %d set-ups; %d series went on until a lost connection came back, "
              "%d followed a record of another length",
              seriesRun, setUpsRun, recoveries, otherAxes);
    }
};

QTEST_GUILESS_MAIN(FaultCampaignTest)
#include "FaultCampaignTest.moc"
