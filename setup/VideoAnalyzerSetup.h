#pragma once

#include "visa/VisaTypes.h"

#include <QString>

/// The operator's settings for the video analyzer.
struct VideoAnalyzerSettings
{
    QString resource;       ///< VISA resource string
    bool reset = false;     ///< reset the instrument first
    double threshold = 0.0; ///< percent, for the delay measurement
};

/// Open the video analyzer, set the threshold and hysteresis of its HDMI delay measurement and
/// start it. The last step sends Go To Local to the spectrum analyzer, so the video analyzer
/// becomes ready only while a spectrum analyzer is open. The new session is in *session and stays
/// open after a failure. Returns 0 when the video analyzer is ready, otherwise the status of the
/// step that failed.
[[nodiscard]] ViStatus setUpVideoAnalyzer(ViSession resourceManager,
                                          const VideoAnalyzerSettings &settings,
                                          ViSession spectrumAnalyzer, ViSession *session);
