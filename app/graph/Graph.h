#pragma once

#include <QBrush>
#include <QDialog>

#include <array>
#include <memory>

class QwtPlotCurve;
class Ui_Graph;

/// Brushes for six curves of a plot, in order. The curves of Graph have colours of their own.
extern const std::array<QBrush, 6> PenCol;

/// The dialog that shows the last record of a series with its edges, and the mean delays.
class Graph : public QDialog
{
    Q_OBJECT

public:
    /// Draw the traces, instants and means of app/Globals.h as they are now.
    explicit Graph(QWidget *parent);
    ~Graph() override;

private:
    std::unique_ptr<Ui_Graph> ui;
    // Owned by the plot.
    QwtPlotCurve *sourceCurve;
    QwtPlotCurve *rfCurve;
    QwtPlotCurve *sinkCurve;
};
