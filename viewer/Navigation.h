#pragma once

#include <functional>

#include <qwt_plot_zoomer.h>

/// Zooms and pans a plot by mouse, within the part that it shows at first. Drag to zoom into a
/// rectangle, drag with the middle button or with Shift to pan, turn the wheel to zoom, and
/// double-click to see the whole again.
class Navigation : public QwtPlotZoomer
{
public:
    /// Returns the text beside the pointer when it is at a place (pixels) of the canvas.
    using PlaceText = std::function<QString(const QPoint &place)>;

    static constexpr double zoomStep = 0.8; ///< of what was shown, for each click of the wheel

    /// Zoom and pan a plot, which owns this object. Without `placeText`, the pointer's coordinates
    /// stand beside it.
    explicit Navigation(QwtPlot *plot, PlaceText placeText = {});

    /// Returns what the plot shows, in the units of its axes.
    [[nodiscard]] QRectF shownPart() const { return scaleRect(); }
    /// Show this part of the plot, scaled by a factor about a point that stays where it is.
    void showPart(const QRectF &part, double factor, const QPointF &fixed);

protected:
    [[nodiscard]] QwtText trackerText(const QPoint &place) const override;
    void widgetMouseDoubleClickEvent(QMouseEvent *event) override;
    void widgetWheelEvent(QWheelEvent *event) override;

private:
    PlaceText placeText;
};
