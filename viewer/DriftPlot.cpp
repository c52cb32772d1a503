#include "viewer/DriftPlot.h"

#include "analysis/Statistics.h"
#include "viewer/DelayRange.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_intervalcurve.h>
#include <qwt_plot_marker.h>
#include <qwt_plot_zoneitem.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostPoints = 2000; // of a series with more, columns of values are drawn
constexpr int mostColumns = 150;
const char *const bandTitle = "P5 to P95";
const char *const medianTitle = "Median";

/// A zone that the legend shows, too.
class Band : public QwtPlotZoneItem
{
public:
    [[nodiscard]] QwtGraphic legendIcon(int /*index*/, const QSizeF &size) const override
    {
        return defaultIcon(brush(), size);
    }
};

void addMedianAndBand(QwtPlot *plot, const Statistics &of, const SeriesStyle &style, bool inLegend)
{
    if (of.n == 0) {
        return;
    }
    if (std::isfinite(of.p5)) {
        auto *band = new Band;
        band->setOrientation(Qt::Horizontal);
        band->setInterval(of.p5, of.p95);
        band->setBrush(style.lightColour());
        band->setPen(QPen(Qt::NoPen));
        band->setTitle(bandTitle);
        band->setItemAttribute(QwtPlotItem::Legend, inLegend);
        band->attach(plot);
    }
    auto *median = new QwtPlotMarker;
    median->setLineStyle(QwtPlotMarker::HLine);
    median->setLinePen(style.pen(dataWidth));
    median->setYValue(of.median);
    median->setTitle(QString(medianTitle));
    median->setItemAttribute(QwtPlotItem::Legend, inLegend);
    median->setLegendIconSize(QSize(20, 8)); // pixels
    median->attach(plot);
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
        std::sort(values.begin(), values.end());
        const double middle = (points[from].x() + points[to - 1].x()) / 2;
        bands += QwtIntervalSample(middle, nearestRank(values, 50), nearestRank(values, 950));
        medians += QPointF(middle, nearestRank(values, 500));
        extremes += {QPointF(middle, values.first()), QPointF(middle, values.last())};
    }
    auto *band = new QwtPlotIntervalCurve(bandTitle);
    band->setStyle(QwtPlotIntervalCurve::Tube);
    band->setPen(QPen(Qt::NoPen));
    band->setBrush(style.lightColour());
    band->setSamples(bands);
    band->setItemAttribute(QwtPlotItem::Legend, inLegend);
    band->attach(plot);
    auto *median = new QwtPlotCurve(medianTitle);
    median->setPen(style.pen(2 * dataWidth));
    median->setSamples(medians);
    median->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    median->setItemAttribute(QwtPlotItem::Legend, inLegend);
    median->attach(plot);
    return extremes;
}

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

/// Where the values of a series lie in the plot.
struct Points
{
    QVector<QPointF> usual;
    QVector<QPointF> flagged;
    QVector<QPointF> beyond; ///< not flagged, and too far away to be inside
};

Points placeValues(const Series &series, DelayKind kind, const QwtInterval &axis)
{
    Points points;
    const QVector<double> &values = valuesOf(series.results, kind);
    const double border = 0.02 * axis.width(); // a symbol on the axis itself would be cut
    for (int i = 0; i < values.size(); ++i) {
        if (!std::isfinite(values[i])) {
            continue; // there is no place for it
        }
        const bool isInside = axis.contains(values[i]);
        const double y =
            isInside ? values[i]
                     : qBound(axis.minValue() + border, values[i], axis.maxValue() - border);
        (series.flagsOf(kind)[i] != 0 ? points.flagged
         : isInside                   ? points.usual
                                      : points.beyond) += QPointF(i + 1, y);
    }
    return points;
}

} // namespace

QwtPlot *driftPlot(const QVector<Series> &selection, DelayKind kind)
{
    int longest = 0;
    for (const Series &series : selection) {
        longest = std::max(longest, series.count());
    }
    const int columnWidth = longest > mostPoints ? (longest + mostColumns - 1) / mostColumns : 1;
    QwtPlot *plot =
        makePlot(columnWidth == 1 ? QString("Measurement")
                                  : QString("Measurement (columns of %1)").arg(columnWidth),
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
        const Points points = placeValues(selection[i], kind, axis);
        QVector<QPointF> shown = points.usual + points.flagged;
        if (columnWidth > 1) {
            shown = addColumns(plot, points.usual, columnWidth, style, inLegend);
        } else {
            addMedianAndBand(plot, computeStatistics(selectValues(selection[i], kind, false)),
                             style, inLegend);
        }
        inLegend = false;
        addPoints(plot, plotNames(selection)[i], shown, style.makeSymbol(columnWidth > 1 ? 3 : 7));
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
