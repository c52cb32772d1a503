#pragma once

#include "analysis/Series.h"
#include "viewer/LiveFiles.h"

#include <QMainWindow>
#include <QMap>
#include <QSet>
#include <QSortFilterProxyModel>
#include <QTimer>

#include <functional>

class PlotColumn;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QSplitter;
class QTableView;
class QTabWidget;
class SeriesTable;
class ValuesTable;

/// The window of OrvantaResults: a list of series, and the plots, statistics and values of one or
/// two of them.
class ResultsWindow : public QMainWindow
{
    Q_OBJECT

public:
    ResultsWindow();

    /// Add series. A folder stands for all series in it, present and future. If a file that was
    /// added now or before cannot be read, a box names it and false is returned.
    bool open(const QStringList &filesAndFolders);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makeTabs();
    void makeMenus();
    void openFiles();
    void openFolder();
    void exportView();
    void exportReport();
    void exportCsv();
    void copy();
    /// Read all files again.
    void reload();

    /// Give the parts of the window their sizes: those of the last time, if there are any.
    void layOut();
    /// Make the list as wide as its columns, unless somebody chose a width before.
    void fitList();
    /// Bring the list up to date with the files.
    void rescan();
    /// Read the results of these files. If that takes long, a progress bar with Cancel is shown.
    void load(const QStringList &changed);
    /// Read the traces of some series. Called while nothing else is to be done.
    void readTraces();
    /// Show in the status bar, permanently, what is missing from the list.
    void showMissing();
    /// If nothing is selected, select this row of the list, or the last one if there are fewer.
    void selectSomething(int row);
    /// Show the series selected in the list.
    void select();
    /// Returns the plots of the tab in front; null when that has none.
    [[nodiscard]] PlotColumn *plotsInFront() const;
    /// Writes a file. Returns false and a sentence on failure.
    using Write = std::function<bool(const QString &fileName, QString *problem)>;
    /// Ask for a file name, write the file, and show the outcome.
    void save(const QString &title, const QString &filters, const Write &write);
    void warn(const QString &sentence, const QString &details = {});

    SeriesTable *seriesTable;
    QSortFilterProxyModel *sorted; ///< as the list shows it
    ValuesTable *valuesTable;
    QLineEdit *filter;
    QTableView *list;
    QTableView *values;
    QTabWidget *tabs;
    QVector<PlotColumn *> plotTabs;
    QPlainTextEdit *text;
    QSplitter *listAndPlots;
    QSplitter *plotsAndText;
    QLabel *missing;

    QVector<Series> selection; ///< one or two
    LiveFiles files;
    QMap<QString, QString> problems; ///< why files cannot be read
    QStringList unread;              ///< files whose traces are still to be read
    QSet<QString> leftOut;           ///< files that were not read, since somebody pressed Cancel
    QTimer idle;                     ///< fires when there is nothing else to do
    QTimer look;                     ///< fires when it is time to look for changed files
};
