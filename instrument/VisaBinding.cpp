#include "instrument/VisaBinding.h"

#include <QFileInfo>
#include <QLibrary>

#include <cstdio>
#include <type_traits>

visa::OpenDefaultRM *p_viOpenDefaultRM = nullptr;
visa::StatusDesc *p_viStatusDesc = nullptr;
visa::Open *p_viOpen = nullptr;
visa::Write *p_viWrite = nullptr;
visa::Read *p_viRead = nullptr;
visa::Queryf *p_viQueryf_s = nullptr;
visa::Queryf *p_viQueryf_f = nullptr;
visa::Queryf *p_viQueryf_i = nullptr;
visa::Printf *p_viPrintf = nullptr;
visa::Scanf *p_viScanf_s = nullptr;
visa::Scanf *p_viScanf_f = nullptr;
visa::ReadToFile *p_viReadToFile = nullptr;
visa::Clear *p_viClear = nullptr;
visa::Close *p_viClose = nullptr;
visa::SetAttribute *p_viSetAttribute = nullptr;
visa::GetAttribute *p_viGetAttribute = nullptr;
visa::SetBuf *p_viSetBuf = nullptr;
visa::ReadSTB *p_viReadSTB = nullptr;
visa::GpibControlREN *p_viGpibControlREN = nullptr;

namespace {

QStringList libraryPaths;

/// Make all entry points null.
void unbind()
{
    const auto reset = [](auto &...entryPoints) { ((entryPoints = nullptr), ...); };
    reset(p_viOpenDefaultRM, p_viStatusDesc, p_viOpen, p_viWrite, p_viRead, p_viQueryf_s,
          p_viQueryf_f, p_viQueryf_i, p_viPrintf, p_viScanf_s, p_viScanf_f, p_viReadToFile,
          p_viClear, p_viClose, p_viSetAttribute, p_viGetAttribute, p_viSetBuf, p_viReadSTB,
          p_viGpibControlREN);
}

/// Resolve the entry points in order, up to the first that the library lacks. Returns whether all
/// are there. *symbol is the name of the last one tried.
bool resolveAll(QLibrary &library, QString *symbol)
{
    const auto resolve = [&](const char *name, auto *&entryPoint) {
        using Pointer = std::remove_reference_t<decltype(entryPoint)>;
        *symbol = name;
        entryPoint = reinterpret_cast<Pointer>(library.resolve(name));
        return entryPoint != nullptr;
    };
    return resolve("viOpenDefaultRM", p_viOpenDefaultRM) &&
           resolve("viStatusDesc", p_viStatusDesc) && resolve("viOpen", p_viOpen) &&
           resolve("viWrite", p_viWrite) && resolve("viRead", p_viRead) &&
           resolve("viQueryf", p_viQueryf_s) && resolve("viQueryf", p_viQueryf_f) &&
           resolve("viQueryf", p_viQueryf_i) && resolve("viPrintf", p_viPrintf) &&
           resolve("viScanf", p_viScanf_f) && resolve("viReadToFile", p_viReadToFile) &&
           resolve("viClear", p_viClear) && resolve("viClose", p_viClose) &&
           resolve("viSetAttribute", p_viSetAttribute) &&
           resolve("viGetAttribute", p_viGetAttribute) && resolve("viSetBuf", p_viSetBuf) &&
           resolve("viReadSTB", p_viReadSTB) && resolve("viGpibControlREN", p_viGpibControlREN);
}

/// Bind the library at a path. Returns why it cannot be bound, or an empty text.
QString bind(const QString &path)
{
    unbind();
    // Without this check QLibrary tries other prefixes and suffixes when a file is missing, and may
    // load another library. At a FIFO it would wait for ever.
    if (!QFileInfo(path).isFile()) {
        return QFileInfo::exists(path) ? "not a regular file" : "not there";
    }
    QLibrary library(path); // its destructor leaves the library loaded
    if (!library.load()) {
        return library.errorString();
    }
    QString symbol;
    return resolveAll(library, &symbol) ? QString() : "lacks " + symbol;
}

} // namespace

void setVisaLibraryPaths(const QStringList &paths)
{
    libraryPaths = paths;
}

bool iaVisaDll_Init()
{
    QString failures;
    for (const QString &path : qAsConst(libraryPaths)) {
        const QString failure = bind(path);
        if (failure.isEmpty()) {
            const QString passedOver = failures.isEmpty() ? "" : "Passed over:\n" + failures;
            std::fputs(qPrintable(passedOver + "VISA library: " + path + '\n'), stderr);
            return true;
        }
        failures += "  " + path + ": " + failure + '\n';
    }
    std::fputs(qPrintable("No VISA library could be loaded:\n" + failures), stderr);
    return false;
}
