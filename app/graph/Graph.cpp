#include "app/graph/Graph.h"

#include "app/Globals.h"
#include "instrument/NumberText.h"
#include "ui_Graph.h"

#include <QCoreApplication>
#include <QPen>

#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_engine.h>
#include <qwt_text.h>

const std::array<QBrush, 6> PenCol = {QBrush(Qt::black), QBrush(Qt::red),    QBrush(Qt::blue),
                                      QBrush(Qt::green), QBrush(Qt::yellow), QBrush(Qt::cyan)};

namespace {

/// A trace over the time axis, of which only so many values as the trace has count.
QwtPlotCurve *addCurve(QwtPlot *plot, Qt::GlobalColor color, const QVector<double> &trace)
{
    auto *curve = new QwtPlotCurve;
    curve->setPen(QPen(color, 0));
    curve->attach(plot);
    curve->setSamples(t, trace);
    return curve;
}

/// A vertical line at an edge; the label has a place for the instant in seconds.
void addMarker(QwtPlot *plot, const QString &label, double instant)
{
    auto *marker = new QwtPlotMarker;
    marker->setLabel(QwtText(label.arg(numberText(instant)), QwtText::PlainText));
    marker->setLabelAlignment(Qt::AlignLeft | Qt::AlignTop);
    marker->setLabelOrientation(Qt::Vertical);
    marker->setLineStyle(QwtPlotMarker::VLine);
    marker->setLinePen(QPen(QBrush(Qt::black), 0, Qt::DashDotLine, Qt::SquareCap, Qt::BevelJoin));
    marker->setXValue(instant);
    marker->attach(plot);
}

} // namespace

Graph::Graph(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui_Graph>())
{
    ui->setupUi(this);
    QwtPlot *plot = ui->plt;

    const double halfSpan = recordSpan(chosenOscilloscopeType()) / 2; // seconds
    plot->setAxisScale(QwtPlot::xBottom, -halfSpan, halfSpan);
    plot->setAxisScaleEngine(QwtPlot::xBottom, new QwtLinearScaleEngine(10));
    plot->setAxisTitle(QwtPlot::xBottom, "Time / s");
    plot->setAxisAutoScale(QwtPlot::yLeft, true);
    plot->setAxisTitle(QwtPlot::yLeft, "Voltage / V");

    sourceCurve = addCurve(plot, Qt::blue, d1_src);
    addMarker(plot, "tsrc = %1 s", t_src);
    rfCurve = addCurve(plot, Qt::yellow, d2_rf);
    addMarker(plot, "trf = %1 s", t_rf);
    sinkCurve = addCurve(plot, Qt::red, d3_snk);
    addMarker(plot, "tsnk = %1 s", t_snk);

    ui->Src2Rf->setValue(mS2Rf);
    ui->Src2Hd->setEnabled(VaHdmi);
    ui->Src2Hd->setValue(mS2Hd);
    ui->Src2Snk->setValue(mS2Snk);

    plot->replot();
    QCoreApplication::processEvents();
}

Graph::~Graph() = default;
