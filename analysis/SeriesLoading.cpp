#include "analysis/SeriesLoading.h"

#include "analysis/SeriesFiles.h"

#include <QFileInfo>

LoadedSeries loadSeries(const QStringList &filesAndFolders)
{
    LoadedSeries loaded;
    QStringList files;
    for (const QString &name : filesAndFolders) {
        if (!QFileInfo(name).isDir()) {
            files += name;
            continue;
        }
        const QStringList inside = seriesIn(name);
        if (inside.isEmpty()) {
            loaded.problems += name + " is a folder without results files.";
        }
        files += inside;
    }
    for (const QString &file : qAsConst(files)) {
        Series series;
        QString reason;
        if (openSeries(file, &series, &reason)) {
            loaded.series += series;
        } else {
            loaded.problems += file + ' ' + reason + '.';
        }
    }
    return loaded;
}
