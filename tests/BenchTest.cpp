#include "bench/InProcessBackend.h"
#include "instrument/InstrumentIo.h"
#include "Line.h"
#include "measurement/MeasurementRun.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "visa/VisaFunctions.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

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
    Instruments(OscilloscopeType type, bool ifOutput, const char *analyzer = "analyzer-qan")
        : hosts{type == OscilloscopeType::Kvx ? "scope-kvx" : "scope", analyzer, "video"}
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
        const OscilloscopeType type = series.oscilloscopeType;
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
    [[nodiscard]] int run() { return runSeries(series, &record, &results); }
    /// All that a series shows and leaves.
    [[nodiscard]] QVector<QByteArray> shown() const
    {
        const Instants &at = record.instants;
        return {bytesOf(record.source), bytesOf(record.rf), bytesOf(record.sink),
                bytesOf<double>({double(record.samples), at.source, at.rf, at.sink,
                                 results.sourceToRf.mean, results.sourceToHdmi.mean,
                                 results.sourceToSink.mean})};
    }
    /// Whether a folder has the results and traces of a series of three, and nothing else.
    [[nodiscard]] bool isWhole(const QString &folder) const
    {
        const QMap<QString, QByteArray> files = filesIn(folder);
        int right = 0;
        for (const QString &name : files.keys()) {
            const bool isText = name.endsWith("Results.txt");
            const auto &trace = name.contains("src")  ? record.source
                                : name.contains("rf") ? record.rf
                                                      : record.sink;
            right += isText ? files[name].count(' ') == 18
                            : files[name] == bytesOf(trace.mid(0, record.samples));
        }
        return files.size() == 10 && right == 10;
    }

    Line line;
    QStringList hosts;
    SeriesSettings series;
    Record record;
    SeriesResults results;
    ViSession manager = 0;
};

} // namespace

/// The program on the bench: its delays against the truth, and a fault at every exchange.
class BenchTest : public QObject
{
    Q_OBJECT

    // It writes gigabytes: in memory, where there is such a place.
    QTemporaryDir home{(QFileInfo("/dev/shm").isWritable() ? "/dev/shm" : QDir::tempPath()) +
                       "/BenchTest-XXXXXX"};

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
             {std::tuple{OscilloscopeType::Lpa4004, false, "analyzer", 0.0},
              {OscilloscopeType::Kvx, true, "analyzer-qan", 0.0},
              {OscilloscopeType::Kvx, false, "analyzer-qel",
               100.0}}) { // its sweep begins 0.1 s earlier
            Instruments bench(type, ifOutput, analyzer);
            bench.series.count = 1;
            double sum = 0.0;
            constexpr int measurements = 200;
            for (int i = 0; i < measurements; ++i) {
                QCOMPARE(bench.run(), 0);
                const simulator::Instants &truth = ::bench().link().lastEvent().instants();
                const double rfError =
                    bench.results.sourceToRf.mean - rfLate - (truth.rf - truth.source) * 1000;
                const double sinkError =
                    bench.results.sourceToSink.mean - (truth.sink - truth.source) * 1000;
                sum += rfError + sinkError;
                QVERIFY(qAbs(rfError) < 0.5 && qAbs(sinkError) < 0.5);
                QVERIFY(qAbs(bench.results.sourceToHdmi.mean - truth.hdmiDelayMs) < 0.01);
            }
            QVERIFY(qAbs(sum / measurements) < 0.1);
            QVERIFY(bench.record.time.size() / bench.record.samples >
                    measurements); // the retakes were seen
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
        Instruments bench(row < 8 ? OscilloscopeType::Kvx : OscilloscopeType::Lpa4004, row & 4);
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
            bench.record.time.clear();
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
        const QVector<QByteArray> expected = bench.shown();
        const int samples = bench.record.samples;
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
                    QVERIFY2(result == 0 && bench.isWhole(results.path()), name);
                    QVERIFY2(bench.record.samples == bench.record.source.size() &&
                                 bench.record.samples <= samples,
                             name);
                } else {
                    QVERIFY2(operate(false) == VI_SUCCESS && bench.takeErrors().isEmpty(), name);
                }
                QVERIFY2(operate(true) == 0 && bench.shown() == expected, name);
                QVERIFY2(bench.line.open.size() == 3, name);
            }
        }
        QCOMPARE(openDescriptors(), descriptors);
    }

    void places_data()
    {
        QTest::addColumn<QString>("taken"); // by folders of this name
        QTest::addColumn<int>("room");      // bytes in a file
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("files");
        QTest::newRow("usual") << "" << INT_MAX << 0 << 10;
        QTest::newRow("no room for the results") << "" << 50 << -1 << 0;
        QTest::newRow("no room for traces") << "" << 60000 << 0 << 1;
        QTest::newRow("no results") << "Results.txt" << INT_MAX << -1 << 0;
        QTest::newRow("one trace less") << "002_rf.bin" << INT_MAX << 0 << 9;
    }

    /// Places for files that are full or somebody else's.
    void places()
    {
        QFETCH(const QString, taken);
        QFETCH(const int, room);
        Instruments bench(OscilloscopeType::Lpa4004, true);
        const QTemporaryDir results(home.path() + "/results-XXXXXX");
        bench.series.save = true;
        bench.series.filePrefix = results.path() + '/';
        for (int seconds = 0; seconds < 60 && !taken.isEmpty(); ++seconds) {
            const QDateTime time = QDateTime::currentDateTime().addSecs(seconds);
            QDir(results.path()).mkdir(time.toString("yyyy-MM-dd_hh-mm-ss_") + taken);
        }
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{rlim_t(room), RLIM_INFINITY};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const int returned = bench.run();
        const rlimit usual{RLIM_INFINITY, RLIM_INFINITY};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &usual), 0);
        QTEST(returned, "result");
        QTEST(QDir(results.path()).entryList(QDir::Files).size(), "files");
    }
};

QTEST_GUILESS_MAIN(BenchTest)
#include "BenchTest.moc"
