#include "plot/EdgeCurve.h"

#include "plot/TraceData.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

QwtPlotCurve *addCurve(QwtPlot *plot, const QPen &pen, const QVector<double> &time,
                       const QVector<double> &trace)
{
    auto *curve = new QwtPlotCurve;
    curve->setPen(pen);
    curve->attach(plot);
    curve->setSamples(time, trace);
    return curve;
}

QwtPlotCurve *addCurve(QwtPlot *plot, const QPen &pen, TraceData *trace)
{
    auto *curve = new QwtPlotCurve;
    curve->setPen(pen);
    curve->attach(plot);
    curve->setSamples(trace);
    return curve;
}

QwtPlotMarker *addEdge(QwtPlot *plot, const QString &label, double instant)
{
    auto *marker = new QwtPlotMarker;
    marker->setLabel(QwtText(label, QwtText::PlainText));
    marker->setLabelAlignment(Qt::AlignLeft | Qt::AlignTop);
    marker->setLabelOrientation(Qt::Vertical);
    marker->setLineStyle(QwtPlotMarker::VLine);
    marker->setLinePen(QPen(QBrush(Qt::black), 0, Qt::DashDotLine, Qt::SquareCap, Qt::BevelJoin));
    marker->setXValue(instant);
    marker->attach(plot);
    return marker;
}
