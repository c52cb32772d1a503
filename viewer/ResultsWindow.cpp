#include "viewer/ResultsWindow.h"

#include "analysis/Summary.h"
#include "viewer/PlotColumn.h"
#include "viewer/Plots.h"
#include "viewer/SeriesTable.h"
#include "viewer/ValuesTable.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScreen>
#include <QScrollBar>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

// The window's settings: its place, and where its two splitters stand.
const char *const geometryKey = "window";
const char *const listWidthKey = "besides";
const char *const plotHeightKey = "above";

QTableView *makeTable(const QString &name, QAbstractItemModel *model)
{
    auto *table = new QTableView;
    table->setObjectName(name);
    table->setModel(model);
    table->setEditTriggers(QTableView::NoEditTriggers);
    table->setSelectionBehavior(QTableView::SelectRows);
    table->setAlternatingRowColors(true);
    table->setWordWrap(false);
    table->setTabKeyNavigation(false);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() * 3 / 2);
    table->horizontalHeader()->setHighlightSections(false);
    return table;
}

QSettings settings()
{
    return {QSettings::IniFormat, QSettings::UserScope, "Varnholt", "OrvantaResults"};
}

/// Shows the busy cursor while it exists.
struct BusyCursor
{
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
    Q_DISABLE_COPY_MOVE(BusyCursor)
};

} // namespace

ResultsWindow::ResultsWindow()
    : seriesTable(new SeriesTable(this)),
      sorted(new QSortFilterProxyModel(this)),
      valuesTable(new ValuesTable(this)),
      filter(new QLineEdit),
      list(makeTable("series", sorted)),
      values(makeTable("values", valuesTable)),
      tabs(new QTabWidget),
      text(new QPlainTextEdit),
      listAndPlots(new QSplitter),
      plotsAndText(new QSplitter(Qt::Vertical)),
      missing(new QLabel)
{
    setWindowTitle("Orvanta Results");
    text->setReadOnly(true);
    text->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    constexpr double smaller = 0.88; // a line of statistics is long
    fixed.setPointSizeF(fixed.pointSizeF() * smaller);
    text->setFont(fixed);
    statusBar()->addPermanentWidget(missing);

    sorted->setSourceModel(seriesTable);
    sorted->setSortRole(SeriesTable::SortRole);
    sorted->setFilterRole(SeriesTable::FilterRole);
    sorted->setFilterCaseSensitivity(Qt::CaseInsensitive);
    list->setSortingEnabled(true);
    list->sortByColumn(0, Qt::DescendingOrder);
    // There may be many rows, so only the visible ones decide how wide a column is. The first
    // column stretches, which keeps the others visible.
    list->horizontalHeader()->setResizeContentsPrecision(0);
    list->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    list->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    values->horizontalHeader()->setStretchLastSection(true);
    filter->setPlaceholderText("Filter");
    filter->setClearButtonEnabled(true);
    connect(filter, &QLineEdit::textChanged, this, [this](const QString &part) {
        sorted->setFilterFixedString(part);
        selectSomething(0);
    });

    auto *left = new QWidget;
    auto *column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(filter);
    column->addWidget(list);
    listAndPlots->addWidget(left);
    listAndPlots->addWidget(plotsAndText);
    listAndPlots->setStretchFactor(1, 1);
    plotsAndText->addWidget(tabs);
    plotsAndText->addWidget(text);
    plotsAndText->setStretchFactor(0, 1);
    listAndPlots->setChildrenCollapsible(false);
    plotsAndText->setChildrenCollapsible(false);
    setCentralWidget(listAndPlots);
    makeTabs();
    makeMenus();
    layOut();

    connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ResultsWindow::select);
    connect(listAndPlots, &QSplitter::splitterMoved, this,
            [this] { settings().setValue(listWidthKey, listAndPlots->saveState()); });
    connect(&idle, &QTimer::timeout, this, &ResultsWindow::readTraces);
    connect(&look, &QTimer::timeout, this, [this] {
        QStringList shown;
        for (const Series &series : qAsConst(selection)) {
            shown += series.fileName;
        }
        if (files.mayHaveChanged(shown)) {
            rescan();
        }
    });
    // A folder's time does not change when one of its files is written again.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this] { files.lookAgain(); });
}

void ResultsWindow::makeTabs()
{
    const auto ofDelays = [this](auto makePlot) {
        return [this, makePlot] {
            QVector<QwtPlot *> plots;
            for (const DelayKind kind : plottedDelays(selection)) {
                plots += makePlot(selection, kind);
            }
            return plots;
        };
    };
    const auto ofRecords = [this] {
        QVector<QwtPlot *> plots;
        for (const Series &series : qAsConst(selection)) {
            plots += recordPlot(series);
        }
        return plots;
    };
    const auto measurement = [this](int plot, const QPoint &place) {
        return measurementText(*plotTabs[0]->plots()[plot], selection,
                               plottedDelays(selection)[plot], place);
    };
    plotTabs = {new PlotColumn(ofDelays(driftPlot), measurement),
                new PlotColumn(ofDelays(histogramPlot), {}, QBoxLayout::LeftToRight),
                new PlotColumn(ofDelays(cumulativePlot), {}, QBoxLayout::LeftToRight),
                new PlotColumn(ofRecords)};
    const QStringList names{"&Delays", "&Histogram", "&Cumulative", "&Last Record"};
    for (int i = 0; i < names.size(); ++i) {
        tabs->addTab(plotTabs[i], names[i]);
    }
    tabs->addTab(values, "&Values");
}

void ResultsWindow::layOut()
{
    constexpr double most = 0.95; // of the screen, with room for the frame
    resize(QSize(1280, 840).boundedTo(QGuiApplication::primaryScreen()->availableSize() * most));
    // Room for the statistics of a comparison, but the greater part for the plots.
    const int statistics = std::min(14 * text->fontMetrics().lineSpacing(), height() * 3 / 10);
    plotsAndText->setSizes({height() - statistics, statistics});
    const QSettings saved = settings();
    restoreGeometry(saved.value(geometryKey).toByteArray());
    plotsAndText->restoreState(saved.value(plotHeightKey).toByteArray());
    listAndPlots->restoreState(saved.value(listWidthKey).toByteArray());
}

void ResultsWindow::closeEvent(QCloseEvent *event)
{
    QSettings saved = settings();
    saved.setValue(geometryKey, saveGeometry());
    saved.setValue(plotHeightKey, plotsAndText->saveState());
    QMainWindow::closeEvent(event);
}

void ResultsWindow::fitList()
{
    if (!settings().contains(listWidthKey)) {
        QHeaderView *header = list->horizontalHeader();
        header->resizeSections(QHeaderView::ResizeToContents);
        const int wanted = header->length() + 2 * list->frameWidth() +
                           list->verticalScrollBar()->sizeHint().width();
        const int listWidth = std::min(wanted, width() / 2);
        const int nameWidth = header->sectionSize(0) - (wanted - listWidth);
        if (nameWidth < list->fontMetrics().horizontalAdvance("0000-00-00 00:00:00")) {
            header->setSectionResizeMode(0, QHeaderView::ResizeToContents); // the list scrolls
        }
        listAndPlots->setSizes({listWidth, width() - listWidth});
    }
}

void ResultsWindow::selectSomething(int row)
{
    if (sorted->rowCount() > 0 && !list->selectionModel()->hasSelection()) {
        list->selectRow(qBound(0, row, sorted->rowCount() - 1));
    }
}

void ResultsWindow::select()
{
    const BusyCursor busy;
    QModelIndexList chosen = list->selectionModel()->selectedRows();
    std::sort(chosen.begin(), chosen.end());
    statusBar()->showMessage(chosen.size() > 2 ? "The first two of the series selected are shown."
                             : chosen.size() == 1 && seriesTable->rowCount() > 1
                                 ? "Select a second series with Ctrl to compare the two."
                                 : "");
    QStringList fileNames; // read first, since reading traces may move the rows
    for (const QModelIndex &index : chosen.mid(0, 2)) {
        fileNames += index.data(SeriesTable::FileRole).toString();
    }
    selection.clear();
    for (const QString &fileName : qAsConst(fileNames)) {
        seriesTable->readTraces(fileName);
        selection += seriesTable->at(fileName);
    }
    std::stable_sort(selection.begin(), selection.end(),
                     [](const Series &a, const Series &b) { return a.time < b.time; });
    text->setPlainText(wrapText(describeSelection(selection), statisticsWidth));
    valuesTable->show(selection);
    values->resizeColumnsToContents();
    for (PlotColumn *column : qAsConst(plotTabs)) {
        column->renew();
    }
}

PlotColumn *ResultsWindow::plotsInFront() const
{
    return plotTabs.value(tabs->currentIndex(), nullptr);
}
