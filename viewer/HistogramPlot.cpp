#include "analysis/DelayText.h"
#include "analysis/Histogram.h"
#include "analysis/Statistics.h"
#include "viewer/Plots.h"
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
    QVector<QVector<double>> values; // of each series
    double step = 0.0;
    for (const Series &series : selection) {
        values += selectValues(series, kind, Select::Unflagged);
        step = std::max(step, delayStep(series, kind));
    }
    const QwtInterval axis = delayAxis(selection, kind);
    const Bins bins = chooseBins(values, step, axis.minValue(), axis.maxValue());
    const bool isShare = selection.size() > 1; // since two series may have different counts
    QwtPlot *plot =
        makePlot(delayName(kind) + " / ms, bins of " + delayText(bins.width, step) + " ms",
                 isShare ? "Share / %" : "Count");
    double highest = 0.0;
    for (int i = 0; i < selection.size(); ++i) {
        if (!isMeasured(selection[i].results, kind)) {
            continue;
        }
        const SeriesStyle style = seriesStyle(i);
        const int n = values[i].size();
        const double weight = isShare ? 100.0 / std::max(1, n) : 1.0; // of a value; n may be 0
        const QVector<int> counts = countValues(values[i], bins);
        QVector<QwtIntervalSample> columns;
        for (int bin = 0; bin < bins.count; ++bin) {
            columns +=
                QwtIntervalSample(counts[bin + 1] * weight, bins.edge(bin), bins.edge(bin + 1));
            highest = std::max(highest, columns.last().value);
        }
        QString title = plotNames(selection)[i];
        if (const int leftOut = selection[i].count() - n) {
            title += QString(" (%1 flagged left out)").arg(leftOut);
        }
        addHistogram(plot, title, columns, style);
        if (n > 0) {
            addLine(plot, computeStatistics(values[i]).median, style.pen(2 * dataWidth));
        }
        const double border = 0.02 * axis.width();
        QVector<QPointF> beyond;
        for (const auto &[count, place] : {std::pair(counts.first(), axis.minValue() + border),
                                           {counts.last(), axis.maxValue() - border}}) {
            if (count > 0) {
                beyond += QPointF(place, count * weight);
                highest = std::max(highest, count * weight);
            }
        }
        addMarks(plot, "beyond", counts.first() + counts.last(), beyond, QwtSymbol::Triangle,
                 style.colour);
    }
    plot->setAxisScale(QwtPlot::xBottom, axis.minValue(), axis.maxValue());
    plot->setAxisScale(QwtPlot::yLeft, 0.0, highest > 0.0 ? highest * 1.08 : 1.0);
    return plot;
}
