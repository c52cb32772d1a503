#include "analysis/Csv.h"
#include "analysis/Summary.h"
#include "SavedSeries.h"
#include "TestFiles.h"

#include <QtTest>

Q_DECLARE_METATYPE(Record)

namespace {

Series open(const QString &file)
{
    Series series;
    QString reason;
    return openSeries(file, &series, &reason) ? series : Series{reason, {}, {}, false, 0, {}, {}};
}

} // namespace

class AnalysisTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir directory;

private slots:
    void flags_data()
    {
        QTest::addColumn<Values>("rf");
        QTest::addColumn<Values>("hdmi");
        QTest::addColumn<Values>("sink");
        QTest::addColumn<QVector<int>>("edges"); // of the last record
        QTest::addColumn<QString>("flags");      // of each measurement: RF, HDMI, sink
        const QVector<int> good = {500, 545, 620};
        QTest::newRow("none") << Values{44, 45} << Values{95, 94} << Values{121, 120} << good
                              << "0,0,0 0,0,0";
        QTest::newRow("no RF edge in either record, once no sink edge")
            << Values{501, 501} << Values{0, 0} << Values{501, 120} << QVector<int>{500, 1001, 620}
            << "1,0,1 1,0,0";
        QTest::newRow("no edge, where the session has more axes")
            << Values{45, 45} << Values{0, 0} << Values{119, -500} << QVector<int>{500, 545, 1001}
            << "0,0,0 0,0,1";
        QTest::newRow("no source edge, at first and with more axes")
            << Values{0, 1001, 45} << Values{0, 0, 0} << Values{-381, 620, 120} << good
            << "2,0,2 2,0,2 0,0,0";
        QTest::newRow("nothing had arrived, then the RF edge on the trigger")
            << Values{0, 0, 45} << Values{0, 0, 0} << Values{0, 120.5, 120} << good
            << "4,0,4 8,0,0 0,0,0";
        QTest::newRow("nothing new") << Values{45, 45, 45} << Values{95, 95, 95}
                                     << Values{120, 120, 120} << good << "0,0,0 16,0,16 16,0,16";
        QTest::newRow("HDMI") << Values{44, 43, 45} << Values{95, 0, -230} << Values{118, 119, 120}
                              << good << "0,0,0 0,32,0 0,64,0";
        QTest::newRow("not finite") << Values{qQNaN(), 45} << Values{95, qInf()} << Values{119, 120}
                                    << good << "128,0,0 0,128,0";
    }
    void flags()
    {
        QFETCH(const Values, rf);
        QFETCH(const Values, hdmi);
        QFETCH(const Values, sink);
        QFETCH(const QVector<int>, edges);
        const QTemporaryDir folder;
        const Series series =
            open(save(folder.path(), rf, hdmi, sink, recordOf(edges[0], edges[1], edges[2])));
        QCOMPARE(series.oscilloscope.remark, QString());
        QVERIFY(series.oscilloscope.type == OscilloscopeType::Kvx);
        QStringList found;
        for (int i = 0; i < series.count(); ++i) {
            found += QString("%1,%2,%3")
                         .arg(int(series.flags[0][i]))
                         .arg(int(series.flags[1][i]))
                         .arg(int(series.flags[2][i]));
        }
        QTEST(found.join(' '), "flags");
    }

    /// What cannot be recognised is said, with the reason.
    void unknownType_data()
    {
        QTest::addColumn<Values>("delays"); // the last, to RF and to the sink
        QTest::addColumn<Record>("record");
        QTest::addColumn<QString>("remark");
        QTest::addColumn<bool>("contradicts");
        QTest::newRow("type changed")
            << Values{45, 144} << usual << "The saved delays are wrong" << true;
        QTest::newRow("empty traces") << Values{0, 0} << Record() << "nothing arrived" << false;
        QTest::newRow("the same with both")
            << Values{0, 0} << recordOf(500, 500, 500) << "Both" << false;
    }
    void unknownType()
    {
        QFETCH(const Values, delays);
        QFETCH(const Record, record);
        QFETCH(const QString, remark);
        const QTemporaryDir folder;
        const QString file = save(folder.path(), {delays[0]}, {0}, {delays[1]}, record);
        const Series series = open(file);
        QVERIFY(!series.oscilloscope.type);
        QVERIFY2(series.oscilloscope.remark.contains(remark),
                 qPrintable(series.oscilloscope.remark));
        QTEST(series.oscilloscope.contradicts, "contradicts");
        QVERIFY(isDoubtful(series));

        QVERIFY(QFile::remove(traceFile(file, "rf")));
        QVERIFY(open(file).oscilloscope.remark.contains("_001_rf.bin cannot be read"));
    }

    void brokenFiles_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("reason");
        const QByteArray good = "Source2RF Delay: 45 46.5\nSource2RF Mean: 45.75\n"
                                "Source2HD Delay: 0 0\nSource2HD Mean: 0\n"
                                "Source2Snk Delay: 120.2 nan\nSource2Snk Mean: nan";
        const auto changed = [&](const char *before, const char *after) {
            return QByteArray(good).replace(before, after);
        };
        QTest::newRow("as it is") << good << "";
        QTest::newRow("as an editor leaves it") << changed("\n", "\r\n") + "\r\n"
                                                << "";
        QTest::newRow("empty") << QByteArray() << "is empty";
        QTest::newRow("something else") << QByteArray("RIFF") << "is not a results file";
        QTest::newRow("cut off in a line") << good.left(60) << "is cut off: it has 3 of 6 lines";
        QTest::newRow("cut off in the last number")
            << changed("120.2 nan", "120.2 130.2").replace("Mean: nan", "Mean: 125.").left(500)
            << "has a wrong line 6: the mean is not that of the delays: cut off or changed";
        QTest::newRow("counts") << changed(" 0 0", " 0")
                                << "has lines of different counts: 2, 1 and 2 delays";
        QTest::newRow("no number")
            << changed("46.5", "4x6.5") << "has a wrong line 1: \"4x6.5\" is not a number";
        QTest::newRow("lines swapped") << changed("Source2HD Delay", "Source2Snk Delay")
                                       << "has a wrong line 3: it does not begin with \"Source2HD";
    }
    void brokenFiles()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const QString, reason);
        const QString file = directory.filePath("broken.txt");
        QVERIFY(write(file, text));
        Series series;
        QString said;
        QCOMPARE(openSeries(file, &series, &said), reason.isEmpty());
        QVERIFY2(said.contains(reason), qPrintable(said));
        QVERIFY(!openSeries(directory.path(), &series, &said));
        QCOMPARE(said, QString("is a folder"));
    }

    /// What a person reads and what a spreadsheet reads.
    void texts()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir(folder.path()).mkdir("a, \"b\" %1"));
        const QString path = folder.filePath("a, \"b\" %1");
        const QString file = save(path, {44, 501, 45}, {0, 0, 0}, {119, 121, 120});
        const Series series = open(file);
        const QString quoted = '"' + QString(file).replace('"', "\"\"") + '"';
        QCOMPARE(
            csvRows(series),
            quoted + ",1,44,0,119,\n" + quoted +
                ",2,501,0,121,Source to RF: no edge: the delay lies at the end of the time axis\n" +
                quoted + ",3,45,0,120,\n");
        const QStringList lines = summarise(series).split('\n');
        QCOMPARE(lines[2], QString("Oscilloscope KVx, records of 1001 samples, 1 ms apart"));
        QCOMPARE(lines[5].simplified(),
                 QString("without flagged 2 44 44 44.5 45 0.707107 1 - - - -"));
    }
};

QTEST_GUILESS_MAIN(AnalysisTest)
#include "AnalysisTest.moc"
