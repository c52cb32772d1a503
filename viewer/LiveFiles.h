#pragma once

#include <QDateTime>
#include <QHash>
#include <QStringList>

/// Finds out which results files, in some folders, are new, changed or gone.
class LiveFiles
{
public:
    struct Changes
    {
        QStringList changed; ///< new, or written again; the newest of each folder first
        QStringList gone;
    };

    /// Follow these files, and all series in these folders. They need not exist yet.
    void follow(const QStringList &filesAndFolders);
    /// Returns whether findChanges() may find something: since its last call a file came or went,
    /// or one in `shown` was written again. Also true after a call that found changes, since those
    /// files may still be being written. This is quick, even on a network.
    [[nodiscard]] bool mayHaveChanged(const QStringList &shown) const;
    /// Find what has changed since the last call. A missing file and a folder without series count
    /// as changed, so that the window names them.
    Changes findChanges();
    /// Make mayHaveChanged() true.
    void lookAgain() { lastTimes.clear(); }
    /// Make the next findChanges() return every file as changed.
    void forget() { known.clear(); }

private:
    [[nodiscard]] QVector<QDateTime> folderTimes() const;

    QStringList followed;
    QHash<QString, QVector<qint64>> known; ///< times and sizes of the series' files
    QVector<QDateTime> lastTimes; ///< of the files and folders followed, and of their folders
};
