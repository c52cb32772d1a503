#include "analysis/Series.h"
#include "CallRecorder.h"
#include "instrument/InstrumentIo.h"
#include "measurement/MeasurementRun.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "simulator/InProcessBackend.h"
#include "visa/VisaFunctions.h"

#include <QtTest>

#include <csignal>
#include <sys/resource.h>

Q_DECLARE_METATYPE(OscilloscopeType)

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

    /// Returns the errors in the instruments' queues, and empties these.
    QString takeErrors()
    {
        QString text;
        for (const QString &host : qAsConst(hosts)) {
            auto &instrument = *::bench().find(host.toStdString())->instrument;
            std::string error = instrument.execute("SYST:ERR?");
            while (error != "0,\"No error\"\n") {
                text += QString::fromStdString(error);
                error = instrument.execute("SYST:ERR?");
            }
        }
        return text;
    }
    /// Have the next series take three measurements and save them.
    void saveThree(const QString &filePrefix)
    {
        series.count = 3;
        series.save = true;
        series.filePrefix = filePrefix;
    }
    int run() { return runSeries(series, &record, &results); }

    CallRecorder recorder;
    QStringList hosts;
    SeriesSettings series;
    Record record;
    SeriesResults results;
    ViSession manager = 0;
};

} // namespace

/// The program measures series on the bench: its delays against the truth, and its files.
class SeriesOnBenchTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        p_viOpenDefaultRM = viOpenDefaultRM;
        entryPoints() = std::make_tuple(viOpen, viClose, viSetAttribute, viGpibControlREN, viWrite,
                                        viRead, viReadToFile);
    }

    void truth_data()
    {
        QTest::addColumn<QString>("analyzer");
        QTest::addColumn<OscilloscopeType>("oscilloscope");
        QTest::addColumn<bool>("ifOutput");
        QTest::addColumn<double>("early"); // ms
        QTest::newRow("LPA4004") << "analyzer" << OscilloscopeType::Lpa4004 << false << 0.0;
        QTest::newRow("KVx, IF output") << "analyzer-qan" << OscilloscopeType::Kvx << true << 0.0;
        QTest::newRow("KVx, sweep") << "analyzer-qel" << OscilloscopeType::Kvx << false << 100.0;
    }

    /// The program's delays agree with the instants of the bench's radio link, also after a series
    /// in which one call timed out or the connection was lost for 100 calls. A KVx record starts
    /// 100 ms after the analyzer's sweep, so its RF delays are `early` ms too long. A saved series
    /// is read as it was measured.
    void truth()
    {
        QFETCH(const QString, analyzer);
        QFETCH(const OscilloscopeType, oscilloscope);
        QFETCH(const bool, ifOutput);
        QFETCH(const double, early);
        Instruments bench(oscilloscope, ifOutput, analyzer);
        const auto openFiles = [] {
            return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
        };
        const int before = openFiles();
        double sum = 0.0;
        for (int i = 0; i < 200; ++i) {
            const bool isLost = i >= 100;
            const int first = i % 100;
            const int last = isLost ? first + 99 : first;
            bench.recorder.faultOf = [=, call = 0](auto &) mutable {
                const bool isFault = call >= first && call <= last;
                ++call;
                const ViStatus fault = isLost ? VI_ERROR_CONN_LOST : VI_ERROR_TMO;
                return isFault ? fault : VI_SUCCESS;
            };
            QCOMPARE(bench.run(), 0);
            bench.recorder.faultOf = [](auto &) { return VI_SUCCESS; };
            QCOMPARE(bench.run(), 0);
            const simulator::TrueInstants &truth = ::bench().radioLink().lastEvent().instants();
            const double rfError =
                bench.results[SourceToRf].mean - early - (truth.rf - truth.source) * 1000;
            const double sinkError =
                bench.results[SourceToSink].mean - (truth.sink - truth.source) * 1000;
            sum += rfError + sinkError;
            QVERIFY(qAbs(rfError) < 0.5);
            QVERIFY(qAbs(sinkError) < 0.5);
            QVERIFY(qAbs(bench.results[SourceToHdmi].mean - truth.hdmiDelayMs) < 0.01);
        }
        QVERIFY(qAbs(sum) < 0.1 * 200);
        bench.takeErrors(); // of the faults
        const QTemporaryDir folder;
        bench.saveThree(folder.filePath("data"));
        QCOMPARE(bench.run(), 0);
        QCOMPARE(bench.takeErrors(), QString());
        QCOMPARE(openFiles(), before);

        const Series series = loadSeries({folder.path()}).series.value(0);
        QVERIFY(series.oscilloscope.type == oscilloscope);
        QCOMPARE(series.oscilloscope.instants.sink, bench.record.instants.sink);
        QCOMPARE(series.samples, bench.record.samples);
        QCOMPARE(flaggedCount(series), 0);
    }

    void filesThatCannotBeWritten_data()
    {
        QTest::addColumn<int>("room"); // bytes in a file
        QTest::addColumn<QString>("prefix");
        QTest::addColumn<int>("result");
        QTest::addColumn<int>("files");
        QTest::newRow("no room for the results") << 50 << "data" << -1 << 0;
        QTest::newRow("no room for traces") << 60000 << "data" << 0 << 1;
        QTest::newRow("no folder") << INT_MAX << "none/data" << -1 << 0;
    }

    /// Where a file finds no room or no folder, nothing is left of it.
    void filesThatCannotBeWritten()
    {
        QFETCH(const int, room);
        QFETCH(const QString, prefix);
        const QTemporaryDir folder;
        Instruments bench(OscilloscopeType::Lpa4004, true, "analyzer");
        bench.saveThree(folder.filePath(prefix));
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{rlim_t(room), RLIM_INFINITY};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
        const int result = bench.run();
        const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &unlimited), 0);
        QTEST(result, "result");
        QTEST(QDir(folder.path()).entryList(QDir::Files).size(), "files");
    }
};

QTEST_GUILESS_MAIN(SeriesOnBenchTest)
#include "SeriesOnBenchTest.moc"
