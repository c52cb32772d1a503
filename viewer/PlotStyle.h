#pragma once

#include "analysis/Series.h"

#include <QPen>

#include <qwt_interval.h>
#include <qwt_symbol.h>

class QwtPlot;

/// How a series is drawn. Two series differ in hue, lightness, symbols and dashes, so that people
/// who are colour-blind can tell them apart, and everybody on grey paper.
struct SeriesStyle
{
    QColor colour;
    Qt::PenStyle line;
    QwtSymbol::Style symbol;
    Qt::BrushStyle fill;

    [[nodiscard]] QPen pen(double width) const { return {QBrush(colour), width, line}; }
    /// Returns the colour for areas.
    [[nodiscard]] QColor lightColour() const
    {
        return {colour.red(), colour.green(), colour.blue(), 50};
    }
    /// Make a symbol of `size` pixels. The curve that gets it deletes it.
    [[nodiscard]] QwtSymbol *makeSymbol(int size) const;
};

/// Returns the style of the first (0) or second (1) series of a selection.
SeriesStyle seriesStyle(int index);

/// The width of lines that show data, in pixels of a screen. With a width of 0, Qt would draw the
/// thinnest line of a printer.
constexpr double dataWidth = 1.0;

/// Make a plot with axis titles, a grid, and a legend above it. It is black on white, whatever the
/// desktop's colours.
QwtPlot *makePlot(const QString &horizontal, const QString &vertical);

/// Returns short names for the series of a selection: their labels, if these differ.
QStringList plotNames(const QVector<Series> &selection);

/// Draw points with a symbol, which the plot then owns. Points without a title are not in the
/// legend.
void addPoints(QwtPlot *plot, const QString &title, const QVector<QPointF> &points,
               QwtSymbol *symbol);

/// Draw marks at unusual values. The legend has their number, such as "3 flagged".
void addMarks(QwtPlot *plot, const QString &what, int count, const QVector<QPointF> &points,
              QwtSymbol::Style symbol, const QColor &colour);

/// Draw a vertical line, for a median or an edge.
void addLine(QwtPlot *plot, double position, const QPen &pen);

/// Returns the range of an axis for the delays without flags, or for all delays if all have flags,
/// in milliseconds. Outliers would flatten the plot, so delays more than five interquartile ranges
/// from the quartiles do not widen it. From 21 values on it always covers P5 to P95.
QwtInterval delayAxis(const QVector<Series> &selection, DelayKind kind);
