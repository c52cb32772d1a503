#pragma once

#include "instrument/OscilloscopeType.h"

#include <QVector>

// What the window and the result graph share. All values start at zero or empty, and keep their
// value from one series to the next.

inline int OsTyp = 0;       ///< index of the oscilloscope type: 0 "KVx", otherwise "LPA4004"
inline bool VaHdmi = false; ///< the video analyzer takes part

inline QVector<double> d1_src; ///< source trace of the last record, volts
inline QVector<double> d2_rf;  ///< RF envelope of the last record, normalised to 0 .. 0.2
inline QVector<double> d3_snk; ///< sink trace of the last record, volts
inline QVector<double> t;      ///< time axis, seconds: one axis more for every record attempted
inline int NSmp = 0; ///< samples of one record: the first values of the traces and of t that count

inline double t_src = 0.0; ///< instant of the source edge, seconds from the trigger
inline double t_rf = 0.0;  ///< instant of the RF burst
inline double t_hd = 0.0;  ///< stays 0: the video analyzer measures a delay, not an instant
inline double t_snk = 0.0; ///< instant of the sink edge

inline double mS2Rf = 0.0;  ///< mean delay of the last series, source to RF, milliseconds
inline double mS2Hd = 0.0;  ///< source to HDMI
inline double mS2Snk = 0.0; ///< source to sink

/// Returns the dialect that OsTyp stands for.
inline OscilloscopeType chosenOscilloscopeType()
{
    return OsTyp == 0 ? OscilloscopeType::Kvx : OscilloscopeType::Lpa4004;
}
