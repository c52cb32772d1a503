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

/// Records the program's VISA calls in a transcript, and lets a test make calls fail. The calls go
/// to the functions that were bound when this object was made.
///
/// The transcript names an instrument by its host, and writes out a command's "\n":
/// "osc timeout 5000", "osc < *IDN?\n" (written), "osc reads", "osc reads file", "osc local" (Go To
/// Local), "osc close".
class CallRecorder
{
public:
    /// Takes the entry of each call. VI_SUCCESS lets the call through. A time-out or a positive
    /// status is returned after the call, unless the call itself fails. Any other error is returned
    /// instead of making the call.
    std::function<ViStatus(const QString &entry)> faultOf = [](auto &) { return VI_SUCCESS; };

    QMap<ViSession, QString> hosts; ///< of the open sessions
    QStringList transcript;

    CallRecorder()
    {
        current = this;
        p_viOpen = [](ViSession manager, const ViChar *resource, ViAccessMode mode,
                      ViUInt32 timeout, ViSession *session) {
            const QString host = QString(resource).section("::", 1, 1);
            const auto entry = QString(" open, lock %1, %2 ms").arg(mode).arg(timeout);
            current->hosts[manager] = host; // the entry names the host
            const ViStatus status =
                pass<visa::Open>(entry, manager, resource, mode, timeout, session);
            current->hosts[*session] = host;
            current->hosts.remove(0); // the session of an open that failed
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
    ~CallRecorder() { entryPoints() = bound; }
    Q_DISABLE_COPY(CallRecorder)

    /// Returns the transcript without reads, and empties it.
    QStringList takeCalls()
    {
        return std::exchange(transcript, {}).filter(QRegularExpression("^(?!.* reads)"));
    }

private:
    /// Record a call, and make it unless its fault prevents that.
    template <typename Function, typename... Arguments>
    static ViStatus pass(const QString &what, ViObject session, Arguments... arguments)
    {
        const QString entry =
            current->hosts.value(session, QString("session %1").arg(session)) + what;
        current->transcript << entry;
        const ViStatus fault = current->faultOf(entry);
        if (fault < 0 && fault != VI_ERROR_TMO) {
            return fault;
        }
        const ViStatus status = std::get<Function *>(current->bound)(session, arguments...);
        return status < 0 || fault == VI_SUCCESS ? status : fault;
    }

    static inline CallRecorder *current = nullptr;
    std::tuple<visa::Open *, visa::Close *, visa::SetAttribute *, visa::GpibControlREN *,
               visa::Write *, visa::Read *, visa::ReadToFile *>
        bound = entryPoints();
};
