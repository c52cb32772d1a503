#pragma once

#include "instrument/VisaBinding.h"
#include "TestFiles.h"

#include <QStringList>

#include <functional>
#include <optional>

/// The way from the program to the VISA library that is bound when it is made. It keeps a
/// transcript, and fails and answers as the test tells it to.
///
/// In the transcript an instrument goes by its host name, and a command's "\n" is written out:
/// "osc open", "osc timeout 5000", "osc < *IDN?\n" (written), "osc >" (read), "osc >file", "osc
/// local" (Go To Local), "osc close". What fails has the status behind it.
class Line
{
public:
    /// The status that a call has instead of its own, by its entry. After a time-out or a positive
    /// status the instrument has obeyed; other errors keep the call from it.
    std::function<ViStatus(const QString &entry)> fails = [](auto &) { return VI_SUCCESS; };
    /// What comes instead of an instrument's own answer.
    std::function<std::optional<QByteArray>(const QString &host, const QByteArray &command)>
        answer = [](auto &, auto &) { return std::nullopt; };
    /// What comes instead of bytes that were read.
    std::function<QByteArray(const QByteArray &bytes)> spoil;

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
                const ViStatus status = line.viOpen(manager, resource, mode, timeout, session);
                line.open[*session] = host;
                return status;
            });
        };
        p_viClose = [](ViObject object) { // closed is closed, whatever becomes of the call
            const QString entry = current->name(object) + " close";
            current->open.remove(object);
            const ViStatus status = current->viClose(object);
            return current->pass(entry, [=](Line &) { return status; });
        };
        p_viSetAttribute = [](ViObject object, ViAttr attribute, ViAttrState value) {
            const QString entry = attribute == VI_ATTR_TMO_VALUE ? "%1 timeout %2" : "%1 attribute";
            return current->pass(entry.arg(current->name(object)).arg(value), [=](Line &line) {
                return line.viSetAttribute(object, attribute, value);
            });
        };
        p_viGpibControlREN = [](ViSession session, ViUInt16 mode) {
            const QString entry = mode == VI_GPIB_REN_ADDRESS_GTL ? " local" : " unexpected mode";
            return current->pass(current->name(session) + entry,
                                 [=](Line &line) { return line.viGpibControlREN(session, mode); });
        };
        p_viWrite = [](ViSession session, const ViByte *bytes, ViUInt32 count, ViUInt32 *written) {
            const QByteArray command(reinterpret_cast<const char *>(bytes),
                                     static_cast<int>(count));
            const QString host = current->name(session);
            return current->pass(
                host + " < " + QString(command).replace("\n", "\\n"), [&](Line &line) {
                    line.pending[session] = line.answer(host, command);
                    return line.pending[session] ? VI_SUCCESS
                                                 : line.viWrite(session, bytes, count, written);
                });
        };
        p_viRead = [](ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returned) {
            QByteArray bytes;
            const ViStatus status = current->pass(current->name(session) + " >", [&](Line &line) {
                return line.read(session, static_cast<int>(count), &bytes);
            });
            std::copy(bytes.begin(), bytes.end(), buffer);
            if (returned != nullptr) {
                *returned = static_cast<ViUInt32>(bytes.size());
            }
            return status;
        };
        p_viReadToFile = [](ViSession session, const ViChar *name, ViUInt32 count, ViUInt32 *size) {
            return current->pass(current->name(session) + " >file", [&](Line &line) {
                if (!line.pending[session] && !line.spoil) {
                    return line.viReadToFile(session, name, count, size);
                }
                QByteArray bytes;
                const ViStatus status = line.read(session, static_cast<int>(count), &bytes);
                return ::write(QFile::decodeName(name), bytes) ? status : VI_ERROR_FILE_ACCESS;
            });
        };
    }
    ~Line()
    {
        p_viOpen = viOpen;
        p_viClose = viClose;
        p_viSetAttribute = viSetAttribute;
        p_viGpibControlREN = viGpibControlREN;
        p_viWrite = viWrite;
        p_viRead = viRead;
        p_viReadToFile = viReadToFile;
    }
    Line(const Line &) = delete;
    Line &operator=(const Line &) = delete;

    QStringList takeTranscript() { return std::exchange(transcript, {}); }

private:
    [[nodiscard]] QString name(ViSession session) const
    {
        return open.value(session, "session " + QString::number(session));
    }

    template <typename Call>
    ViStatus pass(QString entry, const Call &call)
    {
        const ViStatus fault = fails(entry);
        const bool isMade = fault >= 0 || fault == VI_ERROR_TMO;
        transcript << (fault == VI_SUCCESS ? entry
                                           : entry + " -> " + QString::number(ViUInt32(fault), 16));
        const ViStatus status = isMade ? call(*this) : fault;
        return status < 0 || fault == VI_SUCCESS ? status : fault;
    }

    ViStatus read(ViSession session, int count, QByteArray *bytes)
    {
        std::optional<QByteArray> &message = pending[session];
        ViStatus status = VI_SUCCESS;
        if (message) {
            *bytes = message->left(count);
            message->remove(0, count);
            status = bytes->isEmpty()     ? VI_ERROR_TMO
                     : message->isEmpty() ? VI_SUCCESS
                                          : VI_SUCCESS_MAX_CNT;
        } else {
            ViUInt32 size = 0;
            bytes->resize(count);
            status =
                viRead(session, reinterpret_cast<ViByte *>(bytes->data()), ViUInt32(count), &size);
            bytes->truncate(int(size));
        }
        *bytes = spoil ? spoil(*bytes).left(count) : *bytes;
        return status;
    }

    static inline Line *current = nullptr;
    QMap<ViSession, std::optional<QByteArray>> pending;
    visa::Open *viOpen = p_viOpen;
    visa::Close *viClose = p_viClose;
    visa::SetAttribute *viSetAttribute = p_viSetAttribute;
    visa::GpibControlREN *viGpibControlREN = p_viGpibControlREN;
    visa::Write *viWrite = p_viWrite;
    visa::Read *viRead = p_viRead;
    visa::ReadToFile *viReadToFile = p_viReadToFile;
};
