#pragma once

#include <QVector>

/// Scale an RF envelope in place so that its smallest sample becomes 0 and its largest 0.2, in
/// whatever unit it came. An envelope of equal samples becomes NaN.
void normaliseEnvelope(QVector<double> *rf);
