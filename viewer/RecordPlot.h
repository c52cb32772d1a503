#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw the last record of a series with its three edges, over time or, while the oscilloscope type
/// is not known, over the number of the sample. What is missing of it is said in the plot.
QwtPlot *recordPlot(const Series &series);
