#include "analysis/Series.h"
#include "analysis/SeriesFiles.h"
#include "instrument/InstrumentIo.h"
#include "Line.h"
#include "measurement/MeasurementRun.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "simulator/server/InProcessBackend.h"
#include "visa/VisaFunctions.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

namespace {

/// The instruments of a series on the bench, set up.
struct Instruments
{
    Instruments(OscilloscopeType type, bool ifOutput, const QString &analyzer)
        : hosts{type == OscilloscopeType::Kvx ? "scope-kvx" : "scope", analyzer, "video"}
    {
        series = {0, 0, 0, type, ifOutput, true, 1, false, {}};
        const auto resource = [&](int i) { return "TCPIP0::" + hosts[i] + "::INSTR"; };
        iaOpenDefaultRM(&manager);
        if (setUpOscilloscope(manager, {resource(0), true, type, 0.027, ifOutput},
                              &series.oscilloscope) != VI_SUCCESS ||
            setUpSpectrumAnalyzer(manager, {resource(1), 5.192e9, type},
                                  &series.spectrumAnalyzer) != VI_SUCCESS ||
            setUpVideoAnalyzer(manager, {resource(2), true, 35}, series.spectrumAnalyzer,
                               &series.videoAnalyzer) != VI_SUCCESS ||
            !takeErrors().isEmpty()) {
            qFatal("the instruments cannot be set up");
        }
    }
    ~Instruments() { iaClose(manager); }

    /// What the instruments complain of, by their error queues, which are empty then.
    QString takeErrors()
    {
        QString text;
        for (const QString &host : qAsConst(hosts)) {
            auto &errors = ::bench().find(host.toStdString())->instrument->errors();
            while (!errors.isEmpty()) {
                text += QString::fromStdString(errors.next());
            }
        }
        return text;
    }
    int run() { return runSeries(series, &record, &results); }

    Line line;
    QStringList hosts;
    SeriesSettings series;
    Record record;
    SeriesResults results;
    ViSession manager = 0;
};

} // namespace

/// The program on the bench: its delays against the truth, and places for its files.
class BenchTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        p_viOpenDefaultRM = viOpenDefaultRM;
        p_viOpen = viOpen;
        p_viClose = viClose;
        p_viWrite = viWrite;
        p_viRead = viRead;
        p_viReadToFile = viReadToFile;
        p_viSetAttribute = viSetAttribute;
        p_viGpibControlREN = viGpibControlREN;
    }

    void truth_data()
    {
        QTest::addColumn<double>("rfLate"); // ms
        QTest::newRow("analyzer") << 0.0;
        QTest::newRow("analyzer-qan") << 0.0;
        QTest::newRow("analyzer-qel") << 100.0; // its sweep begins 0.1 s earlier than a record
    }

    /// The program's delays against the instants that only the bench's radio link knows. Each time
    /// after a series in which a call timed out, or the connection was lost for a while.
    void truth()
    {
        QFETCH(const double, rfLate);
        const QString analyzer = QTest::currentDataTag();
        Instruments bench(analyzer == "analyzer" ? OscilloscopeType::Lpa4004
                                                 : OscilloscopeType::Kvx,
                          analyzer.endsWith("qan"), analyzer);
        const auto openFiles = [] {
            return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
        };
        const int before = openFiles();
        double sum = 0.0;
        constexpr int measurements = 200;
        for (int i = 0; i < measurements; ++i) {
            bench.line.fails = [isShort = i % 2 == 0, call = -i / 2](auto &) mutable {
                const bool befalls = call >= 0 && call < (isShort ? 1 : 100);
                ++call;
                return !befalls ? VI_SUCCESS : isShort ? VI_ERROR_TMO : VI_ERROR_CONN_LOST;
            };
            QCOMPARE(bench.run(), 0);
            bench.line.fails = [](auto &) { return VI_SUCCESS; };
            QCOMPARE(bench.run(), 0);
            const simulator::TrueInstants &truth = ::bench().radioLink().lastEvent().instants();
            const double rfError =
                bench.results[SourceToRf].mean - rfLate - (truth.rf - truth.source) * 1000;
            const double sinkError =
                bench.results[SourceToSink].mean - (truth.sink - truth.source) * 1000;
            sum += rfError + sinkError;
            QVERIFY(qAbs(rfError) < 0.5 && qAbs(sinkError) < 0.5);
            QVERIFY(qAbs(bench.results[SourceToHdmi].mean - truth.hdmiDelayMs) < 0.01);
        }
        QVERIFY(qAbs(sum / measurements) < 0.1);
        bench.takeErrors(); // that the faults left
        QVERIFY(bench.run() == 0 && bench.takeErrors().isEmpty());
        QCOMPARE(openFiles(), before);
    }

    void savedSeries_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("KVx") << int(OscilloscopeType::Kvx);
        QTest::newRow("LPA4004") << int(OscilloscopeType::Lpa4004);
    }

    /// A saved series tells of which oscilloscope it is, and comes back as it was measured.
    void savedSeries()
    {
        QFETCH(const int, type);
        const QTemporaryDir folder;
        Instruments bench(OscilloscopeType(type), false, "analyzer");
        bench.series.count = 3;
        bench.series.save = true;
        bench.series.filePrefix = folder.filePath("data");
        QCOMPARE(bench.run(), 0);
        Series series;
        QString reason;
        QVERIFY(openSeries(seriesIn(folder.path()).value(0), &series, &reason));
        QVERIFY(series.oscilloscope.type == OscilloscopeType(type));
        QCOMPARE(series.oscilloscope.instants.sink, bench.record.instants.sink);
        QCOMPARE(series.samples, bench.record.samples);
        QCOMPARE(flaggedCount(series), 0);
        for (const DelayKind kind : delayKinds) {
            for (int i = 0; i < 3; ++i) {
                const double value = bench.results[kind].values[i];
                QVERIFY(qAbs(series.results[kind].values[i] - value) <= 5e-6 * value);
            }
        }
    }

    void places_data()
    {
        QTest::addColumn<int>("room"); // bytes in a file
        QTest::addColumn<QString>("folder");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("files");
        QTest::newRow("usual") << INT_MAX << "/" << 0 << 10;
        QTest::newRow("no room for the results") << 50 << "/" << -1 << 0;
        QTest::newRow("no room for traces") << 60000 << "/" << 0 << 1;
        QTest::newRow("no folder") << INT_MAX << "/none/" << -1 << 0;
    }

    /// Places for the files of a series that are full, or are not there.
    void places()
    {
        QFETCH(const int, room);
        QFETCH(const QString, folder);
        Instruments bench(OscilloscopeType::Lpa4004, true, "analyzer");
        const QTemporaryDir results;
        const QTemporaryDir other;
        bench.series.count = 3;
        bench.series.save = true;
        bench.series.filePrefix = results.path() + folder;
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{rlim_t(room), RLIM_INFINITY};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const int returned = bench.run();
        SeriesResults many; // more than is written at once
        many[SourceToRf].values.fill(1.5, 20000);
        const bool isWhole = writeResults(other.filePath("many"), many);
        const rlimit usual{RLIM_INFINITY, RLIM_INFINITY};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &usual), 0);
        QCOMPARE(isWhole, room == INT_MAX);
        QCOMPARE(QDir(other.path()).isEmpty(), room != INT_MAX);
        QTEST(returned, "result");
        QTEST(QDir(results.path()).entryList(QDir::Files).size(), "files");
    }
};

QTEST_GUILESS_MAIN(BenchTest)
#include "BenchTest.moc"
