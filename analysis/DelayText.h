#pragma once

#include "measurement/ResultsFile.h"

/// The usual least difference between two delays, in milliseconds.
constexpr double usualStep = 0.1;

/// Write a delay with one decimal more than the least difference between delays has, both in
/// milliseconds: two at 0.1 ms. "-" for NaN.
QString delayText(double milliseconds, double step);

/// Returns the name of a delay, as "Source to RF".
QString delayName(DelayKind kind);

/// Returns the name of where a delay ends, as "RF".
QString delayEnd(DelayKind kind);
