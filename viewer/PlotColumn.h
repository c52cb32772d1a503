#pragma once

#include <QVector>
#include <QWidget>

#include <functional>

class QVBoxLayout;
class QwtPlot;

/// Plots one below the other, in which a person can move about. Those with the same horizontal axis
/// share it: what one of them shows, the others show, too.
class PlotColumn : public QWidget
{
public:
    explicit PlotColumn(QWidget *parent = nullptr);

    /// Tells what lies at a place (pixels) of the canvas of a plot, of which the index is given.
    using PlaceText = std::function<QString(int plot, const QPoint &place)>;

    /// Show these plots instead of those before. They belong to the column.
    void setPlots(const QVector<QwtPlot *> &plots, const PlaceText &placeText = {});
    [[nodiscard]] const QVector<QwtPlot *> &plots() const { return shown; }
    /// Zoom all plots about their middles.
    void zoom(double factor);
    /// Show the whole of all plots.
    void showWhole();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void shareAxis();
    void alignCanvases();

    QVBoxLayout *column;
    QVector<QwtPlot *> shown;
};
