#include "analysis/DelayText.h"
#include "analysis/Statistics.h"
#include "instrument/NumberText.h"
#include "viewer/Plots.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_intervalcurve.h>
#include <qwt_scale_div.h>
#include <qwt_scale_map.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostPoints = 2000; // a series with more values is drawn in columns of values
constexpr int mostColumns = 100; // few enough to give each column the values for P5 and P95

/// Returns some of the points, at least `columnWidth` measurements apart.
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

/// Draw the median and the band from P5 to P95 of each column of `columnWidth` values. Returns the
/// extremes of the columns.
QVector<QPointF> addColumns(QwtPlot *plot, const QVector<QPointF> &points, int columnWidth,
                            const SeriesStyle &style, bool isInLegend)
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
        const Statistics statistics = computeStatistics(values);
        for (const double side : {points[from].x(), points[to - 1].x()}) {
            medians += {side, statistics.median};
            if (std::isfinite(statistics.p5)) {
                bands += {side, statistics.p5, statistics.p95};
            }
        }
        const double middle = (points[from].x() + points[to - 1].x()) / 2;
        extremes += {{middle, statistics.minimum}, {middle, statistics.maximum}};
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
        item->setItemAttribute(QwtPlotItem::Legend, isInLegend);
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
    const QwtInterval axis = delayAxis(selection, kind);
    const double border = 0.02 * axis.width(); // a symbol at the very end of the axis would be cut
    for (int number = 0; number < selection.size(); ++number) {
        const Series &series = selection[number];
        if (!isMeasured(series.results, kind)) {
            continue;
        }
        const QVector<double> &values = series.results[kind].values;
        QVector<QPointF> flagged;
        QVector<QPointF> unflagged;
        QVector<QPointF> beyond; // unflagged, and outside the axis
        for (int i = 0; i < values.size(); ++i) {
            if (!std::isfinite(values[i])) {
                continue; // it has no place on the axis
            }
            const QPointF point(i + 1.0, axis.contains(values[i])
                                             ? values[i]
                                             : qBound(axis.minValue() + border, values[i],
                                                      axis.maxValue() - border));
            const bool isFlagged = series.flags[kind][i] != 0;
            (isFlagged ? flagged : unflagged) += point;
            if (!isFlagged && !axis.contains(values[i])) {
                beyond += point;
            }
        }
        const SeriesStyle style = seriesStyle(number);
        const bool isLong = series.count() > mostPoints;
        const QVector<QPointF> extremes =
            addColumns(plot, unflagged, isLong ? columnWidth : longest, style,
                       selection.size() == 1); // two series' names fill the legend
        addPoints(plot, plotNames(selection)[number], isLong ? extremes : unflagged,
                  style.makeSymbol(isLong ? 3 : 7));
        addMarks(plot, "beyond", beyond.size(), thin(beyond, columnWidth), QwtSymbol::Triangle,
                 style.colour);
        addMarks(plot, "flagged", flagged.size(), thin(flagged, columnWidth), QwtSymbol::XCross,
                 style.colour);
    }
    const double side = std::max(0.5, 0.02 * longest);
    plot->setAxisScale(QwtPlot::xBottom, 1 - side, longest + side);
    plot->setAxisScale(QwtPlot::yLeft, axis.minValue(), axis.maxValue());
    return plot;
}

QString measurementText(const QwtPlot &plot, const QVector<Series> &selection, DelayKind kind,
                        const QPoint &place)
{
    const QwtScaleMap x = plot.canvasMap(QwtPlot::xBottom);
    const QwtScaleMap y = plot.canvasMap(QwtPlot::yLeft);
    const QwtScaleDiv &axis = plot.axisScaleDiv(QwtPlot::yLeft);
    double distance = 10.0; // pixels; points farther away are not meant
    QString text;
    for (const Series &series : selection) {
        const QVector<double> &values = series.results[kind].values;
        const auto at = [&](double pixel) { // measurements are counted from 1
            return static_cast<int>(qBound(0.0, x.invTransform(pixel) - 1, values.size() - 1.0));
        };
        for (int i = at(place.x() - distance); i <= at(place.x() + distance) + 1; ++i) {
            if (i >= values.size() || !isMeasured(series.results, kind)) {
                break;
            }
            // Values beyond the axis lie at its border.
            const double shown = qBound(axis.lowerBound(), values[i], axis.upperBound());
            const double away =
                std::hypot(x.transform(i + 1) - place.x(), y.transform(shown) - place.y());
            if (away < distance) {
                distance = away;
                text = QString("%1\nMeasurement %2: %3 ms")
                           .arg(seriesName(series), QString::number(i + 1), numberText(values[i]));
                if (const Flags flags = series.flags[kind][i]) {
                    text += '\n' + flagReasons(flags);
                }
            }
        }
    }
    return text;
}
