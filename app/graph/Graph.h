#pragma once

#include <QBrush>
#include <QDialog>

#include <array>
#include <memory>

class QwtPlotCurve;
class Ui_Graph;

/// Colours for the curves of a plot, in order.
extern const std::array<QBrush, 6> PenCol;

/// The last record of a series with its edges, and the series' mean delays.
class Graph : public QDialog
{
    Q_OBJECT

public:
    /// Draw the program-wide traces, instants and means as they are now.
    explicit Graph(QWidget *parent);
    ~Graph() override;

private:
    std::unique_ptr<Ui_Graph> ui;
    // Owned by the plot.
    QwtPlotCurve *sourceCurve;
    QwtPlotCurve *rfCurve;
    QwtPlotCurve *sinkCurve;
};
