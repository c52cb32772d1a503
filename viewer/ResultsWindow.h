#pragma once

#include "analysis/SeriesLoading.h"

#include <QFileSystemWatcher>
#include <QMainWindow>
#include <QTimer>

class PlotColumn;
class QLabel;
class QPlainTextEdit;
class QTableView;
class QTabWidget;
class SeriesTable;
class ValuesTable;

/// The series in some folders, and what one or two of them are like.
class ResultsWindow : public QMainWindow
{
    Q_OBJECT

public:
    ResultsWindow();

    /// Add these series; folders stand for all in them, now and as they come. What cannot be read
    /// is said in a box. Returns whether everything could.
    bool open(const QStringList &filesAndFolders);

private:
    void makeMenus();
    void openFiles();
    void openFolder();
    void exportView();
    void exportReport();
    void exportCsv();
    void copy();

    /// Load with a progress bar, which shows when that takes long, and a way to stop.
    LoadedSeries loadPatiently(const QStringList &filesAndFolders);
    /// Bring the list up to date with the folders.
    void rescan();
    void showProblems(const QStringList &problems);
    void select();
    /// Draw the tab in front, if it does not show the selection yet.
    void drawTab();
    /// Ask for the name of a file; empty when there shall be none.
    QString askFileName(const QString &title, const QString &filters, const QString &suffix);
    /// Say that a file was written, or what kept it from that.
    void tell(const QString &fileName, bool isWritten, const QString &problem);

    SeriesTable *seriesTable;
    ValuesTable *valuesTable;
    QTableView *list;
    QTableView *values;
    QTabWidget *tabs;
    PlotColumn *drift;
    PlotColumn *histograms;
    PlotColumn *records;
    QPlainTextEdit *text;
    QLabel *unreadable;

    QVector<Series> selection; ///< one or two
    QVector<QWidget *> stale;  ///< tabs that do not show it yet
    QFileSystemWatcher watcher;
    QTimer quiet; ///< runs out when nothing has changed in the folders for a while
    bool isLoading = false;
};
