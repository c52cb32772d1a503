#include "viewer/HistogramPlot.h"

#include "analysis/DelayText.h"
#include "analysis/Histogram.h"
#include "analysis/Statistics.h"
#include "viewer/DelayRange.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_histogram.h>

#include <algorithm>

namespace {

void addHistogram(QwtPlot *plot, const QString &title, const QVector<QwtIntervalSample> &columns,
                  const SeriesStyle &style)
{
    auto *histogram = new QwtPlotHistogram(QwtText(title, QwtText::PlainText));
    const bool isSolid = style.fill == Qt::SolidPattern;
    histogram->setBrush(QBrush(isSolid ? style.lightColour() : style.colour, style.fill));
    histogram->setPen(QPen(style.colour, dataWidth));
    histogram->setStyle(QwtPlotHistogram::Outline);
    histogram->setSamples(columns);
    histogram->attach(plot);
}

} // namespace

QwtPlot *histogramPlot(const QVector<Series> &selection, DelayKind kind)
{
    const QwtInterval range = delayRange(selection, kind);
    QVector<QVector<double>> values; // of each series
    double step = 0.0;
    for (const Series &series : selection) {
        values += selectValues(series, kind, false);
        step = std::max(step, delayStep(series, kind));
    }
    const Bins bins = chooseBins(values, step, range.minValue(), range.maxValue());
    const bool isShare = selection.size() > 1; // series of different counts are to be compared
    QwtPlot *plot =
        makePlot(delayName(kind) + (bins.count == 0
                                        ? QString(" / ms")
                                        : " / ms, bins of " + delayText(bins.width, step) + " ms"),
                 isShare ? "Share / %" : "Count");
    const double air = std::max(1.0, bins.count * 0.03) * bins.width;
    const QwtInterval axis = bins.count == 0
                                 ? withAir(range)
                                 : QwtInterval(bins.start - air, bins.edge(bins.count) + air);
    for (int i = 0; i < selection.size(); ++i) {
        if (!isMeasured(selection[i].results, kind)) {
            continue;
        }
        const SeriesStyle style = seriesStyle(i);
        const int n = values[i].size();
        const double one = isShare ? 100.0 / std::max(1, n) : 1.0; // all may be flagged
        const QVector<int> counts = countValues(values[i], bins);
        QVector<QwtIntervalSample> columns;
        for (int bin = 0; bin < bins.count; ++bin) {
            columns += QwtIntervalSample(counts[bin + 1] * one, bins.edge(bin), bins.edge(bin + 1));
        }
        QString title = plotNames(selection)[i];
        const int leftOut = selection[i].results[kind].values.size() - n;
        if (leftOut > 0) {
            title += QString(" (%1 flagged left out)").arg(leftOut);
        }
        addHistogram(plot, title, columns, style);
        if (n > 0) {
            addLine(plot, computeStatistics(values[i]).median, style.pen(2 * dataWidth));
        }
        QVector<QPointF> beyond;
        for (const auto &[count, border] : {std::pair(counts.first(), axis.minValue() + air / 2),
                                            {counts.last(), axis.maxValue() - air / 2}}) {
            if (count > 0) {
                beyond += QPointF(border, count * one);
            }
        }
        addBeyond(plot, counts.first() + counts.last(), beyond, style);
    }
    double most = 0.0;
    for (const QwtPlotItem *item : plot->itemList()) {
        most = std::max(most, item->boundingRect().bottom());
    }
    plot->setAxisScale(QwtPlot::xBottom, axis.minValue(), axis.maxValue());
    plot->setAxisScale(QwtPlot::yLeft, 0.0, most > 0.0 ? most * 1.08 : 1.0);
    return plot;
}
