#include "viewer/RecordPlot.h"

#include "instrument/NumberText.h"
#include "measurement/Record.h"
#include "plot/EdgeCurve.h"
#include "plot/TraceData.h"
#include "viewer/PlotStyle.h"
#include "viewer/WrapText.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

namespace {

/// A text in the corner of the canvas where a record has not begun.
void addRemark(QwtPlot *plot, const QString &text)
{
    constexpr int width = 50;
    QwtText label(wrapText(text, width), QwtText::PlainText);
    label.setRenderFlags(Qt::AlignLeft);
    label.setFont(plot->font());
    label.setBackgroundBrush(QColor(255, 255, 255, 220));
    auto *marker = new QwtPlotMarker;
    marker->setLabel(label);
    marker->attach(plot);
    marker->setLabelAlignment(Qt::AlignRight | Qt::AlignBottom);
    marker->setValue(0.02, 0.95);
    marker->setAxes(QwtPlot::xTop, QwtPlot::yRight);
    marker->setZ(1000);
    plot->setAxisScale(QwtPlot::xTop, 0, 1);
    plot->setAxisScale(QwtPlot::yRight, 0, 1);
}

} // namespace

QwtPlot *recordPlot(const Series &series)
{
    Record record;
    QString problem;
    const bool isLoaded = loadRecord(series.fileName, &record, &problem) && record.samples > 1;
    const auto type = series.oscilloscope.type;
    QwtPlot *plot = makePlot(type ? "Time / s" : "Sample", "Voltage / V");
    QwtText title(seriesName(series), QwtText::PlainText);
    title.setFont(plot->font());
    plot->setTitle(title);

    const double first = type ? sampleInstant(0, record.samples, *type) : 0.0;
    const double interval =
        type && record.samples > 1 ? recordSpan(*type) / (record.samples - 1) : 1.0;
    struct Row
    {
        const char *title;
        const QVector<double> *trace;
        double instant;
        QPen pen;
    };
    const Instants &at = series.oscilloscope.instants;
    // The bursts of RF go to the back: they would hide the rest.
    for (const Row &row :
         {Row{"RF (scaled)", &record.rf, at.rf, QPen(rfColour, dataWidth, Qt::DotLine)},
          Row{"Source", &record.source, at.source, QPen(sourceColour, dataWidth, Qt::DashLine)},
          Row{"Sink", &record.sink, at.sink, QPen(sinkColour, dataWidth, Qt::DashDotLine)}}) {
        QwtPlotCurve *curve = addCurve(plot, QPen(row.pen.color(), dataWidth),
                                       new TraceData(*row.trace, first, interval));
        curve->setTitle(type ? QString("%1, edge %2 s").arg(row.title, numberText(row.instant))
                             : QString(row.title));
        curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
        if (type) {
            addEdge(plot, {}, row.instant)->setLinePen(row.pen); // edges are too near for labels
        }
    }
    plot->setAxisScale(QwtPlot::xBottom, first, first + interval * std::max(1, record.samples - 1));
    if (!isLoaded) {
        addRemark(plot, problem.isEmpty() ? "The record is empty." : problem);
    } else if (!type) {
        addRemark(plot, series.oscilloscope.remark);
    }
    return plot;
}
