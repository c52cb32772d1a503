#pragma once

#include <QString>
#include <QVector>

// Trace files: the samples as 64-bit IEEE 754 doubles in the host's byte order, nothing else.

/// Write the first count samples of a trace, or all when it has fewer. Returns 0, or -1 when the
/// file cannot be written; then there is no file.
int saveTrace(const QString &fileName, const QVector<double> &trace, int count);

/// Append the samples of a file to a trace and set *count to their number. A rest of fewer than
/// eight bytes is ignored. Returns 0, or -1 when the file cannot be opened.
int loadTrace(const QString &fileName, QVector<double> *trace, int *count);
