// What the menus of the results window do.

#include "analysis/Csv.h"
#include "viewer/Export.h"
#include "viewer/PlotColumn.h"
#include "viewer/Report.h"
#include "viewer/ResultsWindow.h"
#include "viewer/ValuesTable.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTableView>
#include <QTabWidget>
#include <QTextDocumentFragment>

namespace {

const char *const pageFilters = "PDF (*.pdf);;SVG (*.svg);;PNG (*.png)";

} // namespace

void ResultsWindow::makeMenus()
{
    const auto add = [this](QMenu *menu, const QString &name, const QKeySequence &key, auto slot) {
        return menu->addAction(name, this, slot, key);
    };
    QMenu *file = menuBar()->addMenu("&File");
    add(file, "&Open...", QKeySequence::Open, &ResultsWindow::openFiles);
    add(file, "Open &Folder...", QKeySequence("Ctrl+Shift+O"), &ResultsWindow::openFolder);
    file->addSeparator();
    add(file, "&Export View...", QKeySequence("Ctrl+E"), &ResultsWindow::exportView);
    add(file, "Export &Report...", QKeySequence("Ctrl+R"), &ResultsWindow::exportReport);
    add(file, "Export Values as &CSV...", QKeySequence("Ctrl+S"), &ResultsWindow::exportCsv);
    file->addSeparator();
    add(file, "&Quit", QKeySequence("Ctrl+Q"), &ResultsWindow::close);
    add(menuBar()->addMenu("&Edit"), "&Copy", QKeySequence::Copy, &ResultsWindow::copy);
    QMenu *view = menuBar()->addMenu("&View");
    constexpr double step = 0.8;
    const auto addForPlots = [&](const QString &name, const QKeySequence &key, auto work) {
        return add(view, name, key, [this, work] {
            if (auto *plots = dynamic_cast<PlotColumn *>(tabs->currentWidget())) {
                work(plots);
            }
        });
    };
    addForPlots("Zoom &In", {}, [](PlotColumn *plots) {
        plots->zoom(step);
    })->setShortcuts({QKeySequence("+"), QKeySequence("=")}); // one key on many keyboards
    addForPlots("Zoom &Out", QKeySequence("-"), [](PlotColumn *plots) { plots->zoom(1 / step); });
    addForPlots("&Whole", QKeySequence("0"), [](PlotColumn *plots) { plots->showWhole(); });
    view->addSeparator();
    add(view, "&Read Again", QKeySequence("F5"), &ResultsWindow::reload);
}

void ResultsWindow::reload()
{
    files.forget();
    leftOut = 0;
    rescan();
}

void ResultsWindow::openFiles()
{
    const QStringList files = QFileDialog::getOpenFileNames(
        this, "Open Series", {}, "Results (*_Results.txt);;All files (*)");
    if (!files.isEmpty()) {
        open(files);
    }
}

void ResultsWindow::openFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(this, "Open Folder");
    if (!folder.isEmpty()) {
        open({folder});
    }
}

QString ResultsWindow::askFileName(const QString &title, const QString &filters,
                                   const QString &suffix)
{
    if (selection.isEmpty()) {
        statusBar()->showMessage("Select a series first.");
        return {};
    }
    QFileDialog dialog(this, title, {}, filters);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    QStringList names;
    for (const Series &series : qAsConst(selection)) {
        names += QFileInfo(series.fileName).completeBaseName().remove("_Results");
    }
    dialog.selectFile(names.join(" and ") + '.' + suffix);
    connect(&dialog, &QFileDialog::filterSelected, &dialog, [&dialog](const QString &filter) {
        QString name = dialog.selectedFiles().value(0);
        if (name.endsWith('.' + dialog.defaultSuffix())) {
            name.chop(dialog.defaultSuffix().size());
            dialog.setDefaultSuffix(filter.section("*.", 1).section(')', 0, 0));
            dialog.selectFile(name + dialog.defaultSuffix());
        }
    });
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
}

void ResultsWindow::exportView()
{
    const auto *column = dynamic_cast<PlotColumn *>(tabs->currentWidget());
    if (column == nullptr) {
        exportCsv();
        return;
    }
    const QString fileName = askFileName("Export View", pageFilters, "pdf");
    const auto makePage = [column](int) {
        Page page;
        for (QwtPlot *plot : column->plots()) {
            page.rows += QVector<QwtPlot *>{plot};
        }
        return page;
    };
    QString problem;
    if (!fileName.isEmpty()) {
        tell(fileName, exportPages(1, makePage, fileName, &problem), problem);
    }
}

void ResultsWindow::exportReport()
{
    const QString fileName = askFileName("Export Report", pageFilters, "pdf");
    QString problem;
    if (!fileName.isEmpty()) {
        tell(fileName, writeReport(selection, fileName, &problem), problem);
    }
}

void ResultsWindow::exportCsv()
{
    const QString fileName = askFileName("Export Values", "CSV (*.csv)", "csv");
    QString csv = csvHeading();
    for (const Series &series : qAsConst(selection)) {
        csv += csvRows(series);
    }
    QString problem;
    if (!fileName.isEmpty()) {
        tell(fileName, writeWhole(fileName, csv.toUtf8(), &problem), problem);
    }
}

void ResultsWindow::tell(const QString &fileName, bool isWritten, const QString &problem)
{
    if (isWritten) {
        statusBar()->showMessage("Written: " + fileName);
    } else {
        warn(problem);
    }
}

void ResultsWindow::warn(const QString &sentence, const QString &details)
{
    QMessageBox box(QMessageBox::Warning, "Orvanta Results", sentence, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText); // names and contents of files are no HTML
    box.setDetailedText(details);
    box.exec();
}

void ResultsWindow::copy()
{
    const QString copied = text->hasFocus() ? text->textCursor().selection().toPlainText()
                                            : selectedText(list->hasFocus() ? *list : *values);
    if (!copied.isEmpty()) {
        QApplication::clipboard()->setText(copied);
    }
}
