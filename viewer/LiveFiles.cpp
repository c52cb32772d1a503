#include "viewer/LiveFiles.h"

#include "analysis/SeriesFiles.h"

#include <QDir>

#include <algorithm>

namespace {

/// Returns the times and sizes of a series' files. They change when it is written again.
QVector<qint64> stampOf(const QString &fileName)
{
    QVector<qint64> stamp;
    for (const QString &file : {fileName, traceFile(fileName, "src"), traceFile(fileName, "rf"),
                                traceFile(fileName, "snk")}) {
        const QFileInfo info(file);
        stamp << (info.exists() ? info.lastModified().toMSecsSinceEpoch() : 0) << info.size();
    }
    return stamp;
}

} // namespace

void LiveFiles::follow(const QStringList &filesAndFolders)
{
    for (const QString &name : filesAndFolders) {
        followed += QDir::cleanPath(name);
    }
    followed.removeDuplicates();
}

bool LiveFiles::mayHaveChanged(const QStringList &shown) const
{
    return folderTimes() != lastTimes ||
           std::any_of(shown.cbegin(), shown.cend(),
                       [this](const QString &file) { return known.value(file) != stampOf(file); });
}

LiveFiles::Changes LiveFiles::findChanges()
{
    lastTimes = folderTimes(); // read first, so that no later change is missed
    Changes changes;
    QHash<QString, QVector<qint64>> found;
    for (const QString &name : qAsConst(followed)) {
        QStringList files = seriesIn(name);
        if (files.isEmpty()) {
            files += name;
        }
        std::for_each(files.crbegin(), files.crend(), [&](const QString &file) {
            const QVector<qint64> stamp = stampOf(file);
            if (!found.contains(file) && known.value(file) != stamp) {
                changes.changed += file;
            }
            found[file] = stamp;
        });
    }
    for (auto file = known.cbegin(); file != known.cend(); ++file) {
        if (!found.contains(file.key())) {
            changes.gone += file.key();
        }
    }
    known = found;
    if (!changes.changed.isEmpty()) {
        lookAgain(); // they may still be being written
    }
    return changes;
}

QVector<QDateTime> LiveFiles::folderTimes() const
{
    QVector<QDateTime> times;
    for (const QString &name : followed) {
        // A folder's time changes when files in it come or go.
        const QFileInfo info(name);
        times << info.lastModified() << QFileInfo(info.absolutePath()).lastModified();
    }
    return times;
}
