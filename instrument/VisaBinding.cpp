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

/// Call visit(name, entryPoint) for the entry points in the order of their resolution, until it
/// returns false.
template <typename Visit>
bool visitEntryPoints(const Visit &visit)
{
    return visit("viOpenDefaultRM", p_viOpenDefaultRM) && visit("viStatusDesc", p_viStatusDesc) &&
           visit("viOpen", p_viOpen) && visit("viWrite", p_viWrite) && visit("viRead", p_viRead) &&
           visit("viQueryf", p_viQueryf_s) && visit("viQueryf", p_viQueryf_f) &&
           visit("viQueryf", p_viQueryf_i) && visit("viPrintf", p_viPrintf) &&
           visit("viScanf", p_viScanf_f) && visit("viReadToFile", p_viReadToFile) &&
           visit("viClear", p_viClear) && visit("viClose", p_viClose) &&
           visit("viSetAttribute", p_viSetAttribute) && visit("viGetAttribute", p_viGetAttribute) &&
           visit("viSetBuf", p_viSetBuf) && visit("viReadSTB", p_viReadSTB) &&
           visit("viGpibControlREN", p_viGpibControlREN);
}

/// Bind the library at a path. Returns why it cannot be bound, or an empty text.
QString bind(const QString &path)
{
    visitEntryPoints([](const char *, auto *&entryPoint) {
        entryPoint = nullptr;
        return true;
    });
    // Without this check QLibrary tries other prefixes and suffixes when a file is missing, and may
    // load another library. At a FIFO it would wait for ever.
    if (!QFileInfo(path).isFile()) {
        return QFileInfo::exists(path) ? "not a regular file" : "not there";
    }
    QLibrary library(path); // its destructor leaves the library loaded
    if (!library.load()) {
        return library.errorString();
    }
    QString missing;
    visitEntryPoints([&](const char *name, auto *&entryPoint) {
        using Pointer = std::remove_reference_t<decltype(entryPoint)>;
        entryPoint = reinterpret_cast<Pointer>(library.resolve(name));
        if (entryPoint == nullptr) {
            missing = QString("lacks ") + name;
        }
        return entryPoint != nullptr;
    });
    return missing;
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
