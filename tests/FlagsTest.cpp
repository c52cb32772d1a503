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
        QTest::addColumn<Numbers>("rf"); // which are flagged
        QTest::addColumn<Numbers>("sink");
        const Numbers none;
        QTest::newRow("no RF edge in either record, once no sink edge")
            << Values{501, 501} << Values{501, 120} << Flag::EndOfAxis << Numbers{1, 2}
            << Numbers{1};
        QTest::newRow("no edge, where the session has more axes")
            << Values{46, 45} << Values{119, -500} << Flag::EndOfAxis << none << Numbers{2};
        QTest::newRow("no source edge, at first and with more axes")
            << Values{0, 1001, 45} << Values{-381, 620, 120} << Flag::NoSource << Numbers{1, 2}
            << Numbers{1, 2};
        QTest::newRow("nothing had arrived")
            << Values{0, 45} << Values{0, 120} << Flag::NothingArrived << Numbers{1} << Numbers{1};
        QTest::newRow("RF edge on the trigger")
            << Values{0, 45} << Values{120.5, 120} << Flag::OnTrigger << Numbers{1} << none;
        QTest::newRow("nothing new") << Values{46, 45, 45} << Values{121, 120, 120}
                                     << Flag::Repeated << Numbers{3} << Numbers{3};
        QTest::newRow("nothing new at all")
            << Values{45, 45} << Values{120, 120} << Flag::Repeated << Numbers{2} << Numbers{2};
        QTest::newRow("RF never varies, the sink's trace sticks")
            << Values(100, 45) << stuck(4) << Flag::Stuck << none << Numbers{51, 52, 53, 54};
        QTest::newRow("three equal values are chance")
            << Values(100, 45) << stuck(3) << Flag::Stuck << none << none;
        QTest::newRow("jitter below the sampling step")
            << Values{46, 45, 45, 46, 45, 45} << Values{121, 121, 121, 120, 120, 120}
            << Flag::Repeated << none << none;
    }
    void flags()
    {
        QFETCH(const Values, toRf);
        QFETCH(const Values, toSink);
        QFETCH(const Flag, flag);
        QFETCH(const Numbers, rf);
        QFETCH(const Numbers, sink);
        const auto edge = [](double delay) {
            return std::abs(delay) < 500 ? 500 + int(delay) : 1001;
        };
        const QTemporaryDir folder;
        const Series series = open(save(folder.path(), toRf, Values(toRf.size()), toSink,
                                        recordOf(500, edge(toRf.last()), edge(toSink.last()))));
        QCOMPARE(series.oscilloscope.remark, QString());
        QVERIFY(series.oscilloscope.type == OscilloscopeType::Kvx);
        for (int i = 0; i < series.count(); ++i) {
            QCOMPARE(int(series.flags[SourceToRf][i]), rf.contains(i + 1) ? int(flag) : 0);
            QCOMPARE(int(series.flags[SourceToSink][i]), sink.contains(i + 1) ? int(flag) : 0);
        }
    }

    void hdmiFlags()
    {
        const QTemporaryDir folder;
        const Series series =
            open(save(folder.path(), {44, 43, 45}, {95, 0, -230}, {118, 119, 120}));
        QCOMPARE(int(series.flags[SourceToHdmi][0]), 0);
        QCOMPARE(int(series.flags[SourceToHdmi][1]), int(Flag::NoHdmiValue));
        QCOMPARE(int(series.flags[SourceToHdmi][2]), int(Flag::NoHdmiEvent));
    }

    /// What cannot be recognised is said, with the reason, and the ends of both types' axes count,
    /// as they do before the traces are read.
    void unknownType_data()
    {
        QTest::addColumn<Values>("delays"); // the last, to RF and to the sink
        QTest::addColumn<Record>("record");
        QTest::addColumn<int>("rfBytes"); // of its trace file
        QTest::addColumn<QString>("remark");
        constexpr int whole = 8008;
        QTest::newRow("type changed")
            << Values{45, 144} << usual << whole << "The saved delays are wrong";
        QTest::newRow("empty traces") << Values{0, 0} << Record() << 0 << "nothing arrived";
        QTest::newRow("the same with both")
            << Values{0, 0} << recordOf(500, 500, 500) << whole << "Both";
        QTest::newRow("trace cut off")
            << Values{45, 120} << usual << 4800 << "1001, 600 and 1001 samples";
        QTest::newRow("cut off in a sample")
            << Values{45, 120} << usual << 4804 << "_001_rf.bin is broken: 4804 bytes";
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
