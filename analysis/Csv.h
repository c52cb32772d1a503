#pragma once

#include "analysis/Series.h"

/// Returns series as comma-separated values (RFC 4180): a heading with units, then a row for each
/// measurement, with its delays in milliseconds. Rows end in "\n".
QString csvText(const QVector<Series> &selection);

/// Returns the reasons for all flags of a measurement, each with the name of its delay.
QString measurementFlags(const Series &series, int measurement);
