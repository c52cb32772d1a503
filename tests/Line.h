#pragma once

#include "instrument/VisaBinding.h"
#include "TestFiles.h"

#include <QMap>
#include <QStringList>

#include <functional>
#include <tuple>

inline auto entryPoints()
{
    return std::tie(p_viOpen, p_viClose, p_viSetAttribute, p_viGpibControlREN, p_viWrite, p_viRead,
                    p_viReadToFile);
}

/// Stands between the program and the VISA library that is bound when it is made. It keeps a
/// transcript, and fails and answers as the test says; all else goes on to that library.
///
/// In the transcript an instrument goes by its host name, and a command's "\n" is written out:
/// "osc open", "osc timeout 5000", "osc < *IDN?\n" (written), "osc >" (read), "osc >file", "osc
/// local" (Go To Local), "osc close". What fails has the status behind it.
class Line
{
public:
    /// Returns the status of a call instead of its own, by its entry in the transcript. The call is
    /// made all the same when that is a time-out or positive.
    std::function<ViStatus(const QString &entry)> fails = [](auto &) { return VI_SUCCESS; };
    /// Returns what is read instead of the instrument's own answer to a command, if anything. A
    /// read ends at the end of a message.
    std::function<QByteArrayList(const QByteArray &command)> answer = [](auto &) {
        return QByteArrayList();
    };

    QMap<ViSession, QString> open; ///< hosts
    QStringList transcript;

    Line()
    {
        current = this;
        p_viOpen = [](ViSession manager, const ViChar *resource, ViAccessMode mode,
                      ViUInt32 timeout, ViSession *session) {
            const QString host = QString(resource).section("::", 1, 1);
            const bool usual = mode == VI_NO_LOCK && timeout == 10000;
            return current->pass(host + (usual ? " open" : " open unusually"), [&](Line &line) {
                const ViStatus status =
                    line.real<visa::Open>()(manager, resource, mode, timeout, session);
                line.open[*session] = host;
                return status;
            });
        };
        p_viClose = [](ViObject object) { // closed is closed, whatever becomes of the call
            const QString entry = current->name(object) + " close";
            current->open.remove(object);
            const ViStatus status = current->real<visa::Close>()(object);
            return current->pass(entry, [=](auto &) { return status; });
        };
        p_viSetAttribute = [](ViObject object, ViAttr attribute, ViAttrState value) {
            const QString entry = attribute == VI_ATTR_TMO_VALUE ? "%1 timeout %2" : "%1 attribute";
            return current->pass(entry.arg(current->name(object)).arg(value), [=](Line &line) {
                return line.real<visa::SetAttribute>()(object, attribute, value);
            });
        };
        p_viGpibControlREN = [](ViSession session, ViUInt16 mode) {
            const QString entry = mode == VI_GPIB_REN_ADDRESS_GTL ? " local" : " unexpected mode";
            return current->pass(current->name(session) + entry, [=](Line &line) {
                return line.real<visa::GpibControlREN>()(session, mode);
            });
        };
        p_viWrite = [](ViSession session, const ViByte *bytes, ViUInt32 count, ViUInt32 *written) {
            const QByteArray command(reinterpret_cast<const char *>(bytes), int(count));
            const QString text = QString(command).replace("\n", "\\n");
            return current->pass(current->name(session) + " < " + text, [&](Line &line) {
                line.pending[session] = line.answer(command);
                return line.pending[session].isEmpty()
                           ? line.real<visa::Write>()(session, bytes, count, written)
                           : VI_SUCCESS;
            });
        };
        p_viRead = [](ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returned) {
            return current->pass(current->name(session) + " >", [&](Line &line) {
                if (line.pending[session].isEmpty()) {
                    return line.real<visa::Read>()(session, buffer, count, returned);
                }
                const auto [status, bytes] = line.take(session, count);
                std::copy(bytes.begin(), bytes.end(), buffer);
                if (returned != nullptr) {
                    *returned = ViUInt32(bytes.size());
                }
                return status;
            });
        };
        p_viReadToFile = [](ViSession session, const ViChar *name, ViUInt32 count, ViUInt32 *size) {
            return current->pass(current->name(session) + " >file", [&](Line &line) {
                if (line.pending[session].isEmpty()) {
                    return line.real<visa::ReadToFile>()(session, name, count, size);
                }
                const auto [status, bytes] = line.take(session, count);
                if (size != nullptr) {
                    *size = ViUInt32(bytes.size());
                }
                return ::write(QFile::decodeName(name), bytes) ? status : VI_ERROR_FILE_ACCESS;
            });
        };
    }
    ~Line() { entryPoints() = bound; }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    QStringList takeTranscript() { return std::exchange(transcript, {}); }

private:
    /// What was bound when the line was made.
    template <typename Function>
    [[nodiscard]] Function *real() const
    {
        return std::get<Function *>(bound);
    }

    [[nodiscard]] QString name(ViSession session) const
    {
        return open.value(session, "session " + QString::number(session));
    }

    template <typename Call>
    ViStatus pass(const QString &entry, const Call &call)
    {
        const ViStatus fault = fails(entry);
        const bool isMade = fault >= 0 || fault == VI_ERROR_TMO;
        transcript << (fault == VI_SUCCESS ? entry
                                           : entry + " -> " + QString::number(ViUInt32(fault), 16));
        const ViStatus status = isMade ? call(*this) : fault;
        return status < 0 || fault == VI_SUCCESS ? status : fault;
    }

    /// The next bytes of an answer, whose last message stays when it is used up.
    std::pair<ViStatus, QByteArray> take(ViSession session, ViUInt32 count)
    {
        QByteArrayList &messages = pending[session];
        const QByteArray bytes = messages[0].left(int(count));
        messages[0].remove(0, bytes.size());
        const bool isWhole = messages[0].isEmpty();
        if (isWhole && messages.size() > 1) {
            messages.removeFirst();
        }
        const bool isNothing = bytes.isEmpty() && count > 0;
        return {isNothing ? VI_ERROR_TMO : isWhole ? VI_SUCCESS : VI_SUCCESS_MAX_CNT, bytes};
    }

    static inline Line *current = nullptr;
    QMap<ViSession, QByteArrayList> pending;
    std::tuple<visa::Open *, visa::Close *, visa::SetAttribute *, visa::GpibControlREN *,
               visa::Write *, visa::Read *, visa::ReadToFile *>
        bound = entryPoints();
};
