#pragma once

#include "instrument/OscilloscopeType.h"
#include "visa/VisaTypes.h"

#include <QString>

/// The operator's settings for the spectrum analyzer.
struct SpectrumAnalyzerSettings
{
    QString resource;             ///< VISA resource string
    double centerFrequency = 0.0; ///< hertz
    /// The sweep lasts as long as this oscilloscope's record.
    OscilloscopeType oscilloscopeType = OscilloscopeType::Kvx;
};

/// Open the spectrum analyzer and put it into zero span with an external trigger, wide bandwidths
/// and, except in the QEL family, the video signal on its IF output. It is never reset. The new
/// session is in *session and stays open after a failure. Returns 0 when the analyzer has taken
/// sweep and bandwidths and has gone to local, otherwise the status of the first of these commands
/// that failed. Failures of all other steps are ignored.
[[nodiscard]] ViStatus setUpSpectrumAnalyzer(ViSession resourceManager,
                                             const SpectrumAnalyzerSettings &settings,
                                             ViSession *session);
