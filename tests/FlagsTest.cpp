#include "SavedSeries.h"

#include <QtTest>

using Numbers = QVector<int>; // of measurements, from 1

Q_DECLARE_METATYPE(Flag)
Q_DECLARE_METATYPE(Record)

namespace {

/// Values that vary, with one of them at the 51st measurement and the next ones.
Values stuck(int count)
{
    Values values = varied(100, 120);
    std::fill_n(values.begin() + 50, count, values[50]);
    return values;
}

} // namespace

class FlagsTest : public QObject
{
    Q_OBJECT

private slots:
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
        row("no RF edge in either record, once no sink edge", {501, 501}, {501, 120},
            Flag::EndOfAxis, {1, 2}, {1});
        row("no edge, where the session has more axes", {46, 45}, {119, -500}, Flag::EndOfAxis, {},
            {2});
        row("no source edge, at first and with more axes", {0, 1001, 45}, {-381, 620, 120},
            Flag::NoSource, {1, 2}, {1, 2});
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

    /// What cannot be recognised is said, with the reason, and the ends of both types' axes count,
    /// as they do before the traces are read.
    void unknownType_data()
    {
        QTest::addColumn<Values>("delays"); // the last, to RF and to the sink
        QTest::addColumn<Record>("record");
        QTest::addColumn<int>("rfBytes"); // of its trace file
        QTest::addColumn<QString>("remark");
        const auto row = [](const char *name, const Values &delays, const Record &record,
                            int rfBytes, const char *remark) {
            QTest::newRow(name) << delays << record << rfBytes << remark;
        };
        row("type changed", {45, 144}, usual, 8008, "The saved delays are wrong");
        row("empty traces", {0, 0}, Record(), 0, "nothing arrived");
        row("the same with both", {0, 0}, recordOf(500, 500, 500), 8008, "Both");
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

QTEST_GUILESS_MAIN(FlagsTest)
#include "FlagsTest.moc"
