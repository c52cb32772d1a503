#include "viewer/HistogramPlot.h"

#include "analysis/Histogram.h"
#include "analysis/Statistics.h"
#include "instrument/NumberText.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_histogram.h>

#include <algorithm>
#include <numeric>

namespace {

void addHistogram(QwtPlot *plot, const QString &title, const QVector<double> &heights,
                  const Bins &bins, const SeriesStyle &style)
{
    QVector<QwtIntervalSample> columns;
    for (int i = 0; i < heights.size(); ++i) {
        const double from = bins.start + i * bins.width;
        columns += QwtIntervalSample(heights[i], from, from + bins.width);
    }
    auto *histogram = new QwtPlotHistogram(QwtText(title, QwtText::PlainText));
    QColor light = style.colour;
    constexpr int opacity = 70;
    light.setAlpha(style.fill == Qt::SolidPattern ? opacity : 255);
    histogram->setBrush(QBrush(light, style.fill));
    histogram->setPen(QPen(style.colour, dataWidth));
    histogram->setStyle(QwtPlotHistogram::Outline);
    histogram->setSamples(columns);
    histogram->attach(plot);
}

/// How high each bin stands: its count, or its share of the values in per cent.
QVector<double> binHeights(const QVector<double> &values, const Bins &bins, bool isShare)
{
    const QVector<int> counts = countValues(values, bins);
    const double one = isShare ? 100.0 / std::max(1, values.size()) : 1.0; // all may be flagged
    QVector<double> heights(counts.size());
    std::transform(counts.begin(), counts.end(), heights.begin(),
                   [one](int count) { return count * one; });
    return heights;
}

QString legendText(const Series &series, const QVector<double> &values, DelayKind kind)
{
    const int leftOut = valuesOf(series.results, kind).size() - values.size();
    QString text = seriesName(series);
    if (leftOut > 0) {
        text += QString(" (%1 flagged left out)").arg(leftOut);
    }
    return text;
}

} // namespace

QwtPlot *histogramPlot(const QVector<Series> &selection, DelayKind kind)
{
    QVector<double> all;
    double interval = 0.0;
    for (const Series &series : selection) {
        all += selectValues(series, kind, false);
        // HDMI delays are the video analyzer's, and know nothing of the oscilloscope's samples.
        interval = std::max(interval, kind == DelayKind::Hdmi ? 0.0 : samplingInterval(series));
    }
    const Bins bins = chooseBins(all, interval);
    const bool isShare = selection.size() > 1; // series of different counts are to be compared
    QwtPlot *plot = makePlot(
        delayName(kind) + (bins.count == 0 ? QString(" / ms")
                                           : " / ms, in bins of " + numberText(bins.width) + " ms"),
        isShare ? "Share / %" : "Count");
    double most = 0.0;
    for (int i = 0; i < selection.size(); ++i) {
        if (!isMeasured(selection[i].results, kind)) {
            continue;
        }
        const QVector<double> values = selectValues(selection[i], kind, false);
        const QVector<double> heights = binHeights(values, bins, isShare);
        most = std::accumulate(heights.begin(), heights.end(), most,
                               [](double a, double b) { return std::max(a, b); });
        addHistogram(plot, legendText(selection[i], values, kind), heights, bins, seriesStyle(i));
        if (!values.isEmpty()) {
            addLine(plot, computeStatistics(values).median, seriesStyle(i).pen(2 * dataWidth));
        }
    }
    const double air = std::max(1.0, bins.count * 0.03) * bins.width;
    plot->setAxisScale(QwtPlot::xBottom, bins.start - air,
                       bins.count == 0 ? 1.0 : bins.start + bins.count * bins.width + air);
    plot->setAxisScale(QwtPlot::yLeft, 0.0, most > 0.0 ? most * 1.08 : 1.0);
    return plot;
}
