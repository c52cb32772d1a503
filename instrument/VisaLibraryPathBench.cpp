#include "instrument/VisaLibraryPath.h"

#include <QCoreApplication>
#include <QDir>

// ORVANTA_BENCH_LIBRARY is relative to the folder of the executable, so that the build tree and
// an installation can both be moved.
QString visaLibraryPath()
{
    return QDir::cleanPath(QDir(QCoreApplication::applicationDirPath())
                               .filePath(QStringLiteral(ORVANTA_BENCH_LIBRARY)));
}
