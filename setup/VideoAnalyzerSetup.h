#pragma once

#include "visa/VisaTypes.h"

#include <QString>

/// What the operator chooses for the video analyzer.
struct VideoAnalyzerSettings
{
    QString resource;       ///< VISA resource string
    bool reset = false;     ///< reset the instrument first
    double threshold = 0.0; ///< of the delay measurement, percent
};

/// Open the video analyzer, set the threshold and hysteresis of its HDMI delay measurement and
/// start it. The last step sends the spectrum analyzer to local and decides the result, so that
/// the video analyzer is ready only beside an open spectrum analyzer. The new session is in
/// *session and stays open after a failure. Returns 0 when ready, else the status of the step
/// that failed.
[[nodiscard]] ViStatus setUpVideoAnalyzer(ViSession resourceManager,
                                          const VideoAnalyzerSettings &settings,
                                          ViSession spectrumAnalyzer, ViSession *session);
