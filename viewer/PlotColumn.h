#pragma once

#include <QBoxLayout>
#include <QVector>
#include <QWidget>

#include <functional>

class Navigation;
class QwtPlot;

/// Plots one below the other, or beside each other, in which a person can move about. Those with
/// the same horizontal axis share its position and zoom.
class PlotColumn : public QWidget
{
public:
    using MakePlots = std::function<QVector<QwtPlot *>()>;
    /// Returns what lies at a place (pixels) of the canvas of a plot, of which the index is given.
    using PlaceText = std::function<QString(int plot, const QPoint &place)>;

    explicit PlotColumn(MakePlots make, PlaceText text = {},
                        QBoxLayout::Direction direction = QBoxLayout::TopToBottom);

    /// Make the plots anew, once somebody looks at them.
    void renew();
    [[nodiscard]] const QVector<QwtPlot *> &plots() const { return shown; }
    /// Show so many times as much in all plots, about their middles; by infinity, the whole.
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
