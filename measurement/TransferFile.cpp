#include "measurement/TransferFile.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <memory>
#include <unistd.h>

namespace {

std::unique_ptr<QTemporaryDir> makeDirectory()
{
    // The run-time directory (XDG base directories) is the user's own, in memory.
    for (const QString &parent : {qEnvironmentVariable("XDG_RUNTIME_DIR"), QDir::tempPath()}) {
        if (QDir::isAbsolutePath(parent)) { // others are to be ignored
            auto directory = std::make_unique<QTemporaryDir>(parent + "/orvanta-XXXXXX");
            if (directory->isValid()) {
                return directory;
            }
        }
    }
    return nullptr;
}

/// What tidies temporary directories up may have taken it since the last transfer, and somebody
/// else its name.
bool isStillOurs(const QTemporaryDir &directory)
{
    const QFileInfo info(directory.path());
    return info.isDir() && !info.isSymLink() && info.isWritable() && info.ownerId() == geteuid();
}

} // namespace

QString transferFileName()
{
    static std::unique_ptr<QTemporaryDir> directory;
    if (!directory || !isStillOurs(*directory)) {
        directory = makeDirectory();
    }
    return directory ? directory->filePath("Trace.tmp") : QString();
}
