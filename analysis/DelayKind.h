#pragma once

#include "measurement/ResultsFile.h"

#include <array>

/// The delays of a measurement, in the order of results files.
enum class DelayKind
{
    Rf,
    Hdmi,
    Sink,
};

constexpr std::array<DelayKind, 3> delayKinds = {DelayKind::Rf, DelayKind::Hdmi, DelayKind::Sink};

/// Name a delay, as "Source to RF".
QString delayName(DelayKind kind);

/// Name where a delay ends, as "RF".
QString delayEnd(DelayKind kind);

/// Find the values of a delay, in milliseconds.
const QVector<double> &valuesOf(const SeriesResults &results, DelayKind kind);
