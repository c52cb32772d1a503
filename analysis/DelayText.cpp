#include "analysis/DelayText.h"

#include "instrument/NumberText.h"

#include <algorithm>
#include <cmath>

QString delayText(double milliseconds, double step)
{
    constexpr double largest = 1e9; // hundreds of digits say no more than an exponent
    if (std::isnan(milliseconds)) {
        return "-";
    }
    if (std::abs(milliseconds) >= largest) {
        return numberText(milliseconds);
    }
    const double decimals = step > 0.0 ? std::round(1.0 - std::log10(step)) : 2.0;
    const QString text =
        QString::number(milliseconds, 'f', std::max(0, static_cast<int>(decimals)));
    return text.toDouble() == 0.0 ? text.mid(text.startsWith('-') ? 1 : 0) : text;
}

QString delayName(DelayKind kind)
{
    return "Source to " + delayEnd(kind);
}

QString delayEnd(DelayKind kind)
{
    return EachDelay<const char *>{"RF", "HDMI", "sink"}[kind];
}
