#include "analysis/DelayText.h"

#include "instrument/NumberText.h"

#include <cmath>

QString delayText(double milliseconds, double step)
{
    constexpr int usualDecimals = 2;
    constexpr double mostDecimals = 6.0;
    constexpr double largest = 1e9; // hundreds of digits say no more than an exponent
    if (std::isnan(milliseconds)) {
        return "-";
    }
    if (std::abs(milliseconds) >= largest) {
        return numberText(milliseconds);
    }
    const int decimals =
        step > 0.0 ? static_cast<int>(qBound(0.0, std::round(1.0 - std::log10(step)), mostDecimals))
                   : usualDecimals;
    const QString text = QString::number(milliseconds, 'f', decimals);
    return text.toDouble() == 0.0 ? text.mid(text.startsWith('-') ? 1 : 0) : text;
}
