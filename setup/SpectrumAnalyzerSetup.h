#pragma once

#include "instrument/OscilloscopeType.h"
#include "visa/VisaTypes.h"

#include <QString>

/// What the operator chooses for the spectrum analyzer.
struct SpectrumAnalyzerSettings
{
    QString resource;             ///< VISA resource string
    double centerFrequency = 0.0; ///< hertz
    /// The sweep lasts as long as this oscilloscope's record.
    OscilloscopeType oscilloscopeType = OscilloscopeType::Kvx;
};

/// Open the spectrum analyzer and put it into zero span with an external trigger, wide bandwidths
/// and, but for the QEL family, the video signal on its IF output. It is never reset. The new
/// session is in *session and stays open after a failure. Returns 0 when the analyzer is ready,
/// else the status that ended the set-up.
[[nodiscard]] ViStatus setUpSpectrumAnalyzer(ViSession resourceManager,
                                             const SpectrumAnalyzerSettings &settings,
                                             ViSession *session);
