#include "analysis/SeriesLoading.h"
#include "SavedSeries.h"
#include "TestFiles.h"
#include "viewer/DriftPlot.h"
#include "viewer/HistogramPlot.h"
#include "viewer/Navigation.h"
#include "viewer/ResultsWindow.h"
#include "viewer/TraceData.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QTableView>
#include <QTabWidget>
#include <QtTest>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_histogram.h>
#include <qwt_scale_div.h>

namespace {

/// The ordinates that a trace shows.
Values shown(const TraceData &trace)
{
    Values values;
    for (std::size_t i = 0; i < trace.size(); ++i) {
        values += trace.sample(i).y();
    }
    return values;
}

QPair<double, double> axisOf(const QwtPlot &plot, int axis)
{
    return {plot.axisScaleDiv(axis).lowerBound(), plot.axisScaleDiv(axis).upperBound()};
}

} // namespace

class ViewerTest : public QObject
{
    Q_OBJECT

    const QTemporaryDir home;

private slots:
    void initTestCase()
    {
        qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
        QVERIFY(QDir(home.path()).mkdir("Varnholt"));
    }

    /// However little of a long trace is shown, what stands out of it is.
    void decimation()
    {
        Values samples(1000000, 1.0);
        samples[654321] = 5.0;
        samples[654322] = -5.0;
        samples[10] = qInf();
        samples[11] = qQNaN();
        TraceData trace(samples, 0.0, 1e-6);
        QVERIFY(trace.size() < 10000);
        QCOMPARE(shown(trace).count(5.0), 1);
        QCOMPARE(trace.boundingRect().top(), -5.0);
        QCOMPARE(trace.boundingRect().bottom(), 5.0);

        trace.setRectOfInterest({QPointF(0.6543195, 0.0), QPointF(0.6543235, 1.0)});
        QCOMPARE(shown(trace), (Values{1.0, 1.0, 5.0, -5.0, 1.0, 1.0}));
        QCOMPARE(trace.sample(2).x(), 0.654321);
        trace.setRectOfInterest({QPointF(9e-6, 0.0), QPointF(12e-6, 1.0)});
        QCOMPARE(trace.size(), std::size_t(3));       // without what is not finite
        QCOMPARE(trace.boundingRect().bottom(), 5.0); // the whole trace's, whatever is shown
    }

    /// A flagged value does not squeeze the others: it lies at the border, marked.
    void driftAxis()
    {
        const QTemporaryDir folder;
        const LoadedSeries loaded =
            loadSeries({save(folder.path(), {44, 501, 45}, {0, 0, 0}, {119, 121, 120})});
        const std::unique_ptr<QwtPlot> plot(driftPlot(loaded.series, DelayKind::Rf));
        plot->updateAxes();
        const auto [least, greatest] = axisOf(*plot, QwtPlot::yLeft);
        QVERIFY(least > 43 && least < 44 && greatest > 45 && greatest < 46);
        const auto *flagged =
            static_cast<QwtPlotCurve *>(plot->itemList(QwtPlotItem::Rtti_PlotCurve).last());
        QCOMPARE(flagged->title().text(), QString("Flagged"));
        QCOMPARE(flagged->dataSize(), std::size_t(1));
        QCOMPARE(flagged->sample(0), QPointF(2, greatest));
    }

    /// Two series are compared by their own shares, also where all of one is flagged.
    void histogram()
    {
        const QTemporaryDir folder;
        save(folder.path(), {44, 45, 45, 45}, {0, 0, 0, 0}, {119, 120, 121, 122});
        save(folder.path(), {501}, {0}, {120}, recordOf(500, 1001, 620), "2026-03-06_08-00-00");
        const LoadedSeries loaded = loadSeries({folder.path()});
        const std::unique_ptr<QwtPlot> plot(histogramPlot(loaded.series, DelayKind::Rf));
        const QwtPlotItemList items = plot->itemList(QwtPlotItem::Rtti_PlotHistogram);
        QCOMPARE(items[0]->boundingRect().bottom(), 75.0);
        QCOMPARE(static_cast<QwtPlotHistogram *>(items[1])->sample(0).value, 0.0);
    }

    /// A double click goes back to the whole.
    void navigation()
    {
        QwtPlot plot;
        plot.setAxisScale(QwtPlot::xBottom, 0, 100);
        plot.setAxisScale(QwtPlot::yLeft, 0, 1);
        makeNavigable(&plot);
        plot.resize(600, 400);
        plot.show();
        QVERIFY(QTest::qWaitForWindowExposed(&plot));
        QWidget *canvas = plot.canvas();
        QTest::mousePress(canvas, Qt::LeftButton, {}, {100, 100});
        QTest::mouseMove(canvas, {200, 150});
        QMouseEvent move(QEvent::MouseMove, {300, 200}, Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(canvas, &move);
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, {300, 200});
        const auto [left, right] = axisOf(plot, QwtPlot::xBottom);
        QVERIFY(left > 1 && right < 99);
        QTest::mouseDClick(canvas, Qt::LeftButton);
        QCOMPARE(axisOf(plot, QwtPlot::xBottom), qMakePair(0.0, 100.0));
        QCOMPARE(axisOf(plot, QwtPlot::yLeft), qMakePair(0.0, 1.0));
    }

    /// A series that is saved while the window is open appears; what cannot be read is said.
    void window()
    {
        const QString folder = home.filePath("Varnholt");
        const QString older = save(folder, {44}, {0}, {119});
        ResultsWindow window;
        window.show();
        QVERIFY(window.open({folder}));
        auto *list = window.findChild<QTableView *>("series");
        auto *values = window.findChild<QTableView *>("values");
        QCOMPARE(list->model()->rowCount(), 1);
        QCOMPARE(values->model()->rowCount(), 1);

        save(folder, {45, 46}, {95, 94}, {120, 121}, usual, "2026-03-06_08-00-00");
        QTRY_COMPARE(list->model()->rowCount(), 2);
        QCOMPARE(list->model()->index(0, 0).data().toString(), QString("2026-03-06 08:00:00"));
        QCOMPARE(values->model()->rowCount(), 1); // what is looked at stays

        list->selectAll();
        window.findChild<QTabWidget *>()->setCurrentWidget(values);
        values->setFocus();
        values->selectRow(2);
        QTest::keyClick(values, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(),
                 QString("2026-03-06 08:00:00\t2\t46\t94\t121\t"));

        QVERIFY(QFile::remove(older));
        QTRY_COMPARE(list->model()->rowCount(), 1);

        QString said;
        QTimer::singleShot(0, &window, [&said] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            said = box == nullptr ? QString() : box->informativeText();
            QApplication::activeModalWidget()->close();
        });
        QVERIFY(!window.open({folder + "/none"}));
        QCOMPARE(said, folder + "/none does not exist.");
    }

    /// Loading can be stopped, and has then what came first.
    void cancel()
    {
        const QTemporaryDir folder;
        for (const char *stamp : {"2026-03-05_14-07-09", "2026-03-06_08-00-00"}) {
            save(folder.path(), {44}, {0}, {119}, usual, stamp);
        }
        const LoadedSeries loaded =
            loadSeries({folder.path()}, [](int done, int all) { return done < 1 && all == 2; });
        QCOMPARE(loaded.series.size(), 1);
        QCOMPARE(loaded.series[0].time.date().day(), 5); // the oldest
    }
};

QTEST_MAIN(ViewerTest)
#include "ViewerTest.moc"
