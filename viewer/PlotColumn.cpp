#include "viewer/PlotColumn.h"

#include "viewer/Navigation.h"

#include <qwt_plot.h>
#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <algorithm>
#include <utility>

PlotColumn::PlotColumn(MakePlots make, PlaceText text, QBoxLayout::Direction direction)
    : makePlots(std::move(make)), placeText(std::move(text))
{
    auto *column = new QBoxLayout(direction, this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
}

void PlotColumn::renew()
{
    isStale = true;
    if (isVisible()) {
        showEvent(nullptr);
    }
}

void PlotColumn::showEvent(QShowEvent * /*event*/)
{
    if (!std::exchange(isStale, false)) {
        return;
    }
    qDeleteAll(shown);
    navigations.clear();
    shown = makePlots();
    shareAxis();
    for (int i = 0; i < shown.size(); ++i) {
        Navigation::PlaceText text;
        if (placeText) {
            text = [this, i](const QPoint &place) { return placeText(i, place); };
        }
        navigations += new Navigation(shown[i], text);
        shown[i]->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored); // equal room for all
        layout()->addWidget(shown[i]);
        // Plots that stand beside each other may be narrow.
        QwtText title = shown[i]->axisTitle(QwtPlot::xBottom);
        title.setRenderFlags(Qt::AlignHCenter | Qt::TextWordWrap);
        shown[i]->setAxisTitle(QwtPlot::xBottom, title);
        shown[i]->setAxisMaxMajor(QwtPlot::xBottom, 6);
        connect(shown[i]->axisWidget(QwtPlot::yLeft), &QwtScaleWidget::scaleDivChanged, this,
                &PlotColumn::alignCanvases);
    }
    alignCanvases();
}

void PlotColumn::shareAxis()
{
    QVector<QwtPlot *> sharing;
    QwtInterval all;
    for (QwtPlot *plot : qAsConst(shown)) {
        if (plot->axisTitle(QwtPlot::xBottom) == shown.last()->axisTitle(QwtPlot::xBottom)) {
            sharing += plot;
            plot->updateAxes();
            all |= plot->axisInterval(QwtPlot::xBottom);
        }
    }
    for (QwtPlot *plot : qAsConst(sharing)) {
        plot->setAxisScale(QwtPlot::xBottom, all.minValue(), all.maxValue());
        // Room for half a label at either end, the same in all plots.
        const int half =
            QFontMetrics(plot->axisFont(QwtPlot::xBottom)).horizontalAdvance("1000000") / 2;
        plot->axisWidget(QwtPlot::xBottom)->setMinBorderDist(half, half);
        connect(plot->axisWidget(QwtPlot::xBottom), &QwtScaleWidget::scaleDivChanged, this,
                [plot, sharing] {
                    const QwtScaleDiv &axis = plot->axisScaleDiv(QwtPlot::xBottom);
                    for (QwtPlot *other : sharing) {
                        if (other->axisScaleDiv(QwtPlot::xBottom) != axis) {
                            other->setAxisScaleDiv(QwtPlot::xBottom, axis);
                            other->replot();
                        }
                    }
                });
        if (plot != sharing.last()) { // one title for all saves height
            plot->setAxisTitle(QwtPlot::xBottom, QString());
        }
    }
}

void PlotColumn::alignCanvases()
{
    double extent = 0.0;
    for (const QwtPlot *plot : qAsConst(shown)) {
        const QwtScaleWidget *scale = plot->axisWidget(QwtPlot::yLeft);
        extent = std::max(extent, scale->scaleDraw()->extent(scale->font()));
    }
    for (QwtPlot *plot : qAsConst(shown)) {
        plot->axisScaleDraw(QwtPlot::yLeft)->setMinimumExtent(extent);
        plot->updateLayout();
    }
}

void PlotColumn::zoom(double factor)
{
    QVector<QRectF> parts; // read first, since one plot moves the axis of the others
    for (const Navigation *navigation : qAsConst(navigations)) {
        parts += navigation->shownPart();
    }
    for (int i = 0; i < parts.size(); ++i) {
        navigations[i]->showPart(parts[i], factor, parts[i].center());
    }
}
