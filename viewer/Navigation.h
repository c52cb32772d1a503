#pragma once

class QwtPlot;

/// Let a person move about in a plot: drag to zoom into a rectangle, drag with the middle button or
/// with Shift to pan, turn the wheel to zoom, and double-click to go back to what the plot shows
/// now.
void makeNavigable(QwtPlot *plot);
