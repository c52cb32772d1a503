#pragma once

#include "visa/VisaTypes.h"

#include <QString>
#include <QVector>

/// Send a trace query, which ends in "\n", and read the answer with readTrace(). When the write
/// fails, nothing is read, the trace is unchanged and true is returned: the measurement goes on
/// with the trace that it has.
bool queryTrace(ViSession session, const QString &command, QVector<double> *trace);

/// Read a trace whose query has been sent: a definite-length block (IEEE 488.2 8.7.9) of 32-bit
/// floats in the host's byte order. The trace is replaced by the samples that arrive, in the
/// instrument's unit (volts or dBm); it is shorter when bytes are missing. Returns false and leaves
/// the trace unchanged when the answer does not begin with '#', when a read fails, or when no file
/// can be made for the transfer. The digits after '#' are not checked. Positive VISA statuses are
/// no failures here.
bool readTrace(ViSession session, QVector<double> *trace);
