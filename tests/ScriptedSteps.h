#pragma once

#include "visa/lan/Vxi11Link.h"

#include <QMap>
#include <QString>

#include <array>

inline visa::Deadline in(int milliseconds)
{
    return std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
}

inline ViStatus open(lan::Vxi11Link &link, std::uint16_t port, int milliseconds = 5000)
{
    return link.open("127.0.0.1", port, "inst0", in(milliseconds));
}

inline QString text(ViStatus status)
{
    static const QMap<ViStatus, QString> names = {{VI_SUCCESS, "ok"},
                                                  {VI_ERROR_TMO, "TMO"},
                                                  {VI_ERROR_CONN_LOST, "CONN_LOST"},
                                                  {VI_ERROR_IO, "IO"},
                                                  {VI_ERROR_NSUP_OPER, "NSUP_OPER"},
                                                  {VI_ERROR_RSRC_LOCKED, "RSRC_LOCKED"},
                                                  {VI_ERROR_RSRC_NFOUND, "RSRC_NFOUND"}};
    return names.value(status, QString::number(status));
}

/// Carry a step out: "r9" reads at most 9 bytes, "n9" up to a new line, "w" writes with END, "v"
/// without, "c" clears, "t" triggers, "g6" is viGpibControlREN, "l" and
/// "u" lock and unlock. Returns what came of it: "END abc", "CHR abc\n", "CNT abc", "TMO abc"; "ok
/// 3".
inline QString carryOut(lan::Vxi11Link &link, const QString &step, int milliseconds)
{
    const visa::Deadline deadline = in(milliseconds);
    const QString rest = step.mid(1);
    QByteArray bytes = rest.toLatin1();
    ViStatus status = VI_SUCCESS;
    std::size_t written = 0;
    visa::ReadOutcome outcome;
    constexpr std::array ends = {"CNT", "CHR", "END"};
    switch (step[0].toLatin1()) {
    case 'r':
    case 'n':
        bytes.resize(rest.toInt());
        outcome = link.read(reinterpret_cast<ViByte *>(bytes.data()), std::size_t(bytes.size()),
                            step[0] == 'n' ? std::optional<ViByte>('\n') : std::nullopt, deadline);
        return (outcome.status != 0 ? text(outcome.status) : ends.at(std::size_t(outcome.end))) +
               " " + bytes.left(int(outcome.count));
    case 'w':
    case 'v':
        status = link.write(reinterpret_cast<const ViByte *>(bytes.data()),
                            std::size_t(bytes.size()), step[0] == 'w', deadline, &written);
        return text(status) + " " + QString::number(written);
    case 'c':
        return text(link.clear(deadline));
    case 't':
        return text(link.trigger(deadline));
    case 'g':
        return text(link.controlRemote(rest.toUShort(), deadline));
    case 'l':
        return text(link.lock(deadline));
    default:
        return text(link.unlock(deadline));
    }
}
