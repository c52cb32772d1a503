#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw the last record of a series with its three edges, over time or, while the oscilloscope type
/// is not known, over the number of the sample. What is missing of it is said in the plot. It shows
/// the extremes of so many columns: many on a screen, where a person zooms in.
QwtPlot *recordPlot(const Series &series, int columns = 4096);
