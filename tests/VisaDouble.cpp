#include "VisaDouble.h"

#include "DefiniteBlock.h"
#include "instrument/VisaBinding.h"
#include "instrument/VisaLibraryPath.h"
#include "TestFiles.h"

#include <QFile>

#include <algorithm>

namespace {

VisaDouble *current = nullptr;
constexpr ViSession resourceManager = 1;

} // namespace

QString visaLibraryPath()
{
    return VisaDouble::libraryPath;
}

VisaDouble::VisaDouble()
    : answer([](const QString & /*resource*/, const QByteArray &command) {
          return command.endsWith("?\n") ? std::make_optional<QByteArray>("1\n") : std::nullopt;
      })
{
    current = this;
    p_viOpenDefaultRM = [](ViSession *session) {
        *session = resourceManager;
        return VI_SUCCESS;
    };
    p_viOpen = [](ViSession manager, const ViChar *resource, ViAccessMode mode, ViUInt32 timeout,
                  ViSession *session) {
        const bool usual = manager == resourceManager && mode == VI_NO_LOCK && timeout == 10000;
        const ViStatus status =
            current->log(At::Open, QString(resource) + (usual ? " open" : " open unusually"));
        if (status == VI_SUCCESS) {
            *session = current->openQuietly(resource);
        }
        return status;
    };
    p_viSetAttribute = [](ViObject object, ViAttr attribute, ViAttrState value) {
        const QString entry = attribute == VI_ATTR_TMO_VALUE ? " timeout " : " attribute ";
        return current->log(At::Timeout, current->name(object) + entry + QString::number(value));
    };
    p_viWrite = [](ViSession session, const ViByte *buffer, ViUInt32 count, ViUInt32 *) {
        const QByteArray command(reinterpret_cast<const char *>(buffer), static_cast<int>(count));
        const QString shown = QString(command).replace("\n", "\\n");
        const ViStatus fault = current->log(At::Write, current->name(session) + " < " + shown);
        if (fault != VI_SUCCESS || !current->open.contains(session)) {
            return fault != VI_SUCCESS ? fault : VI_ERROR_INV_OBJECT;
        }
        current->pending[session] = current->answer(current->name(session), command);
        return VI_SUCCESS;
    };
    p_viRead = [](ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returned) {
        QByteArray bytes;
        const ViStatus status = current->take(session, " >", count, &bytes);
        std::copy(bytes.begin(), bytes.end(), buffer);
        if (returned != nullptr) {
            *returned = static_cast<ViUInt32>(bytes.size());
        }
        return status;
    };
    p_viReadToFile = [](ViSession session, const ViChar *fileName, ViUInt32 count, ViUInt32 *) {
        QByteArray bytes;
        const ViStatus status = current->take(session, " >file", count, &bytes);
        return write(QFile::decodeName(fileName), bytes) ? status : VI_ERROR_FILE_ACCESS;
    };
    p_viClose = [](ViObject object) {
        current->transcript += current->name(object) + " close";
        return current->open.remove(object) == 1 ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
    };
    p_viGpibControlREN = [](ViSession session, ViUInt16 mode) {
        const QString entry = mode == VI_GPIB_REN_ADDRESS_GTL ? " local" : " unexpected mode";
        const ViStatus status = current->log(At::Local, current->name(session) + entry);
        return current->open.contains(session) ? status : VI_ERROR_INV_OBJECT;
    };
}

VisaDouble::~VisaDouble()
{
    p_viOpenDefaultRM = nullptr;
    p_viOpen = nullptr;
    p_viSetAttribute = nullptr;
    p_viWrite = nullptr;
    p_viRead = nullptr;
    p_viReadToFile = nullptr;
    p_viClose = nullptr;
    p_viGpibControlREN = nullptr;
    current = nullptr;
}

QStringList VisaDouble::takeTranscript()
{
    calls.clear();
    return std::exchange(transcript, {});
}

ViSession VisaDouble::openQuietly(const QString &resource)
{
    open[++nextSession] = resource;
    return nextSession;
}

QString VisaDouble::name(ViSession session) const
{
    return open.value(session, "session " + QString::number(session));
}

ViStatus VisaDouble::log(At where, QString entry)
{
    const ViStatus status = faults[where].value(calls[where]++, VI_SUCCESS);
    if (status != VI_SUCCESS) {
        entry += " -> " + QString::number(static_cast<ViUInt32>(status), 16);
    }
    transcript += entry;
    return status;
}

ViStatus VisaDouble::take(ViSession session, const QString &entry, ViUInt32 count,
                          QByteArray *bytes)
{
    const ViStatus fault = log(At::Read, name(session) + entry);
    std::optional<QByteArray> &message = pending[session];
    if (fault < 0 || !message) {
        return fault < 0 ? fault : VI_ERROR_TMO;
    }
    *bytes = message->left(static_cast<int>(count));
    message->remove(0, bytes->size());
    if (message->isEmpty()) {
        message.reset();
        return fault;
    }
    return fault == VI_SUCCESS ? VI_SUCCESS_MAX_CNT : fault;
}

QByteArray blockOf(const QVector<double> &samples)
{
    const QByteArray data = bytesOf(QVector<float>(samples.begin(), samples.end()));
    return block(data.size(), data);
}
