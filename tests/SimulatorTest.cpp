#include "simulator/Bench.h"
#include "TestFiles.h"

#include <QtTest>

#include <algorithm>

using namespace simulator;

namespace {

/// Asks an instrument.
QByteArray ask(const Bench &bench, const char *host, const QByteArray &message)
{
    return QByteArray::fromStdString(bench.find(host)->instrument->execute(message.toStdString()))
        .trimmed();
}

QVector<float> trace(const Bench &bench, const char *host, const char *query)
{
    const QByteArray block = ask(bench, host, QByteArray(":FORM REAL,32;:") + query);
    return floatsOf(block.mid(2 + block.mid(1, 1).toInt()));
}

float least(const QVector<float> &samples)
{
    return *std::min_element(samples.begin(), samples.end());
}

float greatest(const QVector<float> &samples)
{
    return *std::max_element(samples.begin(), samples.end());
}

const QByteArray tuned = "FREQ:CENT 5.192GHz;:TRIG1:SOUR EXT;HOLD -0.6;:SWE:TIME 1.2;";

} // namespace

/// The laboratory without VISA.
class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void messages_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("expected"); // the answer, and the first error that is left
        const char *const lpa = "scope";
        const char *const kvx = "scope-kvx";
        const char *const spa = "analyzer";
        const char *const qan = "analyzer-qan";
        const char *const video = "video";
        using Exchange = std::tuple<const char *, const char *, const char *>;
        for (const auto &[host, message, expected] : std::initializer_list<Exchange>{
                 {lpa, "chan:scal .05;POSITION -3;:channel1:scale?;pos?", "0.05;-3 / 0"},
                 {lpa, "CHAN4:SCAL 0.5;:CHAN2:SCAL?;:CHAN4:SCAL?", "0.2;0.5 / 0"},
                 {lpa, "CHAN1:RANG 0.5;SCAL?;RANG? MAX;:TIM:RANG?", "0.05;100;1.2 / 0"},
                 {lpa, "FOO;*OPC?", "1 / -113"},
                 {lpa, "CHAN5:SCAL 1", " / -114"},
                 {lpa, "CHAN1:SCAL nan;SCAL?", "0.2 / -104"},
                 {lpa, "CHAN1:SCAL:;:CHAN1:STAT 2;STAT?", "1 / -113"},
                 {lpa, "FORM REAL,32;FORM?;*RST;FORM?", "REAL,32;ASC,0 / 0"},
                 {lpa, "STOP;*TRG", " / -211"},
                 {lpa, "CHAN2:DATA?;*OPC?", "1 / -221"},
                 {lpa, "*CLS;'a;b';SYST:ERR?;SYST:ERR?",
                  R"(-113,"Undefined header";0,"No error" / 0)"},
                 {lpa, "*ESR?;FOO;TIM:REF 101;*OPC;*ESR?;*ESR?;*CLS", "128;49;0 / 0"},
                 {lpa, "*CLS;*ESE 32;*SRE 36;*STB?;FOO;*STB?;*RST;*ESE?;*SRE?;*CLS;*STB?",
                  "0;116;32;36;16 / 0"},
                 {kvx, "TIM:RANG 2s;TIM:SCAL?;:ACQ:POIN 1999.6;POIN?", "0.2;2000 / 0"},
                 {kvx, "TRIG2:LEV3 1;LEV3?;LEV4?;:TRIG3:LEV3?", "1;0.027;0.027 / 0"},
                 {kvx, "INIT:CONT?;CONT OFF;CONT?;*TRG;:INIT:CONT?;:RUNC;INIT:CONT?",
                  "1;0;0;1 / 0"},
                 {spa, "FREQ:MODE SW", " / -113"},
                 {spa, "FREQ:CENT 5192 MHZ;CENT?;CENT 5.192GHZ;CENT?", "5192000000;5192000000 / 0"},
                 {spa, "SWE:POIN 101;:TRAC? TRACE1,0", " / -222"},
                 {spa, "SWE:POIN 101;:TRAC? TRACE1,102", " / -222"},
                 {qan, "FREQ:MODE SW;MODE?;:OUTP:IF VID;:OUTP1:IF:SOUR?", "SW;VID / 0"},
                 {video, "READ:AVDA:TTV:STAT?;VAL?", "0 / -230"},
                 {video, "INIT:AVDA;READ:AVDA:TTV:STAT?;COUN?;VAL?;*RST;STAT?;*TRG",
                  "1;0;0 / -230"}}) {
            QTest::addRow("%s: %s", host, message)
                << QByteArray(host) << QByteArray(message) << QByteArray(expected);
        }
    }

    void messages()
    {
        QFETCH(const QByteArray, host);
        QFETCH(const QByteArray, message);
        const Bench bench;
        const QByteArray outcome = ask(bench, host, message) + " / ";
        QTEST(outcome + ask(bench, host, "SYST:ERR?").split(',')[0], "expected");
    }

    /// As much as queues hold, and more.
    void limits()
    {
        const Bench bench;
        ask(bench, "scope-kvx", "ACQ:POIN MAX;:FORM REAL,32"); // 2,000,009 bytes each
        QByteArray records = QByteArray(":CHAN1:DATA?;").repeated(16);
        QVERIFY(bench.find("scope-kvx")->instrument->execute(records.toStdString()).size() >
                32000000);
        records += ":CHAN1:DATA?";
        QCOMPARE(ask(bench, "scope-kvx", records), QByteArray());
        QVERIFY(ask(bench, "scope-kvx", "SYST:ERR?").startsWith("-430,"));

        for (const int errors : {30, 31}) {
            ask(bench, "scope", QByteArray("FOO;").repeated(errors));
            const QByteArray all = ask(bench, "scope", QByteArray(":SYST:ERR?;").repeated(31));
            QCOMPARE(all.count("-113,"), errors == 30 ? 30 : 29);
            QCOMPARE(all.count("-350,"), errors - 30);
            QVERIFY(all.endsWith(";0,\"No error\""));
        }
    }

    void formatsCarryTheSameRecord()
    {
        const Bench bench;
        ask(bench, "scope-kvx", "ACQ:POIN 1000;*TRG");
        const auto texts = ask(bench, "scope-kvx", "CHAN1:DATA?").split(',');
        const QByteArray block = ask(bench, "scope-kvx", "FORM REAL,32;:CHAN1:DATA?");
        QVERIFY(block.startsWith("#44000"));
        const auto values = floatsOf(block.mid(6));
        QVERIFY(texts.size() == 1000 && values.size() == 1000);
        for (int k = 0; k < 1000; ++k) {
            QCOMPARE(texts[k].toFloat(), values[k]);
        }
    }

    void everyInstrumentTellsTheTruth()
    {
        Bench bench;
        ask(bench, "video", "INIT:AVDA");
        const auto instants = [&] { return bench.link().lastEvent().instants(); };
        for (const auto &[settings, events] :
             std::initializer_list<std::pair<const char *, const char *>>{
                 {"", "1"},
                 {"TRIG:A:LEV1 0.005", "1"}, // nothing triggers beyond the step
                 {"TRIG:A:LEV1 0.15", "1"},
                 {"TRIG:A:EDGE:SLOP NEG", "1"},
                 {"TRIG:A:SOUR EXT", "1"},
                 {"TRIG:A:ENAB OFF", "1"},
                 {"TRIG:A:LEV1 0.1;:CHAN2:STAT ON", "2"}}) {
            ask(bench, "scope", "*RST;" + QByteArray(settings) + ";*TRG");
            QVERIFY2(ask(bench, "video", "READ:AVDA:TTV:COUN?") == events, settings);
            const float source = greatest(trace(bench, "scope", "CHAN1:DATA?"));
            QVERIFY2((source > 0.1F) == (qstrlen(settings) == 0 || *events == '2'), settings);
        }
        const auto truth = ask(bench, "analyzer-qel", "BENCh:EVENt?").split(',');
        QCOMPARE(truth.size(), 6);
        QCOMPARE(truth[0].toInt(), 2);
        QCOMPARE(truth[1].toDouble(), instants().source);
        QCOMPARE(truth[2].toDouble(), 1000 * (instants().rf - instants().source));
        QCOMPARE(truth[3].toDouble(), instants().hdmiDelayMs);
        QCOMPARE(truth[4].toDouble(), 1000 * (instants().sink - instants().source));
        QCOMPARE(ask(bench, "video", "READ:AVDA:TTV:VAL?"), truth[3]);
        ask(bench, "video", "INIT:AVDA;READ:AVDA:TTV:VAL?");
        QVERIFY(ask(bench, "video", "SYST:ERR?").startsWith("-230,"));
    }

    /// An oscilloscope's record is its own, and STOP keeps it.
    void recordsStay()
    {
        const Bench bench;
        ask(bench, "scope", "SING;*TRG");
        const auto record = trace(bench, "scope", "CHAN1:DATA?");
        ask(bench, "scope", "STOP;*TRG");
        ask(bench, "scope-kvx", "*TRG");
        QCOMPARE(trace(bench, "scope", "CHAN1:DATA?"), record);
        ask(bench, "scope", "SING;*TRG");
        QVERIFY(trace(bench, "scope", "CHAN1:DATA?") != record);
        QCOMPARE(bench.find("scope")->instrument->takeDuration(), 1.2);
        QCOMPARE(bench.find("scope")->instrument->takeDuration(), 0.0);
    }

    void analyzersHearTheirFrequency_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<bool>("isHeard");
        QTest::newRow("on it") << QByteArray("BWID 1e6") << true;
        QTest::newRow("within the bandwidth") << QByteArray("BWID 50e6;:FREQ:CENT 5.226e9") << true;
        QTest::newRow("beside it") << QByteArray("BWID 50e6;:FREQ:CENT 5.228e9") << false;
        QTest::newRow("below it") << QByteArray("BWID 50e6;:FREQ:CENT 5.156e9") << false;
        QTest::newRow("elsewhere") << QByteArray("FREQ:CENT 2.437e9") << false;
    }

    void analyzersHearTheirFrequency()
    {
        QFETCH(const QByteArray, settings);
        QFETCH(const bool, isHeard);
        const Bench bench;
        ask(bench, "analyzer", tuned + "OUTP:IF VID;:" + settings);
        ask(bench, "scope", "*TRG");
        QCOMPARE(greatest(trace(bench, "analyzer", "TRAC? TRACE1")) > -30.0F, isHeard);
        const auto video = trace(bench, "scope", "CHAN3:DATA?");
        QCOMPARE(greatest(video) > 0.7F, isHeard);
        QVERIFY(least(video) > 0.2F); // 10 mV per dB: the floor is at 0.25 V
        ask(bench, "analyzer", "OUTP:IF IF;IFFR 1kHz");
        const auto carrier = trace(bench, "scope", "CHAN3:DATA?");
        QCOMPARE(greatest(carrier) > 0.5F, isHeard);
        QCOMPARE(least(carrier) < -0.5F, isHeard);
    }

    void sweepsThatNothingTriggers()
    {
        const Bench bench;
        ask(bench, "analyzer", "FREQ:CENT 5.192e9");
        const auto sweep = [&] { return trace(bench, "analyzer", "TRAC? TRACE1"); };
        QVERIFY(sweep() != sweep());
        QCOMPARE(greatest(sweep()) > -50.0F, true); // beacons
        ask(bench, "analyzer", "INIT:CONT OFF;:INIT");
        const auto single = sweep();
        QCOMPARE(sweep(), single);
        QCOMPARE(trace(bench, "analyzer", "TRAC? TRACE1, 200"), single.mid(0, 200));
        ask(bench, "analyzer", "*TRG");
        QVERIFY(sweep() != single);
    }
};

QTEST_GUILESS_MAIN(SimulatorTest)
#include "SimulatorTest.moc"
