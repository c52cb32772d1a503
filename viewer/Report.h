#pragma once

#include "analysis/Series.h"

/// Write a report with statistics and plots. Two series are compared on one page; one series, or
/// each of more than two, has a page of its own. exportPages() says which files it can be written
/// to. Returns false and a sentence on failure.
bool writeReport(const QVector<Series> &series, const QString &fileName, QString *problem);
