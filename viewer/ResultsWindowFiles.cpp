// What the results window reads, and when.

#include "analysis/SeriesFiles.h"
#include "viewer/ResultsWindow.h"
#include "viewer/SeriesTable.h"

#include <QDir>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QStatusBar>
#include <QTableView>
#include <QTextDocument>

#include <algorithm>

bool ResultsWindow::open(const QStringList &filesAndFolders)
{
    files.follow(filesAndFolders);
    const QStringList said = rescan();
    fitList();
    list->setFocus();
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

QStringList ResultsWindow::rescan()
{
    if (isLoading) {
        files.lookSoon();
        return {};
    }
    const LiveFiles::Changes changes = files.findChanges();
    const int row = list->selectionModel()->selectedRows().value(0).row();
    const int count = seriesTable->rowCount();
    seriesTable->remove(changes.gone);
    for (const QString &file : changes.gone) {
        problems.remove(file);
    }
    QStringList said = load(changes.changed);
    showGaps();
    selectSomething(row);
    if (std::any_of(selection.cbegin(), selection.cend(), [&changes](const Series &shown) {
            return changes.changed.contains(shown.fileName);
        })) {
        select();
    }
    if (count > 0 && seriesTable->rowCount() > count) {
        statusBar()->showMessage("New: " + seriesName(seriesTable->at(count)));
    }
    return said;
}

QStringList ResultsWindow::load(const QStringList &changed)
{
    if (changed.isEmpty()) {
        return {};
    }
    isLoading = true;
    idle.stop();
    QProgressDialog dialog("Reading series", "Cancel", 0, changed.size(), this);
    dialog.setWindowModality(Qt::WindowModal);
    constexpr int patience = 400; // milliseconds
    dialog.setMinimumDuration(patience);
    QVector<Series> loaded;
    QStringList said;
    int done = 0;
    for (; done < changed.size() && !dialog.wasCanceled(); ++done) {
        const QString &file = changed[done];
        Series series;
        QString reason;
        problems.remove(file);
        if (openResults(file, &series, &reason)) {
            loaded += series;
        } else if (file != resultsFolder()) { // before the first series nothing is wrong with it
            problems[file] = QFileInfo(file).isDir() ? file + " is a folder without results files."
                                                     : file + ' ' + reason + '.';
            said += problems[file];
            seriesTable->remove({file});
        }
        dialog.setValue(done + 1);
    }
    leftOut += changed.size() - done;
    seriesTable->add(loaded);
    isLoading = false;
    idle.start();
    return said;
}

void ResultsWindow::readTraces()
{
    const int row = seriesTable->findUnread();
    if (row >= 0) {
        seriesTable->readTraces(row);
    } else {
        idle.stop();
    }
}

void ResultsWindow::showGaps()
{
    QStringList said;
    if (leftOut > 0) {
        said += QString("The list is partial: %1 files were not read (F5 reads them)").arg(leftOut);
    }
    if (!problems.isEmpty()) {
        said += QString("Unreadable files: %1").arg(problems.size());
    }
    gaps->setVisible(!said.isEmpty());
    gaps->setText(said.join(". "));
    gaps->setToolTip(Qt::convertFromPlainText(QStringList(problems.values()).join('\n')));
}
