#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"
#include "measurement/MeasurementRun.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "simulator/Laboratory.h"
#include "simulator/VisaFunctions.h"

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

    static void measure(int type, bool ifDemodulation, const QString &oscilloscope,
                        const QString &spectrumAnalyzer, double rfLate)
    {
        const auto resource = [](const QString &host) { return "TCPIP0::" + host + "::INSTR"; };

        ViSession manager = 0;
        iaOpenDefaultRM(&manager);
        SeriesSettings series;
        QCOMPARE(setUpOscilloscope(manager,
                                   {resource(oscilloscope), true, type, 0.027, ifDemodulation},
                                   &series.oscilloscope),
                 VI_SUCCESS);
        QCOMPARE(setUpSpectrumAnalyzer(manager, {resource(spectrumAnalyzer), 5.192e9, type},
                                       &series.spectrumAnalyzer),
                 VI_SUCCESS);
        QCOMPARE(setUpVideoAnalyzer(manager, {resource("video-analyzer"), true, 35},
                                    series.spectrumAnalyzer, &series.videoAnalyzer),
                 VI_SUCCESS);
        const auto everyCommandWasKnown = [&] {
            for (const QString &host :
                 {oscilloscope, spectrumAnalyzer, QString("video-analyzer")}) {
                simulator::ErrorQueue &errors =
                    simulator::bench().find(host.toStdString())->errors();
                QVERIFY2(errors.isEmpty(), (host.toStdString() + ": " + errors.next()).c_str());
            }
        };
        everyCommandWasKnown();
        series.oscilloscopeType = type;
        series.rfFromOscilloscope = ifDemodulation;
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
        everyCommandWasKnown();
        QVERIFY(std::abs(rfSum / measurements) < 0.1);
        QVERIFY(std::abs(sinkSum / measurements) < 0.1);
        QVERIFY(t.size() / NSmp > measurements); // the retakes were seen
    }

private slots:
    void initTestCase()
    {
        p_viOpenDefaultRM = viOpenDefaultRM;
        p_viOpen = viOpen;
        p_viWrite = viWrite;
        p_viRead = viRead;
        p_viReadToFile = viReadToFile;
        p_viSetAttribute = viSetAttribute;
        p_viGpibControlREN = viGpibControlREN;
    }

    void lpa4004() { measure(1, false, "oscilloscope", "spectrum-analyzer", 0.0); }

    void kvxFromItsThirdChannel()
    {
        measure(0, true, "oscilloscope-kvx", "spectrum-analyzer-qan", 0.0);
    }

    /// This analyzer's sweep begins 0.1 s before the record that the program takes it for.
    void kvxFromTheAnalyzersTrace()
    {
        measure(0, false, "oscilloscope-kvx", "spectrum-analyzer-qel", 100.0);
    }
};

QTEST_GUILESS_MAIN(BenchTruthTest)
#include "BenchTruthTest.moc"
