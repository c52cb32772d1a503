#include "analysis/DelayKind.h"

QString delayName(DelayKind kind)
{
    return "Source to " + delayEnd(kind);
}

QString delayEnd(DelayKind kind)
{
    switch (kind) {
    case DelayKind::Rf:
        return "RF";
    case DelayKind::Hdmi:
        return "HDMI";
    case DelayKind::Sink:
        break;
    }
    return "sink";
}

const QVector<double> &valuesOf(const SeriesResults &results, DelayKind kind)
{
    switch (kind) {
    case DelayKind::Rf:
        return results.sourceToRf.values;
    case DelayKind::Hdmi:
        return results.sourceToHdmi.values;
    case DelayKind::Sink:
        break;
    }
    return results.sourceToSink.values;
}
