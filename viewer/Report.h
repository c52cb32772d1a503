#pragma once

#include "analysis/Series.h"

/// Write a report on series, with statistics and plots: two are compared on one page, others get a
/// page each. The file's name tells its kind. Returns false and a sentence when that fails.
bool writeReport(const QVector<Series> &series, const QString &fileName, QString *problem);
