#include "BoundBench.h"
#include "DefiniteBlock.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TransferFile.h"
#include "TestFiles.h"

#include <QtTest>

#include <array>
#include <csignal>
#include <limits>
#include <sys/resource.h>

QString visaLibraryPath()
{
    return {}; // the bench is linked, and bound by hand
}

namespace {

constexpr int measurements = 3;
constexpr int shortRecord = 4000; // eight samples in a row still fit into an RF burst
constexpr ViStatus connectionLost = visaStatus(0xBFFF00A6);

/// What a call is to the program; reads by what they read.
enum Call : unsigned
{
    Other = 1,
    Text = 2,
    BlockStart = 4,
    BlockRest = 8,
    AnyRead = Text | BlockStart | BlockRest,
    Any = Other | AnyRead,
};

/// A block whose samples from one on are not-a-number, infinities and a denormal.
QByteArray withOddSamples(const QByteArray &message, int from)
{
    using Limits = std::numeric_limits<float>;
    const QByteArray odd =
        bytesOf<float>({Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                        Limits::denorm_min(), Limits::signaling_NaN()});
    const int start = message.size() - 1 - dataOf(message).size() + 4 * from;
    return message.left(start) + odd + message.mid(start + odd.size());
}

struct Fault
{
    const char *name;
    unsigned calls; ///< that it befalls
    /// What comes in place of a reply, of which so many bytes at most are read.
    QByteArray (*spoil)(const QByteArray &reply, int most);
    ViStatus status = VI_SUCCESS;
    bool lasts = false;    ///< from here on, for this instrument
    bool isForAll = false; ///< of them
};

constexpr auto unspoilt = [](const QByteArray &reply, int) { return reply; };
const QVector<Fault> faults = {
    // Nothing goes out, or the reply breaks off half-way.
    {"error", Any, unspoilt, VI_ERROR_IO},
    // The command was obeyed all the same, the reply comes too late.
    {"timeout", Any, unspoilt, VI_ERROR_TMO},
    {"remark", Any, unspoilt, VI_SUCCESS_TERM_CHAR},
    {"instrument lost", Any, unspoilt, connectionLost, true},
    {"network lost", Any, unspoilt, connectionLost, true, true},
    {"nothing came", AnyRead, [](auto &, int) { return QByteArray(); }},
    {"no terminator", Text | BlockStart, [](auto &reply, int) { return reply.chopped(1); }},
    {"full buffer", Text, [](auto &, int most) { return QByteArray(most, '1'); }},
    {"first byte", BlockStart, [](auto &b, int) { return QByteArray(b).replace(0, 1, "0"); }},
    // The character after '9'.
    {"digit count", BlockStart, [](auto &b, int) { return QByteArray(b).replace(1, 1, ":"); }},
    {"digit", BlockStart, [](auto &b, int) { return QByteArray(b).replace(2, 1, "-"); }},
    {"less", BlockStart, [](auto &b, int) { return block(declaredLength(b) / 2, dataOf(b)); }},
    {"more", BlockStart, [](auto &b, int) { return block(declaredLength(b) * 2, dataOf(b)); }},
    {"empty block", BlockStart, [](auto &, int) { return block(0, {}); }},
    {"three bytes", BlockStart, [](auto &b, int) { return block(3, dataOf(b).left(3)); }},
    {"odd samples", BlockStart, [](auto &b, int) { return withOddSamples(b, 1); }},
    {"odd record", BlockStart, [](auto &b, int) { return withOddSamples(b, 0); }},
};

/// Which call breaks (from 0), and how.
struct Break
{
    int call = -1;
    Fault fault = {"none", 0, unspoilt};

    [[nodiscard]] QByteArray name() const { return QByteArray::number(call) + ", " + fault.name; }
};

/// Source, RF and sink.
using Traces = std::array<QVector<double>, 3>;

QVector<QByteArray> bitsOf(const Traces &traces)
{
    return {bytesOf(traces[0]), bytesOf(traces[1]), bytesOf(traces[2])};
}

/// What one series leaves to the next, and to the graph.
struct ProgramState
{
    Traces traces = {d1_src, d2_rf, d3_snk};
    QVector<double> axes = t;
    int samples = NSmp;
    QVector<QByteArray> shown =
        bitsOf(traces) + QVector<QByteArray>{bytesOf<double>(
                             {double(NSmp), t_src, t_rf, t_snk, mS2Rf, mS2Hd, mS2Snk})};

    void restore() const
    {
        std::tie(d1_src, d2_rf, d3_snk, t, NSmp) =
            std::tie(traces[0], traces[1], traces[2], axes, samples);
    }
};

/// Between the program and the bench: while it lives, the p_ entry points lead through it. It
/// keeps a list of the calls, breaks one of them as it is told, and knows what came of it.
class Line
{
public:
    Line()
    {
        current = this;
        bindBench();
        p_viOpen = [](ViSession manager, const ViChar *resource, ViAccessMode mode,
                      ViUInt32 timeout, ViSession *session) {
            return current->pass(0, [&] {
                const ViStatus status = viOpen(manager, resource, mode, timeout, session);
                current->open += *session;
                return status;
            });
        };
        p_viClose = [](ViObject object) { // closed is closed, whatever becomes of the call
            const ViStatus status = viClose(object);
            current->open.remove(object);
            return current->pass(object, [&] { return status; });
        };
        p_viSetAttribute = [](ViObject object, ViAttr attribute, ViAttrState value) {
            return current->pass(object, [&] { return viSetAttribute(object, attribute, value); });
        };
        p_viGpibControlREN = [](ViSession session, ViUInt16 mode) {
            return current->pass(session, [&] { return viGpibControlREN(session, mode); });
        };
        p_viWrite = [](ViSession session, const ViByte *buffer, ViUInt32 count, ViUInt32 *) {
            return current->write(
                session, {reinterpret_cast<const char *>(buffer), static_cast<int>(count)});
        };
        p_viRead = [](ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returned) {
            const auto [status, bytes] = current->read(session, static_cast<int>(count));
            std::copy(bytes.begin(), bytes.end(), buffer);
            if (returned != nullptr) {
                *returned = static_cast<ViUInt32>(bytes.size());
            }
            return status;
        };
        p_viReadToFile = [](ViSession session, const ViChar *fileName, ViUInt32 count, ViUInt32 *) {
            const auto [status, bytes] = current->read(session, static_cast<int>(count));
            const bool isKept = ::write(QFile::decodeName(fileName), bytes);
            if (isKept && status >= 0) {
                current->keep(session, bytes);
            }
            return isKept ? status : VI_ERROR_FILE_IO;
        };
    }
    ~Line() { bindBench(); }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    /// Start new lists, and break a call.
    void arm(const Break &next = {})
    {
        calls = 0;
        breaks.clear();
        written.clear();
        faulty = next;
        hadToRecover = false;
    }

    int calls = 0;
    QVector<Break> breaks;                         ///< all that could be armed, by these calls
    QVector<QPair<ViSession, QByteArray>> written; ///< or attempted
    QSet<ViSession> open;
    Traces traces;                   ///< what the program's are to hold
    bool transferredRubbish = false; ///< data was fetched although no block was announced
    bool hadToRecover = false;       ///< the run did not end before a lost connection came back

private:
    struct Exchange
    {
        QByteArray command;
        QByteArray reply;
        int position = 0; ///< so much of the reply was read
    };

    /// A run that goes on for this many calls on a lost connection is waiting for a record.
    static constexpr int patience = 100;
    static constexpr int endless = 20000;

    ViStatus refuse(Call call, ViSession session)
    {
        const int index = calls++;
        for (const Fault &fault : faults) {
            if ((fault.calls & call) != 0) {
                breaks.append({index, fault});
            }
        }
        if (index > endless) {
            qFatal("a run does not end after %s", faulty.name().constData());
        }
        lostSession = index == faulty.call ? session : lostSession;
        const bool lasts = faulty.fault.lasts && (faulty.fault.isForAll || session == lostSession);
        hadToRecover = hadToRecover || (lasts && index > faulty.call + patience);
        isBroken = index == faulty.call || (index > faulty.call && lasts && !hadToRecover);
        return isBroken ? faulty.fault.status : VI_SUCCESS;
    }

    template <typename Function>
    ViStatus pass(ViSession session, const Function &call)
    {
        const ViStatus refusal = refuse(Other, session);
        const ViStatus status = refusal < 0 ? refusal : call();
        return status < 0 ? status : refusal;
    }

    ViStatus write(ViSession session, const QByteArray &command)
    {
        const ViStatus refusal = refuse(Other, session);
        written.append({session, command});
        if (command.startsWith("CHAN2:DATA?")) { // RF is fetched, and normalised
            normaliseEnvelope(&traces[1]);
        }
        Exchange &exchange = exchanges[session] = {command, {}};
        if (refusal == VI_ERROR_IO || refusal == connectionLost) {
            return refusal;
        }
        const ViStatus status =
            viWrite(session, reinterpret_cast<const ViByte *>(command.constData()),
                    static_cast<ViUInt32>(command.size()), nullptr);
        static QByteArray buffer(1 << 20, '\0'); // more than any reply
        ViUInt32 count = 0;
        viRead(session, reinterpret_cast<ViByte *>(buffer.data()),
               static_cast<ViUInt32>(buffer.size()), &count);
        exchange.reply = buffer.left(static_cast<int>(count));
        return status < 0 ? status : refusal;
    }

    std::pair<ViStatus, QByteArray> read(ViSession session, int count)
    {
        auto &[command, reply, position] = exchanges[session];
        const bool isTrace = command.startsWith("TRAC? ") || command.endsWith(":DATA?\n");
        const ViStatus refusal = refuse(!isTrace        ? Text
                                        : position == 0 ? BlockStart
                                                        : BlockRest,
                                        session);
        if (isBroken) {
            reply = reply.left(position) + faulty.fault.spoil(reply.mid(position), count);
        }
        const QByteArray bytes = reply.mid(position, count);
        if (refusal < 0) {
            return {refusal, bytes.left(bytes.size() / 2)};
        }
        if (bytes.isEmpty() && !isBroken) {
            return {VI_ERROR_TMO, {}};
        }
        position += bytes.size();
        const bool isMore = refusal == VI_SUCCESS && position < reply.size();
        return {isMore ? VI_SUCCESS_MAX_CNT : refusal, bytes};
    }

    void keep(ViSession session, const QByteArray &bytes)
    {
        const Exchange &exchange = exchanges[session];
        const int declared = declaredLength(exchange.reply);
        transferredRubbish = transferredRubbish || declared < 0;
        const QVector<float> samples = floatsOf(bytes.left(declared));
        const char channel = exchange.command.startsWith("CHAN") ? exchange.command[4] : '3';
        traces[channel == '1' ? 0 : channel == '2' ? 2 : 1] = {samples.begin(), samples.end()};
    }

    static inline Line *current = nullptr;
    QMap<ViSession, Exchange> exchanges;
    Break faulty;
    bool isBroken = false; ///< the call under way
    ViSession lostSession = 0;
};

/// All temporary files, transfers among them, go below this directory from here on.
void setTemporaryDirectory(const QString &directory)
{
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(directory));
    qputenv("TMPDIR", QFile::encodeName(directory));
}

/// The directory of the transfers is empty between two of them.
bool removeTransferDirectory()
{
    return QDir().rmdir(QFileInfo(transferFileName()).path());
}

/// A bench behind a line that breaks, and the series that are run on it.
class Campaign : public Line, public BenchInstruments
{
public:
    Campaign(int type, bool ifOutput) : BenchInstruments(type, ifOutput)
    {
        if (!setUpAll() || !shortenRecords(shortRecord)) {
            qFatal("the bench cannot be set up");
        }
        series.count = measurements;
        series.save = true;
        forgetEverything();
        newDirectory();
    }

    /// The program as it starts.
    static void forgetEverything() { ProgramState{{}, {}, 0, {}}.restore(); }

    /// A new directory for the files of the series that are run next.
    void newDirectory()
    {
        results = std::make_unique<QTemporaryDir>(QDir::tempPath() + "/results-XXXXXX");
        series.filePrefix = results->path() + '/';
    }

    int run()
    {
        ++seriesRun;
        return runSeries(series, &d1_src, &d2_rf, &d3_snk, &t);
    }

    /// Run a series on instruments as after their set-up, of the events from one of them on.
    int runFrom(const simulator::LinkModel &events, const Break &broken = {})
    {
        for (simulator::Instrument *each : instruments()) {
            each->execute("FORM ASC"); // an error of the video analyzer's, which has no traces
            each->errors().clear();
        }
        simulator::bench().link() = events;
        arm(broken);
        return run();
    }

    /// What is wrong after a series, in which a call may have broken.
    [[nodiscard]] QString wrongs(int result, bool withFiles = true) const
    {
        const QVector<QPair<ViSession, QByteArray>> release = {
            {series.oscilloscope, series.oscilloscopeType == 0 ? "RUNC;*OPC?\n" : "RUN;*OPC?\n"},
            {series.spectrumAnalyzer, "INIT:CONT ON;*OPC?\n"}};
        const bool holdsTraces = !transferredRubbish && NSmp == d1_src.size() &&
                                 bitsOf(traces) == bitsOf({d1_src, d2_rf, d3_snk});
        return QString(result == 0 ? "" : "result, ") +
               (written.mid(written.size() - 2) == release ? "" : "closing commands, ") +
               (QFileInfo::exists(transferFileName()) ? "transfer file left, " : "") +
               (holdsTraces ? "" : "traces, ") + (withFiles ? wrongFiles() : QString());
    }

    /// What is wrong with the files of the only series in the directory.
    [[nodiscard]] QString wrongFiles() const
    {
        const QMap<QString, QByteArray> files = filesIn(results->path());
        const QString prefix = files.isEmpty() ? "" : files.lastKey().chopped(11); // "Results.txt"
        const QByteArray text = files.value(prefix + "Results.txt");
        QMap<QString, QByteArray> expected = {{prefix + "Results.txt", text}};
        QString pattern;
        for (const auto &[name, ending, mean, trace] : {std::tuple{"RF", "_src.bin", mS2Rf, d1_src},
                                                        {"HD", "_rf.bin", mS2Hd, d2_rf},
                                                        {"Snk", "_snk.bin", mS2Snk, d3_snk}}) {
            pattern += QString("Source2%1 Delay:( (-?[\\d.]+(e[+-]\\d+)?|nan|-?inf)){%2}\n"
                               "Source2%1 Mean: %3\n")
                           .arg(name, QString::number(series.count),
                                QRegularExpression::escape(QString::number(mean)));
            for (int i = 1; i <= series.count; ++i) {
                expected[prefix + QString("00%1").arg(i) + ending] = bytesOf(trace.mid(0, NSmp));
            }
        }
        const QRegularExpression delays(QRegularExpression::anchoredPattern(pattern));
        return files == expected && delays.match(text + '\n').hasMatch()
                   ? ""
                   : "files: " + files.keys().join(' ') + '|' + text;
    }

    std::unique_ptr<QTemporaryDir> results;
    static inline int seriesRun = 0;
};

} // namespace

/// Faults at every exchange with the instruments, one at a time, and what is left of them.
class FaultCampaignTest : public QObject
{
    Q_OBJECT

    // It writes gigabytes: in memory, where there is such a place.
    QTemporaryDir home{(QFileInfo("/dev/shm").isWritable() ? "/dev/shm" : QDir::tempPath()) +
                       "/FaultCampaignTest-XXXXXX"};
    int setUpsRun = 0;
    int recoveries = 0;
    int otherAxes = 0;

private slots:
    void initTestCase()
    {
        QVERIFY(home.isValid());
        setTemporaryDirectory(home.path());
    }

    void series_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < 8; ++row) {
            QTest::addRow("%s%s%s", row < 4 ? "KVx" : "LPA4004",
                          (row & 2) != 0 ? ", IF output" : "", (row & 1) != 0 ? ", HDMI" : "")
                << row;
        }
    }

    /// A series with a fault, on a program just started or on one that has measured before, then
    /// one without. For an exact comparison the link tells the same events again.
    void series()
    {
        QFETCH(const int, row);
        const bool hdmi = (row & 1) != 0;
        Campaign campaign(row / 4, (row & 2) != 0);
        campaign.series.measureHdmi = hdmi;

        // The second record of the first series is one to be taken again.
        simulator::LinkModel first = simulator::bench().link();
        simulator::LinkModel ahead = first;
        ahead.trigger(0.027);
        for (ahead.trigger(0.027); !ahead.lastEvent().isOverloaded(); ahead.trigger(0.027)) {
            first.trigger(0.027);
        }
        const ProgramState started;
        QCOMPARE(campaign.runFrom(first), 0);
        QCOMPARE(t.size(), (measurements + 1) * NSmp);
        const QVector<Break> breaks = campaign.breaks;
        const simulator::LinkModel second = simulator::bench().link();
        const ProgramState experienced;
        QCOMPARE(campaign.run(), 0);
        const ProgramState expected;
        const QVector<double> axis = t.mid(0, NSmp);
        const int descriptors = openDescriptors();

        const int recoveriesBefore = recoveries;
        const int otherAxesBefore = otherAxes;
        const ProgramState &before = hdmi ? experienced : started; // half of the rows each
        for (const Break &broken : breaks) {
            before.restore();
            campaign.traces = before.traces;
            campaign.newDirectory();
            campaign.series.save = true;
            QString wrong = campaign.wrongs(campaign.runFrom(first, broken));
            recoveries += campaign.hadToRecover ? 1 : 0;
            campaign.series.save = false;

            // The axes that a record of another length left are there to stay.
            const ProgramState left;
            QVector<QByteArray> wanted = expected.shown;
            if (!t.isEmpty() && bytesOf(t.mid(0, axis.size())) != bytesOf(axis)) {
                ++otherAxes;
                started.restore();
                t = left.axes;
                campaign.runFrom(second);
                wanted = ProgramState().shown;
                left.restore();
            }
            wrong += campaign.wrongs(campaign.runFrom(second), false);
            wrong += ProgramState().shown == wanted ? "" : "the series after it differs";
            QVERIFY2(wrong.isEmpty(), broken.name() + ": " + wrong.toUtf8());
        }
        QCOMPARE(openDescriptors(), descriptors);
        QVERIFY(recoveries > recoveriesBefore && (hdmi || otherAxes > otherAxesBefore));
    }

    void setUps_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("instrument");
        for (int row = 0; row < 6; ++row) {
            QTest::addRow("%s, instrument %d", row < 3 ? "KVx" : "LPA4004", row % 3)
                << row / 3 << row % 3;
        }
    }

    /// After a set-up with a fault one without makes the instrument as good as new.
    void setUps()
    {
        QFETCH(const int, type);
        QFETCH(const int, instrument);
        Campaign campaign(type, type == 0);
        campaign.series.measureHdmi = true;
        campaign.series.count = 1;
        campaign.series.save = false;
        const auto setUp = [&](const Break &broken = {}) {
            ++setUpsRun;
            campaign.arm(broken);
            return instrument == 0   ? campaign.setUpOscilloscope()
                   : instrument == 1 ? campaign.setUpSpectrumAnalyzer()
                                     : campaign.setUpVideoAnalyzer();
        };
        const simulator::LinkModel events = simulator::bench().link();
        const auto measured = [&] {
            Campaign::forgetEverything();
            campaign.shortenRecords(shortRecord);
            campaign.runFrom(events);
            return ProgramState().shown;
        };
        const QVector<QByteArray> expected = measured();
        QCOMPARE(setUp(), VI_SUCCESS);

        const QVector<Break> breaks = campaign.breaks;
        for (const Break &broken : breaks) {
            const QByteArray name = broken.name();
            setUp(broken);
            QVERIFY2(campaign.calls > broken.call && !campaign.hadToRecover, name);
            campaign.takeErrors();
            QVERIFY2(setUp() == VI_SUCCESS, name);
            QVERIFY2(campaign.open.size() == 3, name); // none was left open
            QVERIFY2(campaign.takeErrors().isEmpty(), name);
            QVERIFY2(measured() == expected, name);
        }
    }

    /// On a full disk the files of a series are short, or its transfers fail; the files of the
    /// series before it stay as they are.
    void fullDisk()
    {
        Campaign campaign(0, false);
        QCOMPARE(campaign.wrongs(campaign.run()), QString());
        const QMap<QString, QByteArray> saved = filesIn(campaign.results->path());

        std::signal(SIGXFSZ, SIG_IGN);
        rlimit usual{};
        QCOMPARE(getrlimit(RLIMIT_FSIZE, &usual), 0);
        constexpr int wholeTrace = 4 * shortRecord;
        for (const int room : {0, 50, wholeTrace - 1, wholeTrace + 1}) {
            // The names of the files get another time stamp.
            QThread::msleep(static_cast<unsigned long>(1010 - QTime::currentTime().msec()));
            const QVector<double> old = d1_src;
            const rlimit limit{static_cast<rlim_t>(room), usual.rlim_max};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
            const int result = campaign.run();
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &usual), 0);
            QCOMPARE(campaign.wrongs(result, false), QString());
            QCOMPARE(bytesOf(d1_src) == bytesOf(old), room < wholeTrace);
            const QMap<QString, QByteArray> files = filesIn(campaign.results->path());
            QCOMPARE(files.size(), 2 * saved.size());
            for (const QString &name : files.keys()) {
                const bool isOld = saved.contains(name);
                QVERIFY(isOld ? files[name] == saved[name] : files[name].size() <= room);
                QVERIFY(isOld || QFile::remove(campaign.results->path() + '/' + name));
            }
        }
        campaign.newDirectory();
        QCOMPARE(campaign.wrongs(campaign.run()), QString());
    }

    /// The directory of the results comes and goes, and so does that of the transfers.
    void vanishedDirectories()
    {
        Campaign campaign(1, true);
        const QDir directory(campaign.results->path());
        for (const bool exists : {true, false, true, false, true, true}) {
            QVERIFY(QDir(directory).removeRecursively());
            QVERIFY(!exists || QDir().mkpath(directory.path()));
            QVERIFY(removeTransferDirectory());
            QCOMPARE(campaign.wrongs(campaign.run()), QString(exists ? "" : "result, files: |"));
            QCOMPARE(directory.exists(), exists);
        }
    }

    /// Of a series whose names are taken by directories the other files are written, but no trace
    /// without results.
    void takenNames()
    {
        Campaign campaign(1, true);
        for (const auto &[name, result, written] :
             {std::tuple{"Results.txt", -1, 0}, {"002_rf.bin", 0, 3 * measurements}}) {
            campaign.newDirectory();
            const QDir directory(campaign.results->path());
            for (int seconds = 0; seconds < 60; ++seconds) {
                const QString stamp =
                    QDateTime::currentDateTime().addSecs(seconds).toString("yyyy-MM-dd_hh-mm-ss_");
                QVERIFY(directory.mkdir(stamp + name));
            }
            QCOMPARE(campaign.run(), result);
            QCOMPARE(directory.entryList(QDir::Files).size(), written);
            QCOMPARE(filesIn(directory.path()).size(), written + 60);
        }
    }

    /// A directory whose name somebody else has taken is neither used nor removed; without a
    /// run-time directory the ordinary temporary one serves.
    void otherTransferDirectories()
    {
        const QTemporaryDir other;
        const QString path = QFileInfo(transferFileName()).path();
        QVERIFY(write(other.filePath("precious")));
        QVERIFY(removeTransferDirectory() && QFile::link(other.path(), path));
        QVERIFY(QFileInfo(transferFileName()).path() != path);
        QVERIFY(QFile::exists(other.filePath("precious")) && QFile::remove(path));

        for (const char *parent : {"/nowhere", "."}) {
            QVERIFY(removeTransferDirectory());
            qputenv("XDG_RUNTIME_DIR", parent);
            QVERIFY(transferFileName().startsWith(home.path()));
        }
        setTemporaryDirectory(home.path());
    }

    /// Nowhere to keep a block: every transfer fails, until there is a place again.
    void noTemporaryDirectory()
    {
        Campaign campaign(1, false);
        QCOMPARE(campaign.run(), 0);
        const ProgramState before;
        const QString plainFile = home.filePath("plain file");
        QVERIFY(write(plainFile));
        for (const QString &directory : {home.filePath("missing"), plainFile, home.path()}) {
            QVERIFY(removeTransferDirectory());
            campaign.newDirectory();
            setTemporaryDirectory(directory);
            const QString wrong = campaign.wrongs(campaign.run());
            setTemporaryDirectory(home.path());
            QCOMPARE(wrong, QString());
            QCOMPARE(bitsOf({d1_src, d2_rf, d3_snk}) == bitsOf(before.traces),
                     directory != home.path());
        }
    }

    void cleanupTestCase()
    {
        qInfo("%d series and %d set-ups; %d series went on until a lost connection came back, "
              "%d followed a record of another length",
              Campaign::seriesRun, setUpsRun, recoveries, otherAxes);
    }
};

QTEST_GUILESS_MAIN(FaultCampaignTest)
#include "FaultCampaignTest.moc"
