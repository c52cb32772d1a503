#pragma once

#include "measurement/ResultsFile.h"

/// Write a delay with the decimals that the sampling step justifies, both in milliseconds: one more
/// than the step's own, two at 0.1 ms, and two where the step is not known (0). "-" for NaN.
QString delayText(double milliseconds, double step);

/// Returns the name of a delay, as "Source to RF".
QString delayName(DelayKind kind);

/// Returns the name of where a delay ends, as "RF".
QString delayEnd(DelayKind kind);
