// What the results window reads, and when.

#include "analysis/SeriesFiles.h"
#include "viewer/ResultsWindow.h"
#include "viewer/SeriesTable.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QStatusBar>
#include <QTableView>
#include <QTextDocument>

#include <algorithm>

namespace {

constexpr int lookInterval = 500; // milliseconds

} // namespace

bool ResultsWindow::open(const QStringList &filesAndFolders)
{
    files.follow(filesAndFolders);
    rescan();
    list->setFocus();
    const QStringList said = problems.values();
    if (seriesTable->rowCount() == 0 && said.isEmpty()) {
        text->setPlainText("No series in " + QDir::toNativeSeparators(resultsFolder()) +
                           " yet: measure with Save checked, or open files (Ctrl+O).");
    }
    if (!said.isEmpty()) {
        constexpr int shown = 10;
        warn("Some files could not be opened.\n\n" + said.mid(0, shown).join('\n'),
             said.size() > shown ? said.join('\n') : QString());
    }
    return said.isEmpty();
}

void ResultsWindow::rescan()
{
    const LiveFiles::Changes changes = files.findChanges();
    const int row = list->selectionModel()->selectedRows().value(0).row();
    const int count = seriesTable->rowCount();
    for (const QString &file : changes.gone) {
        seriesTable->remove(file);
        problems.remove(file);
        leftOut.remove(file);
    }
    load(changes.changed);
    if (count == 0) {
        fitList();
    }
    showMissing();
    selectSomething(row);
    if (std::any_of(selection.cbegin(), selection.cend(), [&changes](const Series &shown) {
            return changes.changed.contains(shown.fileName);
        })) {
        select();
    }
    if (count > 0 && seriesTable->rowCount() > count) {
        statusBar()->showMessage("New: " + seriesTable->item(count)->text());
    }
}

void ResultsWindow::load(const QStringList &changed)
{
    look.stop(); // the progress bar handles events, and neither timer may fire
    idle.stop();
    QProgressDialog dialog("Reading series", "Cancel", 0, changed.size(), this);
    dialog.setWindowModality(Qt::WindowModal);
    constexpr int patience = 400; // milliseconds
    dialog.setMinimumDuration(patience);
    QVector<Series> loaded; // listed together, so that the list is painted once
    int done = 0;
    for (; done < changed.size() && !dialog.wasCanceled(); ++done) {
        const QString &file = changed[done];
        Series series;
        QString reason;
        problems.remove(file);
        leftOut.remove(file);
        if (openResults(file, &series, &reason)) {
            loaded += series;
        } else if (file != resultsFolder()) { // which is empty until a first series is saved
            problems[file] = QFileInfo(file).isDir() ? file + " is a folder without results files."
                                                     : file + ' ' + reason + '.';
            seriesTable->remove(file);
        }
        dialog.setValue(done + 1);
    }
    for (const Series &series : qAsConst(loaded)) {
        seriesTable->put(series);
    }
    unread = changed + unread;
    leftOut.unite({changed.begin() + done, changed.end()});
    look.start(lookInterval);
    idle.start();
}

void ResultsWindow::readTraces()
{
    constexpr int slice = 30; // milliseconds, too short to be noticed
    QElapsedTimer time;
    for (time.start(); !time.hasExpired(slice);) {
        if (unread.isEmpty()) {
            idle.stop();
            return;
        }
        seriesTable->readTraces(unread.takeFirst());
    }
}

void ResultsWindow::showMissing()
{
    QStringList said;
    if (!leftOut.isEmpty()) {
        said += QString("The list is partial: %1 files were not read (F5 reads them)")
                    .arg(leftOut.size());
    }
    if (!problems.isEmpty()) {
        said += QString("Files that cannot be read: %1").arg(problems.size());
    }
    missing->setVisible(!said.isEmpty());
    missing->setText(said.join(". "));
    missing->setToolTip(Qt::convertFromPlainText(QStringList(problems.values()).join('\n')));
}
