#include "app/FormScaling.h"
#include "app/Globals.h"
#include "app/graph/Graph.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "instrument/InstrumentIo.h"
#include "Line.h"

#include <QtTest>
#include <QtWidgets>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

#include <algorithm>
#include <sys/stat.h>

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

/// All that the window keeps in its settings, as it shows it: texts, check boxes, type.
QString shown(const Window &window)
{
    QStringList values;
    for (const char *name : {"OsIp", "SaIp", "VaIp", "OsTrgLvl", "SaFrq", "VaThres"}) {
        values << window.find<QLineEdit>(name)->text();
    }
    for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaRst", "VaHdmi", "SaveData"}) {
        values << QString::number(window.find<QCheckBox>(name)->isChecked());
    }
    values << QString::number(window.find<QComboBox>("OsTyp")->currentIndex());
    return values.join('|');
}

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
        fitTextToForms();
    }

    void init()
    {
        QDir(home.path() + "/Varnholt").removeRecursively();
        QDir(home.path()).mkpath("Varnholt/WindowTest");
        setVisaLibraryPaths({BENCH_LIBRARY});
        OsTyp = 0;
        VaHdmi = false;
    }

    /// Two boxes, then a window that can be used; whatever is pressed, nothing happens.
    void withoutVisa()
    {
        DialogWatcher dialogs;
        setVisaLibraryPaths({});
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
        QApplication::setFont(QFont("DejaVu Sans", 11)); // late, and larger than there is room for
        QCOMPARE(window.size(), QSize(327, 293));
        QCOMPARE(window.minimumSize(), window.size());
        QCOMPARE(window.windowFlags(), Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
        QStringList order; // of the Tab key
        const QWidget *first = window.find<QWidget>("OsIp");
        const QWidget *widget = first;
        do {
            if ((widget->focusPolicy() & Qt::TabFocus) != 0) {
                order << widget->objectName();
            }
            widget = widget->nextInFocusChain();
        } while (widget != first);
        QCOMPARE(order.join(' ').trimmed(), // the last is the button Cancel, which has no name
                 QString("OsIp OsTrgLvl OsTyp OsRst OsInit SaIp SaFrq SaIfDem SaRst SaInit VaHdmi "
                         "VaIp VaThres VaRst VaInit MeasCnt Start SaveData"));
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
        QVERIFY(!press("OsInit", "scope")); // a failed Init takes Start back
        QCOMPARE(window.find<QPushButton>("OsInit")->text(), QString("Init"));
        QVERIFY(press("OsInit"));

        QVERIFY(press("VaHdmi")); // Start keeps its state until the next Init
        QVERIFY(window.find<QWidget>("VaInit")->isEnabled());
        QVERIFY(!press("SaInit"));
        QVERIFY(!press("VaInit", "video "));
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
            const QString host = type == 0 ? "scope-kvx" : "scope";
            window->find<QComboBox>("OsTyp")->setCurrentIndex(type);
            window->type("OsIp", "TCPIP::" + host + "::INSTR");
            window->type("OsTrgLvl", " 3e-2 ");
            window->type("SaFrq", "5.2e9");
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
                 {"< *RST;", "LEV1 0.03;", "< FREQ:CENT 5.2e+09;", "< CONF:AVDA:TTV:APL:THR 0;",
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
            QCOMPARE(line.transcript.join(' '),
                     host + " close analyzer close" + (type == 1 ? " video close" : ""));
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

        Line line;
        line.answer = [](auto &, auto &) { return QByteArray("#14\0\0\x80?\n", 8); };
        const ViSession session = 7;
        const QString command = "CHAN1:DATA?\n";
        QVector<double> queried;
        QVector<double> read;
        QVERIFY(QMetaObject::invokeMethod(&window, "ReadArray", Q_ARG(ViSession, session),
                                          Q_ARG(QString, command),
                                          Q_ARG(QVector<double> *, &queried)));
        iaPrintf(session, command);
        QVERIFY(QMetaObject::invokeMethod(&window, "IntReadArray", Q_ARG(ViSession, session),
                                          Q_ARG(QVector<double> *, &read)));
        QVERIFY(queried == QVector<double>{1.0} && read == queried);

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
        for (const auto &[type, samples, hdmi, shownHdmi] :
             {std::tuple{0, 100, -95.12345, "-95.123"}, {1, 0, qQNaN(), ""}}) {
            OsTyp = type;
            VaHdmi = type == 0;
            t = QVector<double>(3 * samples, 0.25); // as after three attempts
            d1_src = QVector<double>(samples, 1.0);
            d2_rf = QVector<double>(samples, 2.0);
            d3_snk = QVector<double>(samples, 3.0);
            std::tie(t_src, t_rf, t_snk) = std::tuple(0.0123456789, 0.000015, 0.25);
            std::tie(mS2Rf, mS2Hd, mS2Snk) = std::tuple(2500, hdmi, -3000);
            Graph graph(nullptr);
            graph.show();
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
                auto *field = graph.findChild<QDoubleSpinBox *>(name);
                field->setFocus();
                QTest::keyClick(field, Qt::Key_Up);
                field->clearFocus(); // completes what it holds
                QVERIFY(!field->isReadOnly());
                delays << field->text();
            }
            QCOMPARE(delays, QStringList({"2000.000", shownHdmi, "-2000.000"}));
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

    void settings_data()
    {
        QTest::addColumn<QString>("address");
        for (const char *address : {"TCPIP0::ö, \"=;%::INSTR", "x=@y,@z", "@Invalid()", "@", "",
                                    " a, b ", "\\x41\\", "\U0001F50C"}) {
            QTest::newRow(address) << QString(address);
        }
    }

    /// What is stored and shown, with any text.
    void settings()
    {
        QFETCH(const QString, address);
        const QString usual = "TCPIP0::scope::INSTR|TCPIP0::analyzer::INSTR|TCPIP0::video::INSTR|"
                              "0.027|5.192e+09|35|0|0|0|0|0|0|1";
        QCOMPARE(shown(Window()), usual);
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
        const Window window;
        QCOMPARE(shown(window),
                 address + '|' + address + '|' + address + "|1e-05|0|0.5|1|1|1|1|1|1|0");
        QVERIFY(OsTyp == 0 && VaHdmi && window.find<QWidget>("VaThresLbl")->isEnabled());
    }

    /// A type that there is not, a link, and what is no file: what is wrong changes nothing, a link
    /// leads on, and a FIFO, at which a program would wait for ever, is left alone.
    void otherFiles()
    {
        const QString target = home.filePath("target.cfg");
        QVERIFY(write(target, "[Oscilloscope]\nType=2") && QFile::link(target, settingsFile()));
        {
            const Window window;
            QCOMPARE(window.find<QComboBox>("OsTyp")->currentIndex(), 1);
            window.type("OsIp", "new");
        }
        QVERIFY(QFileInfo(settingsFile()).isSymLink() && contents(target).contains("=new\n"));

        QVERIFY(QFile::remove(settingsFile()));
        QCOMPARE(mkfifo(settingsFile().toLocal8Bit(), 0600), 0);
        QVERIFY(shown(Window()).startsWith("TCPIP0::scope::INSTR|"));
        QVERIFY(!QFileInfo(settingsFile()).isFile());
    }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
