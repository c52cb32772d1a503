#include "viewer/Navigation.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include <qwt_plot.h>
#include <qwt_plot_panner.h>

#include <cmath>
#include <utility>

Navigation::Navigation(QwtPlot *plot, PlaceText text)
    : QwtPlotZoomer(plot->canvas(), false), placeText(std::move(text))
{
    plot->updateAxes(); // the whole is what the axes show now
    setZoomBase(false);
    setMousePattern(QwtEventPattern::MouseSelect2, Qt::RightButton, Qt::ControlModifier);
    setMousePattern(QwtEventPattern::MouseSelect3, Qt::RightButton);
    setTrackerMode(QwtPicker::AlwaysOn);
    setRubberBandPen(QPen(Qt::darkGray, 1, Qt::DashLine));
    for (const auto &[button, modifiers] : {std::pair(Qt::MiddleButton, Qt::NoModifier),
                                            std::pair(Qt::LeftButton, Qt::ShiftModifier)}) {
        auto *panner = new QwtPlotPanner(plot->canvas());
        panner->setMouseButton(button, modifiers);
        connect(panner, &QwtPanner::panned, this, [this] { showPart(shownPart(), 1, {}); });
    }
}

void Navigation::showPart(const QRectF &part, double factor, const QPointF &fixed)
{
    const QRectF whole = zoomBase();
    constexpr double least = 1e-6; // of the whole; for less, a double has too few digits
    QRectF shown(fixed + (part.topLeft() - fixed) * factor, part.size() * factor);
    shown.setSize(shown.size().expandedTo(whole.size() * least).boundedTo(whole.size()));
    shown.moveTo(qBound(whole.left(), shown.left(), whole.right() - shown.width()),
                 qBound(whole.top(), shown.top(), whole.bottom() - shown.height()));
    plot()->setAxisScale(xAxis(), shown.left(), shown.right());
    plot()->setAxisScale(yAxis(), shown.top(), shown.bottom());
    plot()->replot();
}

QwtText Navigation::trackerText(const QPoint &place) const
{
    const QPointF at = invTransform(place);
    QwtText text(placeText ? placeText(place)
                           : QString("%1, %2").arg(at.x(), 0, 'f', 2).arg(at.y(), 0, 'f', 2),
                 QwtText::PlainText);
    text.setRenderFlags(Qt::AlignLeft);
    text.setBackgroundBrush(Qt::white);
    return text;
}

void Navigation::widgetMouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        zoom(0);
    }
}

void Navigation::widgetWheelEvent(QWheelEvent *event)
{
    constexpr double turn = 120.0; // eighths of a degree: one click of the wheel
    showPart(shownPart(), std::pow(zoomStep, event->angleDelta().y() / turn),
             invTransform(event->position().toPoint()));
}
