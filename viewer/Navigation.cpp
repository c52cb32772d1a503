#include "viewer/Navigation.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include <qwt_plot.h>
#include <qwt_plot_magnifier.h>
#include <qwt_plot_panner.h>
#include <qwt_plot_zoomer.h>
#include <qwt_scale_map.h>

#include <utility>

namespace {

class Zoomer : public QwtPlotZoomer
{
public:
    Zoomer(QwtPlot *plot, PlaceText text)
        : QwtPlotZoomer(plot->canvas(), false), tell(std::move(text))
    {
        setMousePattern(QwtEventPattern::MouseSelect2, Qt::RightButton, Qt::ControlModifier);
        setMousePattern(QwtEventPattern::MouseSelect3, Qt::RightButton);
        setTrackerMode(tell ? QwtPicker::AlwaysOn : QwtPicker::ActiveOnly);
        setRubberBandPen(QPen(Qt::darkGray, 1, Qt::DashLine));
        setMaxStackDepth(-1);
    }

protected:
    [[nodiscard]] QwtText trackerText(const QPoint &place) const override
    {
        if (isActive() || !tell) {
            return QwtPlotZoomer::trackerText(place);
        }
        QwtText text(tell(place), QwtText::PlainText);
        text.setRenderFlags(Qt::AlignLeft);
        text.setBackgroundBrush(Qt::white);
        return text;
    }

    void widgetMouseDoubleClickEvent(QMouseEvent *event) override
    {
        if (event->button() == Qt::LeftButton) {
            showWhole(plot());
        }
    }

private:
    PlaceText tell;
};

class Magnifier : public QwtPlotMagnifier
{
public:
    using QwtPlotMagnifier::QwtPlotMagnifier;

protected:
    void widgetWheelEvent(QWheelEvent *event) override
    {
        fixed = {plot()->canvasMap(QwtPlot::xBottom).invTransform(event->position().x()),
                 plot()->canvasMap(QwtPlot::yLeft).invTransform(event->position().y())};
        QwtPlotMagnifier::widgetWheelEvent(event);
    }
    void rescale(double factor) override
    {
        showPart(plot(), enlarge(shownPart(plot()), factor, fixed));
    }

private:
    QPointF fixed; ///< below the pointer
};

QwtPlotZoomer *zoomerOf(const QwtPlot *plot)
{
    return plot->findChild<QwtPlotZoomer *>();
}

} // namespace

void makeNavigable(QwtPlot *plot, const PlaceText &placeText)
{
    plot->updateAxes(); // so that there is a whole
    auto *zoomer = new Zoomer(plot, placeText);
    zoomer->setParent(plot->canvas());
    for (const auto &[button, modifiers] : {std::pair(Qt::MiddleButton, Qt::NoModifier),
                                            std::pair(Qt::LeftButton, Qt::ShiftModifier)}) {
        auto *panner = new QwtPlotPanner(plot->canvas());
        panner->setMouseButton(button, modifiers);
        panner->setAxisEnabled(QwtPlot::xTop, false);
        panner->setAxisEnabled(QwtPlot::yRight, false);
        QObject::connect(panner, &QwtPanner::panned, plot,
                         [plot] { showPart(plot, shownPart(plot)); });
    }
    auto *magnifier = new Magnifier(plot->canvas());
    magnifier->setMouseButton(Qt::NoButton);
    constexpr double step = 0.8;
    magnifier->setWheelFactor(1 / step); // up zooms in
}

QRectF shownPart(const QwtPlot *plot)
{
    const QwtInterval x = plot->axisInterval(QwtPlot::xBottom);
    const QwtInterval y = plot->axisInterval(QwtPlot::yLeft);
    return {x.minValue(), y.minValue(), x.width(), y.width()};
}

void showPart(QwtPlot *plot, QRectF part)
{
    const QRectF whole = zoomerOf(plot)->zoomBase();
    constexpr double least = 1e-6; // beyond, digits run out
    const QSizeF smallest = whole.size() * least;
    part.setSize(part.size().expandedTo(smallest).boundedTo(whole.size()));
    part.moveTo(qBound(whole.left(), part.left(), whole.right() - part.width()),
                qBound(whole.top(), part.top(), whole.bottom() - part.height()));
    plot->setAxisScale(QwtPlot::xBottom, part.left(), part.right());
    plot->setAxisScale(QwtPlot::yLeft, part.top(), part.bottom());
    plot->replot();
}

void showWhole(QwtPlot *plot)
{
    const QRectF whole = zoomerOf(plot)->zoomBase();
    showPart(plot, whole);
    zoomerOf(plot)->setZoomBase(whole); // and forget the steps that led away from it
}

QRectF enlarge(const QRectF &part, double factor, const QPointF &fixed)
{
    return {fixed + (part.topLeft() - fixed) * factor, part.size() * factor};
}
