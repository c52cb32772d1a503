#pragma once

#include "measurement/ResultsFile.h"

/// The usual least difference between two delays, in milliseconds.
constexpr double usualStep = 0.1;

/// Write milliseconds with enough decimals for their step, in milliseconds: two for steps of 0.1
/// and of 0.05. A rounded zero has no minus sign. NaN gives "-".
QString delayText(double milliseconds, double step);

/// Returns the name of a delay, as "Source to RF".
QString delayName(DelayKind kind);

/// Returns the name of where a delay ends, as "RF".
QString delayEnd(DelayKind kind);
