#pragma once

#include <QString>

/// A number as instruments, results and fields show it: at most six significant digits without
/// trailing zeros, "." as the decimal point, the shorter of fixed and exponent notation.
inline QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}
