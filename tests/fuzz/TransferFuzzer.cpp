// Traces from an instrument that sends what it likes, as it likes: their transfer and their delays.
// Input: the bytes that it sends; from its end, what it does at each call.

#include "instrument/VisaBinding.h"
#include "measurement/DelayComputation.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TimeAxis.h"
#include "measurement/WaveformTransfer.h"
#include "Require.h"

#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

FuzzedDataProvider *input = nullptr;
QByteArray file; ///< what the last transfer wrote

/// What the instrument sends at a call, and its status.
std::pair<ViStatus, QByteArray> answer(ViUInt32 most)
{
    constexpr std::array<ViStatus, 6> statuses = {VI_SUCCESS,           VI_SUCCESS,
                                                  VI_SUCCESS_TERM_CHAR, VI_ERROR_TMO,
                                                  VI_ERROR_IO,          visaStatus(0xBFFF00A6)};
    const ViStatus status = input->PickValueInArray(statuses);
    const auto withheld = input->ConsumeIntegral<std::uint8_t>();
    const auto bytes = input->ConsumeBytesAsString(most - std::min<ViUInt32>(most, withheld));
    return {status, QByteArray::fromStdString(bytes)};
}

void bind()
{
    p_viRead = [](ViSession, ViByte *buffer, ViUInt32 count, ViUInt32 *returned) {
        const auto [status, bytes] = answer(count);
        std::copy(bytes.begin(), bytes.end(), buffer);
        *returned = static_cast<ViUInt32>(bytes.size());
        return status;
    };
    p_viReadToFile = [](ViSession, const ViChar *name, ViUInt32 count, ViUInt32 *) {
        ViStatus status = VI_SUCCESS;
        std::tie(status, file) = answer(count);
        require(write(QFile::decodeName(name), file), "a file for each transfer");
        return status;
    };
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider provider(data, size);
    input = &provider;
    bind();
    const auto n = input->ConsumeIntegral<std::int32_t>();
    const auto type = input->ConsumeBool() ? OscilloscopeType::Kvx : OscilloscopeType::Lpa4004;
    std::array<QVector<double>, 3> traces = {QVector<double>(5, 1.0)};
    for (QVector<double> &trace : traces) {
        const QVector<double> before = trace;
        const bool done = readTrace(7, &trace);
        const QVector<float> sent = floatsOf(file).mid(0, trace.size());
        require(bytesOf(trace) ==
                    bytesOf(done ? QVector<double>(sent.begin(), sent.end()) : before),
                "a trace is what came, or what it was");
    }

    normaliseEnvelope(&traces[1]);
    QVector<double> axis;
    appendTimeAxis(traces[0].size(), type, &axis);
    const Delays delays = computeDelays(n, traces[0], traces[1], traces[2], axis, type);
    require(n == 1 || std::isfinite(delays.instants.rf), "an RF instant is on the axis");
    return 0;
}
