#include "bench/InProcessBackend.h"
#include "instrument/InstrumentIo.h"
#include "instrument/VisaLibraryPath.h"
#include "Line.h"
#include "measurement/Globals.h"
#include "measurement/MeasurementRun.h"
#include "measurement/TransferFile.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "visa/VisaFunctions.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

QString visaLibraryPath()
{
    return {}; // the bench is linked, and bound by hand
}

namespace {

/// What befalls one call, or some in a row: a status, or other bytes in place of those read.
struct Fault
{
    const char *name;
    ViStatus status = VI_SUCCESS;
    int calls = 1;
    QByteArray (*spoil)(const QByteArray &) = nullptr;
};

template <char byte>
QByteArray all(const QByteArray &bytes)
{
    return QByteArray(bytes.size(), byte);
}

const QVector<Fault> faults = {
    {"error", VI_ERROR_IO},
    {"timeout", VI_ERROR_TMO},
    {"remark", VI_SUCCESS_TERM_CHAR},
    {"connection lost", visaStatus(0xBFFF00A6), 100}, // then it comes back
    {"nothing", {}, 1, [](auto &) { return QByteArray(); }},
    {"no digit", {}, 1, [](auto &bytes) { return QByteArray(bytes).replace(1, 1, ":"); }},
    {"half", {}, 1, [](auto &bytes) { return bytes.left(bytes.size() / 2); }},
    {"no numbers", {}, 1, all<'\xFF'>},
    {"zeros", {}, 1, all<'0'>},
    {"less", {}, 1, all<'1'>},
    {"more", {}, 1, all<'9'>},
};

/// The instruments of a series on the bench, set up.
struct Instruments
{
    Instruments(int type, bool ifOutput, const char *analyzer = "analyzer-qan")
        : hosts{type == 0 ? "scope-kvx" : "scope", analyzer, "video"}
    {
        series.oscilloscopeType = type;
        series.rfFromOscilloscope = ifOutput;
        series.measureHdmi = true;
        series.count = 3;
        iaOpenDefaultRM(&manager);
        for (int instrument : {0, 1, 2}) {
            if (setUp(instrument) != VI_SUCCESS || !takeErrors().isEmpty()) {
                qFatal("instrument %d cannot be set up", instrument);
            }
        }
    }
    ~Instruments() { iaClose(manager); }

    ViStatus setUp(int i)
    {
        const QString resource = "TCPIP0::" + hosts[i] + "::INSTR";
        const int type = series.oscilloscopeType;
        return i == 0   ? setUpOscilloscope(manager,
                                            {resource, true, type, 0.027, series.rfFromOscilloscope},
                                            &series.oscilloscope)
               : i == 1 ? setUpSpectrumAnalyzer(manager, {resource, 5.192e9, type},
                                                &series.spectrumAnalyzer)
                        : setUpVideoAnalyzer(manager, {resource, true, 35}, series.spectrumAnalyzer,
                                             &series.videoAnalyzer);
    }
    /// What the instruments complain of, by their error queues, which are empty then.
    [[nodiscard]] QString takeErrors() const
    {
        QString text;
        for (const QString &host : hosts) {
            auto &errors = ::bench().find(host.toStdString())->errors();
            while (!errors.isEmpty()) {
                text += QString::fromStdString(errors.next());
            }
        }
        return text;
    }
    [[nodiscard]] int run() const { return runSeries(series, &d1_src, &d2_rf, &d3_snk, &t); }

    Line line;
    QStringList hosts;
    SeriesSettings series;
    ViSession manager = 0;
};

/// All that a series shows and leaves.
QVector<QByteArray> shown()
{
    return {bytesOf(d1_src), bytesOf(d2_rf), bytesOf(d3_snk),
            bytesOf<double>({double(NSmp), t_src, t_rf, t_snk, mS2Rf, mS2Hd, mS2Snk})};
}

} // namespace

/// The program on the bench: its delays against the truth, and a fault at every exchange.
class BenchTest : public QObject
{
    Q_OBJECT

    // It writes gigabytes: in memory, where there is such a place.
    QTemporaryDir home{(QFileInfo("/dev/shm").isWritable() ? "/dev/shm" : QDir::tempPath()) +
                       "/BenchTest-XXXXXX"};

    /// Whether a folder has the results and traces of a series of three, and nothing else.
    static bool isWhole(const QString &folder)
    {
        const QMap<QString, QByteArray> files = filesIn(folder);
        int right = 0;
        for (const QString &name : files.keys()) {
            const bool isText = name.endsWith("Results.txt");
            const auto &trace = name.contains("src")  ? d1_src
                                : name.contains("rf") ? d2_rf
                                                      : d3_snk;
            right +=
                isText ? files[name].count(' ') == 18 : files[name] == bytesOf(trace.mid(0, NSmp));
        }
        return files.size() == 10 && right == 10;
    }

private slots:
    void initTestCase()
    {
        for (const char *variable : {"XDG_RUNTIME_DIR", "TMPDIR"}) {
            qputenv(variable, QFile::encodeName(home.path()));
        }
        p_viOpenDefaultRM = viOpenDefaultRM;
        p_viOpen = viOpen;
        p_viClose = viClose;
        p_viWrite = viWrite;
        p_viRead = viRead;
        p_viReadToFile = viReadToFile;
        p_viSetAttribute = viSetAttribute;
        p_viGpibControlREN = viGpibControlREN;
    }

    /// The program's delays against the instants that only the bench's link model knows.
    void truth()
    {
        for (const auto &[type, ifOutput, analyzer, rfLate] :
             {std::tuple{1, false, "analyzer", 0.0},
              {0, true, "analyzer-qan", 0.0},
              {0, false, "analyzer-qel", 100.0}}) { // its sweep begins 0.1 s earlier
            Instruments bench(type, ifOutput, analyzer);
            bench.series.count = 1;
            t.clear();
            double sum = 0.0;
            constexpr int measurements = 200;
            for (int i = 0; i < measurements; ++i) {
                QCOMPARE(bench.run(), 0);
                const simulator::Instants &truth = ::bench().link().lastEvent().instants();
                const double rfError = mS2Rf - rfLate - (truth.rf - truth.source) * 1000;
                const double sinkError = mS2Snk - (truth.sink - truth.source) * 1000;
                sum += rfError + sinkError;
                QVERIFY(qAbs(rfError) < 0.5 && qAbs(sinkError) < 0.5);
                QVERIFY(qAbs(mS2Hd - truth.hdmiDelayMs) < 0.01);
            }
            QVERIFY(qAbs(sum / measurements) < 0.1);
            QVERIFY(t.size() / NSmp > measurements); // the retakes were seen
            QCOMPARE(bench.takeErrors(), QString());
        }
    }

    void everyFault_data()
    {
        QTest::addColumn<int>("row");
        for (int row = 0; row < 16; ++row) {
            QTest::addRow("%s%s, %s %d", row < 8 ? "KVx" : "LPA4004", row & 4 ? ", IF output" : "",
                          row % 4 == 3 ? "series" : "set-up of", row % 4)
                << row;
        }
    }

    /// A fault at every call of a set-up or a series, one at a time; then all is as without it.
    void everyFault()
    {
        QFETCH(const int, row);
        const bool isSeries = row % 4 == 3;
        Instruments bench(row / 8, row & 4);
        simulator::LinkModel events = ::bench().link();
        for (auto ahead = events; !ahead.lastEvent().isOverloaded(); ahead.trigger(0.027)) {
            events = ahead; // the next record is one to be taken again
        }
        int calls = 0;
        bool happened = false;
        const auto operate = [&](bool measure, int faulty = -1, const Fault &fault = faults[0]) {
            QString reply; // shorter records, in which an RF burst still has eight samples
            iaQueryf_s(bench.series.oscilloscope, "ACQ:POIN 4000;*OPC?\n", &reply);
            static_cast<void>(bench.takeErrors());
            bench.line.takeTranscript();
            ::bench().link() = events;
            t.clear();
            calls = 0;
            happened = false;
            bench.line.fails = [&, faulty](auto &) {
                const int late = calls++ - faulty;
                const bool befalls = faulty >= 0 && late >= 0 && late < fault.calls;
                bench.line.spoil = nullptr;
                if (befalls && fault.spoil != nullptr) {
                    bench.line.spoil = [&](auto &bytes) {
                        happened = true;
                        return fault.spoil(bytes);
                    };
                }
                happened = happened || (befalls && fault.spoil == nullptr);
                if (calls > 20000) {
                    qFatal("no end after %s at %d", fault.name, faulty);
                }
                return befalls ? fault.status : VI_SUCCESS;
            };
            const int status = measure ? bench.run() : bench.setUp(row % 4);
            bench.line.fails = [](auto &) { return VI_SUCCESS; };
            bench.line.spoil = nullptr;
            return status;
        };
        QCOMPARE(operate(true), 0);
        const QVector<QByteArray> expected = shown();
        const int samples = NSmp;
        operate(isSeries);
        const int descriptors = openDescriptors();
        const int last = calls;
        for (const Fault &fault : faults) {
            for (int call = 0; call < last; ++call) {
                const QByteArray name = QByteArray::number(call) + ' ' + fault.name;
                const QTemporaryDir results(home.path() + "/results-XXXXXX");
                bench.series.filePrefix = results.path() + '/';
                bench.series.save = isSeries;
                const int result = operate(isSeries, call, fault);
                bench.series.save = false;
                if (!happened) {
                    continue;
                }
                if (isSeries) {
                    const QStringList sent = bench.line.transcript.filter(" < ");
                    QVERIFY2(sent.filter("< RUN").size() == 1 && sent.last().contains("CONT ON"),
                             name);
                    QVERIFY2(result == 0 && isWhole(results.path()), name);
                    QVERIFY2(NSmp == d1_src.size() && NSmp <= samples, name);
                    QVERIFY2(!QFile::exists(transferFileName()), name);
                } else {
                    QVERIFY2(operate(false) == VI_SUCCESS && bench.takeErrors().isEmpty(), name);
                }
                QVERIFY2(operate(true) == 0 && shown() == expected, name);
                QVERIFY2(bench.line.open.size() == 3, name);
            }
        }
        QCOMPARE(openDescriptors(), descriptors);
    }

    /// Places for files that are full, gone or somebody else's; then there is a place again.
    void places()
    {
        Instruments bench(1, true);
        d1_src.clear();
        bench.series.save = true;
        QString transfers = QFileInfo(transferFileName()).path();
        const auto noChange = [](const QString &) {};
        const auto take = [](const QString &name) {
            return [name](const QString &results) {
                for (int seconds = 0; seconds < 60; ++seconds) {
                    const QDateTime time = QDateTime::currentDateTime().addSecs(seconds);
                    QDir(results).mkdir(time.toString("yyyy-MM-dd_hh-mm-ss_") + name);
                }
            };
        };
        const auto strange = [&](const QString &) {
            transfers = QFileInfo(transferFileName()).path();
            QDir().rmdir(transfers);
            QFile::link(home.path(), transfers);
        };
        using Change = std::function<void(const QString &results)>;
        for (const auto &[change, room, result, files] :
             std::initializer_list<std::tuple<Change, rlim_t, int, int>>{
                 {noChange, RLIM_INFINITY, 0, 10},
                 {noChange, 50, 0, 10},
                 {[](auto &results) { QDir(results).removeRecursively(); }, RLIM_INFINITY, -1, 0},
                 {take("Results.txt"), RLIM_INFINITY, -1, 0},
                 {take("002_rf.bin"), RLIM_INFINITY, 0, 9},
                 {[&](auto &) { QDir().rmdir(transfers); }, RLIM_INFINITY, 0, 10},
                 {strange, RLIM_INFINITY, 0, 10}}) {
            const QTemporaryDir results(home.path() + "/results-XXXXXX");
            bench.series.filePrefix = results.path() + '/';
            change(results.path());
            std::signal(SIGXFSZ, SIG_IGN);
            const rlimit limit{room, RLIM_INFINITY};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
            const QVector<double> before = d1_src;
            const int returned = bench.run();
            const rlimit usual{RLIM_INFINITY, RLIM_INFINITY};
            QCOMPARE(setrlimit(RLIMIT_FSIZE, &usual), 0);
            QCOMPARE(returned, result);
            QCOMPARE(QDir(results.path()).entryList(QDir::Files).size(), files);
            QCOMPARE(bytesOf(d1_src) == bytesOf(before), room == 50);
        }
        QVERIFY(QFileInfo(transferFileName()).path() != transfers); // the last one's
    }
};

QTEST_GUILESS_MAIN(BenchTest)
#include "BenchTest.moc"
