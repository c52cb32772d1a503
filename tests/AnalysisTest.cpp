#include "analysis/Csv.h"
#include "analysis/Summary.h"
#include "SavedSeries.h"
#include "TestFiles.h"

#include <QtTest>

class AnalysisTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir directory;

private slots:
    /// A results file may be renamed to have a label, and its traces keep their names. Before they
    /// are read, they raise no doubt.
    void labelAndTraces()
    {
        const QTemporaryDir folder;
        const QString labelled = folder.filePath("FW 2.1_Orvanta2026-03-05_14-07-09_Results.txt");
        QVERIFY(QFile::rename(save(folder.path(), {45}, {0}, {120}), labelled));
        Series series;
        QString reason;
        QVERIFY(openResults(labelled, &series, &reason));
        QCOMPARE(seriesName(series), QString("FW 2.1 (2026-03-05 14:07:09)"));
        QVERIFY(!isDoubtful(series));
        addTraces(&series);
        QVERIFY(series.oscilloscope.type);
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
        QTest::newRow("no blank before a number")
            << changed(": 120.2", ":120.2") << "has a wrong line 5: \"20.2\" is not a number";
        QTest::newRow("two means")
            << changed("Mean: 0", "Mean: 0 0") << "has a wrong line 4: it does not have one mean";
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

    /// What speaks against a comparison stands before its numbers.
    void comparison_data()
    {
        QTest::addColumn<Values>("toSink"); // of the second series
        QTest::addColumn<QString>("warning");
        QTest::addColumn<QString>("result");
        const QString equal = "no difference shown; one of 3.0 ms would";
        Values drift(30);
        std::iota(drift.begin(), drift.end(), 91);
        const QString dependent = "(lag-1 correlation 0.90), so the interval is too narrow";
        QTest::newRow("equal") << varied(30, 120) << "" << equal;
        QTest::newRow("slower") << varied(30, 140) << ""
                                << ": slower";
        QTest::newRow("faster") << varied(30, 100) << ""
                                << ": faster";
        QTest::newRow("few") << varied(4, 120) << ""
                             << "takes 5 values";
        QTest::newRow("flagged") << Values{501} + varied(30, 120) << "left out: 1" << equal;
        QTest::newRow("drift") << drift << dependent << ": faster";
    }
    void comparison()
    {
        QFETCH(const Values, toSink);
        QFETCH(const QString, warning);
        QFETCH(const QString, result);
        const auto measure = [](const Values &delays) {
            const QTemporaryDir folder;
            const Values others(delays.size(), 45);
            const int edge = 500 + static_cast<int>(delays.last());
            return open(save(folder.path(), others, others, delays, recordOf(500, 545, edge)));
        };
        const QString text = compareSeries(measure(varied(30, 120)), measure(toSink));
        QVERIFY2(text.section(" compared with ", 0, 0).contains(warning), qPrintable(text));
        QCOMPARE(text.startsWith("Warning"), !warning.isEmpty());
        QVERIFY2(text.contains(result), qPrintable(text));
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
        const QString name = ",2026-03-05 14:07:09\n";
        QCOMPARE(
            csvRows(series),
            quoted + ",1,44,0,119," + name + quoted +
                ",2,501,0,121,Source to RF: no edge: the delay lies at the end of the time axis" +
                name + quoted + ",3,45,0,120," + name);
        const QStringList lines = summarise(series).split('\n');
        QCOMPARE(lines[2], QString("Oscilloscope KVx, records of 1001 samples; resolution: step 1 "
                                   "ms, step / sqrt(12) 0.289 ms"));
        QCOMPARE(lines[5].simplified(),
                 QString("unflagged 2 44.0 44.0 44.5 45.0 0.7 1.0 - - - - -"));
    }
};

QTEST_GUILESS_MAIN(AnalysisTest)
#include "AnalysisTest.moc"
