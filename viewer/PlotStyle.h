#pragma once

#include <QPen>
#include <QStringList>
#include <QVector>

#include <qwt_symbol.h>

class QwtPlot;
struct Series;

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

/// Name the series of a selection in a plot: by their labels where these tell them apart.
QStringList plotNames(const QVector<Series> &selection);

/// Draw points, with a symbol that they own from then on. Without a title the legend leaves them
/// out.
void addPoints(QwtPlot *plot, const QString &title, const QVector<QPointF> &points,
               QwtSymbol *symbol);

/// Draw points at the border for values of a series that lie beyond it, and tell their count.
void addBeyond(QwtPlot *plot, int count, const QVector<QPointF> &points, const SeriesStyle &style);

/// Draw a vertical line, as at a median or an edge.
void addLine(QwtPlot *plot, double position, const QPen &pen);
