#pragma once

#include "instrument/OscilloscopeType.h"
#include "visa/VisaTypes.h"

#include <QString>

/// The operator's settings for the oscilloscope.
struct OscilloscopeSettings
{
    QString resource;   ///< VISA resource string
    bool reset = false; ///< reset the instrument first
    OscilloscopeType oscilloscopeType = OscilloscopeType::Kvx;
    double triggerLevel = 0.0;       ///< volts
    bool rfFromOscilloscope = false; ///< channel 3 takes the analyzer's IF/video output (KVx only)
};

/// Open the oscilloscope and configure its channels, a time base of 1 s (KVx) or 1.2 s (LPA4004)
/// centred on the trigger, and the trigger on channel 1. The new session is in *session and stays
/// open after a failure. Returns 0 when the instrument is ready, otherwise the status of the
/// failed command that ended the set-up.
[[nodiscard]] ViStatus setUpOscilloscope(ViSession resourceManager,
                                         const OscilloscopeSettings &settings, ViSession *session);
