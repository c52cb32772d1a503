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
    table->horizontalHeader()->setHighlightSections(false);
    return table;
}

QSettings settings()
{
    return {QSettings::IniFormat, QSettings::UserScope, "Varnholt", "OrvantaResults"};
}

/// Shows that the person has to wait, as long as it exists.
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
      list(makeTable(sorted)),
      values(makeTable(valuesTable)),
      tabs(new QTabWidget),
      drift(new PlotColumn),
      histograms(new PlotColumn),
      cumulative(new PlotColumn),
      records(new PlotColumn),
      text(new QPlainTextEdit),
      besides(new QSplitter),
      above(new QSplitter(Qt::Vertical)),
      gaps(new QLabel)
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
    tabs->addTab(cumulative, "&Cumulative");
    tabs->addTab(records, "&Last Record");
    tabs->addTab(values, "&Values");
    list->setObjectName("series");
    values->setObjectName("values");
    statusBar()->addPermanentWidget(gaps);

    sorted->setSourceModel(seriesTable);
    sorted->setSortRole(SeriesTable::SortRole);
    sorted->setFilterRole(SeriesTable::FilterRole);
    sorted->setFilterCaseSensitivity(Qt::CaseInsensitive);
    values->horizontalHeader()->setStretchLastSection(true);
    list->setSortingEnabled(true);
    list->sortByColumn(0, Qt::DescendingOrder);
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
    besides->addWidget(left);
    besides->addWidget(above);
    besides->setStretchFactor(1, 1);
    above->addWidget(tabs);
    above->addWidget(text);
    above->setStretchFactor(0, 1);
    setCentralWidget(besides);
    layOut();
    makeMenus();

    connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ResultsWindow::select);
    connect(list->horizontalHeader(), &QHeaderView::sortIndicatorChanged, this,
            &ResultsWindow::fitColumns);
    connect(tabs, &QTabWidget::currentChanged, this, &ResultsWindow::drawTab);
    connect(&files, &LiveFiles::stirred, this, &ResultsWindow::rescan);
    connect(&idle, &QTimer::timeout, this, &ResultsWindow::readTraces);
}

void ResultsWindow::layOut()
{
    constexpr double most = 0.95; // of the screen, with room for the frame
    resize(QSize(1280, 840).boundedTo(QGuiApplication::primaryScreen()->availableSize() * most));
    // The statistics of a comparison, if that leaves the plots the greater part.
    const int statistics = std::min(14 * text->fontMetrics().lineSpacing(), height() * 3 / 10);
    above->setSizes({height() - statistics, statistics});
    const QSettings saved = settings();
    restoreGeometry(saved.value("window").toByteArray());
    above->restoreState(saved.value("above").toByteArray());
    besides->restoreState(saved.value("besides").toByteArray());
}

void ResultsWindow::closeEvent(QCloseEvent *event)
{
    QSettings saved = settings();
    saved.setValue("window", saveGeometry());
    saved.setValue("above", above->saveState());
    saved.setValue("besides", besides->saveState());
    QMainWindow::closeEvent(event);
}

void ResultsWindow::fitList()
{
    const int wanted = fitColumns();
    if (!settings().contains("besides")) {
        // The statistics are seen whole where there is room for both.
        const int room = width() - text->fontMetrics().horizontalAdvance('0') * statisticsWidth;
        const int most = room > width() / 3 ? room : width() / 2;
        besides->setSizes({std::min(wanted, most), width() - std::min(wanted, most)});
    }
}

int ResultsWindow::fitColumns()
{
    QHeaderView *header = list->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setSortIndicatorShown(false); // every column would get room for it
    list->resizeColumnsToContents();
    header->setSortIndicatorShown(true);
    const int sortedBy = header->sortIndicatorSection();
    header->resizeSection(sortedBy, header->sectionSize(sortedBy) +
                                        style()->pixelMetric(QStyle::PM_HeaderMarkSize));
    const int wanted =
        header->length() + 2 * list->frameWidth() + list->verticalScrollBar()->sizeHint().width();
    header->setSectionResizeMode(0, QHeaderView::Stretch); // no other is ever out of sight
    return wanted;
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
    selection.clear();
    for (const QModelIndex &index : chosen.mid(0, 2)) {
        const int row = sorted->mapToSource(index).row();
        seriesTable->readTraces(row);
        selection += seriesTable->at(row);
    }
    std::stable_sort(selection.begin(), selection.end(),
                     [](const Series &a, const Series &b) { return a.time < b.time; });
    text->setPlainText(wrapText(describeSelection(selection), statisticsWidth));
    valuesTable->show(selection);
    values->resizeColumnsToContents();
    stale = {drift, histograms, cumulative, records};
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
    const QVector<DelayKind> kinds =
        selection.isEmpty() ? QVector<DelayKind>() : plottedDelays(selection);
    const auto draw = [&](auto makePlot) {
        for (const DelayKind kind : kinds) {
            plots += makePlot(selection, kind);
        }
    };
    if (tab == drift) {
        draw(driftPlot);
        drift->setPlots(plots, [this, kinds](int plot, const QPoint &place) {
            return measurementText(*drift->plots()[plot], selection, kinds[plot], place);
        });
    } else if (tab == histograms) {
        draw(histogramPlot);
        histograms->setPlots(plots);
    } else {
        draw(cumulativePlot);
        cumulative->setPlots(plots);
    }
}
