#include "analysis/DelayText.h"
#include "analysis/Statistics.h"
#include "viewer/Plots.h"
#include "viewer/PlotStyle.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>

#include <algorithm>
#include <cmath>

namespace {

/// Returns the corners of the steps. A plot cannot show more than a thousand.
QVector<QPointF> cumulate(QVector<double> values)
{
    constexpr int most = 1000;
    std::sort(values.begin(), values.end());
    QVector<QPointF> points = {{values.first(), 0.0}};
    for (int i = 0; i < values.size(); i += 1 + values.size() / most) {
        points += {values[i], 100.0 * (i + 1) / values.size()};
    }
    points += {values.last(), 100.0};
    return points;
}

/// Draw a horizontal line from which a percentile can be read.
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
    QwtPlot *plot = makePlot(delayName(kind) + " / ms", "Share / %");
    addLevel(plot, 50, Qt::AlignBottom);
    addLevel(plot, 95, Qt::AlignBottom); // the label of 99 is above it
    addLevel(plot, 99, Qt::AlignTop);
    for (int i = 0; i < selection.size(); ++i) {
        const QVector<double> values = selectValues(selection[i], kind, Select::Unflagged);
        if (values.isEmpty()) {
            continue;
        }
        const Statistics statistics = computeStatistics(values);
        QStringList delays;
        QVector<QPointF> marks;
        for (const auto &[percent, delay] :
             {std::pair(50, statistics.median), {95, statistics.p95}, {99, statistics.p99}}) {
            if (std::isfinite(delay)) {
                delays += QString("P%1 %2").arg(QString::number(percent),
                                                delayText(delay, delayStep(selection[i], kind)));
                marks += QPointF(delay, percent);
            }
        }
        constexpr int shortName = 12; // leaves room for the delays on a narrow plot
        const QString name = plotNames(selection)[i];
        const QString title = name + (name.size() > shortName ? ":\n" : ": ") + delays.join(", ");
        auto *curve = new QwtPlotCurve(QwtText(title, QwtText::PlainText));
        // The share stays the same up to the next delay.
        curve->setStyle(QwtPlotCurve::Steps);
        curve->setCurveAttribute(QwtPlotCurve::Inverted);
        curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
        curve->setPen(seriesStyle(i).pen(2 * dataWidth));
        curve->setSamples(cumulate(values));
        curve->attach(plot);
        addPoints(plot, {}, marks, seriesStyle(i).makeSymbol(7));
    }
    const QwtInterval axis = delayAxis(selection, kind);
    plot->setAxisScale(QwtPlot::xBottom, axis.minValue(), axis.maxValue());
    plot->setAxisScale(QwtPlot::yLeft, 0.0, 118.0);
    return plot;
}
