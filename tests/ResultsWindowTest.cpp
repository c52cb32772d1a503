#include "viewer/ResultsWindow.h"
#include "analysis/SeriesLoading.h"
#include "SavedSeries.h"
#include "viewer/DriftPlot.h"
#include "viewer/MeasurementText.h"
#include "viewer/PlotColumn.h"

#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QTableView>
#include <QTabWidget>
#include <QtTest>

#include <qwt_plot.h>
#include <qwt_scale_map.h>

namespace {

QPair<double, double> axisOf(const QwtPlot &plot, int axis)
{
    return {plot.axisInterval(axis).minValue(), plot.axisInterval(axis).maxValue()};
}

void drag(QWidget *canvas, const QPoint &from, const QPoint &to)
{
    QTest::mousePress(canvas, Qt::LeftButton, {}, from);
    QTest::mouseMove(canvas, (from + to) / 2);
    QMouseEvent move(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(canvas, &move);
    QTest::mouseRelease(canvas, Qt::LeftButton, {}, to);
}

void turnWheel(QWidget *canvas, int steps)
{
    constexpr int step = 120; // of 1/8 degree
    QWheelEvent turn({90, 40}, canvas->mapToGlobal(QPoint(90, 40)), {}, {0, steps * step},
                     Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(canvas, &turn);
}

} // namespace

class ResultsWindowTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir home;
    QTableView *list = nullptr; // of the window under test
    QTableView *values = nullptr;

    [[nodiscard]] QString cell(int row, const char *heading) const
    {
        const QAbstractItemModel *model = list->model();
        for (int column = 0; column < model->columnCount(); ++column) {
            if (model->headerData(column, Qt::Horizontal) == heading) {
                return model->index(row, column).data().toString();
            }
        }
        return "no such column";
    }
    /// What stands in the first row of the values.
    [[nodiscard]] QString shownValue(int column) const
    {
        return values->model()->index(0, column).data().toString();
    }
    void find(const ResultsWindow &window)
    {
        list = window.findChild<QTableView *>("series");
        values = window.findChild<QTableView *>("values");
    }

private slots:
    void initTestCase()
    {
        qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
        QVERIFY(QDir(home.path()).mkdir("Varnholt"));
    }

    /// Plots with the same axis move together, and never beyond their data.
    void navigation()
    {
        QVector<QwtPlot *> plots;
        for (const double greatest : {80.0, 100.0}) { // of two series, one is shorter
            plots += new QwtPlot;
            plots.last()->setAxisScale(QwtPlot::xBottom, 0, greatest);
            plots.last()->setAxisScale(QwtPlot::yLeft, 0, 1);
        }
        PlotColumn column;
        column.setPlots(plots);
        column.resize(600, 400);
        column.show();
        QVERIFY(QTest::qWaitForWindowExposed(&column));
        const auto whole = qMakePair(0.0, 100.0);
        QCOMPARE(axisOf(*plots[0], QwtPlot::xBottom), whole);

        drag(plots[0]->canvas(), {100, 30}, {300, 90});
        const auto [left, right] = axisOf(*plots[0], QwtPlot::xBottom);
        QVERIFY(left > 1 && right < 99);
        QCOMPARE(axisOf(*plots[1], QwtPlot::xBottom), qMakePair(left, right));
        QCOMPARE(axisOf(*plots[1], QwtPlot::yLeft), qMakePair(0.0, 1.0));
        QTest::mouseDClick(plots[0]->canvas(), Qt::LeftButton);
        QCOMPARE(axisOf(*plots[1], QwtPlot::xBottom), whole);
        QCOMPARE(axisOf(*plots[0], QwtPlot::yLeft), qMakePair(0.0, 1.0));

        turnWheel(plots[1]->canvas(), 2); // up
        QVERIFY(axisOf(*plots[0], QwtPlot::xBottom).second < 90);
        turnWheel(plots[1]->canvas(), -3);
        QCOMPARE(axisOf(*plots[0], QwtPlot::xBottom), whole);
        column.zoom(0.5);
        QCOMPARE(axisOf(*plots[0], QwtPlot::xBottom), qMakePair(25.0, 75.0));
    }

    /// The point below the pointer is told by what was measured, also at the border of the plot.
    void hover()
    {
        const QTemporaryDir folder;
        const QVector<Series> shown =
            loadSeries({save(folder.path(), {44, 501, 45}, {0, 0, 0}, {119, 121, 120})}).series;
        const std::unique_ptr<QwtPlot> plot(driftPlot(shown, SourceToRf));
        plot->resize(600, 400);
        plot->replot();
        const double x = plot->canvasMap(QwtPlot::xBottom).transform(2);
        QCOMPARE(measurementText(*plot, shown, SourceToRf, {int(x), 2}),
                 QString("2026-03-05 14:07:09\nMeasurement 2: 501 ms\n") +
                     flagReason(Flag::EndOfAxis));
        QCOMPARE(measurementText(*plot, shown, SourceToRf, {int(x), 100}), QString());
    }

    /// The window follows its folder, and what is looked at stays while it is there.
    void liveFolder()
    {
        const QString folder = home.filePath("Varnholt");
        const QString older = save(folder, {44}, {0}, {119});
        ResultsWindow window;
        window.show();
        QVERIFY(window.open({folder}));
        find(window);
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(shownValue(2), QString("44"));

        const QString newer =
            save(folder, {46, 45}, {95, 94}, {119, 120}, usual, "2026-03-06_08-00-00");
        QVERIFY(QFile::rename(traceFile(newer, "snk"), folder + "/late"));
        QTRY_COMPARE(list->model()->rowCount(), 2);
        QTRY_COMPARE(cell(0, "Flags"), QString("no type"));
        QCOMPARE(cell(0, "Series"), QString("2026-03-06 08:00:00"));
        QCOMPARE(shownValue(2), QString("44"));
        QVERIFY(QFile::rename(folder + "/late", traceFile(newer, "snk")));
        QTRY_COMPARE(cell(0, "Flags"), QString("0"));

        save(folder, {45}, {0}, {120});
        QTRY_COMPARE(shownValue(2), QString("45"));
        QVERIFY(QFile::remove(older));
        QTRY_COMPARE(shownValue(0), QString("2026-03-06 08:00:00"));

        QVERIFY(QDir(folder).removeRecursively());
        QTRY_COMPARE(list->model()->rowCount(), 0);
        QVERIFY(QDir(home.path()).mkdir("Varnholt"));
        save(folder, {45}, {0}, {120});
        QTRY_COMPARE(list->model()->rowCount(), 1);
    }

    void listAndValues()
    {
        const QTemporaryDir folder;
        save(folder.path(), {46, 45}, {95, 94}, {119, 120}, usual, "2026-03-06_08-00-00");
        save(folder.path(), {100}, {0}, {120}, recordOf(500, 600, 620));
        ResultsWindow window;
        window.show();
        QVERIFY(window.open({folder.path()}));
        QVERIFY(QTest::qWaitForWindowActive(&window));
        find(window);

        list->selectAll();
        window.findChild<QTabWidget *>()->setCurrentWidget(values);
        values->setFocus();
        values->selectRow(2); // after those of the older series
        QTest::keyClick(values, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(),
                 QString("2026-03-06 08:00:00\t2\t45\t94\t120\t"));

        list->sortByColumn(2, Qt::DescendingOrder); // by numbers: as texts, 100 is less than 45
        QCOMPARE(cell(0, "Count"), QString("1"));
        window.findChild<QLineEdit *>()->setText("03-06 08");
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(cell(0, "Count"), QString("2"));
        QTest::qWait(200); // Qt's animation of the button that clears the text ends by itself only
    }

    /// What cannot be read is said, and names are no HTML.
    void problems()
    {
        ResultsWindow window;
        QString said;
        QTimer::singleShot(0, &window, [&said] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            said = box->textFormat() == Qt::PlainText ? box->text() : "rendered";
            box->close();
        });
        QVERIFY(!window.open({home.filePath("<b>none")}));
        QVERIFY(said.endsWith("/<b>none does not exist."));
    }
};

QTEST_MAIN(ResultsWindowTest)
#include "ResultsWindowTest.moc"
