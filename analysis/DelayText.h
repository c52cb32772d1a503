#pragma once

#include "measurement/ResultsFile.h"

/// The step between possible delays that is assumed where a series does not say it: the usual time
/// between two samples, in milliseconds.
constexpr double usualStep = 0.1;

/// Returns milliseconds as text. The number of decimals depends on their step (in milliseconds):
/// one for 1, two for 0.1 and 0.05, three for 0.01. A rounded zero has no minus sign. NaN gives
/// "-".
QString delayText(double milliseconds, double step);

/// Returns the name of a delay, such as "Source to RF".
QString delayName(DelayKind kind);

/// Returns the name of the place where a delay ends, such as "RF".
QString delayEnd(DelayKind kind);
