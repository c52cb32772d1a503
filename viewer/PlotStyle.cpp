#include "viewer/PlotStyle.h"

#include "analysis/Series.h"
#include "analysis/SeriesFiles.h"
#include "viewer/WrapText.h"

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

#include <array>

const QColor sourceColour(0, 0, 0);
const QColor rfColour(230, 159, 0);
const QColor sinkColour(0, 114, 178);
const QColor flagColour(0, 0, 0);

QwtSymbol *SeriesStyle::makeSymbol(int size) const
{
    // Of two, the second's lets the first's be seen through.
    const QBrush inside = fill == Qt::SolidPattern ? QBrush(colour) : QBrush(Qt::NoBrush);
    return new QwtSymbol(symbol, inside, QPen(colour, dataWidth), QSize(size, size));
}

SeriesStyle seriesStyle(int index)
{
    static const std::array<SeriesStyle, 2> styles = {{
        {QColor(0, 114, 178), Qt::SolidLine, QwtSymbol::Ellipse, Qt::SolidPattern},
        {QColor(213, 94, 0), Qt::DashLine, QwtSymbol::Diamond, Qt::BDiagPattern},
    }};
    return styles[static_cast<std::size_t>(index) % styles.size()];
}

QwtPlot *makePlot(const QString &horizontal, const QString &vertical)
{
    auto *plot = new QwtPlot;
    plot->setPalette(
        QPalette(Qt::black, Qt::white, Qt::white, Qt::darkGray, Qt::gray, Qt::black, Qt::white));
    plot->setAutoFillBackground(true);
    QFont font = plot->font();
    constexpr double textSize = 9.0; // points, on the screen and on paper
    font.setPointSizeF(textSize);
    plot->setFont(font);
    plot->setCanvasBackground(Qt::white);
    if (auto *canvas = qobject_cast<QwtPlotCanvas *>(plot->canvas())) {
        canvas->setFrameStyle(QFrame::Box | QFrame::Plain);
        canvas->setLineWidth(1);
    }
    const auto title = [&](const QString &text) {
        QwtText label(text, QwtText::PlainText);
        label.setFont(font);
        return label;
    };
    for (const auto &[axis, text] :
         {std::pair(QwtPlot::xBottom, horizontal), std::pair(QwtPlot::yLeft, vertical)}) {
        plot->setAxisTitle(axis, title(text));
        plot->setAxisFont(axis, font);
    }
    auto *legend = new QwtLegend;
    legend->setFont(font);
    plot->insertLegend(legend, QwtPlot::TopLegend);

    auto *grid = new QwtPlotGrid;
    constexpr double gridWidth = 0.5;
    grid->setPen(QColor(210, 210, 210), gridWidth);
    grid->attach(plot);
    return plot;
}

QStringList plotNames(const QVector<Series> &selection)
{
    constexpr int longest = 40; // characters
    QStringList labels;
    QStringList names;
    for (const Series &series : selection) {
        labels += shortenText(seriesLabel(series.fileName), longest);
        names += shortenText(seriesName(series), longest);
    }
    return labels.contains(QString()) || labels.value(0) == labels.value(1) ? names : labels;
}

void addPoints(QwtPlot *plot, const QString &title, const QVector<QPointF> &points,
               QwtSymbol *symbol)
{
    auto *curve = new QwtPlotCurve(QwtText(title, QwtText::PlainText));
    curve->setStyle(QwtPlotCurve::NoCurve);
    curve->setSymbol(symbol);
    curve->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
    curve->setItemAttribute(QwtPlotItem::Legend, !title.isEmpty());
    curve->setSamples(points);
    curve->attach(plot);
}

void addBeyond(QwtPlot *plot, int count, const QVector<QPointF> &points, const SeriesStyle &style)
{
    if (count > 0) {
        constexpr int size = 10;
        addPoints(plot, QString("%1 beyond").arg(count), points,
                  new QwtSymbol(QwtSymbol::Triangle, QBrush(style.colour), QPen(Qt::NoPen),
                                QSize(size, size)));
    }
}

void addLine(QwtPlot *plot, double position, const QPen &pen)
{
    auto *line = new QwtPlotMarker;
    line->setLineStyle(QwtPlotMarker::VLine);
    line->setLinePen(pen);
    line->setXValue(position);
    line->attach(plot);
}
