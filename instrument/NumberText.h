#pragma once

#include <QString>

// Numbers as instruments, results and fields write them, whatever the operator's locale.

/// Write a number as text: at most six significant digits without trailing zeros, "." as the
/// decimal point, the shorter of fixed and exponent notation.
inline QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}

/// Read the number that a text begins with, as atof() does in the C locale; 0 when there is none.
double leadingNumber(const char *text);

/// Read the whole number that a text begins with, as atoi() does; the nearest int for those that
/// an int cannot hold.
int leadingInteger(const char *text);
