#pragma once

#include <QBoxLayout>
#include <QVector>
#include <QWidget>

#include <functional>

class Navigation;
class QwtPlot;

/// Plots one below the other, or beside each other, that can be zoomed and panned. Plots with the
/// same horizontal axis move together.
class PlotColumn : public QWidget
{
public:
    using MakePlots = std::function<QVector<QwtPlot *>()>;
    /// Returns the text beside the pointer when it is at a place (pixels) of the canvas of a plot,
    /// which is given by its index.
    using PlaceText = std::function<QString(int plot, const QPoint &place)>;

    explicit PlotColumn(MakePlots make, PlaceText text = {},
                        QBoxLayout::Direction direction = QBoxLayout::TopToBottom);

    /// Make the plots again as soon as they are visible.
    void renew();
    [[nodiscard]] const QVector<QwtPlot *> &plots() const { return shown; }
    /// Show `factor` times as much in all plots, about their middles; with infinity, the whole.
    void zoom(double factor);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void shareAxis();
    void alignCanvases();

    MakePlots makePlots;
    PlaceText placeText;
    QVector<QwtPlot *> shown;
    QVector<Navigation *> navigations; ///< of the plots
    bool isStale = true;
};
