#include "viewer/PlotStyle.h"

#include "analysis/SeriesFiles.h"
#include "analysis/Statistics.h"
#include "analysis/Summary.h"

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Returns the range of values, in any order, without outliers.
QwtInterval usualRange(QVector<double> values, double step)
{
    if (values.isEmpty()) {
        return {};
    }
    std::sort(values.begin(), values.end());
    const double first = nearestRank(values, 250);
    const double third = nearestRank(values, 750);
    constexpr double farAway = 5.0; // interquartile ranges
    const double far = farAway * std::max(third - first, step);
    double from = first - far;
    double to = third + far;
    constexpr int few = 20; // their P5 is the least value, which may be an outlier
    if (values.size() > few) {
        from = std::min(from, nearestRank(values, 50));
        to = std::max(to, nearestRank(values, 950));
    }
    return {*std::lower_bound(values.begin(), values.end(), from),
            *(std::upper_bound(values.begin(), values.end(), to) - 1)};
}

} // namespace

QwtSymbol *SeriesStyle::makeSymbol(int size) const
{
    // The second series has hollow symbols, which leave those of the first visible.
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
        canvas->setFrameStyle(static_cast<int>(QFrame::Box) | QFrame::Plain);
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
    constexpr double most = 0.5; // of the height
    plot->insertLegend(legend, QwtPlot::TopLegend, most);
    plot->setAxisMaxMajor(QwtPlot::yLeft, 5); // legible on a low plot, too

    auto *grid = new QwtPlotGrid;
    constexpr double gridWidth = 0.5;
    grid->setPen(QColor(210, 210, 210), gridWidth);
    grid->attach(plot);
    return plot;
}

QStringList plotNames(const QVector<Series> &selection)
{
    constexpr int longest = 20; // characters: two fit side by side in a report
    QStringList labels;
    QStringList names = seriesNames(selection);
    for (int i = 0; i < names.size(); ++i) {
        labels += shortenText(seriesLabel(selection[i].fileName), longest);
        names[i] = shortenText(names[i], longest);
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

void addMarks(QwtPlot *plot, const QString &what, int count, const QVector<QPointF> &points,
              QwtSymbol::Style symbol, const QColor &colour)
{
    if (count > 0) {
        constexpr int size = 9;
        addPoints(plot, QString("%1 %2").arg(QString::number(count), what), points,
                  new QwtSymbol(symbol, colour, QPen(colour, dataWidth), QSize(size, size)));
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

QwtInterval delayAxis(const QVector<Series> &selection, DelayKind kind)
{
    constexpr double space = 0.12; // of the range, at either end
    for (const Select wanted : {Select::Unflagged, Select::All}) {
        QwtInterval range;
        for (const Series &series : selection) {
            range |= usualRange(selectValues(series, kind, wanted), delayStep(series, kind));
        }
        if (range.isValid() && std::isfinite(range.width())) {
            const double margin =
                std::max(range.width() * space, 1e-3 * std::abs(range.maxValue()) + 1e-9);
            return {range.minValue() - margin, range.maxValue() + margin};
        }
    }
    return {0.0, 1.0};
}

QVector<DelayKind> plottedDelays(const QVector<Series> &selection)
{
    QVector<DelayKind> kinds;
    for (const DelayKind kind : delayKinds) {
        if (std::any_of(selection.begin(), selection.end(), [kind](const Series &series) {
                return isMeasured(series.results, kind);
            })) {
            kinds += kind;
        }
    }
    return kinds;
}
