#pragma once

#include "analysis/Series.h"

#include <QPen>

#include <qwt_interval.h>
#include <qwt_symbol.h>

class QwtPlot;

/// How a series is drawn, so that it is told from the other by people who are colour-blind and on
/// grey paper, too: by hue and lightness, by its points' shape and by its lines' dashes.
struct SeriesStyle
{
    QColor colour;
    Qt::PenStyle line;
    QwtSymbol::Style symbol;
    Qt::BrushStyle fill;

    [[nodiscard]] QPen pen(double width) const { return {QBrush(colour), width, line}; }
    /// The colour of areas.
    [[nodiscard]] QColor lightColour() const
    {
        return {colour.red(), colour.green(), colour.blue(), 50};
    }
    /// Make a symbol of so many pixels, which belongs to the curve that it is given to.
    [[nodiscard]] QwtSymbol *makeSymbol(int size) const;
};

/// The style of the first or second series selected.
SeriesStyle seriesStyle(int index);

/// Width of a line that shows data, in pixels of a screen and the same on paper; a width of zero
/// would be a hairline there.
constexpr double dataWidth = 1.0;

/// Make a plot that looks like paper, with a grid and a legend above, whatever the desktop's
/// colours.
QwtPlot *makePlot(const QString &horizontal, const QString &vertical);

/// Name the series of a selection in a plot: by their labels where these tell them apart.
QStringList plotNames(const QVector<Series> &selection);

/// Draw points, with a symbol that they own from then on. Without a title the legend leaves them
/// out.
void addPoints(QwtPlot *plot, const QString &title, const QVector<QPointF> &points,
               QwtSymbol *symbol);

/// Mark values that are out of the ordinary, and tell their count in the legend, as "3 flagged".
void addMarks(QwtPlot *plot, const QString &what, int count, const QVector<QPointF> &points,
              QwtSymbol::Style symbol, const QColor &colour);

/// Draw a vertical line, as at a median or an edge.
void addLine(QwtPlot *plot, double position, const QPen &pen);

/// Returns an axis for the delays without flags, or for all where there are none, in milliseconds.
/// Delays more than five interquartile ranges from the quartiles do not widen it, so that an
/// outlier flattens no plot; but from 21 values on it holds those from P5 to P95.
QwtInterval delayAxis(const QVector<Series> &selection, DelayKind kind);
