#include "viewer/PlotColumn.h"

#include "viewer/Navigation.h"

#include <QVBoxLayout>

#include <qwt_plot.h>
#include <qwt_scale_div.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_widget.h>

#include <algorithm>

namespace {

/// Takes no room and paints nothing, but places the canvas as the one does that is seen.
class UnseenScale : public QwtScaleDraw
{
public:
    [[nodiscard]] double extent(const QFont & /*font*/) const override { return 0.0; }

protected:
    void drawTick(QPainter * /*painter*/, double /*value*/, double /*length*/) const override {}
    void drawBackbone(QPainter * /*painter*/) const override {}
    void drawLabel(QPainter * /*painter*/, double /*value*/) const override {}
};

} // namespace

PlotColumn::PlotColumn(QWidget *parent) : QWidget(parent), column(new QVBoxLayout(this))
{
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
}

void PlotColumn::setPlots(const QVector<QwtPlot *> &plots, const PlaceText &placeText)
{
    qDeleteAll(shown);
    shown = plots;
    shareAxis();
    for (int i = 0; i < plots.size(); ++i) {
        ::PlaceText text;
        if (placeText) {
            text = [placeText, i](const QPoint &place) { return placeText(i, place); };
        }
        makeNavigable(plots[i], text);
        constexpr int least = 60; // pixels: what a plot asks for itself is too much for three
        plots[i]->setMinimumSize(2 * least, least);
        column->addWidget(plots[i]);
        plots[i]->replot();
        connect(plots[i]->axisWidget(QwtPlot::yLeft), &QwtScaleWidget::scaleDivChanged, this,
                &PlotColumn::alignCanvases);
    }
    alignCanvases();
    resizeEvent(nullptr);
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
        // Room for half a label at either end, the same whatever labels there are.
        const int half =
            QFontMetrics(plot->axisFont(QwtPlot::xBottom)).horizontalAdvance("1000000") / 2;
        plot->axisWidget(QwtPlot::xBottom)->setMinBorderDist(half, half);
        if (plot != sharing.last()) { // whose axis serves all
            plot->setAxisScaleDraw(QwtPlot::xBottom, new UnseenScale);
            plot->axisWidget(QwtPlot::xBottom)->setMargin(0);
            plot->setAxisTitle(QwtPlot::xBottom, QString());
        }
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

void PlotColumn::resizeEvent(QResizeEvent * /*event*/)
{
    // Canvases of the same height, below which only some plots have an axis.
    int axes = 0;
    for (const QwtPlot *plot : qAsConst(shown)) {
        axes += plot->axisWidget(QwtPlot::xBottom)->sizeHint().height();
    }
    for (QwtPlot *plot : qAsConst(shown)) {
        column->setStretchFactor(plot, std::max(1, (height() - axes) / shown.size()) +
                                           plot->axisWidget(QwtPlot::xBottom)->sizeHint().height());
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
