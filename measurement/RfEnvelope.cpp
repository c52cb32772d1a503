#include "measurement/RfEnvelope.h"

#include <limits>

void normaliseEnvelope(QVector<double> *rf)
{
    constexpr double span = 0.2;
    double minimum = std::numeric_limits<double>::infinity();
    double maximum = -minimum;
    for (const double x : qAsConst(*rf)) { // neither comparison takes a NaN, which stays one
        minimum = x < minimum ? x : minimum;
        maximum = x > maximum ? x : maximum;
    }
    const double scale = span / (maximum - minimum);
    for (double &x : *rf) {
        x = (x - minimum) * scale;
    }
}
