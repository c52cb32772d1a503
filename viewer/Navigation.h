#pragma once

#include <functional>

#include <qwt_plot_zoomer.h>

/// Lets a person move about in a plot, never beyond what it shows at first: drag to zoom into a
/// rectangle, drag with the middle button or with Shift to pan, turn the wheel to zoom, and
/// double-click to see the whole again.
class Navigation : public QwtPlotZoomer
{
public:
    /// Returns what lies at a place (pixels) of the canvas, to stand beside the pointer.
    using PlaceText = std::function<QString(const QPoint &place)>;

    static constexpr double zoomStep = 0.8; ///< of a click of the wheel

    /// Navigate in a plot, which owns the navigation. Without a text the pointer's place in the
    /// plot stands beside it.
    explicit Navigation(QwtPlot *plot, PlaceText placeText = {});

    /// Returns what the plot shows, in the units of its axes.
    [[nodiscard]] QRectF shownPart() const { return scaleRect(); }
    /// Show this part of the plot, made larger by a factor about a point that stays at its place.
    void showPart(const QRectF &part, double factor, const QPointF &fixed);

protected:
    [[nodiscard]] QwtText trackerText(const QPoint &place) const override;
    void widgetMouseDoubleClickEvent(QMouseEvent *event) override;
    void widgetWheelEvent(QWheelEvent *event) override;

private:
    PlaceText placeText;
};
