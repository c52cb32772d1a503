#include "benchmarks/CannedVisa.h"
#include "CallRecorder.h"
#include "measurement/DelayComputation.h"
#include "measurement/MeasurementRun.h"
#include "measurement/Record.h"
#include "measurement/WaveformTransfer.h"
#include "Transcripts.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr OscilloscopeType kvx = OscilloscopeType::Kvx;
constexpr OscilloscopeType lpa4004 = OscilloscopeType::Lpa4004;

using Trace = QVector<double>;

enum Edge
{
    Source,
    Rf,
    Sink
};

/// A trace of n samples at one level, with another level from one index on.
Trace step(int n, double from, int index, double to)
{
    return Trace(index, from) + Trace(n - index, to);
}

QByteArray blockOf(const Trace &samples)
{
    const QVector<float> floats(samples.begin(), samples.end());
    const QByteArray data(reinterpret_cast<const char *>(floats.data()), floats.size() * 4);
    const QByteArray length = QByteArray::number(data.size());
    return '#' + QByteArray::number(length.size()) + length + data + '\n';
}

/// Instruments that answer a whole series, in records of 11 samples.
struct Instruments : CannedVisa, CallRecorder
{
    explicit Instruments(OscilloscopeType type = lpa4004)
        : CannedVisa([this](auto &command) { return answers.value(command, "1\n"); })
    {
        settings = {1, 2, 3, type, type == lpa4004, true, 1, false, {}};
        hosts = {{1, "scope"}, {2, "analyzer"}, {3, "video"}};
    }

    int run() { return runSeries(settings, &record, &results); }

    SeriesSettings settings;
    Record record;
    SeriesResults results;
    QMap<QByteArray, QByteArray> answers = {
        {"CHAN1:DATA?\n", blockOf(step(11, 0.005, 2, 0.15))},
        {"CHAN2:DATA?\n", blockOf(step(11, 0.01, 9, 0.0625))},
        {"CHAN3:DATA?\n", blockOf(step(11, -80, 3, -20))},
        {"TRAC? TRACE1, 11\n", blockOf(step(11, -80, 3, -20))},
        {"READ:AVDA:TTV:VAL?\n", "95.5\n"},
    };
};

} // namespace

Q_DECLARE_METATYPE(OscilloscopeType)

class MeasurementTest : public QObject
{
    Q_OBJECT

private slots:
    void edges_data()
    {
        QTest::addColumn<int>("edge");
        QTest::addColumn<Trace>("trace");
        QTest::addColumn<int>("index");
        const int n = 101;
        const auto runs = [](int start, int length, int secondStart = 0, int secondLength = 0) {
            Trace trace(n, 0.05);
            std::fill_n(trace.begin() + start, length, 0.0501);
            std::fill_n(trace.begin() + secondStart, secondLength, 0.0501);
            return trace;
        };
        const auto row = [](const char *name) -> QTestData & { return QTest::newRow(name); };
        row("source rises by 35 mV") << int(Source) << step(n, 0, 20, 0.035) << n;
        row("source rises a little more") << int(Source) << step(n, 0, 20, 0.0351) << 20;
        row("source starts high") << int(Source) << step(n, 0.2, 20, 0.23) << n;
        row("source ends before its edge") << int(Source) << step(20, 0, 20, 0) << n;
        row("RF runs of seven, then eight") << int(Rf) << runs(30, 7, 38, 8) << 38;
        row("RF run of which seven follow the source") << int(Rf) << runs(15, 12) << n;
        row("RF run that starts at the last sample")
            << int(Rf) << step(n + 7, 0, n - 1, 0.2) << n - 1;
        row("RF after the end of the record") << int(Rf) << step(n + 20, 0, n, 0.2) << n;
        row("sink of 60 mV") << int(Sink) << step(n, 0, 60, 0.06) << 60;
        row("sink a little lower") << int(Sink) << step(n, 0, 60, 0.0599) << n;
        row("sink ends before its edge") << int(Sink) << step(60, 0, 60, 0) << n;
    }

    /// The index of an edge in a record of 101 samples. The row's trace replaces the usual one.
    void edges()
    {
        QFETCH(const int, edge);
        QFETCH(const Trace, trace);
        QVector<Trace> traces = {step(101, 0, 20, 0.1), step(101, 0, 40, 0.2),
                                 step(101, 0, 60, 0.1)};
        traces[edge] = trace;
        Trace axis(102); // has the instants of source and sink; that of RF is computed
        std::iota(axis.begin(), axis.end(), 0.0);
        const Instants at =
            computeDelays(101, traces[Source], traces[Rf], traces[Sink], axis, kvx).instants;
        const QVector<int> indices = {int(at.source), qRound((at.rf + 0.5) * 100), int(at.sink)};
        QTEST(indices[edge], "index");
    }

    /// RF on the trigger, without a time axis; and a negative number of samples.
    void delays()
    {
        const auto late = step(1001, 0, 600, 0.2);
        const Delays delays =
            computeDelays(1001, step(1001, 0, 300, 0.1), step(1001, 0, 500, 0.2), late, {}, kvx);
        QCOMPARE(delays.instants.rf, 0.0);
        QCOMPARE(delays.sourceToRf, 0.0);
        QCOMPARE(qRound(delays.sourceToSink), 300);
        QCOMPARE(computeDelays(-5, late, late, late, {}, kvx).instants.sink, -0.5);
    }

    void envelope()
    {
        // Eight samples are compared at the same time, the last two one by one. The maximum is
        // among the eight, the minimum is not.
        Trace rf = Trace(8, -50) + Trace{-80, qQNaN()};
        rf[6] = -20;
        normaliseEnvelope(&rf);
        QCOMPARE(rf.mid(5, 4), Trace({0.1, 0.2, 0.1, 0.0}));
        QVERIFY(qIsNaN(rf[9]));
    }

    void blocks_data()
    {
        const QByteArray one("\0\0\x80?", 4); // 1.0
        const Trace asBefore = {7.0};
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<Trace>("trace");
        QTest::newRow("length of ten digits") << "#:0000000004" + one << Trace{1.0};
        QTest::newRow("no digit after #") << "# 4" + one << Trace();
        QTest::newRow("negative length") << "#2-4" + one << Trace();
        QTest::newRow("one sample and a half") << "#16" + one + one << Trace{1.0};
        QTest::newRow("no data") << QByteArray("#14") << asBefore;
        QTest::newRow("text") << QByteArray("0.1,0.2\n") << asBefore;
    }

    /// How the answer to a query changes a trace.
    void blocks()
    {
        QFETCH(QByteArray, answer);
        const CannedVisa visa([&](auto &) { return answer; });
        Trace read = {7.0};
        const bool isTransferred = queryTrace(1, "CHAN1:DATA?\n", &read);
        QTEST(read, "trace");
        QCOMPARE(isTransferred, read != Trace{7.0});
    }

    void series_data()
    {
        QTest::addColumn<OscilloscopeType>("type");
        QTest::newRow("series with KVx") << kvx;
        QTest::newRow("series with LPA4004") << lpa4004;
    }

    /// The calls of a series, and those that follow when one of them fails. The record then keeps
    /// its traces.
    void series()
    {
        QFETCH(const OscilloscopeType, type);
        Instruments visa(type);
        const Transcript transcript(QTest::currentDataTag());
        for (int call = -1; call < transcript.calls.size(); ++call) {
            visa.takeCalls();
            visa.faultOf = transcript.fault(call, VI_ERROR_IO);
            QCOMPARE(visa.run(), 0);
            QCOMPARE(visa.takeCalls(), transcript.callsWhenFails(call));
            QCOMPARE(visa.record.rf, step(11, 0, 3, 0.2));
        }
    }

    void retakes_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<int>("attempts");
        QTest::newRow("just above 0.3") << double(std::nextafter(0.3F, 1.0F)) << 3;
        QTest::newRow("just below 0.3") << 0.2999 << 1;
        QTest::newRow("nearest to -0.05, and below it") << double(-0.05F) << 3;
        QTest::newRow("just above -0.05") << -0.0499 << 1;
        QTest::newRow("no number") << qQNaN() << 3;
    }

    /// The first two records start at this level. A rejected record's time axis is kept.
    void retakes()
    {
        QFETCH(const double, start);
        QFETCH(const int, attempts);
        Instruments visa;
        const QByteArray usual = visa.answers["CHAN1:DATA?\n"];
        visa.answers["CHAN1:DATA?\n"] = blockOf(step(11, start, 1, 0.15));
        visa.faultOf =
            [&, left = 3](auto &entry) mutable { // a positive status is no failure of a transfer
                if (entry.contains("CHAN1:DATA?") && --left == 0) {
                    visa.answers["CHAN1:DATA?\n"] = usual;
                }
                return entry.endsWith(" reads file") ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS;
            };
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.takeCalls().filter("CHAN1:DATA?").size(), attempts);
        QCOMPARE(visa.record.time.size(), attempts * 11);
        QCOMPARE(visa.record.time.first(), -0.6);
    }

    /// A series ends even if the oscilloscope never answers and the video analyzer has no delay.
    void silence()
    {
        Instruments visa;
        visa.answers["READ:AVDA:TTV:STAT?\n"] = "0\n";
        visa.faultOf = [](auto &entry) { // no call to the oscilloscope succeeds
            return entry.startsWith("scope") ? VI_ERROR_INV_OBJECT : VI_SUCCESS;
        };
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.results[SourceToHdmi].values, Trace{0.0});
    }
};

QTEST_GUILESS_MAIN(MeasurementTest)
#include "MeasurementTest.moc"
