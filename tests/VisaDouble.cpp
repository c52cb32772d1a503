#include "VisaDouble.h"

#include "instrument/VisaBinding.h"
#include "instrument/VisaLibraryPath.h"

#include <QFile>
#include <QVector>

#include <cstring>

namespace {

VisaDouble *current = nullptr;
constexpr ViSession resourceManager = 1;

} // namespace

QString visaLibraryPath()
{
    return VisaDouble::libraryPath;
}

struct VisaDouble::Entries
{
    static ViStatus openDefaultRM(ViSession *session)
    {
        *session = resourceManager;
        return VI_SUCCESS;
    }

    static ViStatus statusDesc(ViObject /*object*/, ViStatus status, ViChar *text)
    {
        std::strcpy(text, "Zeitüberschreitung");
        return status == VI_ERROR_TMO ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
    }

    static ViStatus open(ViSession manager, const ViChar *resource, ViAccessMode mode,
                         ViUInt32 timeout, ViSession *session)
    {
        const bool usual = manager == resourceManager && mode == VI_NO_LOCK && timeout == 10000;
        const ViStatus status =
            current->log(At::Open, QString(resource) + (usual ? " open" : " open unusually"));
        if (status == VI_SUCCESS) {
            *session = ++current->nextSession;
            current->open[*session] = resource;
        }
        return status;
    }

    static ViStatus setAttribute(ViObject object, ViAttr attribute, ViAttrState value)
    {
        return current->log(At::Timeout,
                            current->name(object) +
                                (attribute == VI_ATTR_TMO_VALUE ? " timeout " : " attribute ") +
                                QString::number(value));
    }

    static ViStatus write(ViSession session, const ViByte *buffer, ViUInt32 count,
                          ViUInt32 * /*returned*/)
    {
        const QByteArray command(reinterpret_cast<const char *>(buffer), static_cast<int>(count));
        QString shown = command;
        ViStatus status =
            current->log(At::Write, current->name(session) + " < " + shown.replace("\n", "\\n"));
        if (status == VI_SUCCESS && !current->open.contains(session)) {
            status = VI_ERROR_INV_OBJECT;
        }
        if (status == VI_SUCCESS) {
            const auto reply = current->answer(current->name(session), command);
            current->pending.remove(session);
            if (reply) {
                current->pending[session] = *reply;
            }
        }
        return status;
    }

    static ViStatus read(ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returned)
    {
        QByteArray bytes;
        const ViStatus status = current->take(session, " >", count, &bytes);
        std::memcpy(buffer, bytes.constData(), static_cast<std::size_t>(bytes.size()));
        if (returned != nullptr) {
            *returned = static_cast<ViUInt32>(bytes.size());
        }
        return status;
    }

    static ViStatus readToFile(ViSession session, const ViChar *fileName, ViUInt32 count,
                               ViUInt32 * /*returned*/)
    {
        QByteArray bytes;
        const ViStatus status = current->take(session, " >file", count, &bytes);
        QFile file(QFile::decodeName(fileName));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return VI_ERROR_FILE_ACCESS;
        }
        file.write(bytes);
        return status;
    }

    static ViStatus close(ViObject object)
    {
        current->transcript += current->name(object) + " close";
        return current->open.remove(object) == 1 ? VI_SUCCESS : VI_ERROR_INV_OBJECT;
    }

    static ViStatus gpibControlREN(ViSession session, ViUInt16 mode)
    {
        const ViStatus status = current->log(
            At::Local, current->name(session) +
                           (mode == VI_GPIB_REN_ADDRESS_GTL ? " local" : " unexpected mode"));
        return current->open.contains(session) ? status : VI_ERROR_INV_OBJECT;
    }
};

VisaDouble::VisaDouble()
    : answer([](const QString & /*resource*/, const QByteArray &command) {
          return command.endsWith("?\n") ? std::make_optional<QByteArray>("1\n") : std::nullopt;
      })
{
    current = this;
    p_viOpenDefaultRM = Entries::openDefaultRM;
    p_viStatusDesc = Entries::statusDesc;
    p_viOpen = Entries::open;
    p_viSetAttribute = Entries::setAttribute;
    p_viWrite = Entries::write;
    p_viRead = Entries::read;
    p_viReadToFile = Entries::readToFile;
    p_viClose = Entries::close;
    p_viGpibControlREN = Entries::gpibControlREN;
}

VisaDouble::~VisaDouble()
{
    p_viOpenDefaultRM = nullptr;
    p_viStatusDesc = nullptr;
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
    if (fault < 0 || !pending.contains(session)) {
        return fault < 0 ? fault : VI_ERROR_TMO;
    }
    QByteArray &rest = pending[session];
    *bytes = rest.left(static_cast<int>(count));
    rest.remove(0, bytes->size());
    if (fault == VI_SUCCESS && !rest.isEmpty()) {
        return VI_SUCCESS_MAX_CNT;
    }
    if (rest.isEmpty()) {
        pending.remove(session);
    }
    return fault;
}

QByteArray blockOf(const QVector<float> &samples)
{
    const QByteArray length = QByteArray::number(4 * samples.size());
    const QByteArray data(reinterpret_cast<const char *>(samples.constData()), 4 * samples.size());
    return '#' + QByteArray::number(length.size()) + length + data + '\n';
}
