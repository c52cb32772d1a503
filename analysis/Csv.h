#pragma once

#include "analysis/Series.h"

/// Head the rows of csvRows(), with units.
QString csvHeading();

/// Write a series as comma-separated values (RFC 4180), one row a measurement, delays in
/// milliseconds. Rows end in "\n".
QString csvRows(const Series &series);

/// Give the reasons for all flags of a measurement, each with the delay that it belongs to.
QString measurementFlags(const Series &series, int measurement);
