#include "analysis/SeriesLoading.h"
#include "SavedSeries.h"
#include "TestFiles.h"
#include "viewer/DriftPlot.h"
#include "viewer/HistogramPlot.h"
#include "viewer/TraceData.h"

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

private slots:
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
};

QTEST_MAIN(ViewerTest)
#include "ViewerTest.moc"
