#include "viewer/LiveFiles.h"

#include "analysis/SeriesFiles.h"

#include <QDateTime>
#include <QDir>
#include <QGuiApplication>

#include <algorithm>

namespace {

// A program that saves a series writes one file after the other.
constexpr int quietTime = 500; // milliseconds

/// Times and sizes of a series' files: other ones tell that it was written again.
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

LiveFiles::LiveFiles(QObject *parent) : QObject(parent)
{
    quiet.setSingleShot(true);
    quiet.setInterval(quietTime);
    connect(&quiet, &QTimer::timeout, this, &LiveFiles::stirred);
    connect(&watcher, &QFileSystemWatcher::directoryChanged, this, &LiveFiles::lookSoon);
    // A folder does not tell that something was written into a file that it has already.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &LiveFiles::lookSoon);
}

void LiveFiles::follow(const QStringList &filesAndFolders)
{
    for (const QString &name : filesAndFolders) {
        followed += QDir::cleanPath(name);
    }
    followed.removeDuplicates();
}

LiveFiles::Changes LiveFiles::findChanges()
{
    watch(); // before looking, so that nothing is missed
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
        quiet.start(); // it may still be being written
    }
    return changes;
}

void LiveFiles::watch()
{
    QStringList folders;
    for (QString name : qAsConst(followed)) {
        while (!QFileInfo(name).isDir()) { // wait in the folder above until it comes
            name = QFileInfo(name).absolutePath();
        }
        folders += name;
    }
    if (!watcher.directories().isEmpty()) {
        watcher.removePaths(watcher.directories()); // one may have been made anew
    }
    folders.removeDuplicates();
    if (!folders.isEmpty()) {
        watcher.addPaths(folders);
    }
}
