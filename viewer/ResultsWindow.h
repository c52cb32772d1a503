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

    /// Give the parts of the window their sizes, those of the last time if there were any.
    void layOut();
    /// Make the list as wide as its columns, unless somebody chose a width before.
    void fitList();
    /// Bring the list up to date with the files.
    void rescan();
    /// Read the results of these files, with a progress bar, which shows when that takes long, and
    /// a way to stop.
    void load(const QStringList &changed);
    /// Read the traces of some series. Called while there is nothing else to do.
    void readTraces();
    /// Say for good what the list does not have.
    void showGaps();
    /// Select a row of the list, or the last one, if none is selected.
    void selectSomething(int row);
    /// Show the series selected in the list.
    void select();
    /// Returns the plots of the tab in front; null when that has none.
    [[nodiscard]] PlotColumn *plotsInFront() const;
    /// Writes a file. Returns false and a sentence when that fails.
    using Write = std::function<bool(const QString &fileName, QString *problem)>;
    /// Ask for the name of a file, have it written, and tell how that went.
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
    QSplitter *besides;
    QSplitter *above;
    QLabel *gaps;

    QVector<Series> selection; ///< one or two
    LiveFiles files;
    QMap<QString, QString> problems; ///< why files cannot be read
    QStringList unread;    ///< files of series whose traces are to be read: the newest first
    QSet<QString> leftOut; ///< files that were not read, as somebody stopped it
    QTimer idle;           ///< runs out when there is nothing else to do
    QTimer look;           ///< runs out when files may have changed
};
