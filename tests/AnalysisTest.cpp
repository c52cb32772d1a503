#include "analysis/Csv.h"
#include "analysis/Summary.h"
#include "SavedSeries.h"
#include "TestFiles.h"

#include <QtTest>

class AnalysisTest : public QObject
{
    Q_OBJECT

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
        QTest::addColumn<QString>("problem");
        const QByteArray good = "Source2RF Delay: 45 46.5\nSource2RF Mean: 45.75\n"
                                "Source2HD Delay: 0 0\nSource2HD Mean: 0\n"
                                "Source2Snk Delay: 120.2 nan\nSource2Snk Mean: nan";
        const auto row = [&](const char *name, QByteArray text, const char *problem) {
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
        row("cut off in the last number",
            changed("120.2 nan", "12 13").replace("Mean: nan", "Mean: 1"),
            "has a wrong line 6: the mean is not that of the delays: cut off or changed.");
        row("counts", changed(" 0 0", " 0"), "has lines of different counts: 2, 1 and 2 delays.");
        row("no number", changed("46.5", "4x6.5"),
            "has a wrong line 1: \"4x6.5\" is not a number.");
        row("no blank before a number", changed(": 120.2", ":120.2"),
            "has a wrong line 5: \"20.2\" is not a number.");
        row("two means", changed("Mean: 0", "Mean: 0 0"),
            "has a wrong line 4: it does not have one mean.");
        row("lines swapped", changed("Source2HD Delay", "Source2Snk Delay"),
            "has a wrong line 3: it does not begin with \"Source2HD Delay:\".");
    }
    void brokenFiles()
    {
        QFETCH(const QByteArray, text);
        const QTemporaryDir folder;
        const QString file = folder.filePath("broken.txt");
        QVERIFY(write(file, text));
        QTEST(loadSeries({file}).problems.join('\n').remove(file + ' '), "problem");
    }

    /// What speaks against a comparison stands before its numbers.
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
            "no difference shown (one of 3.00 ms would");
        row("drift", drift,
            "too narrow because the measurements depend on each other (lag-1 correlation 0.90)\n",
            ": faster");
        row("few in a drift", drift.mid(25),
            "(lag-1 correlation 0.40), unless this is chance, as is common with 5 values\n",
            ": faster");
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

    /// What a person reads and what a spreadsheet reads.
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
            csvRows(series),
            start + "1,44,95,119," + end + start +
                "2,501,0,121,Source to RF: no edge: the delay lies at the end of the time axis; "
                "Source to HDMI: no value from the video analyzer" +
                end + start +
                "3,45,-230,120,Source to HDMI: no event at the video analyzer (-230)" + end);
        const QStringList names = seriesNames({series, open(save(folder.path(), {4}, {0}, {12}))});
        QVERIFY(names[0].startsWith("a, \"b\" %1/Orvanta2026") && names[0] != names[1]);
        const QStringList lines = summarise(series).split('\n');
        QCOMPARE(lines[2], QString("Oscilloscope KVx, records of 1001 samples; resolution: step 1 "
                                   "ms, step / sqrt(12) 0.289 ms"));
        QCOMPARE(lines[5].simplified(),
                 QString("unflagged 2 44.0 44.0 44.5 45.0 0.7 1.0 - - - - -"));
        QVERIFY(lines[7].simplified().startsWith("unflagged 1 95.00 95.00"));
    }
};

QTEST_GUILESS_MAIN(AnalysisTest)
#include "AnalysisTest.moc"
