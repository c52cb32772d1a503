// What the menus of the results window do.

#include "analysis/Csv.h"
#include "viewer/Export.h"
#include "viewer/Navigation.h"
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

#include <limits>

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
    const auto zoom = [this](double factor) {
        return [this, factor] {
            if (plotsInFront() != nullptr) {
                plotsInFront()->zoom(factor);
            }
        };
    };
    add(view, "Zoom &In", {}, zoom(Navigation::zoomStep))
        ->setShortcuts({QKeySequence("+"), QKeySequence("=")}); // one key on many keyboards
    add(view, "Zoom &Out", QKeySequence("-"), zoom(1 / Navigation::zoomStep));
    add(view, "&Whole", QKeySequence("0"), zoom(std::numeric_limits<double>::infinity()));
    view->addSeparator();
    add(view, "&Read Again", QKeySequence("F5"), &ResultsWindow::reload);
}

void ResultsWindow::reload()
{
    files.forget();
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

void ResultsWindow::save(const QString &title, const QString &filters, const Write &write)
{
    if (selection.isEmpty()) {
        statusBar()->showMessage("Select a series first.");
        return;
    }
    QFileDialog dialog(this, title, {}, filters);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QStringList names;
    for (const Series &series : qAsConst(selection)) {
        names += QFileInfo(series.fileName).completeBaseName().remove("_Results");
    }
    // For names without a suffix. Qt itself changes a suffix when the file type is changed.
    const auto setSuffix = [&dialog] {
        dialog.setDefaultSuffix(dialog.selectedNameFilter().section("*.", 1).section(')', 0, 0));
    };
    connect(&dialog, &QFileDialog::filterSelected, &dialog, setSuffix);
    setSuffix();
    dialog.selectFile(names.join(" and ") + '.' + dialog.defaultSuffix());
    if (dialog.exec() != QDialog::Accepted) {
        return;
    }
    const QString fileName = dialog.selectedFiles().value(0);
    QString problem;
    if (write(fileName, &problem)) {
        statusBar()->showMessage("Written: " + fileName);
    } else {
        warn(problem);
    }
}

void ResultsWindow::exportView()
{
    const PlotColumn *column = plotsInFront();
    if (column == nullptr) {
        exportCsv();
        return;
    }
    save("Export View", pageFilters, [column](const QString &fileName, QString *problem) {
        Page page;
        for (QwtPlot *plot : column->plots()) {
            page.rows += QVector<QwtPlot *>{plot};
        }
        return exportPages(
            1, [&page](int) { return page; }, fileName, problem);
    });
}

void ResultsWindow::exportReport()
{
    save("Export Report", pageFilters, [this](const QString &fileName, QString *problem) {
        return writeReport(selection, fileName, problem);
    });
}

void ResultsWindow::exportCsv()
{
    save("Export Values", "CSV (*.csv)", [this](const QString &fileName, QString *problem) {
        return writeWhole(fileName, csvText(selection).toUtf8(), problem);
    });
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
