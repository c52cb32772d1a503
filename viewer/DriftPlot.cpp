#include "viewer/DriftPlot.h"

#include "analysis/DelayText.h"
#include "analysis/Statistics.h"
#include "viewer/DelayRange.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_intervalcurve.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostPoints = 2000; // of a series with more, columns of values are drawn
constexpr int mostColumns = 100; // so that P5 and P95 have the values that they need

/// Where the values of a series lie in the plot, in the order of measurements.
struct Points
{
    Points(const Series &series, DelayKind kind, const QwtInterval &axis)
    {
        const QVector<double> &values = series.results[kind].values;
        const double border = 0.02 * axis.width(); // a symbol on the axis itself would be cut
        for (int i = 0; i < values.size(); ++i) {
            if (!std::isfinite(values[i])) {
                continue; // there is no place for it
            }
            const bool isInside = axis.contains(values[i]);
            const QPointF point(i + 1.0, isInside ? values[i]
                                                  : qBound(axis.minValue() + border, values[i],
                                                           axis.maxValue() - border));
            const bool isFlagged = series.flags[kind][i] != 0;
            (isFlagged ? flagged : unflagged) += point;
            (isFlagged || isInside ? ordinary : beyond) += point;
        }
    }

    QVector<QPointF> flagged;
    QVector<QPointF> unflagged;
    QVector<QPointF> ordinary; ///< all but those beyond
    QVector<QPointF> beyond;   ///< too far away to be inside, and not flagged
};

/// Keep one point of each column of so many measurements.
QVector<QPointF> thin(const QVector<QPointF> &points, int columnWidth)
{
    QVector<QPointF> kept;
    for (const QPointF &point : points) {
        if (kept.isEmpty() || point.x() - kept.last().x() >= columnWidth) {
            kept += point;
        }
    }
    return kept;
}

/// Draw median and band of each column of so many measurements. Returns the columns' extremes.
QVector<QPointF> addColumns(QwtPlot *plot, const QVector<QPointF> &points, int columnWidth,
                            const SeriesStyle &style, bool inLegend)
{
    QVector<QwtIntervalSample> bands;
    QVector<QPointF> medians;
    QVector<QPointF> extremes;
    for (int from = 0; from < points.size(); from += columnWidth) {
        const int to = std::min(from + columnWidth, points.size());
        QVector<double> values;
        for (int i = from; i < to; ++i) {
            values += points[i].y();
        }
        const Statistics of = computeStatistics(values);
        for (const double end : {points[from].x(), points[to - 1].x()}) {
            medians += {end, of.median};
            if (std::isfinite(of.p5)) {
                bands += {end, of.p5, of.p95};
            }
        }
        const double middle = (points[from].x() + points[to - 1].x()) / 2;
        extremes += {{middle, of.minimum}, {middle, of.maximum}};
    }
    auto *band = new QwtPlotIntervalCurve(QString("P5 to P95"));
    band->setPen(QPen(Qt::NoPen));
    band->setBrush(style.lightColour());
    band->setSamples(bands);
    auto *median = new QwtPlotCurve(QString("Median"));
    median->setPen(style.pen(dataWidth));
    median->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    median->setSamples(medians);
    for (QwtPlotItem *item : std::initializer_list<QwtPlotItem *>{band, median}) {
        item->setItemAttribute(QwtPlotItem::Legend, inLegend);
        item->attach(plot);
    }
    return extremes;
}

} // namespace

QwtPlot *driftPlot(const QVector<Series> &selection, DelayKind kind)
{
    int longest = 0;
    for (const Series &series : selection) {
        longest = std::max(longest, series.count());
    }
    const int columnWidth = longest > mostPoints ? (longest + mostColumns - 1) / mostColumns : 1;
    QwtPlot *plot = makePlot(
        columnWidth > 1 ? QString("Measurement (columns of %1)").arg(columnWidth) : "Measurement",
        delayEnd(kind) + " / ms");
    const QwtInterval axis = withAir(delayRange(selection, kind));
    QVector<QPointF> flagged;
    int flaggedCount = 0;
    bool inLegend = true; // once for both series
    for (int i = 0; i < selection.size(); ++i) {
        if (!isMeasured(selection[i].results, kind)) {
            continue;
        }
        const SeriesStyle style = seriesStyle(i);
        const Points points(selection[i], kind, axis);
        const bool isLong = selection[i].count() > mostPoints;
        const QVector<QPointF> extremes =
            addColumns(plot, points.unflagged, isLong ? columnWidth : longest, style, inLegend);
        inLegend = false;
        addPoints(plot, plotNames(selection)[i], isLong ? extremes : points.ordinary,
                  style.makeSymbol(isLong ? 3 : 7));
        addBeyond(plot, points.beyond.size(), thin(points.beyond, columnWidth), style);
        flagged += thin(points.flagged, columnWidth);
        flaggedCount += points.flagged.size();
    }
    if (!flagged.isEmpty()) {
        const int size = columnWidth > 1 ? 5 : 11;
        addPoints(plot, QString("%1 flagged").arg(flaggedCount), flagged,
                  new QwtSymbol(QwtSymbol::XCross, Qt::NoBrush, QPen(flagColour, dataWidth),
                                QSize(size, size)));
    }
    const double side = std::max(0.5, 0.02 * longest);
    plot->setAxisScale(QwtPlot::xBottom, 1 - side, longest + side);
    plot->setAxisScale(QwtPlot::yLeft, axis.minValue(), axis.maxValue());
    return plot;
}
