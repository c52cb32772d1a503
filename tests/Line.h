#pragma once

#include "instrument/VisaBinding.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>

#include <functional>
#include <tuple>

inline auto entryPoints()
{
    return std::tie(p_viOpen, p_viClose, p_viSetAttribute, p_viGpibControlREN, p_viWrite, p_viRead,
                    p_viReadToFile);
}

/// Stands between the program and the VISA library that is bound when it is made. It keeps a
/// transcript of the calls, and lets them fail as the test says.
///
/// In the transcript an instrument goes by its host name, and a command's "\n" is written out:
/// "osc timeout 5000", "osc < *IDN?\n" (written), "osc reads", "osc reads file", "osc local" (Go To
/// Local), "osc close".
class Line
{
public:
    /// Returns the status of a call instead of its own, by its entry in the transcript. The call is
    /// made all the same when that is a time-out or positive.
    std::function<ViStatus(const QString &entry)> fails = [](auto &) { return VI_SUCCESS; };

    QMap<ViSession, QString> open; ///< hosts
    QStringList transcript;

    Line()
    {
        current = this;
        p_viOpen = [](ViSession manager, const ViChar *resource, ViAccessMode mode,
                      ViUInt32 timeout, ViSession *session) {
            const QString host = QString(resource).section("::", 1, 1);
            const auto entry = QString(" open, lock %1, %2 ms").arg(mode).arg(timeout);
            current->open[manager] = host; // the call is the host's
            const ViStatus status =
                pass<visa::Open>(entry, manager, resource, mode, timeout, session);
            current->open[*session] = host;
            current->open.remove(0); // the session of an open that failed
            return status;
        };
        p_viClose = [](auto... arguments) { return pass<visa::Close>(" close", arguments...); };
        p_viSetAttribute = [](ViObject session, ViAttr attribute, ViAttrState value) {
            const QString entry = attribute == VI_ATTR_TMO_VALUE ? " timeout %1" : " attribute %1";
            return pass<visa::SetAttribute>(entry.arg(value), session, attribute, value);
        };
        p_viGpibControlREN = [](ViSession session, ViUInt16 mode) {
            const QString entry = mode == VI_GPIB_REN_ADDRESS_GTL ? " local" : " unexpected mode";
            return pass<visa::GpibControlREN>(entry, session, mode);
        };
        p_viWrite = [](ViSession session, const ViByte *bytes, ViUInt32 count, ViUInt32 *written) {
            const QByteArray command(reinterpret_cast<const char *>(bytes), int(count));
            return pass<visa::Write>(" < " + QString(command).replace("\n", "\\n"), session, bytes,
                                     count, written);
        };
        p_viRead = [](auto... arguments) { return pass<visa::Read>(" reads", arguments...); };
        p_viReadToFile = [](auto... arguments) {
            return pass<visa::ReadToFile>(" reads file", arguments...);
        };
    }
    ~Line() { entryPoints() = bound; }
    Q_DISABLE_COPY(Line)

    /// Returns the transcript without reads, and begins it anew.
    QStringList takeCalls()
    {
        return std::exchange(transcript, {}).filter(QRegularExpression("^(?!.* reads)"));
    }

private:
    /// Note a call, and make it as the function was bound before the line, unless it fails.
    template <typename Function, typename... Arguments>
    static ViStatus pass(const QString &what, ViObject session, Arguments... arguments)
    {
        const QString entry =
            current->open.value(session, QString("session %1").arg(session)) + what;
        current->transcript << entry;
        const ViStatus fault = current->fails(entry);
        if (fault < 0 && fault != VI_ERROR_TMO) {
            return fault;
        }
        const ViStatus status = std::get<Function *>(current->bound)(session, arguments...);
        return status < 0 || fault == VI_SUCCESS ? status : fault;
    }

    static inline Line *current = nullptr;
    std::tuple<visa::Open *, visa::Close *, visa::SetAttribute *, visa::GpibControlREN *,
               visa::Write *, visa::Read *, visa::ReadToFile *>
        bound = entryPoints();
};
