#include "analysis/Csv.h"
#include "analysis/Summary.h"
#include "SavedSeries.h"
#include "TestFiles.h"

#include <QtTest>

using Numbers = QVector<int>; // of measurements, from 1

Q_DECLARE_METATYPE(Flag)
Q_DECLARE_METATYPE(Record)

namespace {

/// Returns 100 varied values, of which `count` from the 51st on are equal.
Values stuck(int count)
{
    Values values = varied(100, 120);
    std::fill_n(values.begin() + 50, count, values[50]);
    return values;
}

} // namespace

class AnalysisTest : public QObject
{
    Q_OBJECT

private slots:
    void brokenFiles_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("problem");
        const QByteArray good = "Source2RF Delay: 45 46.5\nSource2RF Mean: 45.75\n"
                                "Source2HD Delay: 0 0\nSource2HD Mean: 0\n"
                                "Source2Snk Delay: 120.2 nan\nSource2Snk Mean: nan";
        const auto row = [&](const char *name, const QByteArray &text, const char *problem) {
            QTest::newRow(name) << text << problem;
        };
        const auto changed = [&](const char *before, const char *after) {
            return QByteArray(good).replace(before, after);
        };
        row("as an editor leaves it", changed("\n", "\r\n") + "\r\n", "");
        row("empty", "", "is empty.");
        row("something else", "RIFF",
            "is not a results file: it does not begin with \"Source2RF Delay:\".");
        row("cut off in a line", good.left(60), "is cut off: it has 3 of 6 lines.");
        row("two files in one", good + '\n' + good,
            "is not one results file: it has 12 lines instead of 6.");
        row("cut off in the last number",
            changed("120.2 nan", "12 13").replace("Mean: nan", "Mean: 1"),
            "has a wrong line 6: the mean is not that of the delays: cut off or changed.");
        row("lines of different lengths", changed(" 0 0", " 0"),
            "has lines of different counts: 2, 1 and 2 delays.");
        row("no number", changed("46.5", "4x6.5"),
            "has a wrong line 1: \"4x6.5\" is not a number.");
        row("two means", changed("Mean: 0", "Mean: 0 0"),
            "has a wrong line 4: it does not have one mean.");
    }
    void brokenFiles()
    {
        QFETCH(const QByteArray, text);
        const QTemporaryDir folder;
        const QString file = folder.filePath("broken.txt");
        QVERIFY(write(file, text));
        QTEST(loadSeries({file}).problems.join('\n').remove(file + ' '), "problem");
    }

    /// Warnings stand before the numbers of a comparison.
    void comparison_data()
    {
        QTest::addColumn<Values>("second");
        QTest::addColumn<QString>("warning");
        QTest::addColumn<QString>("result");
        const auto row = [](const char *name, const Values &second, const char *warning,
                            const char *result) {
            QTest::newRow(name) << second << warning << result;
        };
        Values drift(30);
        std::iota(drift.begin(), drift.end(), 91);
        row("slower", varied(30, 140), "", ": slower");
        row("few", varied(4, 120), "", "takes 5 values");
        row("flagged", Values{501} + varied(30, 120), "left out: 2",
            "no difference shown (it would have to be about 3.00 ms");
        row("drift", drift,
            "too narrow because the measurements depend on each other (lag-1 correlation 0.90)\n",
            ": faster");
        row("few in a drift", drift.mid(25),
            "(lag-1 correlation 0.40), unless this is chance (5 values)\n", ": faster");
    }
    void comparison()
    {
        QFETCH(const QString, warning);
        QFETCH(const Values, second);
        QFETCH(const QString, result);
        const QString text = compareSeries(seriesOf(varied(30, 120)), seriesOf(second));
        QVERIFY2(text.section(" compared with ", 0, 0).contains(warning), qPrintable(text));
        QCOMPARE(text.startsWith("Warning"), !warning.isEmpty());
        QVERIFY2(text.contains(result), qPrintable(text));
    }

    /// The CSV, the names and the summary of series.
    void texts()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir("a, \"b\" %1"));
        const QString path = folder.filePath("a, \"b\" %1");
        const QString file = save(path, {44, 501, 45}, {95, 0, -230}, {119, 121, 120});
        const Series series = open(file);
        const QString start = '"' + QString(file).replace('"', "\"\"") + "\",";
        const QString end = ",2026-03-05 14:07:09\n";
        QCOMPARE(
            csvText({series}),
            "file,measurement,source_to_rf_ms,source_to_hdmi_ms,source_to_sink_ms,flags,series\n" +
                start + "1,44,95,119," + end + start +
                "2,501,0,121,Source to RF: no edge: the delay lies at the end of the time axis; "
                "Source to HDMI: no value from the video analyzer" +
                end + start +
                "3,45,-230,120,Source to HDMI: no event at the video analyzer (-230)" + end);
        const QStringList names = seriesNames({series, open(save(folder.path(), {4}, {0}, {12}))});
        QVERIFY(names[0].startsWith("a, \"b\" %1/Orvanta2026"));
        QVERIFY(names[0] != names[1]);
        const QStringList lines = summarise(series).split('\n');
        QCOMPARE(lines[2], QString("Oscilloscope KVx, records of 1001 samples; resolution: step 1 "
                                   "ms, step / sqrt(12) 0.289 ms"));
        QVERIFY(lines[4].simplified().startsWith("Source to RF 3 44.0 45.0 196.7 501.0"));
        QCOMPARE(lines[5].simplified(),
                 QString("unflagged 2 44.0 44.0 44.5 45.0 0.7 1.0 - - - - -"));
        QVERIFY(lines[7].simplified().startsWith("unflagged 1 95.00 95.00"));
    }

    void flags_data()
    {
        QTest::addColumn<Values>("toRf");
        QTest::addColumn<Values>("toSink");
        QTest::addColumn<Flag>("flag");
        QTest::addColumn<Numbers>("flaggedRf");
        QTest::addColumn<Numbers>("flaggedSink");
        const auto row = [](const char *name, const Values &toRf, const Values &toSink, Flag flag,
                            const Numbers &flaggedRf, const Numbers &flaggedSink) {
            QTest::newRow(name) << toRf << toSink << flag << flaggedRf << flaggedSink;
        };
        // KVx with 1 ms a sample. A missing edge lies at 501 ms; in later records those of source
        // and sink lie at -500 ms.
        row("no RF edge twice, no sink edge once", {501, 501}, {501, 120}, Flag::EndOfAxis, {1, 2},
            {1});
        row("no source edge in the first record, and in a later one", {0, 1001, 45},
            {-381, 620, 120}, Flag::NoSource, {1, 2}, {1, 2});
        row("nothing had arrived", {0, 45}, {0, 120}, Flag::NothingArrived, {1}, {1});
        row("RF edge on the trigger", {0, 45}, {120.5, 120}, Flag::OnTrigger, {1}, {});
        row("nothing new", {45, 45}, {120, 120}, Flag::Repeated, {2}, {2});
        row("jitter below the sampling step", {46, 45, 45, 46, 45, 45},
            {121, 121, 121, 120, 120, 120}, Flag::Repeated, {}, {});
        row("the sink's trace sticks", Values(100, 45), stuck(4), Flag::Stuck, {},
            {51, 52, 53, 54});
        row("three equal values are chance", Values(100, 45), stuck(3), Flag::Stuck, {}, {});
    }
    void flags()
    {
        QFETCH(const Values, toRf);
        QFETCH(const Values, toSink);
        QFETCH(const Flag, flag);
        QFETCH(const Numbers, flaggedRf);
        QFETCH(const Numbers, flaggedSink);
        const auto edge = [](double delay) {
            return std::abs(delay) < 500 ? 500 + int(delay) : 1001;
        };
        const QTemporaryDir folder;
        const Series series = open(save(folder.path(), toRf, Values(toRf.size()), toSink,
                                        recordOf(500, edge(toRf.last()), edge(toSink.last()))));
        QVERIFY(series.oscilloscope.type == OscilloscopeType::Kvx);
        for (int i = 0; i < series.count(); ++i) {
            QCOMPARE(int(series.flags[SourceToRf][i]), flaggedRf.contains(i + 1) ? int(flag) : 0);
            QCOMPARE(int(series.flags[SourceToSink][i]),
                     flaggedSink.contains(i + 1) ? int(flag) : 0);
        }
    }

    /// The remark says why the oscilloscope type is unknown. The ends of both types' axes are then
    /// flagged, as they are before the traces are read.
    void unknownType_data()
    {
        QTest::addColumn<Values>("delays"); // of the last measurement: to RF and to the sink
        QTest::addColumn<Record>("record");
        QTest::addColumn<int>("rfBytes"); // size of the RF trace file
        QTest::addColumn<QString>("remark");
        const auto row = [](const char *name, const Values &delays, const Record &record,
                            int rfBytes, const char *remark) {
            QTest::newRow(name) << delays << record << rfBytes << remark;
        };
        row("type changed", {45, 144}, usual, 8008, "Do not use");
        row("empty traces", {0, 0}, Record(), 0, "nothing arrived");
        row("both types give the saved delays", {0, 0}, recordOf(500, 500, 500), 8008, "Both");
        row("trace cut off", {45, 120}, usual, 4800, "1001, 600 and 1001 samples");
        row("cut off in a sample", {45, 120}, usual, 4804, "_001_rf.bin is broken: 4804 bytes");
    }
    void unknownType()
    {
        QFETCH(const Values, delays);
        QFETCH(const Record, record);
        QFETCH(const int, rfBytes);
        QFETCH(const QString, remark);
        const QTemporaryDir folder;
        const QString file =
            save(folder.path(), {600.1, delays[0]}, {0, 0}, {500.1, delays[1]}, record);
        QVERIFY(QFile::resize(traceFile(file, "rf"), rfBytes));
        Series series;
        QString reason;
        QVERIFY(openResults(file, &series, &reason));
        QCOMPARE(int(series.flags[SourceToSink][0]), int(Flag::EndOfAxis));
        addTraces(&series);
        QCOMPARE(int(series.flags[SourceToRf][0]), int(Flag::EndOfAxis));
        QVERIFY(!series.oscilloscope.type);
        QVERIFY2(series.oscilloscope.remark.contains(remark),
                 qPrintable(series.oscilloscope.remark));
    }
};

QTEST_GUILESS_MAIN(AnalysisTest)
#include "AnalysisTest.moc"
