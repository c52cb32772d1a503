#include "analysis/DelayText.h"
#include "analysis/Summary.h"
#include "measurement/Record.h"
#include "viewer/Plots.h"
#include "viewer/PlotStyle.h"
#include "viewer/TraceData.h"

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_textlabel.h>

namespace {

/// A text in the corner of the canvas where a record has not begun.
void addRemark(QwtPlot *plot, const QString &text)
{
    constexpr int width = 50;
    QwtText label(wrapText(text, width), QwtText::PlainText);
    label.setRenderFlags(Qt::AlignLeft | Qt::AlignTop);
    label.setFont(plot->font());
    label.setBackgroundBrush(QColor(255, 255, 255, 220));
    auto *remark = new QwtPlotTextLabel;
    remark->setText(label);
    remark->attach(plot);
}

} // namespace

QwtPlot *recordPlot(const Series &series, int columns)
{
    Record record;
    QString problem;
    const bool isLoaded = loadRecord(series.fileName, &record, &problem) && record.samples > 1;
    const auto type = series.oscilloscope.type;
    QwtPlot *plot = makePlot(type ? "Time / ms" : "Sample", "Voltage / V");
    QwtText title(plotNames({series})[0], QwtText::PlainText);
    title.setFont(plot->font());
    plot->setTitle(title);

    constexpr double milliseconds = 1000.0;
    const double first = type ? sampleInstant(0, record.samples, *type) * milliseconds : 0.0;
    const double interval =
        type && record.samples > 1 ? recordSpan(*type) / (record.samples - 1) * milliseconds : 1.0;
    struct Row
    {
        const char *title;
        const QVector<double> *trace;
        double instant; // seconds
        QColor colour;  // of Okabe and Ito, Color Universal Design
        Qt::PenStyle line;
    };
    const Instants &at = series.oscilloscope.instants;
    // The bursts of RF go to the back: they would hide the rest.
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
            // Edges are too near for labels.
            addLine(plot, row.instant * milliseconds, QPen(row.colour, dataWidth, row.line));
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
