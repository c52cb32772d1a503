#include "viewer/Report.h"

#include "analysis/Summary.h"
#include "viewer/CumulativePlot.h"
#include "viewer/DriftPlot.h"
#include "viewer/Export.h"
#include "viewer/HistogramPlot.h"
#include "viewer/RecordPlot.h"
#include "viewer/WrapText.h"

#include <QStringList>

#include <qwt_plot.h>

#include <algorithm>

QVector<DelayKind> plottedDelays(const QVector<Series> &selection)
{
    QVector<DelayKind> kinds;
    for (const DelayKind kind : delayKinds) {
        if (std::any_of(selection.begin(), selection.end(), [kind](const Series &series) {
                return isMeasured(series.results, kind);
            })) {
            kinds += kind;
        }
    }
    return kinds;
}

QString describeSelection(const QVector<Series> &selection)
{
    QStringList parts;
    if (selection.size() == 2) {
        parts += compareSeries(selection[0], selection[1]);
    }
    for (const Series &series : selection) {
        parts += summarise(series);
    }
    return parts.join('\n');
}

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
    const auto makePage = [&selections](int number) {
        const QVector<Series> &selection = selections[number];
        Page page = {
            wrapText(describeSelection(selection), statisticsWidth), {}, QPageLayout::Portrait, {}};
        const auto addRow = [&page](const QVector<QwtPlot *> &row) {
            for (QwtPlot *plot : row) {
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
            records += recordPlot(one);
        }
        addRow(records);
        return page;
    };
    return exportPages(selections.size(), makePage, fileName, problem);
}
