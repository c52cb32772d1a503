#include "viewer/Navigation.h"

#include <QMouseEvent>

#include <qwt_plot.h>
#include <qwt_plot_magnifier.h>
#include <qwt_plot_panner.h>
#include <qwt_plot_zoomer.h>
#include <qwt_scale_div.h>

namespace {

class Zoomer : public QwtPlotZoomer
{
public:
    explicit Zoomer(QwtPlot *plot) : QwtPlotZoomer(plot->canvas(), false)
    {
        setMousePattern(QwtEventPattern::MouseSelect2, Qt::RightButton, Qt::ControlModifier);
        setMousePattern(QwtEventPattern::MouseSelect3, Qt::RightButton);
        setTrackerMode(QwtPicker::ActiveOnly);
        setRubberBandPen(QPen(Qt::darkGray, 1, Qt::DashLine));
        setMaxStackDepth(-1);
        home = zoomBase();
    }

protected:
    /// Panning and the wheel do not go onto the zoomer's stack, so going back is not only its task.
    void widgetMouseDoubleClickEvent(QMouseEvent *event) override
    {
        if (event->button() == Qt::LeftButton) {
            plot()->setAxisScale(xAxis(), home.left(), home.right());
            plot()->setAxisScale(yAxis(), home.top(), home.bottom());
            plot()->replot();
            setZoomBase(home);
        }
    }

private:
    QRectF home;
};

} // namespace

void makeNavigable(QwtPlot *plot)
{
    plot->updateAxes(); // so that there is something to go back to
    auto *zoomer = new Zoomer(plot);
    zoomer->setParent(plot->canvas());
    for (const auto &[button, modifiers] : {std::pair(Qt::MiddleButton, Qt::NoModifier),
                                            std::pair(Qt::LeftButton, Qt::ShiftModifier)}) {
        auto *panner = new QwtPlotPanner(plot->canvas());
        panner->setMouseButton(button, modifiers);
    }
    auto *magnifier = new QwtPlotMagnifier(plot->canvas());
    magnifier->setMouseButton(Qt::NoButton);
    constexpr double step = 0.8;
    magnifier->setWheelFactor(step);
    plot->canvas()->setToolTip("Drag: zoom in. Shift and drag, or middle button: pan. Wheel: zoom. "
                               "Double click: back.");
}
