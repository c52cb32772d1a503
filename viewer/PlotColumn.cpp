#include "viewer/PlotColumn.h"

#include "viewer/Navigation.h"

#include <QVBoxLayout>

#include <qwt_plot.h>
#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

#include <algorithm>

PlotColumn::PlotColumn(QWidget *parent) : QWidget(parent), column(new QVBoxLayout(this))
{
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
}

void PlotColumn::setPlots(const QVector<QwtPlot *> &plots, const PlaceText &placeText)
{
    qDeleteAll(shown);
    shown = plots;
    using std::placeholders::_1;
    shareAxis();
    for (int i = 0; i < plots.size(); ++i) {
        makeNavigable(plots[i], placeText ? std::bind(placeText, i, _1) : ::PlaceText());
        constexpr int least = 60; // pixels: what a plot asks for itself is too much for three
        plots[i]->setMinimumSize(2 * least, least);
        column->addWidget(plots[i], 1);
        plots[i]->replot();
        connect(plots[i]->axisWidget(QwtPlot::yLeft), &QwtScaleWidget::scaleDivChanged, this,
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
        plot->enableAxis(QwtPlot::xBottom, plot == sharing.last()); // it serves all
        connect(plot->axisWidget(QwtPlot::xBottom), &QwtScaleWidget::scaleDivChanged, this,
                [plot, sharing] {
                    for (QwtPlot *other : sharing) {
                        if (other != plot) {
                            other->setAxisScaleDiv(QwtPlot::xBottom,
                                                   plot->axisScaleDiv(QwtPlot::xBottom));
                            other->replot();
                        }
                    }
                });
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
    QVector<QRectF> parts; // before one moves the axis of the others
    for (const QwtPlot *plot : qAsConst(shown)) {
        const QRectF part = shownPart(plot);
        parts += enlarge(part, factor, part.center());
    }
    for (int i = 0; i < shown.size(); ++i) {
        showPart(shown[i], parts[i]);
    }
}

void PlotColumn::showWhole()
{
    std::for_each(shown.begin(), shown.end(), ::showWhole);
}
