#include "analysis/SeriesLoading.h"

#include "analysis/SeriesFiles.h"

#include <QFileInfo>

LoadedSeries loadSeries(const QStringList &filesAndFolders, const LoadingProgress &progress,
                        Traces traces)
{
    const auto open = traces == Traces::Now ? openSeries : openResults;
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
    for (int i = 0; i < files.size(); ++i) {
        if (progress && !progress(i, files.size())) {
            break;
        }
        Series series;
        QString reason;
        if (open(files[i], &series, &reason)) {
            loaded.series += series;
        } else {
            loaded.problems += files[i] + ' ' + reason + '.';
        }
    }
    return loaded;
}
