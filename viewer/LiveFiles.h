#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QStringList>
#include <QTimer>

/// The results files in some folders, as they come, change and go.
class LiveFiles : public QObject
{
    Q_OBJECT

public:
    struct Changes
    {
        QStringList changed; ///< files that are new, or were written again: the newest first
        QStringList gone;
    };

    explicit LiveFiles(QObject *parent = nullptr);

    /// Follow these files, and all series in these folders, also while one of them is not there.
    void follow(const QStringList &filesAndFolders);
    /// Find what has changed since the last time. A file that was named and is not there counts as
    /// changed, and so does a folder without series: they are to be complained of.
    Changes findChanges();
    /// Take everything for changed the next time.
    void forget() { known.clear(); }
    /// Tell soon that there may be changes.
    void lookSoon() { quiet.start(); }

signals:
    /// There may be changes.
    void stirred();

private:
    void watch();

    QStringList followed;
    QHash<QString, QVector<qint64>> known; ///< times and sizes of the series' files
    QFileSystemWatcher watcher;
    QTimer quiet; ///< runs out when nothing has happened in the folders for a while
};
