#pragma once

#include "analysis/Series.h"

#include <QStringList>

/// Series that were asked for, and a sentence for each file that is none.
struct LoadedSeries
{
    QVector<Series> series;
    QStringList problems;
};

/// Open series by their results files, and read their traces; a folder stands for all in it, oldest
/// first.
LoadedSeries loadSeries(const QStringList &filesAndFolders);
