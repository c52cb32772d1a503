#pragma once

#include "analysis/TypeRecognition.h"

#include <QFlags>

/// Why a value may be no delay of the link.
enum class Flag : unsigned
{
    EndOfAxis = 1U << 0U,
    NoSource = 1U << 1U,
    NothingArrived = 1U << 2U,
    OnTrigger = 1U << 3U,
    Repeated = 1U << 4U,
    Stuck = 1U << 5U,
    NoHdmiValue = 1U << 6U,
    NoHdmiEvent = 1U << 7U,
    NotFinite = 1U << 8U,
};
Q_DECLARE_FLAGS(Flags, Flag)
Q_DECLARE_OPERATORS_FOR_FLAGS(Flags)

/// The flags of each measurement.
using SeriesFlags = EachDelay<QVector<Flags>>;

/// Flag the values of a series. Where the axis ends is known with the type; without it, the ends of
/// both types' axes count.
SeriesFlags flagDelays(const SeriesResults &results, int samples, const Recognition &recognition);

/// Whether the video analyzer took part: without it every HDMI delay is 0.
bool isHdmiUsed(const SeriesResults &results);

/// Whether a delay was measured.
bool isMeasured(const SeriesResults &results, DelayKind kind);

/// List the flags that there are.
QVector<Flag> allFlags();

/// Give the reason for a flag, as "no edge: ...".
QString flagReason(Flag flag);

/// Give the reasons for all flags of a value, separated by semicolons.
QString flagReasons(Flags flags);
