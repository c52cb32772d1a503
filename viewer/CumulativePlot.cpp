#include "viewer/CumulativePlot.h"

#include "analysis/Statistics.h"
#include "instrument/NumberText.h"
#include "viewer/DelayRange.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>

#include <algorithm>
#include <cmath>

namespace {

/// The corners of the steps, no more than can be told apart.
QVector<QPointF> cumulate(QVector<double> values)
{
    constexpr double finest = 0.1; // per cent
    std::sort(values.begin(), values.end());
    QVector<QPointF> points = {{values.first(), 0.0}};
    for (int i = 0; i < values.size(); ++i) {
        const bool isLast = i + 1 == values.size();
        const double share = 100.0 * (i + 1) / values.size();
        if (isLast || (values[i + 1] != values[i] && share - points.last().y() >= finest)) {
            points += {values[i], share};
        }
    }
    return points;
}

QwtPlotCurve *addCurve(QwtPlot *plot, const QVector<QPointF> &points)
{
    auto *curve = new QwtPlotCurve;
    curve->setSamples(points);
    curve->attach(plot);
    return curve;
}

void addSeries(QwtPlot *plot, const Series &series, const QVector<double> &values,
               const SeriesStyle &style)
{
    const Statistics of = computeStatistics(values);
    QString title = seriesName(series) + ':';
    QVector<QPointF> percentiles;
    for (const auto &[percent, delay] : {std::pair(50, of.median), {95, of.p95}, {99, of.p99}}) {
        if (std::isfinite(delay)) {
            percentiles += {delay, double(percent)};
            title += QString(" P%1 %2").arg(QString::number(percent), numberText(delay));
        }
    }
    QwtPlotCurve *steps = addCurve(plot, cumulate(values));
    steps->setTitle(QwtText(title, QwtText::PlainText));
    steps->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    steps->setStyle(QwtPlotCurve::Steps);
    steps->setCurveAttribute(QwtPlotCurve::Inverted); // a share holds up to the next delay
    steps->setPen(style.pen(2 * dataWidth));
    QwtPlotCurve *marks = addCurve(plot, percentiles);
    marks->setItemAttribute(QwtPlotItem::Legend, false);
    marks->setStyle(QwtPlotCurve::NoCurve);
    marks->setSymbol(style.makeSymbol(9));
}

/// Draw a level to read a percentile off.
void addLevel(QwtPlot *plot, int percent, Qt::Alignment side)
{
    auto *level = new QwtPlotMarker;
    level->setLineStyle(QwtPlotMarker::HLine);
    level->setLinePen(Qt::darkGray, dataWidth, Qt::DotLine);
    level->setYValue(percent);
    QwtText label(QString("P%1").arg(percent), QwtText::PlainText);
    label.setFont(plot->font());
    level->setLabel(label);
    level->setLabelAlignment(Qt::AlignLeft | side);
    level->attach(plot);
}

} // namespace

QwtPlot *cumulativePlot(const QVector<Series> &selection, DelayKind kind)
{
    QwtPlot *plot = makePlot(delayName(kind) + " / ms", "Not longer / %");
    addLevel(plot, 50, Qt::AlignTop);
    addLevel(plot, 95, Qt::AlignBottom); // its label and the next one's would overlap
    addLevel(plot, 99, Qt::AlignTop);
    for (int i = 0; i < selection.size(); ++i) {
        const QVector<double> values = selectValues(selection[i], kind, false);
        if (!values.isEmpty()) {
            addSeries(plot, selection[i], values, seriesStyle(i));
        }
    }
    const QwtInterval axis = withAir(delayRange(selection, kind));
    plot->setAxisScale(QwtPlot::xBottom, axis.minValue(), axis.maxValue());
    plot->setAxisScale(QwtPlot::yLeft, 0.0, 110.0);
    return plot;
}
