#pragma once

#include <QByteArray>
#include <QFile>
#ifndef Q_OS_LINUX
#include <QTemporaryDir>
#endif

/// The file through which one trace comes: VISA writes it by its name, the program reads it. It
/// lies in memory without a place in any folder, where the system has such files; nothing of it
/// stays behind, however the process ends.
class TransferFile
{
public:
    TransferFile();

    /// Tell its name, empty when there is no such file to be had.
    [[nodiscard]] QString name() const;

    /// Read what VISA has written; nothing when that cannot be read.
    [[nodiscard]] QByteArray contents();

private:
#ifndef Q_OS_LINUX
    QTemporaryDir directory;
#endif
    QFile file;
};
