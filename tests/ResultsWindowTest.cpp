#include "viewer/ResultsWindow.h"
#include "SavedSeries.h"
#include "TestFiles.h"
#include "viewer/PlotColumn.h"
#include "viewer/Plots.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTableView>
#include <QTabWidget>
#include <QtTest>

#include <qwt_plot.h>
#include <qwt_scale_map.h>

#include <memory>

namespace {

const char *const nextDay = "2026-03-06_08-00-00";

QPair<double, double> axisOf(const QwtPlot &plot, int axis)
{
    return {plot.axisInterval(axis).minValue(), plot.axisInterval(axis).maxValue()};
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
    const QString folder = home.filePath("Varnholt");
    std::unique_ptr<ResultsWindow> window;
    QTableView *list = nullptr; // of the window
    QTableView *values = nullptr;

    [[nodiscard]] static QString cell(const QTableView *table, int row, int column)
    {
        return table->model()->index(row, column).data().toString();
    }

private slots:
    void initTestCase()
    {
        qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
        qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    }

    void init()
    {
        QVERIFY(QDir().mkpath(folder));
        window = std::make_unique<ResultsWindow>();
        window->show();
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        list = window->findChild<QTableView *>("series");
        values = window->findChild<QTableView *>("values");
    }

    void cleanup()
    {
        window.reset();
        QVERIFY(QDir(folder).removeRecursively());
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
        PlotColumn column([plots] { return plots; });
        column.resize(600, 400);
        column.show();
        QVERIFY(QTest::qWaitForWindowExposed(&column));
        const auto whole = qMakePair(0.0, 100.0);
        QCOMPARE(axisOf(*plots[0], QwtPlot::xBottom), whole);

        turnWheel(plots[1]->canvas(), 2); // up
        const auto [left, right] = axisOf(*plots[0], QwtPlot::xBottom);
        QVERIFY(left > 1);
        QVERIFY(right < 90);
        QCOMPARE(axisOf(*plots[1], QwtPlot::xBottom), qMakePair(left, right));
        QCOMPARE(axisOf(*plots[0], QwtPlot::yLeft), qMakePair(0.0, 1.0));
        turnWheel(plots[1]->canvas(), -3);
        QCOMPARE(axisOf(*plots[0], QwtPlot::xBottom), whole);
        column.zoom(0.5);
        QCOMPARE(axisOf(*plots[0], QwtPlot::xBottom), qMakePair(25.0, 75.0));
        QTest::mouseDClick(plots[0]->canvas(), Qt::LeftButton);
        QCOMPARE(axisOf(*plots[1], QwtPlot::xBottom), whole);
    }

    /// The text beside the pointer names the measurement, also for a point at the plot's border.
    void hover()
    {
        const QVector<Series> shown{
            ::open(save(folder, {44, 501, 45}, {0, 0, 0}, {119, 121, 120}))};
        const std::unique_ptr<QwtPlot> plot(driftPlot(shown, SourceToRf));
        plot->resize(600, 400);
        plot->replot();
        const double x = plot->canvasMap(QwtPlot::xBottom).transform(2);
        QCOMPARE(measurementText(*plot, shown, SourceToRf, {int(x), 2}),
                 QString("2026-03-05 14:07:09\nMeasurement 2: 501 ms\n") +
                     flagReasons(Flag::EndOfAxis));
        QCOMPARE(measurementText(*plot, shown, SourceToRf, {int(x), 100}), QString());
    }

    /// The list follows its folder. The selected series stays selected while its file exists.
    void liveFolder()
    {
        const QString older = save(folder, {44}, {0}, {119});
        QVERIFY(window->open({folder}));
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(cell(values, 0, 2), QString("44"));

        const QString newer = save(folder, {46, 45}, {95, 94}, {119, 120}, usual, nextDay);
        QVERIFY(QFile::rename(traceFile(newer, "snk"), folder + "/late"));
        QTRY_COMPARE(list->model()->rowCount(), 2);
        QTRY_COMPARE(cell(list, 0, 5), QString("no type"));
        QCOMPARE(cell(list, 0, 0), QString("2026-03-06 08:00:00"));
        QCOMPARE(cell(values, 0, 2), QString("44"));
        QVERIFY(QFile::rename(folder + "/late", traceFile(newer, "snk")));
        QTRY_COMPARE(cell(list, 0, 5), QString("0"));

        save(folder, {45}, {0}, {120});
        QTRY_COMPARE(cell(values, 0, 2), QString("45"));
        QVERIFY(QFile::remove(older));
        QTRY_COMPARE(cell(values, 0, 0), QString("2026-03-06 08:00:00"));

        QVERIFY(QDir(folder).removeRecursively());
        QTRY_COMPARE(list->model()->rowCount(), 0);
        QVERIFY(QDir().mkpath(folder));
        save(folder, {45}, {0}, {120});
        QTRY_COMPARE(list->model()->rowCount(), 1);
    }

    void listAndValues()
    {
        save(folder, {46, 45}, {95, 94}, {119, 120}, usual, nextDay);
        save(folder, {100}, {0}, {120}, recordOf(500, 600, 620));
        QVERIFY(window->open({folder}));

        QVERIFY(window->findChild<QPlainTextEdit *>()->toPlainText().contains("Oscilloscope KVx"));
        QVERIFY(window->statusBar()->currentMessage().startsWith("Select a second series"));
        list->selectAll();
        window->findChild<QTabWidget *>()->setCurrentWidget(values);
        values->setFocus();
        values->selectAll(); // the older series comes first
        QTest::keyClick(values, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(),
                 QString("2026-03-05 14:07:09\t1\t100\t0\t120\t\n"
                         "2026-03-06 08:00:00\t1\t46\t95\t119\t\n"
                         "2026-03-06 08:00:00\t2\t45\t94\t120\t"));

        list->sortByColumn(5, Qt::AscendingOrder); // rows then move when their traces are read
        QTest::keyClick(window.get(), Qt::Key_F5);
        QCOMPARE(cell(values, 0, 2), QString("100"));
        QCOMPARE(cell(values, 1, 2), QString("46"));

        list->sortByColumn(2, Qt::DescendingOrder); // as text, 45 would come first
        QCOMPARE(cell(list, 0, 1), QString("1"));
        window->findChild<QLineEdit *>()->setText("03-06 08");
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(cell(list, 0, 1), QString("2"));
        QTest::qWait(200); // Qt's animation of the button that clears the text ends by itself only
    }

    void exports()
    {
        save(folder, {44}, {0}, {119});
        QVERIFY(window->open({folder}));
        const auto exportTo = [this](const QString &name, Qt::Key key) {
            QTimer::singleShot(0, this, [this, name] {
                auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
                QCOMPARE(dialog->acceptMode(), QFileDialog::AcceptSave);
                dialog->findChild<QLineEdit *>("fileNameEdit")->setText(folder + name);
                QMetaObject::invokeMethod(dialog, "accept");
            });
            QTest::keyClick(window.get(), key, Qt::ControlModifier);
        };
        exportTo("/values", Qt::Key_S);
        QVERIFY(contents(folder + "/values.csv").startsWith("file,"));
        window->activateWindow(); // again, after the dialog
        QVERIFY(QTest::qWaitForWindowActive(window.get()));
        exportTo("/view.svg", Qt::Key_E);
        QVERIFY(contents(folder + "/view.svg").contains(">RF / ms<"));
    }

    /// A box names what cannot be read, as plain text.
    void problems()
    {
        QString said;
        QTimer::singleShot(0, this, [&said] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            said = box->textFormat() == Qt::PlainText ? box->text() : "rendered";
            box->close();
        });
        QVERIFY(!window->open({home.filePath("<b>none")}));
        QVERIFY(said.endsWith("/<b>none does not exist."));
    }
};

QTEST_MAIN(ResultsWindowTest)
#include "ResultsWindowTest.moc"
