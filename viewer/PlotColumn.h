#pragma once

#include <QVector>
#include <QWidget>

class QVBoxLayout;
class QwtPlot;

/// Plots one below the other, in which a person can move about.
class PlotColumn : public QWidget
{
public:
    explicit PlotColumn(QWidget *parent = nullptr);

    /// Show these plots instead of those before. They belong to the column.
    void setPlots(const QVector<QwtPlot *> &plots);
    [[nodiscard]] const QVector<QwtPlot *> &plots() const { return shown; }

private:
    QVBoxLayout *column;
    QVector<QwtPlot *> shown;
};
