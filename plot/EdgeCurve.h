#pragma once

#include <QPen>
#include <QString>
#include <QVector>

class QwtPlot;
class QwtPlotCurve;
class QwtPlotMarker;
class TraceData;

// How the traces of a record and their edges are drawn. The plot owns what is added to it.

/// Draw a trace over the time axis (seconds), of which only so many values as the trace has count.
QwtPlotCurve *addCurve(QwtPlot *plot, const QPen &pen, const QVector<double> &time,
                       const QVector<double> &trace);

/// Draw a trace that brings its own instants (seconds), and belongs to the curve from then on.
QwtPlotCurve *addCurve(QwtPlot *plot, const QPen &pen, TraceData *trace);

/// Draw a vertical line at an edge (seconds), labelled along it.
QwtPlotMarker *addEdge(QwtPlot *plot, const QString &label, double instant);
