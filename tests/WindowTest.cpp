#include "app/graph/Graph.h"
#include "app/MainWindow.h"
#include "app/PointIsPixelStyle.h"
#include "app/SettingsDirectory.h"
#include "instrument/InstrumentIo.h"
#include "measurement/Globals.h"
#include "VisaDouble.h"

#include <QtTest>
#include <QtWidgets>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_text.h>

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
    QString text(const char *name) const { return find<QLineEdit>(name)->text(); }
    bool isEnabled(const char *name) const { return find<QWidget>(name)->isEnabled(); }

    std::unique_ptr<MainWindow> window;
};

QString settingsFile()
{
    return settingsDirectory() + "/WindowTest.cfg";
}

void writeSettings(const QByteArray &contents)
{
    QDir().mkpath(settingsDirectory());
    QFile file(settingsFile());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(contents);
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
        QApplication::setFont(QFont("DejaVu Sans", 9)); // as on a desktop
        QApplication::setStyle(new PointIsPixelStyle);
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
            QStringList parameters;
            for (int p = 0; p < method.parameterCount(); ++p) {
                parameters << method.parameterTypes()[p] + ' ' + method.parameterNames()[p];
            }
            declared << QString("%1 %2 %3(%4)")
                            .arg(method.access() == QMetaMethod::Public ? "public" : "private",
                                 method.typeName(), method.name(), parameters.join(", "));
        }
        QCOMPARE(
            declared,
            QStringList(
                {"public int LoadCfgFile(QString fnam)", "public int SaveCfgFile(QString fnam)",
                 "public int SaveBinFile(QString fnam, QVector<double> d, ViInt32 cnt)",
                 "public int LoadBinFile(QString fnam, QVector<double>* d, ViInt32* cnt)",
                 "private int Meas(QVector<double>* d1, QVector<double>* d2, "
                 "QVector<double>* d3, QVector<double>* t)",
                 "private void CalcDeltaT2(int pts, QVector<double>* d1, "
                 "QVector<double>* d2, QVector<double>* d3, QVector<double>* t, "
                 "double* Src2Rf, double* Src2Snk)",
                 "private void on_VaHdmi_clicked(bool checked)", "private void UndimStart()",
                 "private void on_OsInit_clicked()", "private void on_SaInit_clicked()",
                 "private void on_VaInit_clicked()", "private void on_Start_clicked()",
                 "private void on_OsTyp_currentIndexChanged(int index)",
                 "private bool ReadArray(ViSession hdl, QString cmd, QVector<double>* arr)",
                 "private bool IntReadArray(ViSession hdl, QVector<double>* arr)"}));
    }

    /// The window has no buttons of its own, and every text its place.
    void window()
    {
        const Session session;
        QCOMPARE(session.window->windowTitle(), QString("Orvanta"));
        QCOMPARE(session.window->size(), QSize(327, 293));
        QCOMPARE(session.window->windowFlags(),
                 Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
        for (const QLabel *label : session.window->findChildren<QLabel *>()) {
            const QSize text = label->fontMetrics().boundingRect(label->text()).size();
            QVERIFY2(text.width() <= label->width(), qPrintable(label->objectName()));
            QVERIFY2(text.height() <= label->height(), qPrintable(label->objectName()));
        }
        for (const QAbstractButton *box : session.window->findChildren<QCheckBox *>()) {
            const QSize text = box->fontMetrics().size(0, box->text());
            QVERIFY2(text.width() + 16 <= box->width(), qPrintable(box->objectName()));
            QVERIFY2(text.height() <= box->height(), qPrintable(box->objectName()));
        }
        QVERIFY(!session.isEnabled("Start") && !session.isEnabled("VaThresLbl"));
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
        const QString file = home.filePath("trace.bin");
        QVector<double> source(101, 0.0);
        std::fill(source.begin() + 20, source.end(), 0.2);
        QVector<double> sink(101, 0.0);
        sink[60] = 0.1;
        QVector<double> axis;
        double sourceToRf = 0;
        double sourceToSink = 0;
        QVERIFY(QMetaObject::invokeMethod(
            session.window.get(), "CalcDeltaT2", Q_ARG(int, 101), Q_ARG(QVector<double> *, &source),
            Q_ARG(QVector<double> *, &source), Q_ARG(QVector<double> *, &sink),
            Q_ARG(QVector<double> *, &axis), Q_ARG(double *, &sourceToRf),
            Q_ARG(double *, &sourceToSink)));
        QCOMPARE(OsTyp, 1);
        QCOMPARE(QVector<double>({sourceToRf, t_src, t_rf}), QVector<double>({0, t_rf, t_src}));
        QCOMPARE(sourceToSink, 480.0);

        QCOMPARE(session.window->SaveBinFile(file, source, 100), 0);
        QVector<double> loaded;
        ViInt32 count = 0;
        QCOMPARE(session.window->LoadBinFile(file, &loaded, &count), 0);
        QCOMPARE(loaded, source.mid(0, 100));
        QVERIFY(dialogs.seen.isEmpty());
        QCOMPARE(session.window->LoadBinFile(file + ".none", &loaded, &count), -1);
        QCOMPARE(dialogs.seen, QStringList{"File Error: File not found."});
    }

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
            if (!hdmi) {
                session->click("VaHdmi");
            }
            visa.takeTranscript();
            session.reset();
            QCOMPARE(visa.takeTranscript(), hdmi ? QStringList({"Os close", "Sa close", "Va close"})
                                                 : QStringList({"Os close", "Sa close"}));
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

    void loadedSettings_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("texts");    // OsTrgLvl, SaFrq, VaThres, OsIp
        QTest::addColumn<QVector<bool>>("checks"); // OsRst, SaRst, SaIfDem, VaRst, VaHdmi, SaveData
        QTest::addColumn<int>("type");

        const QStringList usual = {"0.027", "5.192e+09", "35", "TCPIP0::oscilloscope::INSTR"};
        const QVector<bool> none(6, false);
        QTest::newRow("no file") << QByteArray() << usual << none << 1;
        QTest::newRow("everything")
            << QByteArray(
                   "[%General]\nSave%20Data=2\n[Oscilloscope]\nIP%20Address=TCPIP0::o::INSTR\n"
                   "Reset=true\nTrigger%20Level=1e-05\nType=0\n[Spectrum%20Analyzer]\n"
                   "Reset=2\nCenter%20Frequency=2437000000\nIF%20Demod=1\n[Video%20Analyzer]\n"
                   "Reset=2\nThreshold=0.5\nHDMI%20Delay=true\n")
            << QStringList{"1e-05", "2.437e+09", "0.5", "TCPIP0::o::INSTR"}
            << QVector<bool>(6, true) << 0;
        for (const char *type : {"2", "-1", "LPA4004", "99999999999"}) {
            QTest::addRow("type %s", type)
                << QByteArray("[Oscilloscope]\nType=") + type << usual << none << 1;
        }
        QTest::newRow("no numbers") << QByteArray("[Oscilloscope]\nTrigger%20Level=high\nReset=0\n")
                                    << QStringList{"0", usual[1], usual[2], usual[3]} << none << 1;
        QTest::newRow("rubbish") << QByteArray("\0\xFF[[[=\n]=\\x\n", 12) << usual << none << 1;
    }

    void loadedSettings()
    {
        QFETCH(const QByteArray, file);
        QFETCH(const QStringList, texts);
        QFETCH(const QVector<bool>, checks);
        QFETCH(const int, type);

        if (!file.isEmpty()) {
            writeSettings(file);
        }
        const Session session;
        QCOMPARE(QStringList({session.text("OsTrgLvl"), session.text("SaFrq"),
                              session.text("VaThres"), session.text("OsIp")}),
                 texts);
        QVector<bool> checked;
        for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaRst", "VaHdmi", "SaveData"}) {
            checked << session.find<QCheckBox>(name)->isChecked();
        }
        QCOMPARE(checked, checks);
        QCOMPARE(session.find<QComboBox>("OsTyp")->currentIndex(), type);
        QCOMPARE(OsTyp, type);
        QCOMPARE(VaHdmi, checks[4]);
        for (const char *name : {"VaInit", "VaIp", "VaRst", "VaThres", "VaThresLbl"}) {
            QCOMPARE(session.isEnabled(name), VaHdmi);
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
        QCOMPARE(session.text("SaIp"), QString("TCPIP0::ö, \"=;%::INSTR"));
        QCOMPARE(session.find<QComboBox>("OsTyp")->currentIndex(), 0);
    }

    void graph_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("samples");
        QTest::newRow("KVx") << 0 << 100;
        QTest::newRow("LPA4004") << 1 << 100;
        QTest::newRow("no traces") << 1 << 0;
    }

    void graph()
    {
        QFETCH(const int, type);
        QFETCH(const int, samples);

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
            QCOMPARE(marker->linePen(),
                     QPen(Qt::black, 0, Qt::DashDotLine, Qt::SquareCap, Qt::BevelJoin));
        }

        const auto shown = [&](const char *name) {
            return graph.findChild<QDoubleSpinBox *>(name)->text();
        };
        QCOMPARE(QStringList({shown("Src2Rf"), shown("Src2Hd"), shown("Src2Snk")}),
                 QStringList({"2000.000", "-95.123", "-2000.000"}));
        QCOMPARE(graph.findChild<QWidget *>("Src2Hd")->isEnabled(), VaHdmi);
        QCOMPARE(graph.findChild<QWidget *>("Src2Rf")->isEnabled(), true);
    }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
