#include "viewer/Report.h"

#include "analysis/Summary.h"
#include "viewer/Export.h"
#include "viewer/Plots.h"
#include "viewer/PlotStyle.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

#include <qwt_plot.h>

namespace {

QString titleOf(const QVector<Series> &selection)
{
    constexpr int longest = 50; // characters
    QStringList names = seriesNames(selection);
    for (QString &name : names) {
        name = shortenText(name, longest);
    }
    return selection.size() == 1
               ? "Delays of " + names[0]
               : QString("Delays of %2 compared with those of %1").arg(names[0], names[1]);
}

} // namespace

bool writeReport(const QVector<Series> &series, const QString &fileName, QString *problem)
{
    QVector<QVector<Series>> selections;
    if (series.size() == 2) {
        selections += series;
    } else {
        for (const Series &one : series) {
            selections += QVector<Series>{one};
        }
    }
    const QString written = QLocale::c().toString(QDateTime::currentDateTime(), "yyyy-MM-dd hh:mm");
    const auto makePage = [&](int number) {
        const QVector<Series> &selection = selections[number];
        Page page;
        page.title = titleOf(selection);
        page.text = describeSelection(selection);
        for (const Series &one : selection) {
            page.text.replace(one.fileName, shortenText(one.fileName, statisticsWidth));
        }
        page.text = wrapText(page.text, statisticsWidth);
        page.foot = QString("OrvantaResults %1     %2     Page %3 of %4")
                        .arg(ORVANTA_VERSION, written)
                        .arg(number + 1)
                        .arg(selections.size());
        const auto addRow = [&page](const QVector<QwtPlot *> &row) {
            constexpr int ticksOfPage = 18; // with labels, side by side
            for (QwtPlot *plot : row) {
                plot->setAxisMaxMajor(QwtPlot::xBottom, ticksOfPage / row.size());
                plot->updateAxes();
                page.kept += QSharedPointer<QwtPlot>(plot);
            }
            page.rows += row;
        };
        for (const DelayKind kind : plottedDelays(selection)) {
            addRow({driftPlot(selection, kind), histogramPlot(selection, kind),
                    cumulativePlot(selection, kind)});
        }
        QVector<QwtPlot *> records;
        for (const Series &one : selection) {
            constexpr int columnsOfPage = 800; // 0.2 mm each
            records += recordPlot(one, columnsOfPage / selection.size());
        }
        addRow(records);
        return page;
    };
    return exportPages(selections.size(), makePage, fileName, problem);
}
