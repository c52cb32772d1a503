#pragma once

#include "visa/VisaTypes.h"

#include <QString>
#include <QVector>

/// Send a trace query and read the answer as readTrace() does. The command carries its own "\n".
/// When the write fails nothing is read, the trace keeps its samples and the result is true: the
/// caller then goes on with the record it has.
bool queryTrace(ViSession session, const QString &command, QVector<double> *trace);

/// Read a trace whose query has been sent: a definite-length block (IEEE 488.2 8.7.9) of 32-bit
/// floats in the host's byte order. Replaces the trace's samples by those that came, widened to
/// double and in the instrument's unit (volts or dBm). Returns false and leaves the trace alone
/// when the answer is no such block, when a read fails, or when there is no file to be had for the
/// transfer. Positive VISA statuses are no failures here.
bool readTrace(ViSession session, QVector<double> *trace);
