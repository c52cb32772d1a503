#include "BoundBench.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"

#include <QtTest>

#include <cmath>

QString visaLibraryPath()
{
    return {}; // the bench is linked, and bound by hand
}

/// The program's delays against the instants that only the bench's link model knows.
class BenchTruthTest : public QObject
{
    Q_OBJECT

    static void measure(int type, bool ifDemodulation, const char *spectrumAnalyzer, double rfLate)
    {
        BenchInstruments bench(type, ifDemodulation, spectrumAnalyzer);
        QVERIFY(bench.setUpAll());
        QCOMPARE(bench.takeErrors(), QString()); // every command was known
        SeriesSettings &series = bench.series;
        series.measureHdmi = true;
        series.count = 1;

        constexpr int measurements = 200;
        t.clear();
        double rfSum = 0.0;
        double sinkSum = 0.0;
        for (int i = 0; i < measurements; ++i) {
            QCOMPARE(runSeries(series, &d1_src, &d2_rf, &d3_snk, &t), 0);
            const simulator::Instants &truth = simulator::bench().link().lastEvent().instants();
            const double rfError = mS2Rf - rfLate - (truth.rf - truth.source) * 1000;
            const double sinkError = mS2Snk - (truth.sink - truth.source) * 1000;
            QVERIFY2(std::abs(rfError) < 0.5, qPrintable(QString::number(rfError)));
            QVERIFY2(std::abs(sinkError) < 0.5, qPrintable(QString::number(sinkError)));
            QVERIFY(std::abs(mS2Hd - truth.hdmiDelayMs) < 0.01);
            rfSum += rfError;
            sinkSum += sinkError;
        }
        QCOMPARE(bench.takeErrors(), QString());
        QVERIFY(std::abs(rfSum / measurements) < 0.1);
        QVERIFY(std::abs(sinkSum / measurements) < 0.1);
        QVERIFY(t.size() / NSmp > measurements); // the retakes were seen
    }

private slots:
    void initTestCase() { bindBench(); }

    void lpa4004() { measure(1, false, "spectrum-analyzer", 0.0); }

    void kvxFromItsThirdChannel() { measure(0, true, "spectrum-analyzer-qan", 0.0); }

    /// This analyzer's sweep begins 0.1 s before the record that the program takes it for.
    void kvxFromTheAnalyzersTrace() { measure(0, false, "spectrum-analyzer-qel", 100.0); }
};

QTEST_GUILESS_MAIN(BenchTruthTest)
#include "BenchTruthTest.moc"
