#include "app/FormScaling.h"
#include "app/graph/Graph.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "Line.h"
#include "SettingsShown.h"

#include <QtTest>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

#include <algorithm>

namespace {

/// While it lives, it notes every modal dialog that opens and accepts it, as the operator would.
struct DialogWatcher : QTimer
{
    DialogWatcher()
    {
        QObject::connect(this, &QTimer::timeout, this, [this] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                const auto *box = qobject_cast<QMessageBox *>(dialog);
                seen << dialog->windowTitle() + (box != nullptr ? ": " + box->text() : "");
                dialog->accept();
            }
        });
        start(0);
    }

    QStringList seen;
};

/// The program's window on the bench.
struct Window : MainWindow
{
    Window() { show(); }

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return findChild<Widget *>(name);
    }
    void type(const char *name, const QString &text) const
    {
        find<QLineEdit>(name)->clear();
        find<QLineEdit>(name)->insert(text);
    }
    /// Whether Start is enabled after a click.
    bool click(const char *name) const
    {
        auto *button = find<QAbstractButton>(name);
        // A check box takes clicks on its indicator and text only.
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
        return find<QWidget>("Start")->isEnabled();
    }
};

QString settingsFile()
{
    return settingsDirectory() + "/WindowTest.cfg";
}

} // namespace

class WindowTest : public QObject
{
    Q_OBJECT

    QTemporaryDir home;

private slots:
    void initTestCase()
    {
        qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
        QApplication::setFont(QFont("DejaVu Sans", 11)); // larger than the forms have room for
        fitTextToForms();
    }

    void init()
    {
        QDir(home.path() + "/Varnholt").removeRecursively();
        QDir(home.path()).mkpath("Varnholt/WindowTest");
        Line::libraryPath = BENCH_LIBRARY;
        OsTyp = 0;
        VaHdmi = false;
    }

    /// Two boxes, then a window that can be used; whatever is pressed, nothing happens.
    void withoutVisa()
    {
        DialogWatcher dialogs;
        Line::libraryPath.clear();
        const Window window;
        QCOMPARE(dialogs.seen, QStringList({"VISA Error: The VISA Library could not be loaded.",
                                            "VISA Error: VISA master handle not available."}));
        window.click("VaHdmi");
        for (const char *name : {"VaInit", "OsInit", "SaInit"}) {
            QVERIFY(!window.click(name) && window.find<QPushButton>(name)->text() == "Init");
        }
    }

    /// The window has no buttons of its own, and every text its place.
    void appearance()
    {
        const Window window;
        QCOMPARE(window.size(), QSize(327, 293));
        QCOMPARE(window.windowFlags(), Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
        const auto hasRoom = [](const QWidget *widget, const QString &text, int indicator) {
            const QFontMetrics metrics = widget->fontMetrics();
            const QStringList lines = text.split('\n');
            return std::all_of(lines.begin(), lines.end(), [&](const QString &line) {
                const QSize ink = metrics.tightBoundingRect(line).size();
                // The ink's width is rounded up, the advance has room after the last letter.
                const int width = qMin(ink.width(), metrics.horizontalAdvance(line)) + indicator;
                return width <= widget->width() && ink.height() * lines.size() <= widget->height();
            });
        };
        for (const QLabel *label : window.findChildren<QLabel *>()) {
            QVERIFY2(hasRoom(label, label->text(), 0), qPrintable(label->objectName()));
        }
        for (const QCheckBox *box : window.findChildren<QCheckBox *>()) {
            QVERIFY2(hasRoom(box, box->text(), 16), qPrintable(box->objectName()));
        }
    }

    /// An instrument's readiness, and what Start makes of it; real clicks.
    void readiness()
    {
        const Window window;
        Line line;
        const auto press = [&](const char *button, const char *broken = nullptr) {
            line.fails = [=](auto &entry) {
                return broken != nullptr && entry.startsWith(broken) ? VI_ERROR_TMO : VI_SUCCESS;
            };
            return window.click(button);
        };
        QVERIFY(!press("OsInit"));
        QCOMPARE(window.find<QPushButton>("OsInit")->text(), QString("Ready"));
        QVERIFY(press("SaInit"));
        QVERIFY(!press("OsInit", "oscilloscope")); // a failed Init takes Start back
        QCOMPARE(window.find<QPushButton>("OsInit")->text(), QString("Init"));
        QVERIFY(press("OsInit"));

        QVERIFY(press("VaHdmi")); // Start keeps its state until the next Init
        QVERIFY(window.find<QWidget>("VaInit")->isEnabled());
        QVERIFY(!press("SaInit"));
        QVERIFY(!press("VaInit", "video-analyzer"));
        QVERIFY(press("VaInit"));
        window.find<QPushButton>("VaInit")->setText("READY");
        QVERIFY(!press("OsInit"));
        QVERIFY(!press("VaHdmi") && !window.find<QWidget>("VaIp")->isEnabled());
        QVERIFY(press("SaInit"));
    }

    /// What the operator typed and chose reaches the instruments; the video analyzer's session is
    /// closed when its box is checked, the others always.
    void series()
    {
        for (const int type : {0, 1}) {
            auto window = std::make_unique<Window>();
            Line line;
            DialogWatcher dialogs;
            t.clear();
            const QString host = type == 0 ? "oscilloscope-kvx" : "oscilloscope";
            window->find<QComboBox>("OsTyp")->setCurrentIndex(type);
            window->type("OsIp", "TCPIP::" + host + "::INSTR");
            window->type("OsTrgLvl", " 3e-2 ");
            window->type("SaFrq", "5,2");
            window->type("VaThres", "");
            window->type("MeasCnt", "2");
            for (const char *name :
                 {"VaHdmi", "VaRst", "OsRst", "SaveData", "OsInit", "SaInit", "VaInit"}) {
                window->click(name);
            }
            if (type == 0) {
                window->click("SaIfDem");
                window->click("OsInit");
            }
            const QStringList setUp = line.takeTranscript();
            for (const char *command :
                 {"< *RST;", "LEV1 0.03;", "< FREQ:CENT 0;", "< CONF:AVDA:TTV:APL:THR 0;",
                  type == 0 ? "< CHAN3 ON;" : "< SWE:TIME 1.2;"}) {
                QVERIFY2(!setUp.filter(command).isEmpty(), command);
            }
            window->click("Start");
            const QStringList series = line.takeTranscript();
            QCOMPARE(series.filter("< READ:AVDA:TTV:STAT?").size(), 2);
            QCOMPARE(series.filter(type == 0 ? "< RUNC" : "< RUN;").size(), 1);
            QCOMPARE(dialogs.seen, QStringList{"Dialog"});
            QCOMPARE(*std::max_element(d2_rf.begin(), d2_rf.end()), 0.2); // RF, normalised
            QVERIFY(qAbs(mS2Rf - 45) < 9 && qAbs(mS2Hd - 95) < 5 && qAbs(mS2Snk - 120) < 20);
            QCOMPARE(QDir(home.path() + "/Varnholt").entryList(QDir::Files).size(), 7 + 7 * type);
            window->find<QCheckBox>("VaHdmi")->setChecked(type == 1);
            window.reset();
            QCOMPARE(line.transcript.join(' '), host + " close spectrum-analyzer close" +
                                                    (type == 1 ? " video-analyzer close" : ""));
            QVERIFY(QFile::remove(settingsFile()));
            QTest::qWait(1010); // the files of the next series have another time in their names
        }
    }

    void delegation()
    {
        Window window;
        DialogWatcher dialogs;
        const auto step = [](int index) {
            return QVector<double>(index, 0.0) + QVector<double>(101 - index, 0.2);
        };
        QVector<QVector<double>> traces = {step(20), step(40), step(60), {}};
        QVector<double> delays(2);
        QVERIFY(QMetaObject::invokeMethod(
            &window, "CalcDeltaT2", Q_ARG(int, 101), Q_ARG(QVector<double> *, &traces[0]),
            Q_ARG(QVector<double> *, &traces[1]), Q_ARG(QVector<double> *, &traces[2]),
            Q_ARG(QVector<double> *, &traces[3]), Q_ARG(double *, &delays[0]),
            Q_ARG(double *, &delays[1])));
        QVERIFY(qRound(delays[0]) == 240 && qRound(delays[1]) == 480);

        const QString file = home.filePath("trace.bin");
        QVector<double> loaded = {7.0};
        ViInt32 count = 0;
        QCOMPARE(window.SaveBinFile(file, traces[0], 100), 0);
        QCOMPARE(window.LoadBinFile(file, &loaded, &count), 0);
        QVERIFY(count == 100 && loaded == QVector<double>{7.0} + traces[0].mid(0, 100));
        QVERIFY(dialogs.seen.isEmpty());
        QCOMPARE(window.LoadBinFile(file + ".none", &loaded, &count), -1);
        QCOMPARE(dialogs.seen, QStringList{"File Error: File not found."});
    }

    void graph()
    {
        for (const auto &[type, samples] : {std::pair{0, 100}, {1, 0}}) {
            OsTyp = type;
            VaHdmi = type == 0;
            t = QVector<double>(3 * samples, 0.25); // as after three attempts
            d1_src = QVector<double>(samples, 1.0);
            d2_rf = QVector<double>(samples, 2.0);
            d3_snk = QVector<double>(samples, 3.0);
            std::tie(t_src, t_rf, t_snk) = std::tuple(0.0123456789, 0.000015, 0.25);
            std::tie(mS2Rf, mS2Hd, mS2Snk) = std::tuple(2500, -95.12345, -3000);
            const Graph graph(nullptr);
            const auto *plot = graph.findChild<QwtPlot *>("plt");
            QCOMPARE(plot->axisInterval(QwtPlot::xBottom),
                     type == 0 ? QwtInterval(-0.5, 0.5) : QwtInterval(-0.6, 0.6));
            const auto curves = plot->itemList(QwtPlotItem::Rtti_PlotCurve);
            const auto markers = plot->itemList(QwtPlotItem::Rtti_PlotMarker);
            QVERIFY(curves.size() == 3 && markers.size() == 3);
            const QColor colors[] = {Qt::blue, Qt::yellow, Qt::red};
            const QString labels[] = {"tsrc = 0.0123457 s", "trf = 1.5e-05 s", "tsnk = 0.25 s"};
            for (int i = 0; i < 3; ++i) {
                const auto *curve = static_cast<const QwtPlotCurve *>(curves[i]);
                QVERIFY(curve->pen().color() == colors[i] && int(curve->dataSize()) == samples);
                QVERIFY(samples == 0 || curve->sample(samples - 1) == QPointF(0.25, i + 1.0));
                const auto *marker = static_cast<const QwtPlotMarker *>(markers[i]);
                QCOMPARE(marker->label().text(), labels[i]);
                QCOMPARE(marker->xValue(), (std::array{t_src, t_rf, t_snk}).at(i));
            }
            QStringList delays;
            for (const char *name : {"Src2Rf", "Src2Hd", "Src2Snk"}) {
                delays << graph.findChild<QDoubleSpinBox *>(name)->text();
            }
            QCOMPARE(delays, QStringList({"2000.000", "-95.123", "-2000.000"}));
            QCOMPARE(graph.findChild<QWidget *>("Src2Hd")->isEnabled(), VaHdmi);
        }
    }

    void settingsDirectories()
    {
        const QString below = "/Users/a/Library/Application Support/";
        QCOMPARE(settingsDirectoryIn(below + "Orvanta"), below + "Varnholt/Orvanta");
        QCOMPARE(settingsDirectoryIn("C:\\Users\\a\\Orvanta"),
                 QString("C:/Users/a/Varnholt/Orvanta"));
        QDir(home.path() + "/Varnholt").removeRecursively(); // of which the window makes one level
        const Window window;
        QVERIFY(!QFileInfo::exists(settingsDirectory()));
    }

    /// What is stored and shown; a value of another kind, and what is not stored, is the default.
    void settings()
    {
        const QString usual = "TCPIP0::oscilloscope::INSTR|TCPIP0::spectrum-analyzer::INSTR|"
                              "TCPIP0::video-analyzer::INSTR|0.027|5.192e+09|35|0|0|0|0|0|0|1";
        QCOMPARE(shown(Window()).join('|'), usual);
        const QString address = "TCPIP0::ö, \"=;%::INSTR";
        const QString other =
            address + '|' + address + '|' + address + "|1e-05|0|0.5|1|1|1|1|1|1|0";
        {
            const Window window;
            for (const char *name : {"OsIp", "SaIp", "VaIp"}) {
                window.type(name, address);
            }
            window.type("OsTrgLvl", "1e-5");
            window.type("SaFrq", "no number");
            window.type("VaThres", "0.5");
            for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaHdmi", "VaRst", "SaveData"}) {
                window.click(name);
            }
            window.find<QComboBox>("OsTyp")->setCurrentIndex(0);
        }
        const QByteArray whole = contents(settingsFile());
        QVERIFY(whole.contains("[%General]\nSave%20Data=2\n") &&
                whole.contains("\nHDMI%20Delay=true\n"));
        QCOMPARE(shown(Window()).join('|'), other);

        // Cut anywhere, one value at most is neither the default nor what was stored.
        Window window;
        for (int size = 0; size <= whole.size(); ++size) {
            window.find<QComboBox>("OsTyp")->setCurrentIndex(1);
            QVERIFY(write(settingsFile(), whole.left(size)));
            QCOMPARE(window.LoadCfgFile(settingsFile()), 0);
            QCOMPARE(unusable(window), QString());
            const QStringList values = shown(window);
            int cut = 0;
            for (int i = 0; i < values.size(); ++i) {
                cut +=
                    values[i] != usual.section('|', i, i) && values[i] != other.section('|', i, i);
            }
            QVERIFY2(cut <= 1, qPrintable(values.join('|')));
        }
    }

    /// Files that are damaged or somebody else's: what the window makes of them is saved, and comes
    /// back.
    void strangeSettings()
    {
        QVector<QByteArray> files = {QByteArray(4096, '\0'),
                                     QByteArray(1 << 20, '7') + "\n[Oscilloscope]\nType=0",
                                     "[Oscilloscope]\nType=2", "[Oscilloscope]\nType=-1"};
        for (const QByteArray &bytes : filesIn(SETTINGS_CORPUS)) {
            files << bytes;
        }
        for (const QByteArray &bytes : qAsConst(files)) {
            QVERIFY(write(settingsFile(), bytes));
            QStringList first;
            {
                const Window window;
                QCOMPARE(unusable(window), QString());
                first = shown(window);
            }
            QCOMPARE(shown(Window()), first);
        }
    }

    /// The name leads to, or is, something else, which stays as it was.
    void otherFiles()
    {
        const QString other = home.filePath("notes.txt");
        const QString folder = home.filePath("folder");
        QVERIFY(QDir().mkdir(folder) && write(other, "[Notes]\n; mine\nfor all=1\n"));
        for (const QString &target : {other, folder, home.filePath("nothing"), settingsFile()}) {
            QFile::remove(settingsFile());
            QVERIFY(QFile::link(target, settingsFile()));
            {
                const Window window;
                QCOMPARE(unusable(window), QString());
                window.type("OsIp", "new");
            }
            QVERIFY(!QFileInfo(settingsFile()).isSymLink());
            QCOMPARE(shown(Window()).first(), QString("new"));
        }
        QCOMPARE(contents(other), QByteArray("[Notes]\n; mine\nfor all=1\n"));
        QVERIFY(QDir(folder).isEmpty() && !QFileInfo::exists(home.filePath("nothing")));

        QVERIFY(QFile::remove(settingsFile()) && QDir().mkdir(settingsFile()));
        QCOMPARE(unusable(Window()), QString());
        QVERIFY(QFileInfo(settingsFile()).isDir());
    }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
