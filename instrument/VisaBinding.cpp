#include "instrument/VisaBinding.h"

#include <QFileInfo>
#include <QLibrary>

#include <cstdio>

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

template <typename Function>
bool resolve(QLibrary &library, const char *symbol, Function *&entryPoint)
{
    entryPoint = reinterpret_cast<Function *>(library.resolve(symbol));
    return entryPoint != nullptr;
}

bool resolveAll(QLibrary &library)
{
    return resolve(library, "viOpenDefaultRM", p_viOpenDefaultRM) &&
           resolve(library, "viStatusDesc", p_viStatusDesc) &&
           resolve(library, "viOpen", p_viOpen) && resolve(library, "viWrite", p_viWrite) &&
           resolve(library, "viRead", p_viRead) && resolve(library, "viQueryf", p_viQueryf_s) &&
           resolve(library, "viQueryf", p_viQueryf_f) &&
           resolve(library, "viQueryf", p_viQueryf_i) && resolve(library, "viPrintf", p_viPrintf) &&
           resolve(library, "viScanf", p_viScanf_f) &&
           resolve(library, "viReadToFile", p_viReadToFile) &&
           resolve(library, "viClear", p_viClear) && resolve(library, "viClose", p_viClose) &&
           resolve(library, "viSetAttribute", p_viSetAttribute) &&
           resolve(library, "viGetAttribute", p_viGetAttribute) &&
           resolve(library, "viSetBuf", p_viSetBuf) && resolve(library, "viReadSTB", p_viReadSTB) &&
           resolve(library, "viGpibControlREN", p_viGpibControlREN);
}

/// Bind the library at a path. Returns what keeps it from serving; nothing when it does.
QString bind(const QString &path)
{
    // QLibrary goes on to names with other prefixes and suffixes when a file is missing, which may
    // be another library; and it would wait at a FIFO.
    if (!QFileInfo(path).isFile()) {
        return QFileInfo::exists(path) ? "not a regular file" : "not there";
    }
    QLibrary library(path); // its destructor leaves the library loaded
    if (!library.load() || !resolveAll(library)) {
        return library.errorString();
    }
    return {};
}

} // namespace

void setVisaLibraryPaths(const QStringList &paths)
{
    libraryPaths = paths;
}

bool iaVisaDll_Init()
{
    QStringList failures;
    for (const QString &path : qAsConst(libraryPaths)) {
        const QString failure = bind(path);
        if (failure.isEmpty()) {
            std::fputs(qPrintable("VISA library: " + path + '\n'), stderr);
            return true;
        }
        failures += "  " + path + ": " + failure + '\n';
    }
    std::fputs(qPrintable("No VISA library could be loaded:\n" + failures.join("")), stderr);
    return false;
}
