#pragma once

#include "analysis/Series.h"

#include <QStringList>

#include <functional>

/// Series that were asked for, and a sentence for each file that is none.
struct LoadedSeries
{
    QVector<Series> series;
    QStringList problems;
};

/// Is told how many files are done, of how many; returns false to leave the others out.
using LoadingProgress = std::function<bool(int done, int all)>;

/// Whether traces are read with the results, or later by addTraces().
enum class Traces
{
    Now,
    Later,
};

/// Open series by their results files; a folder stands for all in it, oldest first.
LoadedSeries loadSeries(const QStringList &filesAndFolders, const LoadingProgress &progress = {},
                        Traces traces = Traces::Now);
