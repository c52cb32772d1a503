#include "app/FormScaling.h"
#include "app/graph/Graph.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "SettingsShown.h"
#include "TestFiles.h"
#include "VisaDouble.h"

#include <QtTest>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

#include <algorithm>

namespace {

/// While it lives, it notes every modal dialog that opens and accepts it, as the operator would.
class DialogWatcher
{
public:
    DialogWatcher()
    {
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                const auto *box = qobject_cast<QMessageBox *>(dialog);
                seen << dialog->windowTitle() + (box != nullptr ? ": " + box->text() : "");
                dialog->accept();
            }
        });
        timer.start(0);
    }

    QStringList seen;

private:
    QTimer timer;
};

/// The program's window with the bench as its VISA library, its settings in a folder of its own.
struct Session
{
    Session()
    {
        VisaDouble::libraryPath = BENCH_LIBRARY;
        window = std::make_unique<MainWindow>();
        window->show();
    }

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return window->findChild<Widget *>(name);
    }
    void click(const char *name) const
    {
        auto *button = find<QAbstractButton>(name);
        // A check box takes clicks on its indicator and text only.
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
    }
    bool isEnabled(const char *name) const { return find<QWidget>(name)->isEnabled(); }

    std::unique_ptr<MainWindow> window;
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

    static void showGraph(int type, int samples)
    {
        OsTyp = type;
        VaHdmi = type == 0;
        t = QVector<double>(3 * samples, 0.25); // as after three attempts
        d1_src = QVector<double>(samples, 1.0);
        d2_rf = QVector<double>(samples, 2.0);
        d3_snk = QVector<double>(samples, 3.0);
        t_src = 0.0123456789;
        t_rf = 0.000015;
        t_snk = 0.25;
        mS2Rf = 2500;
        mS2Hd = -95.12345;
        mS2Snk = -3000;
        Graph graph(nullptr);
        const auto *plot = graph.findChild<QwtPlot *>("plt");

        const QwtInterval time = plot->axisInterval(QwtPlot::xBottom);
        QCOMPARE(time.maxValue(), type == 0 ? 0.5 : 0.6);
        QCOMPARE(time.minValue(), -time.maxValue());
        QVERIFY(plot->axisAutoScale(QwtPlot::yLeft) && !plot->axisAutoScale(QwtPlot::xBottom));
        QCOMPARE(plot->axisTitle(QwtPlot::xBottom).text(), QString("Time / s"));
        QCOMPARE(plot->axisTitle(QwtPlot::yLeft).text(), QString("Voltage / V"));

        const auto curves = plot->itemList(QwtPlotItem::Rtti_PlotCurve);
        const auto markers = plot->itemList(QwtPlotItem::Rtti_PlotMarker);
        const QVector<QColor> colors = {Qt::blue, Qt::yellow, Qt::red};
        const QStringList labels = {"tsrc = 0.0123457 s", "trf = 1.5e-05 s", "tsnk = 0.25 s"};
        QCOMPARE(curves.size(), 3);
        QCOMPARE(markers.size(), 3);
        for (int i = 0; i < 3; ++i) {
            const auto *curve = static_cast<const QwtPlotCurve *>(curves[i]);
            QCOMPARE(curve->pen(), QPen(colors[i], 0));
            QCOMPARE(int(curve->dataSize()), samples);
            if (samples > 0) {
                QCOMPARE(curve->sample(samples - 1), QPointF(0.25, i + 1.0));
            }
            const auto *marker = static_cast<const QwtPlotMarker *>(markers[i]);
            QCOMPARE(marker->label().text(), labels[i]);
            QCOMPARE(marker->xValue(), QVector<double>({t_src, t_rf, t_snk})[i]);
            QCOMPARE(marker->lineStyle(), QwtPlotMarker::VLine);
            QCOMPARE(marker->labelAlignment(), Qt::AlignLeft | Qt::AlignTop);
            QCOMPARE(marker->labelOrientation(), Qt::Vertical);
            QCOMPARE(marker->linePen(),
                     QPen(Qt::black, 0, Qt::DashDotLine, Qt::SquareCap, Qt::BevelJoin));
        }

        QStringList delays;
        for (const char *name : {"Src2Rf", "Src2Hd", "Src2Snk"}) {
            delays << graph.findChild<QDoubleSpinBox *>(name)->text();
        }
        QCOMPARE(delays, QStringList({"2000.000", "-95.123", "-2000.000"}));
        QCOMPARE(graph.findChild<QWidget *>("Src2Hd")->isEnabled(), VaHdmi);
        QCOMPARE(graph.findChild<QWidget *>("Src2Rf")->isEnabled(), true);
    }

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
        QDir(home.path()).mkdir("Varnholt");
        OsTyp = 0;
        VaHdmi = false;
    }

    /// Two boxes, then a window that can be used; whatever is pressed, nothing happens.
    void withoutVisa()
    {
        DialogWatcher dialogs;
        VisaDouble::libraryPath.clear();
        MainWindow window;
        QCOMPARE(dialogs.seen, QStringList({"VISA Error: The VISA Library could not be loaded.",
                                            "VISA Error: VISA master handle not available."}));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.findChild<QCheckBox *>("VaHdmi")->click();
        for (const char *name : {"VaInit", "OsInit", "SaInit"}) {
            auto *button = window.findChild<QPushButton *>(name);
            QTest::mouseClick(button, Qt::LeftButton);
            QCOMPARE(button->text(), QString("Init"));
        }
        QVERIFY(!window.findChild<QPushButton *>("Start")->isEnabled());
        dialogs.seen.clear();
        QVERIFY(QMetaObject::invokeMethod(&window, "on_Start_clicked"));
        QCOMPARE(dialogs.seen, QStringList{"Dialog"});
    }

    void slotsInOrder()
    {
        const QMetaObject &meta = MainWindow::staticMetaObject;
        QStringList declared;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            const QString access = method.access() == QMetaMethod::Public ? "public" : "private";
            declared << access + ' ' + method.typeName() + ' ' + method.methodSignature() + ": " +
                            method.parameterNames().join(' ');
        }
        const QString fourTraces =
            "QVector<double>*,QVector<double>*,QVector<double>*,QVector<double>*";
        QCOMPARE(
            declared,
            QStringList(
                {"public int LoadCfgFile(QString): fnam", "public int SaveCfgFile(QString): fnam",
                 "public int SaveBinFile(QString,QVector<double>,ViInt32): fnam d cnt",
                 "public int LoadBinFile(QString,QVector<double>*,ViInt32*): fnam d cnt",
                 "private int Meas(" + fourTraces + "): d1 d2 d3 t",
                 "private void CalcDeltaT2(int," + fourTraces +
                     ",double*,double*): pts d1 d2 d3 t Src2Rf Src2Snk",
                 "private void on_VaHdmi_clicked(bool): checked", "private void UndimStart(): ",
                 "private void on_OsInit_clicked(): ", "private void on_SaInit_clicked(): ",
                 "private void on_VaInit_clicked(): ", "private void on_Start_clicked(): ",
                 "private void on_OsTyp_currentIndexChanged(int): index",
                 "private bool ReadArray(ViSession,QString,QVector<double>*): hdl cmd arr",
                 "private bool IntReadArray(ViSession,QVector<double>*): hdl arr"}));
    }

    /// The window has no buttons of its own, and every text its place.
    void window()
    {
        const Session session;
        QCOMPARE(session.window->windowTitle(), QString("Orvanta"));
        QCOMPARE(session.window->size(), QSize(327, 293));
        QCOMPARE(session.window->windowFlags(),
                 Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
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
        for (const QLabel *label : session.window->findChildren<QLabel *>()) {
            QVERIFY2(hasRoom(label, label->text(), 0), qPrintable(label->objectName()));
        }
        for (const QCheckBox *box : session.window->findChildren<QCheckBox *>()) {
            QVERIFY2(hasRoom(box, box->text(), 16), qPrintable(box->objectName()));
        }
        Graph graph(nullptr);
        graph.show();
        const auto *plot = graph.findChild<QwtPlot *>();
        QCOMPARE(plot->axisFont(QwtPlot::xBottom).pointSize(), 10); // Qwt's own
        QTest::mouseClick(session.find<QDialogButtonBox>("Cancel")->buttons().first(),
                          Qt::LeftButton);
        QVERIFY(!session.window->isVisible());
    }

    /// Real clicks; the instruments fail when told to.
    void readiness()
    {
        const Session session;
        VisaDouble visa;
        QStringList broken;
        visa.answer = [&](const QString &resource, const QByteArray &) {
            const bool fails = broken.contains(resource);
            return fails ? std::nullopt : std::make_optional<QByteArray>("1\n");
        };
        for (const char *panel : {"Os", "Sa", "Va"}) {
            session.find<QLineEdit>(qPrintable(QString(panel) + "Ip"))->setText(panel);
        }
        const auto press = [&](const char *button, const QStringList &brokenInstruments = {}) {
            broken = brokenInstruments;
            session.click(button);
            return session.isEnabled("Start");
        };

        QVERIFY(!press("OsInit"));
        QCOMPARE(session.find<QPushButton>("OsInit")->text(), QString("Ready"));
        QVERIFY(press("SaInit"));
        QVERIFY(!press("OsInit", {"Os"})); // a failed Init takes Start back
        QCOMPARE(session.find<QPushButton>("OsInit")->text(), QString("Init"));
        QVERIFY(press("OsInit"));

        QVERIFY(press("VaHdmi")); // Start keeps its state until the next Init
        QVERIFY(session.isEnabled("VaInit") && session.isEnabled("VaThresLbl"));
        QVERIFY(!press("SaInit"));
        QVERIFY(!press("VaInit", {"Va"}));
        QVERIFY(press("VaInit"));
        session.find<QPushButton>("VaInit")->setText("READY");
        QVERIFY(!press("OsInit"));
        QVERIFY(!press("VaHdmi"));
        QVERIFY(!session.isEnabled("VaIp"));
        QVERIFY(press("SaInit"));
    }

    /// What the operator typed and chose reaches the instruments.
    void startAsksTheWidgets()
    {
        const Session session;
        VisaDouble visa;
        DialogWatcher dialogs;
        session.find<QComboBox>("OsTyp")->setCurrentIndex(0);
        for (const auto &[name, typed] : {std::pair{"OsIp", "osc"},
                                          {"SaIp", "sa"},
                                          {"VaIp", "va"},
                                          {"OsTrgLvl", " 1e-5 "},
                                          {"SaFrq", "5,2"},
                                          {"VaThres", ""},
                                          {"MeasCnt", "2"}}) {
            auto *edit = session.find<QLineEdit>(name);
            edit->clear();
            edit->insert(typed);
        }
        for (const char *name :
             {"VaHdmi", "VaRst", "OsRst", "SaIfDem", "OsInit", "SaInit", "VaInit"}) {
            session.click(name);
        }
        const QStringList setUp = visa.takeTranscript();
        for (const char *command :
             {"osc < *RST;", "osc < TRIG1:LEV1 1e-05;", "osc < CHAN3 ON;", "sa < FREQ:CENT 0;",
              "sa < SWE:TIME 1;", "va < *RST;", "va < CONF:AVDA:TTV:APL:THR 0;"}) {
            QCOMPARE(setUp.filter(command).size(), 1);
        }
        session.click("Start");
        const QStringList series = visa.takeTranscript();
        QCOMPARE(series.filter("osc < CHAN3:DATA?").size(), 2);
        QCOMPARE(series.filter("va < READ:AVDA:TTV:STAT?").size(), 2);
        QCOMPARE(series.filter("osc < RUNC").size(), 1);
        QCOMPARE(dialogs.seen, QStringList{"Dialog"});
    }

    void delegation()
    {
        const Session session;
        DialogWatcher dialogs;
        const auto step = [](int index) {
            return QVector<double>(index, 0.0) + QVector<double>(101 - index, 0.2);
        };
        QVector<double> source = step(20);
        QVector<double> rf = step(40);
        QVector<double> sink = step(60);
        QVector<double> axis;
        QVector<double> delays(2);
        QVERIFY(QMetaObject::invokeMethod(
            session.window.get(), "CalcDeltaT2", Q_ARG(int, 101), Q_ARG(QVector<double> *, &source),
            Q_ARG(QVector<double> *, &rf), Q_ARG(QVector<double> *, &sink),
            Q_ARG(QVector<double> *, &axis), Q_ARG(double *, &delays[0]),
            Q_ARG(double *, &delays[1])));
        QCOMPARE(qRound(delays[0]), 240);
        QCOMPARE(qRound(delays[1]), 480);

        const QString file = home.filePath("trace.bin");
        QCOMPARE(session.window->SaveBinFile(file, source, 100), 0);
        QVector<double> loaded;
        ViInt32 count = 0;
        QCOMPARE(session.window->LoadBinFile(file, &loaded, &count), 0);
        QCOMPARE(loaded, source.mid(0, 100));
        QVERIFY(dialogs.seen.isEmpty());
        QCOMPARE(session.window->LoadBinFile(file + ".none", &loaded, &count), -1);
        QCOMPARE(dialogs.seen, QStringList{"File Error: File not found."});
    }

    /// The video analyzer's session is closed when its box is checked, the others always.
    void closing()
    {
        for (const bool hdmi : {false, true}) {
            auto session = std::make_unique<Session>();
            VisaDouble visa;
            session->click("VaHdmi");
            for (const QString &panel : QStringList{"Os", "Sa", "Va"}) {
                session->find<QLineEdit>(qPrintable(panel + "Ip"))->setText(panel);
                session->click(qPrintable(panel + "Init"));
            }
            session->find<QCheckBox>("VaHdmi")->setChecked(hdmi);
            visa.takeTranscript();
            session.reset();
            QCOMPARE(
                visa.takeTranscript(),
                QStringList(QStringList{"Os close", "Sa close", "Va close"}.mid(0, hdmi ? 3 : 2)));
            QVERIFY(QFile::remove(settingsFile()));
        }
    }

    void settingsDirectories()
    {
        const QString below = "/Users/a/Library/Application Support/";
        QCOMPARE(settingsDirectoryIn(below + "Orvanta"), below + "Varnholt/Orvanta");
        QCOMPARE(settingsDirectoryIn("C:\\Users\\a\\Orvanta"),
                 QString("C:/Users/a/Varnholt/Orvanta"));
        QCOMPARE(settingsDirectoryIn("Orvanta"), QString("Varnholt/Orvanta"));
        QCOMPARE(settingsDirectory(), home.path() + "/Varnholt/WindowTest");

        { // one level only
            QDir(home.path() + "/Varnholt").removeRecursively();
            const Session session;
            QVERIFY(!QFileInfo::exists(home.path() + "/Varnholt"));
        }
        QDir(home.path()).mkdir("Varnholt");
        const Session session;
        QVERIFY(QFileInfo::exists(settingsDirectory()));
    }

    void loadedSettings()
    {
        // Addresses, numbers, the check boxes, the oscilloscope's type.
        const QString usual = "TCPIP0::oscilloscope::INSTR|TCPIP0::spectrum-analyzer::INSTR|"
                              "TCPIP0::video-analyzer::INSTR|0.027|5.192e+09|35|0|0|0|0|0|0|1";
        const QByteArray oscilloscope = "[Oscilloscope]\n";
        for (const auto &[stored, expected] :
             {std::pair{QByteArray(), usual},
              {oscilloscope + "Type=2", usual},
              {oscilloscope + "Type=-1", usual},
              {oscilloscope + "Type=LPA4004", usual},
              {oscilloscope + "Type=99999999999", usual},
              {oscilloscope + R"x(Reset="@Variant(\0\0\0\x9\x7f\xff\xff\xff)")x", usual},
              {oscilloscope + R"x(Reset=\x40Variant(\0\0\0\t\x7f\xff\xff\xff))x", usual},
              {oscilloscope + R"x(Reset=\100Variant(\0\0\0\t\x7f\xff\xff\xff))x", usual},
              {oscilloscope + R"x(Reset=\z@Variant(\0\0\0\t\x7f\xff\xff\xff))x", usual},
              {oscilloscope + "Trigger%20Level=high\nReset=0\n",
               QString(usual).replace("0.027", "0")},
              {QByteArray("\0\xFF[[[=\n]=\\x\n", 12), usual}}) {
            QVERIFY(QDir().mkpath(settingsDirectory()) && write(settingsFile(), stored));
            const Session session;
            QCOMPARE(shown(*session.window).join('|'), expected);
            QCOMPARE(unusable(*session.window), QString());
        }
    }

    /// Types and sources of what is stored; what was stored comes back.
    void savedSettings()
    {
        {
            const Session session;
            session.find<QLineEdit>("OsTrgLvl")->setText("no number");
            session.find<QLineEdit>("SaIp")->setText("TCPIP0::ö, \"=;%::INSTR");
            session.click("SaRst");
            session.find<QCheckBox>("VaHdmi")->setChecked(true); // no click: the global keeps false
            OsTyp = 0;                                           // nor does the box follow this
        }
        const QSettings stored(settingsFile(), QSettings::IniFormat);
        QStringList values;
        for (const QString &key : stored.allKeys()) {
            values << key + '=' + stored.value(key).toString();
        }
        QCOMPARE(values,
                 QStringList({"General/Save Data=0",
                              "Oscilloscope/IP Address=TCPIP0::oscilloscope::INSTR",
                              "Oscilloscope/Reset=0", "Oscilloscope/Trigger Level=0",
                              "Oscilloscope/Type=0", "Spectrum Analyzer/Center Frequency=5.192e+09",
                              "Spectrum Analyzer/IF Demod=0",
                              "Spectrum Analyzer/IP Address=TCPIP0::ö, \"=;%::INSTR",
                              "Spectrum Analyzer/Reset=2", "Video Analyzer/HDMI Delay=false",
                              "Video Analyzer/IP Address=TCPIP0::video-analyzer::INSTR",
                              "Video Analyzer/Reset=0", "Video Analyzer/Threshold=35"}));
        const Session session;
        QCOMPARE(session.find<QLineEdit>("SaIp")->text(), QString("TCPIP0::ö, \"=;%::INSTR"));
        QCOMPARE(session.find<QComboBox>("OsTyp")->currentIndex(), 0);
    }

    void graphOfKvx() { showGraph(0, 100); }

    void graphOfLpa4004WithoutTraces() { showGraph(1, 0); }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
