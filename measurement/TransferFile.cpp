#include "measurement/TransferFile.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <memory>

namespace {

std::unique_ptr<QTemporaryDir> makeDirectory()
{
    // The XDG Base Directory Specification's run-time directory is the user's own, in memory.
    for (const QString &parent : {qEnvironmentVariable("XDG_RUNTIME_DIR"), QDir::tempPath()}) {
        auto directory = std::make_unique<QTemporaryDir>(parent + "/orvanta-XXXXXX");
        if (!parent.isEmpty() && directory->isValid()) {
            return directory;
        }
    }
    return nullptr;
}

} // namespace

QString transferFileName()
{
    static std::unique_ptr<QTemporaryDir> directory;
    // What tidies temporary directories up may have taken it since the last transfer.
    if (!directory || !QFileInfo::exists(directory->path())) {
        directory = makeDirectory();
    }
    return directory ? directory->filePath("Trace.tmp") : QString();
}
