#include "app/graph/Graph.h"

#include "app/Globals.h"
#include "instrument/NumberText.h"
#include "ui_Graph.h"

#include <QCoreApplication>

#include <qwt_plot_curve.h>
#include <qwt_plot_layout.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_engine.h>

const std::array<QBrush, 6> PenCol = {QBrush(Qt::black), QBrush(Qt::red),    QBrush(Qt::blue),
                                      QBrush(Qt::green), QBrush(Qt::yellow), QBrush(Qt::cyan)};

namespace {

constexpr int edgeLabelWidth = 24; // pixels

/// Draw a trace over the time axis (seconds). A longer axis is used up to the trace's last sample.
QwtPlotCurve *addCurve(QwtPlot *plot, const QColor &colour, const QVector<double> &time,
                       const QVector<double> &trace)
{
    auto *curve = new QwtPlotCurve;
    curve->setPen(QPen(colour, 0));
    curve->attach(plot);
    curve->setSamples(time, trace);
    return curve;
}

/// Draw a vertical line at an edge (seconds), labelled along it.
void addEdge(QwtPlot *plot, const QString &label, double instant)
{
    auto *marker = new QwtPlotMarker;
    marker->setLabel(QwtText(label, QwtText::PlainText));
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
    // A label beside an edge at the start of the axis needs room, too.
    plot->plotLayout()->setCanvasMargin(edgeLabelWidth, QwtPlot::yLeft);
    plot->setAxisAutoScale(QwtPlot::yLeft, true);
    plot->setAxisTitle(QwtPlot::yLeft, "Voltage / V");

    sourceCurve = addCurve(plot, Qt::blue, t, d1_src);
    addEdge(plot, QString("tsrc = %1 s").arg(numberText(t_src)), t_src);
    rfCurve = addCurve(plot, Qt::yellow, t, d2_rf);
    addEdge(plot, QString("trf = %1 s").arg(numberText(t_rf)), t_rf);
    sinkCurve = addCurve(plot, Qt::red, t, d3_snk);
    addEdge(plot, QString("tsnk = %1 s").arg(numberText(t_snk)), t_snk);

    ui->Src2Rf->setMean(mS2Rf);
    ui->Src2Hd->setEnabled(VaHdmi);
    ui->Src2Hd->setMean(mS2Hd);
    ui->Src2Snk->setMean(mS2Snk);

    plot->replot();
    QCoreApplication::processEvents();
}

Graph::~Graph() = default;
