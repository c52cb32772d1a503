#pragma once

#include "analysis/TypeRecognition.h"

#include <QFlags>

#include <utility>

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

constexpr std::array<std::pair<Flag, const char *>, 9> reasonsByFlag = {{
    {Flag::EndOfAxis, "no edge: the delay lies at the end of the time axis"},
    {Flag::NoSource, "no source edge: the delay counts from an end of the time axis"},
    {Flag::NothingArrived, "nothing arrived: both delays are 0, as with empty traces"},
    {Flag::OnTrigger, "no delay: 0 is written when the RF edge lies on the trigger itself"},
    {Flag::Repeated, "nothing new arrived: RF and sink are those of the measurement before"},
    {Flag::Stuck, "stuck: more equal delays in a row than chance brings"},
    {Flag::NoHdmiValue, "no value from the video analyzer"},
    {Flag::NoHdmiEvent, "no event at the video analyzer (-230)"},
    {Flag::NotFinite, "not a finite number, left out of all statistics"},
}};

/// The flags of each measurement.
using SeriesFlags = EachDelay<QVector<Flags>>;

/// Flag the values of a series. A delay at an end of the time axis is flagged; while the type of
/// the oscilloscope is not known, the ends of both types' axes count.
SeriesFlags flagDelays(const SeriesResults &results, const Recognition &recognition);

/// Returns whether a delay was measured: without a video analyzer every HDMI delay is 0.
bool isMeasured(const SeriesResults &results, DelayKind kind);

/// Returns the reasons for all flags of a value, separated by semicolons.
QString flagReasons(Flags flags);
