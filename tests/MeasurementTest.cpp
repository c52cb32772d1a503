#include "Line.h"
#include "measurement/DelayComputation.h"
#include "measurement/MeasurementRun.h"
#include "measurement/Record.h"
#include "measurement/WaveformTransfer.h"

#include <QtTest>

#include <cmath>

namespace {

constexpr OscilloscopeType kvx = OscilloscopeType::Kvx;
constexpr OscilloscopeType lpa4004 = OscilloscopeType::Lpa4004;

using Trace = QVector<double>;

/// A trace of n samples at one level, with another level from one index on.
Trace step(int n, double from, int index, double to)
{
    return Trace(index, from) + Trace(n - index, to);
}

QByteArray blockOf(const Trace &samples)
{
    const QByteArray data = bytesOf(QVector<float>(samples.begin(), samples.end()));
    const QByteArray length = QByteArray::number(data.size());
    return '#' + QByteArray::number(length.size()) + length + data + '\n';
}

/// Instruments that answer a whole series, in records of 11 samples.
struct Instruments : Line
{
    explicit Instruments(OscilloscopeType type = lpa4004)
    {
        settings = {1, 2, 3, type, type == lpa4004, true, 1, false, {}};
        open = {{1, "osc"}, {2, "sa"}, {3, "va"}};
        answer = [this](auto &command) {
            return QByteArrayList() << answers.value(command, "1\n");
        };
    }

    int run() { return runSeries(settings, &record, &results); }
    /// The commands of the transcript, without what every query has.
    QStringList written()
    {
        QStringList commands = takeTranscript().filter(" < ");
        return commands.replaceInStrings(QRegularExpression(R"((;\*OPC\?)?\\n.*)"), "");
    }

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

class MeasurementTest : public QObject
{
    Q_OBJECT

private slots:
    void edges_data()
    {
        const int n = 101;
        const Trace src = step(n, 0.0, 20, 0.1);
        const Trace rf = step(n, 0.0, 40, 0.2);
        const Trace snk = step(n, 0.0, 60, 0.1);
        const auto runs = [](int start, int length, int secondStart = 0, int secondLength = 0) {
            Trace trace(n, 0.05);
            std::fill_n(trace.begin() + start, length, 0.0501);
            std::fill_n(trace.begin() + secondStart, secondLength, 0.0501);
            return trace;
        };
        using Traces = QVector<Trace>;
        using Edges = QVector<int>;
        QTest::addColumn<Traces>("traces");
        QTest::addColumn<Edges>("expected");
        const auto row = [](const char *name, const Traces &traces, const Edges &expected) {
            QTest::newRow(name) << traces << expected;
        };
        row("rise of 35 mV", {step(n, 0.0, 20, 0.035), rf, snk}, {n, n, 60});
        row("rise just above", {step(n, 0.0, 20, 0.0351), rf, snk}, {20, 40, 60});
        row("rise from its first sample", {step(n, 0.2, 20, 0.23), rf, snk}, {n, n, 60});
        row("seven, then eight", {src, runs(30, 7, 38, 8), snk}, {20, 38, 60});
        row("too short after it", {src, runs(15, 12), snk}, {20, n, 60});
        row("last eight of RF", {src, runs(n - 8, 8), snk}, {20, n - 8, 60});
        row("last seven of RF", {src, runs(n - 7, 7), snk}, {20, n, 60});
        row("RF past the record", {src, step(n + 7, 0.0, n - 1, 0.2), snk}, {20, n - 1, 60});
        row("RF after the record", {src, step(n + 20, 0.0, n, 0.2), snk}, {20, n, 60});
        row("sink of 60 mV", {src, rf, step(n, 0.0, 60, 0.06)}, {20, 40, 60});
        row("sink just below", {src, rf, step(n, 0.0, 60, 0.0599)}, {20, 40, n});
        row("short traces", {src.mid(0, 20), rf.mid(0, 47), snk.mid(0, 60)}, {n, n, n});
    }

    /// Edges by index, in records of 101 samples.
    void edges()
    {
        QFETCH(const QVector<Trace>, traces);
        Trace axis(102); // of all instants but that of RF, which is computed
        std::iota(axis.begin(), axis.end(), 0.0);
        const Instants at = computeDelays(101, traces[0], traces[1], traces[2], axis, kvx).instants;
        QTEST(QVector<int>({int(at.source), qRound((at.rf + 0.5) * 100), int(at.sink)}),
              "expected");
    }

    /// RF on the trigger, without a time axis; and a number of samples that makes no sense.
    void delays()
    {
        const auto late = step(1001, 0, 600, 0.2);
        const auto [at, toRf, toSink] = computeDelays(1001, step(1001, 0, 300, 0.1),
                                                      step(1001, 0, 500, 0.2), late, {}, lpa4004);
        QCOMPARE(qRound(at.source * 1e6), -240000);
        QCOMPARE(at.rf, 0.0);
        QCOMPARE(qRound(at.sink * 1e6), 120000);
        QCOMPARE(toRf, 0.0);
        QCOMPARE(qRound(toSink), 360);
        QCOMPARE(computeDelays(-5, late, late, late, {}, kvx).instants.sink, -0.5);
    }

    void envelope()
    {
        // Longer than the samples that are compared at the same time; the extremes in either part.
        Trace rf = Trace(8, -50) + Trace{-80, qQNaN()};
        rf[6] = -20;
        normaliseEnvelope(&rf);
        QCOMPARE(rf.mid(5, 4), Trace({0.1, 0.2, 0.1, 0.0}));
        QVERIFY(qIsNaN(rf[9]));
    }

    void blocks_data()
    {
        const QByteArray data("\0\0\x80?", 4); // 1.0
        const Trace one = {1.0};
        QTest::addColumn<QByteArrayList>("messages");
        QTest::addColumn<Trace>("expected");
        const auto row = [](const char *name, const QByteArrayList &messages,
                            const Trace &expected = {7.0}) { // as it was
            QTest::newRow(name) << messages << expected;
        };
        row("ten digits", {"#:0000000004" + data}, one);
        row("no number of digits", {"# " + data}, {});
        row("fewer digits than announced", {"#94", data}, one);
        row("a negative length", {"#2-4" + data}, {});
        row("one sample and a half", {"#16" + data + data}, one);
        row("no data", {"#14"});
        row("text", {"0.1,0.2\n"});
    }

    /// What becomes of a trace by the answer to its query.
    void blocks()
    {
        QFETCH(const QByteArrayList, messages);
        QFETCH(const Trace, expected);
        Line line;
        line.answer = [&](auto &) { return messages; };
        Trace trace = {7.0};
        const bool isNew = expected != trace;
        QCOMPARE(queryTrace(1, "CHAN1:DATA?\n", &trace), isNew);
        QCOMPARE(trace, expected);
    }

    void series_data()
    {
        QTest::addColumn<QStringList>("groups");  // a command that fails ends its own
        QTest::addColumn<QStringList>("ignored"); // whose failure does not
        QTest::addColumn<QString>("toRf");
        QTest::addColumn<QString>("toSink");
        QTest::newRow("KVx") << QStringList{"sa < INIT:CONT OFF|osc < INIT:CONT OFF|osc < *TRG|"
                                            "osc < FORM REAL,32|osc < CHAN1:DATA?",
                                            "sa < FORM REAL,32|sa < TRAC? TRACE1, 11", "osc < RUNC"}
                             << QStringList() << "100"
                             << "700";
        QTest::newRow("LPA4004") << QStringList{"sa < INIT:CONT OFF|osc < SING|osc < FORM REAL,32|"
                                                "osc < *TRG|osc < CHAN1:DATA?|sa < SWE:POIN 11",
                                                "osc < CHAN3:DATA?", "osc < RUN"}
                                 << QStringList{"osc < SING", "osc < CHAN1:DATA?"} << "120"
                                 << "840";
    }

    /// What a series leaves in its folder, and what the instruments see of it; and what is still
    /// sent when one of the commands is not. Then the traces are those of before.
    void series()
    {
        QFETCH(QStringList, groups);
        QFETCH(const QStringList, ignored);
        QFETCH(const QString, toRf);
        QFETCH(const QString, toSink);
        const QTemporaryDir directory;
        Instruments visa(QString(QTest::currentDataTag()) == "KVx" ? kvx : lpa4004);
        visa.settings.save = true;
        visa.settings.filePrefix = directory.filePath("data");
        QCOMPARE(visa.run(), 0);
        const Record &record = visa.record;
        QByteArray files;
        for (const QString &name : QDir(directory.path()).entryList(QDir::Files)) {
            files += contents(directory.filePath(name));
        }
        QCOMPARE(files, bytesOf(record.rf) + bytesOf(record.sink) + bytesOf(record.source) +
                            QString("Source2RF Delay: %1\nSource2RF Mean: %1\n"
                                    "Source2HD Delay: 95.5\nSource2HD Mean: 95.5\n"
                                    "Source2Snk Delay: %2\nSource2Snk Mean: %2")
                                .arg(toRf, toSink)
                                .toUtf8());

        const QString release = groups.takeLast();
        groups << "va < READ:AVDA:TTV:STAT?|va < READ:AVDA:TTV:COUN?|va < READ:AVDA:TTV:VAL?"
               << "osc < CHAN2:DATA?" << release << "sa < INIT:CONT ON";
        const int commands = groups.join('|').count('|') + 1;
        visa.settings.save = false;
        for (int failing = -1; failing < commands; ++failing) {
            visa.takeTranscript();
            visa.fails = [=, i = 0](auto &entry) mutable {
                return entry.contains(" < ") && i++ == failing ? VI_ERROR_IO : VI_SUCCESS;
            };
            QCOMPARE(visa.run(), 0);
            QStringList expected;
            int number = -1;
            for (const QString &group : qAsConst(groups)) {
                bool hasEnded = false;
                for (const QString &command : group.split('|')) {
                    expected += hasEnded ? QStringList() : QStringList(command);
                    hasEnded = hasEnded || (++number == failing && !ignored.contains(command));
                }
            }
            QCOMPARE(visa.written().join('|'), expected.join('|'));
            QCOMPARE(record.rf, step(11, 0, 3, 0.2));
        }
    }

    void retakes_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<int>("attempts");
        QTest::newRow("above 0.3") << double(std::nextafter(0.3F, 1.0F)) << 3;
        QTest::newRow("below 0.3") << 0.2999 << 1;
        QTest::newRow("-0.05") << double(-0.05F) << 3; // the nearest float lies below it
        QTest::newRow("above -0.05") << -0.0499 << 1;
        QTest::newRow("NaN") << qQNaN() << 3;
    }

    /// Two records that start somewhere. Those that are rejected have their time axes, too.
    void retakes()
    {
        QFETCH(const double, start);
        QFETCH(const int, attempts);
        Instruments visa;
        visa.answer = [&, usual = visa.answer, left = 2](auto &command) mutable {
            return command == "CHAN1:DATA?\n" && left-- > 0
                       ? QByteArrayList() << blockOf(step(11, start, 1, 0.15))
                       : usual(command);
        };
        visa.fails = [](auto &entry) { // a remark is no failure of a transfer
            return entry.endsWith(">file") ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS;
        };
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.written().filter("CHAN1:DATA?").size(), attempts);
        QCOMPARE(visa.record.time.size(), attempts * 11);
    }

    /// No HDMI delay, then no answer: the series ends all the same.
    void silence()
    {
        Instruments visa;
        visa.answers["READ:AVDA:TTV:STAT?\n"] = "0\n";
        visa.fails = [](auto &entry) { // it never answered: there is no record to wait for
            return entry.startsWith("osc") ? VI_ERROR_INV_OBJECT : VI_SUCCESS;
        };
        QCOMPARE(visa.run(), 0);
        QCOMPARE(visa.results[SourceToHdmi].values, Trace{0.0});
    }
};

QTEST_GUILESS_MAIN(MeasurementTest)
#include "MeasurementTest.moc"
