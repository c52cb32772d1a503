#include "measurement/TransferFile.h"

#ifdef Q_OS_LINUX

#include <sys/mman.h>

TransferFile::TransferFile()
{
    const int descriptor = memfd_create("Trace.tmp", MFD_CLOEXEC);
    if (descriptor >= 0) {
        file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    }
}

QString TransferFile::name() const
{
    return file.isOpen() ? "/proc/self/fd/" + QString::number(file.handle()) : QString();
}

#else

TransferFile::TransferFile() : file(directory.isValid() ? directory.filePath("Trace.tmp") : "") {}

QString TransferFile::name() const
{
    return file.fileName();
}

#endif

QByteArray TransferFile::contents()
{
    const bool isReadable = file.isOpen() || file.open(QIODevice::ReadOnly);
    return isReadable ? file.readAll() : QByteArray();
}
