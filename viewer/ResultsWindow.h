#pragma once

#include "viewer/LiveFiles.h"

#include "analysis/Series.h"

#include <QMainWindow>
#include <QMap>
#include <QSortFilterProxyModel>
#include <QTimer>

class PlotColumn;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSplitter;
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

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makeMenus();
    void openFiles();
    void openFolder();
    void exportView();
    void exportReport();
    void exportCsv();
    void copy();
    /// Read all files again.
    void reload();

    /// Give the parts of the window their sizes, those of the last time if there were any.
    void layOut();
    /// Make the list as wide as its columns, unless somebody chose a width before.
    void fitList();
    /// Make the list's columns as wide as what is in them. Returns the width that the list needs.
    int fitColumns();
    /// Bring the list up to date with the files. Returns sentences on those that cannot be read.
    QStringList rescan();
    /// Read the results of these files, with a progress bar, which shows when that takes long, and
    /// a way to stop. Returns sentences on those that cannot be read.
    QStringList load(const QStringList &files);
    /// Read the traces of one series. Called while there is nothing else to do.
    void readTraces();
    /// Say for good what the list does not have.
    void showGaps();
    /// Select a row of the list, or the last one, if none is selected.
    void selectSomething(int row);
    void select();
    /// Draw the tab in front, if it does not show the selection yet.
    void drawTab();
    /// Ask for the name of a file; empty when there shall be none.
    QString askFileName(const QString &title, const QString &filters, const QString &suffix);
    /// Say that a file was written, or what kept it from that.
    void tell(const QString &fileName, bool isWritten, const QString &problem);
    void warn(const QString &sentence, const QString &details = {});

    SeriesTable *seriesTable;
    QSortFilterProxyModel *sorted; ///< as the list shows it
    ValuesTable *valuesTable;
    QLineEdit *filter;
    QTableView *list;
    QTableView *values;
    QTabWidget *tabs;
    PlotColumn *drift;
    PlotColumn *histograms;
    PlotColumn *cumulative;
    PlotColumn *records;
    QPlainTextEdit *text;
    QSplitter *besides;
    QSplitter *above;
    QLabel *gaps;

    QVector<Series> selection; ///< one or two
    QVector<QWidget *> stale;  ///< tabs that do not show it yet
    LiveFiles files;
    QMap<QString, QString> problems; ///< why files cannot be read
    int leftOut = 0;                 ///< files that were not read, as somebody stopped it
    QTimer idle;                     ///< runs out when there is nothing else to do
    bool isLoading = false;
};
