#include "simulator/Bench.h"

#include <QtTest>

#include <algorithm>
#include <cstring>

using namespace simulator;

namespace {

/// Execute a message and return the answer.
QByteArray ask(const Bench &bench, const QByteArray &host, const QByteArray &message)
{
    Instrument *instrument = bench.find(host.toStdString())->instrument.get();
    return QByteArray::fromStdString(instrument->execute(message.toStdString())).trimmed();
}

/// Ask for a trace in binary and return its samples.
QVector<float> trace(const Bench &bench, const QByteArray &host, const QByteArray &query)
{
    const QByteArray block = ask(bench, host, ":FORM REAL,32;:" + query);
    const QByteArray bytes = block.mid(2 + block.mid(1, 1).toInt());
    QVector<float> samples(bytes.size() / int(sizeof(float)));
    std::memcpy(samples.data(), bytes.constData(), sizeof(float) * std::size_t(samples.size()));
    return samples;
}

float maximum(const QVector<float> &samples)
{
    return *std::max_element(samples.begin(), samples.end());
}

} // namespace

/// The instruments of the bench and the radio link, without VISA or a network.
class SimulatorTest : public QObject
{
    Q_OBJECT

private slots:
    void messages_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QByteArray>("error"); // the first in the queue
        const QByteArray noEvent = R"(-230,"Data corrupt or stale")";
        const QByteArray outOfRange = R"(-222,"Data out of range")";
        const auto row = [](const char *name, const QByteArray &host, const QByteArray &message,
                            const QByteArray &answer, const QByteArray &error = R"(0,"No error")") {
            QTest::newRow(name) << host << message << answer << error;
        };
        row("forms and paths", "scope", "chan:scal .05;POSITION -3;:channel1:scale?;pos?",
            "0.05;-3");
        row("whole screen", "scope", "CHAN1:RANG 0.5;SCAL?", "0.05");
        row("mega, not milli", "analyzer", "FREQ:CENT 5192 MHZ;CENT?", "5192000000");
        row("rounding", "scope-kvx", "ACQ:POIN 1999.6;POIN?", "2000");
        row("two suffixes", "scope-kvx", "TRIG2:LEV3 1;LEV3?;LEV4?;:TRIG3:LEV3?", "1;0.027;0.027");
        row("unknown header", "scope", "FOO;*OPC?", "1", R"(-113,"Undefined header")");
        row("colon at the end", "scope", "CHAN1:SCAL:", "", R"(-113,"Undefined header")");
        row("fifth channel", "scope", "CHAN5:SCAL 1", "", R"(-114,"Header suffix out of range")");
        row("no number", "scope", "CHAN1:SCAL nan;SCAL?", "0.2", R"(-104,"Data type error")");
        row("wrong unit", "scope", "CHAN1:SCAL 1HZ;SCAL?", "0.2", R"(-131,"Invalid suffix")");
        row("trigger while stopped", "scope", "STOP;*TRG", "", R"(-211,"Trigger ignored")");
        row("channel off", "scope", "CHAN2:DATA?;*OPC?", "1", R"(-221,"Settings conflict")");
        row("level below the source's", "scope", "TRIG:A:LEV1 0.005;*TRG;BENC:EVEN?", "", noEvent);
        row("level above the source's", "scope", "TRIG:A:LEV1 0.15;*TRG;BENC:EVEN?", "", noEvent);
        row("falling slope", "scope", "TRIG:A:EDGE:SLOP NEG;*TRG;BENC:EVEN?", "", noEvent);
        row("external trigger", "scope", "TRIG:A:SOUR EXT;*TRG;BENC:EVEN?", "", noEvent);
        row("no points", "analyzer", "TRAC? TRACE1,0", "", outOfRange);
        row("too many points", "analyzer", "SWE:POIN 101;:TRAC? TRACE1,102", "", outOfRange);
        row("no event", "video", "INIT:AVDA;READ:AVDA:TTV:STAT?;COUN?;VAL?;*RST;STAT?", "1;0;0",
            noEvent);
        row("more errors than the queue takes", "scope",
            QByteArray("FOO;").repeated(31) + QByteArray(":SYST:ERR?;").repeated(31),
            QByteArray(R"(-113,"Undefined header";)").repeated(29) +
                R"(-350,"Queue overflow";0,"No error")");
        row("more answers than are sent", "scope-kvx",
            "ACQ:POIN MAX;:FORM REAL,32" + QByteArray(";:CHAN1:DATA?").repeated(17), "",
            R"(-430,"Query DEADLOCKED")");
        // 128: power on; 49: command error, execution error, operation complete (32 + 16 + 1).
        row("event status", "scope", "*ESR?;FOO;TIM:REF 101;*OPC;*ESR?;*ESR?;*CLS", "128;49;0");
        // 116: summary, event, answer, error (64 + 32 + 16 + 4).
        row("status byte", "scope",
            "*CLS;*ESE 32;*SRE 36;*STB?;FOO;*STB?;*RST;*ESE?;*SRE?;*CLS;*STB?", "0;116;32;36;16");
    }

    void messages()
    {
        QFETCH(const QByteArray, host);
        QFETCH(const QByteArray, message);
        const Bench bench;
        QTEST(ask(bench, host, message), "answer");
        QTEST(ask(bench, host, "SYST:ERR?"), "error");
    }

    /// The first event of every bench, which docs/simulated-bench.md prints.
    void firstEvent()
    {
        const Bench bench;
        ask(bench, "video", "INIT:AVDA");
        ask(bench, "scope", "*TRG");
        const QByteArray hdmi = "97.9632020955905";
        QCOMPARE(ask(bench, "analyzer-qel", "BENC:EVEN?"),
                 "1,0.000108363408160115,44.6016055680811," + hdmi + ",117.469681170266,0");
        QCOMPARE(ask(bench, "video", "READ:AVDA:TTV:VAL?"), hdmi);
        QCOMPARE(ask(bench, "video", "READ:AVDA:TTV:COUN?;*RST;COUN?"), QByteArray("1;0"));
    }

    void linkCommands()
    {
        const Bench bench;
        const auto event = [&](const QByteArray &command) {
            return ask(bench, "scope", "BENCH:" + command + ";:*TRG;BENCH:EVENT?").split(',');
        };
        QCOMPARE(event("LATENCY RF,60ms,0")[2].toDouble(), 60.0);
        QCOMPARE(event("LATENCY HDMI,10ms,0")[3].toDouble(), 10.0);
        const double sink = event("LATENCY SINK,200ms,0")[4].toDouble();
        QVERIFY(sink >= 200);
        QVERIFY(sink <= 220); // it waits for a frame, and rises
        QCOMPARE(event("OVERLOAD 1")[5], QByteArray("1"));
        QCOMPARE(event("OVERLOAD 0")[5], QByteArray("0"));
        const QByteArray seventh = event("SEED 7")[4];
        QCOMPARE(event("SEED 7")[4], seventh);
        QVERIFY(event("SEED 8")[4] != seventh);
    }

    /// Other instruments' triggers do not change a record. A trigger that is off leaves it dark.
    void records()
    {
        const Bench bench;
        ask(bench, "scope", "SING;*TRG");
        const auto record = trace(bench, "scope", "CHAN1:DATA?");
        ask(bench, "scope", "*TRG");
        ask(bench, "scope-kvx", "*TRG");
        QCOMPARE(trace(bench, "scope", "CHAN1:DATA?"), record);
        const auto text = ask(bench, "scope", "FORM ASC;:CHAN1:DATA?").split(',');
        QCOMPARE(text.size(), record.size());
        QCOMPARE(text.last().toFloat(), record.last());
        ask(bench, "scope", "SING;*TRG");
        QVERIFY(trace(bench, "scope", "CHAN1:DATA?") != record);
        QCOMPARE(bench.find("scope")->instrument->takeDuration(), 1.2);
        QCOMPARE(bench.find("scope")->instrument->takeDuration(), 0.0);
        ask(bench, "scope", "RUN;:TRIG:A:ENAB OFF;*TRG");
        QVERIFY(maximum(trace(bench, "scope", "CHAN1:DATA?")) < 0.1F);
    }

    void analyzersHearTheirFrequency_data()
    {
        QTest::addColumn<QByteArray>("centre"); // the bandwidth is 50 MHz
        QTest::addColumn<bool>("isHeard");
        QTest::newRow("within the bandwidth") << QByteArray("5226 MHz") << true;
        QTest::newRow("above the channel") << QByteArray("5228 MHz") << false;
        QTest::newRow("below the channel") << QByteArray("5156 MHz") << false;
    }

    void analyzersHearTheirFrequency()
    {
        QFETCH(const QByteArray, centre);
        QFETCH(const bool, isHeard);
        const Bench bench;
        ask(bench, "analyzer", "TRIG1:SOUR EXT;HOLD -0.6;:SWE:TIME 1.2;:OUTP:IF VID;:BWID 50MHz");
        ask(bench, "analyzer", "FREQ:CENT " + centre);
        ask(bench, "scope", "*TRG");
        QCOMPARE(maximum(trace(bench, "analyzer", "TRAC? TRACE1")) > -30.0F, isHeard);
        const auto video = trace(bench, "scope", "CHAN3:DATA?");
        QCOMPARE(maximum(video) > 0.7F, isHeard);
        QVERIFY(maximum(video) > 0.2F); // 10 mV per dB: the floor is at 0.25 V
        ask(bench, "analyzer", "OUTP:IF IF;IFFR 1kHz");
        QCOMPARE(maximum(trace(bench, "scope", "CHAN3:DATA?")) > 0.5F, isHeard);
    }

    void sweepsWithoutTrigger()
    {
        const Bench bench;
        ask(bench, "analyzer", "FREQ:CENT 5.192e9");
        const auto sweep = [&] { return trace(bench, "analyzer", "TRAC? TRACE1"); };
        const auto first = sweep();
        QVERIFY(maximum(first) > -50.0F); // beacons
        QVERIFY(sweep() != first);
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
