#pragma once

#include <QRectF>

#include <functional>

class QString;
class QwtPlot;

/// Tells what lies at a place (pixels) of a plot's canvas; empty when nothing does.
using PlaceText = std::function<QString(const QPoint &place)>;

/// Let a person move about in a plot, never beyond what it shows now: drag to zoom into a
/// rectangle, drag with the middle button or with Shift to pan, turn the wheel to zoom, and
/// double-click to go back. Beside the pointer stands what lies there.
void makeNavigable(QwtPlot *plot, const PlaceText &placeText = {});

/// Returns what a plot shows, in the units of its axes.
QRectF shownPart(const QwtPlot *plot);

/// Show a part of a navigable plot, moved and cut so that it is one of the whole.
void showPart(QwtPlot *plot, QRectF part);

/// Show the whole of a navigable plot again.
void showWhole(QwtPlot *plot);

/// Returns a part that is larger by a factor, in which a point has stayed at its place.
QRectF enlarge(const QRectF &part, double factor, const QPointF &fixed);
