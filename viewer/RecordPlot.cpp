#include "analysis/DelayText.h"
#include "measurement/Record.h"
#include "viewer/Plots.h"
#include "viewer/PlotStyle.h"
#include "viewer/TraceData.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

QwtPlot *recordPlot(const Series &series, int columns)
{
    Record record;
    QString problem;
    loadRecord(series.fileName, &record, &problem);
    const auto type = series.oscilloscope.type;
    QwtPlot *plot = makePlot(type ? "Time / ms" : "Sample", "Voltage / V");
    const auto label = [plot](const QString &text) {
        QwtText label(text, QwtText::PlainText);
        label.setFont(plot->font());
        label.setRenderFlags(static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap);
        return label;
    };
    plot->setTitle(label(plotNames({series})[0]));
    plot->setFooter(label(problem.isEmpty() ? series.oscilloscope.remark : problem));

    constexpr double milliseconds = 1000.0;
    const double first = type ? sampleInstant(0, record.samples, *type) * milliseconds : 0.0;
    const double interval = type ? delayStep(series, SourceToRf) : 1.0;
    struct Row
    {
        const char *title;
        const QVector<double> *trace;
        double instant; // seconds
        QColor colour;  // of Okabe and Ito, Color Universal Design
        Qt::PenStyle line;
    };
    const Instants &at = series.oscilloscope.instants;
    // RF is drawn first, since its bursts would hide the other traces.
    for (const Row &row : {Row{"RF (scaled)", &record.rf, at.rf, {230, 159, 0}, Qt::DotLine},
                           Row{"Source", &record.source, at.source, Qt::black, Qt::DashLine},
                           Row{"Sink", &record.sink, at.sink, {0, 114, 178}, Qt::DashDotLine}}) {
        auto *curve = new QwtPlotCurve(
            type ? QString("%1, edge %2 ms")
                       .arg(row.title, delayText(row.instant * milliseconds, interval))
                 : QString(row.title));
        curve->setPen(row.colour, dataWidth);
        curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
        curve->setSamples(new TraceData(*row.trace, first, interval, columns));
        curve->attach(plot);
        if (type) {
            // No labels: edges can lie close together.
            addLine(plot, row.instant * milliseconds, QPen(row.colour, dataWidth, row.line));
        }
    }
    plot->setAxisScale(QwtPlot::xBottom, first, first + interval * std::max(1, record.samples - 1));
    return plot;
}
