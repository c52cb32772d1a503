#include "viewer/ResultsWindow.h"

#include "analysis/SeriesFiles.h"
#include "viewer/DriftPlot.h"
#include "viewer/HistogramPlot.h"
#include "viewer/PlotColumn.h"
#include "viewer/RecordPlot.h"
#include "viewer/Report.h"
#include "viewer/SeriesTable.h"
#include "viewer/ValuesTable.h"
#include "viewer/WrapText.h"

#include <QDir>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressDialog>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTabWidget>

#include <algorithm>

namespace {

// A program that saves a series writes one file after the other.
constexpr int quietTime = 500; // milliseconds

QTableView *makeTable(QAbstractItemModel *model)
{
    auto *table = new QTableView;
    table->setModel(model);
    table->setSelectionBehavior(QTableView::SelectRows);
    table->setAlternatingRowColors(true);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() * 3 / 2);
    table->horizontalHeader()->setStretchLastSection(true);
    table->horizontalHeader()->setHighlightSections(false);
    return table;
}

} // namespace

ResultsWindow::ResultsWindow()
    : seriesTable(new SeriesTable(this)),
      valuesTable(new ValuesTable(this)),
      list(makeTable(seriesTable)),
      values(makeTable(valuesTable)),
      tabs(new QTabWidget),
      drift(new PlotColumn),
      histograms(new PlotColumn),
      records(new PlotColumn),
      text(new QPlainTextEdit),
      unreadable(new QLabel)
{
    setWindowTitle("Orvanta Results");
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    constexpr double smaller = 0.88; // a line of statistics is long
    fixed.setPointSizeF(fixed.pointSizeF() * smaller);
    text->setFont(fixed);
    tabs->addTab(drift, "&Delays");
    tabs->addTab(histograms, "&Histogram");
    tabs->addTab(records, "&Last Record");
    tabs->addTab(values, "&Values");
    list->setObjectName("series");
    values->setObjectName("values");
    statusBar()->addPermanentWidget(unreadable);

    auto *right = new QSplitter(Qt::Vertical);
    right->addWidget(tabs);
    right->addWidget(text);
    right->setStretchFactor(0, 1);
    const int line = text->fontMetrics().lineSpacing();
    right->setSizes({40 * line, 13 * line});
    auto *all = new QSplitter;
    all->addWidget(list);
    all->addWidget(right);
    all->setStretchFactor(1, 1);
    const int listWidth = text->fontMetrics().horizontalAdvance('0') * 60;
    all->setSizes({listWidth, 2 * listWidth});
    setCentralWidget(all);
    resize(1280, 840);
    makeMenus();

    connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ResultsWindow::select);
    connect(tabs, &QTabWidget::currentChanged, this, &ResultsWindow::drawTab);
    quiet.setSingleShot(true);
    quiet.setInterval(quietTime);
    connect(&watcher, &QFileSystemWatcher::directoryChanged, &quiet,
            QOverload<>::of(&QTimer::start));
    connect(&quiet, &QTimer::timeout, this, &ResultsWindow::rescan);
}

bool ResultsWindow::open(const QStringList &filesAndFolders)
{
    QStringList wanted = filesAndFolders;
    // Before the first series there is nothing wrong with this folder.
    if (QDir().mkpath(resultsFolder()) && seriesIn(resultsFolder()).isEmpty() &&
        wanted.removeAll(resultsFolder()) > 0) {
        text->setPlainText("No series in " + QDir::toNativeSeparators(resultsFolder()) +
                           " yet: measure with Save checked, or open files (Ctrl+O).");
        watcher.addPath(resultsFolder());
    }
    const LoadedSeries loaded = loadPatiently(wanted);
    seriesTable->add(loaded.series);
    for (const QString &name : wanted) {
        if (QFileInfo(name).isDir()) {
            watcher.addPath(name);
        }
    }
    list->resizeColumnsToContents();
    if (!loaded.series.isEmpty() && !list->selectionModel()->hasSelection()) {
        list->selectRow(0);
    }
    list->setFocus();
    showProblems(loaded.problems);
    if (!loaded.problems.isEmpty()) {
        QMessageBox box(QMessageBox::Warning, "Orvanta Results", "Some files could not be opened.",
                        QMessageBox::Ok, this);
        constexpr int shown = 10;
        box.setInformativeText(loaded.problems.mid(0, shown).join('\n'));
        box.setDetailedText(loaded.problems.size() > shown ? loaded.problems.join('\n')
                                                           : QString());
        box.exec();
    }
    return loaded.problems.isEmpty();
}

LoadedSeries ResultsWindow::loadPatiently(const QStringList &filesAndFolders)
{
    isLoading = true;
    QProgressDialog dialog("Reading series", "Cancel", 0, 0, this);
    dialog.setWindowModality(Qt::WindowModal);
    constexpr int patience = 400; // milliseconds
    dialog.setMinimumDuration(patience);
    QStringList files; // newest first: who stops the loading wants those
    for (const QString &name : filesAndFolders) {
        const QStringList inside = seriesIn(name);
        std::reverse_copy(inside.begin(), inside.end(), std::back_inserter(files));
        if (inside.isEmpty()) {
            files += name;
        }
    }
    LoadedSeries loaded = loadSeries(files, [&dialog](int done, int all) {
        dialog.setMaximum(all);
        dialog.setValue(done);
        return !dialog.wasCanceled();
    });
    isLoading = false;
    return loaded;
}

void ResultsWindow::rescan()
{
    if (isLoading) {
        quiet.start();
        return;
    }
    QStringList added;
    for (const QString &folder : watcher.directories()) {
        for (const QString &file : seriesIn(folder)) {
            if (!seriesTable->has(file)) {
                added += file;
            }
        }
    }
    for (int row = seriesTable->rowCount() - 1; row >= 0; --row) {
        const QString file = seriesTable->at(row).fileName;
        if (!QFile::exists(file)) {
            seriesTable->remove(file);
        }
    }
    const LoadedSeries loaded = loadPatiently(added);
    seriesTable->add(loaded.series);
    showProblems(loaded.problems);
    if (!loaded.series.isEmpty()) {
        statusBar()->showMessage("New: " + seriesName(loaded.series[0]));
        if (!list->selectionModel()->hasSelection()) {
            list->selectRow(0);
        }
    }
}

void ResultsWindow::showProblems(const QStringList &problems)
{
    unreadable->setVisible(!problems.isEmpty());
    unreadable->setText(QString("Unreadable files: %1").arg(problems.size()));
    unreadable->setToolTip(problems.join('\n'));
}

void ResultsWindow::select()
{
    QModelIndexList chosen = list->selectionModel()->selectedRows();
    std::sort(chosen.begin(), chosen.end());
    statusBar()->showMessage(chosen.size() > 2 ? "The first two of the series selected are shown."
                             : chosen.size() == 1 && seriesTable->rowCount() > 1
                                 ? "Select a second series with Ctrl to compare the two."
                                 : "");
    selection.clear();
    for (const QModelIndex &index : chosen.mid(0, 2)) {
        selection.prepend(seriesTable->at(index.row())); // the older one first
    }
    text->setPlainText(wrapText(describeSelection(selection), statisticsWidth));
    valuesTable->show(selection);
    values->resizeColumnsToContents();
    stale = {drift, histograms, records};
    drawTab();
}

void ResultsWindow::drawTab()
{
    QWidget *tab = tabs->currentWidget();
    if (stale.removeAll(tab) == 0) {
        return;
    }
    QVector<QwtPlot *> plots;
    if (tab == records) {
        for (const Series &series : qAsConst(selection)) {
            plots += recordPlot(series);
        }
        records->setPlots(plots);
        return;
    }
    for (const DelayKind kind :
         selection.isEmpty() ? QVector<DelayKind>() : plottedDelays(selection)) {
        plots += tab == drift ? driftPlot(selection, kind) : histogramPlot(selection, kind);
    }
    (tab == drift ? drift : histograms)->setPlots(plots);
}
