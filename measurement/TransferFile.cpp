#include "measurement/TransferFile.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <memory>
#include <unistd.h>

namespace {

class TransferDirectory
{
public:
    explicit TransferDirectory(const QString &parent) : directory(parent + "/orvanta-XXXXXX") {}
    ~TransferDirectory() { directory.setAutoRemove(isOurs()); }
    TransferDirectory(const TransferDirectory &) = delete;
    TransferDirectory &operator=(const TransferDirectory &) = delete;

    /// Whether it is there, and is the one that was made: what tidies temporary directories up may
    /// have taken it, and somebody else its name.
    [[nodiscard]] bool isOurs() const
    {
        const QFileInfo info(directory.path());
        return directory.isValid() && info.isDir() && !info.isSymLink() && info.isWritable() &&
               info.ownerId() == geteuid();
    }
    [[nodiscard]] QString fileName() const { return directory.filePath("Trace.tmp"); }

private:
    QTemporaryDir directory;
};

} // namespace

QString transferFileName()
{
    static std::unique_ptr<TransferDirectory> directory;
    if (directory && directory->isOurs()) {
        return directory->fileName();
    }
    // The run-time directory (XDG base directories) is the user's own, in memory.
    for (const QString &parent : {qEnvironmentVariable("XDG_RUNTIME_DIR"), QDir::tempPath()}) {
        if (QDir::isAbsolutePath(parent)) { // others are to be ignored
            directory = std::make_unique<TransferDirectory>(parent);
            if (directory->isOurs()) {
                return directory->fileName();
            }
        }
    }
    return {};
}
