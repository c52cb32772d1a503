#pragma once

#include <QString>

// Conversion between numbers and text, independent of the operator's locale.

/// Returns a number as text: at most six significant digits without trailing zeros, "." as the
/// decimal point, the shorter of fixed and exponent notation.
inline QString numberText(double value)
{
    return QString::number(value, 'g', 6);
}

/// Returns the number that a text begins with, like atof() in the C locale; 0 when there is none.
double leadingNumber(const char *text);

/// Returns the whole number that a text begins with, like atoi(); 0 when there is none, and the
/// nearest int for a number that an int cannot hold.
int leadingInteger(const char *text);
