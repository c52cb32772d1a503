#include "analysis/DelayKind.h"

QString delayName(DelayKind kind)
{
    switch (kind) {
    case DelayKind::Rf:
        return "Source to RF";
    case DelayKind::Hdmi:
        return "Source to HDMI";
    case DelayKind::Sink:
        break;
    }
    return "Source to sink";
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
