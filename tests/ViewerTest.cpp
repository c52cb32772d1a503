#include "SavedSeries.h"
#include "TestFiles.h"
#include "viewer/Plots.h"
#include "viewer/PlotStyle.h"
#include "viewer/Report.h"
#include "viewer/TraceData.h"

#include <QtTest>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_histogram.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_div.h>

namespace {

/// The points of the curve with this title.
QVector<QPointF> pointsOf(const QwtPlot &plot, const QString &title)
{
    QVector<QPointF> points;
    for (const QwtPlotItem *item : plot.itemList(QwtPlotItem::Rtti_PlotCurve)) {
        const auto *curve = static_cast<const QwtPlotCurve *>(item);
        for (std::size_t i = 0; item->title().text() == title && i < curve->dataSize(); ++i) {
            points += curve->sample(int(i));
        }
    }
    return points;
}

QString numbers(std::initializer_list<double> values)
{
    QStringList texts;
    for (const double value : values) {
        texts += QString::number(value, 'g', 5);
    }
    return texts.join(' ');
}

QString penText(const QPen &pen)
{
    const QString style = QMetaEnum::fromType<Qt::PenStyle>().valueToKey(pen.style());
    return QString("%1 %2 %3").arg(style, numbers({pen.widthF()}), pen.color().name());
}

/// Describe the lines of a curve, or its symbols if it has no lines.
QString curveText(const QwtPlotCurve &curve)
{
    if (curve.style() != QwtPlotCurve::NoCurve) {
        return (curve.style() == QwtPlotCurve::Steps ? "steps " : "") + penText(curve.pen());
    }
    const QMap<int, QString> shapes = {{QwtSymbol::Ellipse, "circles"},
                                       {QwtSymbol::Diamond, "diamonds"},
                                       {QwtSymbol::Triangle, "triangles"},
                                       {QwtSymbol::XCross, "crosses"}};
    const QwtSymbol &symbol = *curve.symbol();
    const bool isHollow = symbol.brush().style() == Qt::NoBrush;
    return QString("%1%2 of %3 pixels, %4")
        .arg(isHollow ? "hollow " : "", shapes[symbol.style()],
             QString::number(symbol.size().width()), penText(symbol.pen()));
}

/// Describe what a plot shows, a line each: its axes, and its items in the order of drawing.
QString described(QwtPlot *plot)
{
    plot->updateAxes();
    QStringList lines;
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        const QwtInterval range = plot->axisInterval(axis);
        lines += plot->axisTitle(axis).text() + ", from " + numbers({range.minValue()}) + " to " +
                 numbers({range.maxValue()});
    }
    for (const QwtPlotItem *item : plot->itemList()) {
        const bool isInLegend = item->testItemAttribute(QwtPlotItem::Legend);
        const QString title = isInLegend ? '"' + item->title().text() + "\": " : QString();
        const QRectF bounds = item->boundingRect();
        const QString extent =
            numbers({bounds.left(), bounds.right(), bounds.top(), bounds.bottom()});
        if (const auto *curve = dynamic_cast<const QwtPlotCurve *>(item)) {
            lines += title + numbers({double(curve->dataSize())}) + " points in " + extent + ": " +
                     curveText(*curve);
        } else if (const auto *line = dynamic_cast<const QwtPlotMarker *>(item)) {
            lines += "line at " + numbers({line->xValue(), line->yValue()}) + ": " +
                     (penText(line->linePen()) + ' ' + line->label().text()).trimmed();
        } else if (const auto *bars = dynamic_cast<const QwtPlotHistogram *>(item)) {
            lines += title + numbers({double(bars->dataSize())}) + " bars in " + extent + ": " +
                     penText(bars->pen()) + ' ' + bars->brush().color().name(QColor::HexArgb);
        }
    }
    return lines.join('\n');
}

} // namespace

class ViewerTest : public QObject
{
    Q_OBJECT

private slots:
    /// A long trace keeps its extremes, however much of it is shown.
    void decimation()
    {
        Values samples(1000000, 1.0);
        samples[654321] = 5.0;
        samples[654322] = -5.0;
        samples[654323] = qQNaN();
        TraceData trace(samples, 0.0, 1e-6, 1000);
        QVERIFY(trace.size() <= 2000);
        const QRectF whole = trace.boundingRect();
        QCOMPARE(whole.top(), -5.0);
        QCOMPARE(whole.bottom(), 5.0);
        trace.setRectOfInterest({QPointF(0.6543205, 0.0), QPointF(0.6543235, 1.0)});
        QCOMPARE(trace.size(), std::size_t(4)); // one more on either side
        QCOMPARE(trace.sample(1), QPointF(0.654321, 5.0));
        QCOMPARE(trace.sample(2), QPointF(0.654322, -5.0));
        QCOMPARE(trace.boundingRect(), whole);
    }

    /// A long series is drawn in columns, which keep its level and its extremes.
    void driftColumns()
    {
        Values rf;
        for (int i = 0; i < 30000; ++i) {
            rf += (i < 15000 ? 44 : 54) + i % 10 * 0.1;
        }
        rf[20000] = 60;
        const std::unique_ptr<QwtPlot> plot(driftPlot({seriesOf(rf)}, SourceToRf));
        QCOMPARE(pointsOf(*plot, "measured").count({19950.5, 60}), 1);
        const QVector<QPointF> medians = pointsOf(*plot, "Median");
        QCOMPARE(medians.size(), 200);
        QCOMPARE(medians[10].y(), 44.4);
        QCOMPARE(medians[190].y(), 54.4);
    }

    void histogram_data()
    {
        QTest::addColumn<Values>("second");
        QTest::addColumn<Values>("shares"); // of the second's bins that are not empty
        QTest::newRow("all flagged") << Values{501} << Values();
        QTest::newRow("far away") << Values{54.1, 54.2, 54.3, 54.2} << Values{25, 50, 25};
        QTest::newRow("two humps") << Values{44.1, 44.2, 60.8, 60.9} << Values{25, 25, 25, 25};
    }
    /// Each series keeps its shape, whatever the other one is like.
    void histogram()
    {
        QFETCH(const Values, second);
        QFETCH(const Values, shares);
        const Series first = seriesOf({44.1, 44.2, 44.3, 44.2});
        const std::unique_ptr<QwtPlot> plot(histogramPlot({first, seriesOf(second)}, SourceToRf));
        QVector<Values> expected = {{25, 50, 25}, shares};
        for (const QwtPlotItem *item : plot->itemList(QwtPlotItem::Rtti_PlotHistogram)) {
            const auto *histogram = static_cast<const QwtPlotHistogram *>(item);
            Values filled;
            for (int i = 0; i < int(histogram->dataSize()); ++i) {
                const QwtIntervalSample bin = histogram->sample(i);
                if (bin.value > 0) {
                    filled += bin.value;
                }
                // A gap between bins would be drawn as a line.
                QVERIFY(i == 0 ||
                        bin.interval.minValue() == histogram->sample(i - 1).interval.maxValue());
            }
            QCOMPARE(filled, expected.takeFirst());
        }
    }

    void cumulative()
    {
        const Values four = {44, 45, 46, 45};
        const Series series = seriesOf(four + four + four + four + four);
        const std::unique_ptr<QwtPlot> plot(cumulativePlot({series}, SourceToRf));
        const QVector<QPointF> steps = pointsOf(*plot, "measured: P50 45.00, P95 46.00");
        QCOMPARE(steps.mid(5, 2), (QVector<QPointF>{{44, 25}, {45, 30}}));
        QCOMPARE(steps.last(), QPointF(46, 100));
    }

    /// Labels name two series if they differ; otherwise the times do.
    void names()
    {
        Series first;
        Series second;
        first.fileName = "FW1_Orvanta2026-03-05_14-07-09_Results.txt";
        for (const auto &[file, name] :
             {std::pair("FW2_Orvanta2026-03-06_08-00-00_Results.txt", "FW2"),
              {"FW1_Orvanta2026-03-06_08-00-00_Results.txt", "FW1 (202...08:00:00)"},
              {"Orvanta2026-03-06_08-00-00_Results.txt", "2026-03-06 08:00:00"}}) {
            second.fileName = file;
            second.time = seriesTime(file);
            QCOMPARE(plotNames({first, second})[1], QString(name));
        }
    }

    void plots_data()
    {
        QTest::addColumn<QwtPlot *>("plot");
        const QTemporaryDir folder;
        const Series saved = open(save(folder.path(), {54}, {0}, {144})); // of LPA4004
        Series first = seriesOf({44, 45, 501, 44, 46, 45, 44, 350, 45, 46, 44});
        first.fileName = "first";
        const Series second = seriesOf(varied(30, 47));
        QTest::newRow("drift of two series") << driftPlot({first, second}, SourceToRf);
        QTest::newRow("histogram of two series") << histogramPlot({first, second}, SourceToRf);
        QTest::newRow("histogram of one series") << histogramPlot({second}, SourceToRf);
        QTest::newRow("cumulative distribution") << cumulativePlot({second}, SourceToSink);
        QTest::newRow("last record") << recordPlot(saved);
    }

    /// Plots.txt has what they show.
    void plots()
    {
        QFETCH(QwtPlot *, plot);
        const QString text = contents(QFINDTESTDATA("Plots.txt"));
        const QString section = text.section(QString("[%1]\n").arg(QTest::currentDataTag()), 1);
        QCOMPARE(described(plot), section.section("\n\n", 0, 0));
        delete plot;
    }

    /// The file of a series has a label, which makes names too long for a line: they are shortened
    /// in the middle.
    void report()
    {
        const QTemporaryDir folder;
        const QString file =
            folder.filePath(QString(150, 'x') + "_Orvanta2026-03-05_14-07-09_Results.txt");
        QVERIFY(QFile::rename(save(folder.path(), {45}, {0}, {120}), file));
        const LoadedSeries loaded = loadSeries({file});
        QVERIFY(loaded.series.value(0).oscilloscope.type); // the traces keep their names
        QString problem;
        QVERIFY(writeReport(loaded.series, folder.filePath("report.svg"), &problem));
        const QString svg = contents(folder.filePath("report.svg"));
        QVERIFY(svg.contains(QRegularExpression(">Delays of x+\\.\\.\\.x* .* 14:07:09")));
        QVERIFY(svg.contains(
            QRegularExpression(">/.*\\.\\.\\.x+_Orvanta2026-03-05_14-07-09_Results.txt")));
        QVERIFY(svg.contains("Page 1 of 1<"));
    }
};

QTEST_MAIN(ViewerTest)
#include "ViewerTest.moc"
