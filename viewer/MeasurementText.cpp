#include "viewer/MeasurementText.h"

#include "instrument/NumberText.h"

#include <qwt_plot.h>
#include <qwt_scale_div.h>
#include <qwt_scale_map.h>

#include <cmath>

QString measurementText(const QwtPlot &plot, const QVector<Series> &selection, DelayKind kind,
                        const QPoint &place)
{
    const QwtScaleMap x = plot.canvasMap(QwtPlot::xBottom);
    const QwtScaleMap y = plot.canvasMap(QwtPlot::yLeft);
    const QwtScaleDiv &axis = plot.axisScaleDiv(QwtPlot::yLeft);
    double distance = 10.0; // pixels: farther away is not meant
    QString text;
    for (const Series &series : selection) {
        const QVector<double> &values = valuesOf(series.results, kind);
        const auto at = [&](double pixel) { // measurements are counted from 1
            return static_cast<int>(qBound(0.0, x.invTransform(pixel) - 1, values.size() - 1.0));
        };
        for (int i = at(place.x() - distance); i <= at(place.x() + distance) + 1; ++i) {
            if (i >= values.size() || !isMeasured(series.results, kind)) {
                break;
            }
            // Values beyond the axis lie at its border.
            const double shown = qBound(axis.lowerBound(), values[i], axis.upperBound());
            const double away =
                std::hypot(x.transform(i + 1) - place.x(), y.transform(shown) - place.y());
            if (away < distance) {
                distance = away;
                text = QString("%1\nMeasurement %2: %3 ms")
                           .arg(seriesName(series), QString::number(i + 1), numberText(values[i]));
                if (const Flags flags = series.flagsOf(kind)[i]) {
                    text += '\n' + flagReasons(flags);
                }
            }
        }
    }
    return text;
}
