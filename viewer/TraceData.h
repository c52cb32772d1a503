#pragma once

#include <QVector>

#include <qwt_series_data.h>

/// An equally sampled trace for a curve, decimated to what a screen shows: of each column the
/// least and the greatest sample, so that no spike is lost. A million samples then scroll as
/// smoothly as a thousand, and make no large files. Samples that are not finite are left out.
class TraceData : public QwtSeriesData<QPointF>
{
public:
    /// Make a curve's data of samples that begin at `first` and lie an interval apart. At most this
    /// many columns are shown at a time.
    TraceData(const QVector<double> &trace, double first, double interval, int columns);

    [[nodiscard]] std::size_t size() const override { return std::size_t(shown.size()); }
    [[nodiscard]] QPointF sample(std::size_t i) const override { return shown[int(i)]; }
    [[nodiscard]] QRectF boundingRect() const override { return bounds; }
    /// Show the samples in this part of the plot, decimated.
    void setRectOfInterest(const QRectF &rect) override;

private:
    void show(int from, int to);

    QVector<double> trace;
    double first;
    double interval;
    int columns;
    QVector<QPointF> shown;
    QRectF bounds;
};
