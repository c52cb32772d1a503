#include "analysis/DelayText.h"

#include <algorithm>
#include <cmath>

QString delayText(double milliseconds, double step)
{
    if (std::isnan(milliseconds)) {
        return "-";
    }
    const int decimals = std::max(0, static_cast<int>(std::lround(1.0 - std::log10(step))));
    const QString text = QString::number(milliseconds, 'f', decimals);
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
