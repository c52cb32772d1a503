#include "viewer/DriftPlot.h"

#include "analysis/Statistics.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_plot_zoneitem.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int manyPoints = 1000; // more are drawn smaller

QwtSymbol *makeSymbol(QwtSymbol::Style shape, const QBrush &brush, const QPen &pen, int size)
{
    return new QwtSymbol(shape, brush, pen, QSize(size, size));
}

void addPoints(QwtPlot *plot, const QString &title, const QVector<QPointF> &points,
               QwtSymbol *symbol)
{
    auto *curve = new QwtPlotCurve(QwtText(title, QwtText::PlainText));
    curve->setStyle(QwtPlotCurve::NoCurve);
    curve->setSymbol(symbol);
    curve->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
    curve->setSamples(points);
    curve->attach(plot);
}

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
        QColor light = style.colour;
        constexpr int opacity = 40;
        light.setAlpha(opacity);
        band->setBrush(light);
        band->setPen(QPen(Qt::NoPen));
        band->setTitle("P5 to P95");
        band->setItemAttribute(QwtPlotItem::Legend, inLegend);
        band->attach(plot);
    }
    auto *median = new QwtPlotMarker;
    median->setLineStyle(QwtPlotMarker::HLine);
    median->setLinePen(style.pen(dataWidth));
    median->setYValue(of.median);
    median->setTitle(QString("Median"));
    median->setItemAttribute(QwtPlotItem::Legend, inLegend);
    median->setLegendIconSize(QSize(20, 8)); // pixels
    median->attach(plot);
}

/// The range of the values without flags, or of all where there are none, with some air.
QPair<double, double> rangeOf(const QVector<Series> &selection, DelayKind kind)
{
    double least = std::numeric_limits<double>::infinity();
    double greatest = -least;
    for (const bool withFlagged : {false, true}) {
        for (const Series &series : selection) {
            for (const double value : selectValues(series, kind, withFlagged)) {
                least = std::min(least, value);
                greatest = std::max(greatest, value);
            }
        }
        if (least <= greatest) {
            break;
        }
    }
    if (!(least <= greatest) || !std::isfinite(greatest - least)) {
        return {0.0, 1.0};
    }
    constexpr double air = 0.12;
    const double margin = std::max((greatest - least) * air, 1e-3 * std::abs(greatest) + 1e-9);
    return {least - margin, greatest + margin};
}

} // namespace

QwtPlot *driftPlot(const QVector<Series> &selection, DelayKind kind)
{
    QwtPlot *plot = makePlot("Measurement", delayEnd(kind) + " / ms");
    const auto [least, greatest] = rangeOf(selection, kind);
    QVector<QPointF> flagged;
    int longest = 0;
    for (int i = 0; i < selection.size(); ++i) {
        const Series &series = selection[i];
        if (!isMeasured(series.results, kind)) {
            continue;
        }
        const SeriesStyle style = seriesStyle(i);
        addMedianAndBand(plot, computeStatistics(selectValues(series, kind, false)), style,
                         longest == 0);
        const QVector<double> &values = valuesOf(series.results, kind);
        QVector<QPointF> points;
        for (int k = 0; k < values.size(); ++k) {
            if (!std::isfinite(values[k])) {
                continue; // there is no place for it
            }
            const QPointF point(k + 1, qBound(least, values[k], greatest));
            points += point;
            if (series.flagsOf(kind)[k]) {
                flagged += point;
            }
        }
        const int size = points.size() > manyPoints ? 3 : 7;
        const QBrush inside = i == 0 ? QBrush(style.colour) : QBrush(Qt::NoBrush);
        addPoints(plot, seriesName(series), points,
                  makeSymbol(style.symbol, inside, QPen(style.colour, dataWidth), size));
        longest = std::max(longest, series.count());
    }
    if (!flagged.isEmpty()) {
        constexpr int size = 11;
        addPoints(plot, "Flagged", flagged,
                  makeSymbol(QwtSymbol::XCross, Qt::NoBrush, QPen(flagColour, dataWidth), size));
    }
    const double side = std::max(0.5, 0.02 * longest);
    plot->setAxisScale(QwtPlot::xBottom, 1 - side, longest + side);
    plot->setAxisScale(QwtPlot::yLeft, least, greatest);
    return plot;
}
