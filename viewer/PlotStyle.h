#pragma once

#include <QPen>

#include <qwt_symbol.h>

class QString;
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
    /// Make a symbol of so many pixels, which belongs to the curve that it is given to.
    [[nodiscard]] QwtSymbol *makeSymbol(int size) const;
};

/// The style of the first or second series selected.
SeriesStyle seriesStyle(int index);

/// Colours of source, RF and sink, and of what is flagged: of Okabe and Ito, Color Universal
/// Design.
extern const QColor sourceColour;
extern const QColor rfColour;
extern const QColor sinkColour;
extern const QColor flagColour;

/// Width of a line that shows data, in pixels of a screen and the same on paper; a width of zero
/// would be a hairline there.
constexpr double dataWidth = 1.0;

/// Make a plot that looks like paper, with a grid and a legend above, whatever the desktop's
/// colours.
QwtPlot *makePlot(const QString &horizontal, const QString &vertical);

/// Draw a vertical line, as at a median or an edge.
void addLine(QwtPlot *plot, double position, const QPen &pen);
