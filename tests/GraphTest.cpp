#include "app/graph/Graph.h"
#include "app/Busy.h"
#include "app/Globals.h"

#include <QtTest>
#include <QtWidgets>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

class GraphTest : public QObject
{
    Q_OBJECT

private slots:
    /// Mean delays are limited to the range of their fields, and no key steps them. The field of a
    /// NaN is empty.
    void graph()
    {
        OsTyp = 1;
        t = QVector<double>(300, 0.25); // as after three attempts
        d1_src = QVector<double>(100, 1.0);
        d2_rf = d3_snk = {};
        std::tie(t_src, t_rf, t_snk) = std::tuple(0.0123456789, 0.000015, 0.25);
        std::tie(mS2Rf, mS2Hd, mS2Snk) = std::tuple(2500, qQNaN(), -95.12345);
        Graph graph(nullptr);
        graph.show();
        const auto *plot = graph.findChild<QwtPlot *>("plt");
        QCOMPARE(plot->axisInterval(QwtPlot::xBottom), QwtInterval(-0.6, 0.6));
        QStringList items; // sizes of curves and labels of edges
        for (const QwtPlotItem *item : plot->itemList()) {
            const auto *marker = dynamic_cast<const QwtPlotMarker *>(item);
            const auto *curve = dynamic_cast<const QwtPlotCurve *>(item);
            items << (marker != nullptr
                          ? QString("%1 at %2").arg(marker->label().text()).arg(marker->xValue())
                          : QString::number(curve->dataSize()));
        }
        QCOMPARE(items.join('|'),
                 QString("100|0|0|tsrc = 0.0123457 s at 0.0123457|trf = 1.5e-05 s at 1.5e-05|"
                         "tsnk = 0.25 s at 0.25"));
        QStringList delays;
        for (const char *name : {"Src2Rf", "Src2Hd", "Src2Snk"}) {
            auto *field = graph.findChild<QDoubleSpinBox *>(name);
            field->setFocus();
            QTest::keyClick(field, Qt::Key_Up);
            field->clearFocus(); // completes what it holds
            QVERIFY(!field->isReadOnly());
            delays << field->text();
        }
        QCOMPARE(delays, QStringList({"2000.000", "", "-95.123"}));
        QCOMPARE(graph.findChild<QWidget *>("Src2Hd")->isEnabled(), VaHdmi);
    }

    /// Busy paints what has changed, and shows the busy cursor until it is destroyed.
    void busy()
    {
        struct : QWidget
        {
            bool isPainted = false;
            void paintEvent(QPaintEvent * /*event*/) override { isPainted = true; }
        } widget;
        widget.show();
        {
            const Busy busy;
            QVERIFY(widget.isPainted);
            QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        }
        QVERIFY(QApplication::overrideCursor() == nullptr);
    }
};

QTEST_MAIN(GraphTest)
#include "GraphTest.moc"
