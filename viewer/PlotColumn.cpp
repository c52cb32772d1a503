#include "viewer/PlotColumn.h"

#include "viewer/Navigation.h"

#include <QVBoxLayout>

#include <qwt_plot.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

#include <algorithm>

PlotColumn::PlotColumn(QWidget *parent) : QWidget(parent), column(new QVBoxLayout(this))
{
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
}

void PlotColumn::setPlots(const QVector<QwtPlot *> &plots)
{
    qDeleteAll(shown);
    shown = plots;
    double extent = 0.0;
    for (QwtPlot *plot : plots) {
        makeNavigable(plot);
        const QwtScaleWidget *scale = plot->axisWidget(QwtPlot::yLeft);
        extent = std::max(extent, scale->scaleDraw()->extent(scale->font()));
        if (plot != plots.last() &&
            plot->axisTitle(QwtPlot::xBottom) == plots.last()->axisTitle(QwtPlot::xBottom)) {
            plot->setAxisTitle(QwtPlot::xBottom, QString()); // the last one's serves all
        }
        constexpr int least = 60; // pixels: what a plot asks for itself is too much for three
        plot->setMinimumSize(2 * least, least);
        column->addWidget(plot, 1);
        plot->replot();
    }
    for (QwtPlot *plot : plots) {
        plot->axisScaleDraw(QwtPlot::yLeft)->setMinimumExtent(extent); // canvases in line
    }
}
