#include "app/FormScaling.h"
#include "app/Globals.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "benchmarks/CannedVisa.h"
#include "CallRecorder.h"
#include "instrument/InstrumentIo.h"
#include "TestFiles.h"

#include <QtTest>
#include <QtWidgets>

#include <sys/stat.h>

namespace {

/// Notes the modal dialogs that open, and accepts each as the operator would.
struct DialogWatcher : QTimer
{
    DialogWatcher()
    {
        callOnTimeout([this] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
                seen << dialog->windowTitle() + ": " + dialog->property("text").toString();
                dialog->accept();
            }
        });
        start(0);
    }

    QStringList seen;
};

/// The window on the bench.
struct Window : MainWindow
{
    Window() { show(); }

    template <typename Widget>
    Widget *find(const char *name) const
    {
        return findChild<Widget *>(name);
    }
    void type(const char *name, const QString &text) const { find<QLineEdit>(name)->setText(text); }
    /// Click, and return whether Start is enabled then.
    bool click(const char *name) const
    {
        auto *button = find<QAbstractButton>(name);
        // A check box takes clicks on its indicator and text only.
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
        return find<QWidget>("Start")->isEnabled();
    }
    /// Returns the settings that the window shows: type, texts, and the names of checked boxes.
    [[nodiscard]] QString shown() const
    {
        QStringList values = {find<QComboBox>("OsTyp")->currentText()};
        for (const char *name : {"OsIp", "SaIp", "VaIp", "OsTrgLvl", "SaFrq", "VaThres"}) {
            values << find<QLineEdit>(name)->text();
        }
        for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaRst", "VaHdmi", "SaveData"}) {
            values << (find<QCheckBox>(name)->isChecked() ? QStringList(name) : QStringList());
        }
        return values.join('|');
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
        fitTextToForms();
    }

    void init()
    {
        QDir(home.path() + "/Varnholt").removeRecursively();
        QDir(home.path()).mkpath("Varnholt/WindowTest");
        setVisaLibraryPaths({BENCH_LIBRARY});
    }

    /// Without VISA two boxes open, and no Init succeeds. A settings directory is made only if the
    /// one above it exists.
    void withoutVisa()
    {
        DialogWatcher dialogs;
        setVisaLibraryPaths({});
        QDir(home.path() + "/Varnholt").removeRecursively();
        const Window window;
        QCOMPARE(dialogs.seen, QStringList({"VISA Error: The VISA Library could not be loaded.",
                                            "VISA Error: VISA master handle not available."}));
        QVERIFY(!window.click("OsInit"));
        QCOMPARE(window.find<QPushButton>("OsInit")->text(), QString("Init"));
        QVERIFY(!QFileInfo::exists(settingsDirectory()));
        const QString below = "/Users/a/Library/Application Support/";
        QCOMPARE(settingsDirectoryIn(below + "Orvanta"), below + "Varnholt/Orvanta");
        QCOMPARE(settingsDirectoryIn("C:\\Users\\a\\Orvanta"), "C:/Users/a/Varnholt/Orvanta");
    }

    /// The window has a title bar without buttons, and room for every text.
    void appearance()
    {
        const Window window;
        QApplication::setFont(QFont("DejaVu Sans", 11)); // late, and larger than there is room for
        QCOMPARE(window.minimumSize(), QSize(327, 293));
        QCOMPARE(window.windowFlags(), Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint);
        QStringList order; // of the Tab key; the button Cancel, which has no name, comes last
        const auto *widget = window.find<QWidget>("OsIp");
        do {
            if ((widget->focusPolicy() & Qt::TabFocus) != 0) {
                order << widget->objectName();
            }
            widget = widget->nextInFocusChain();
        } while (widget->objectName() != "OsIp");
        QCOMPARE(order.join(' '),
                 QString("OsIp OsTrgLvl OsTyp OsRst OsInit SaIp SaFrq SaIfDem SaRst SaInit VaHdmi "
                         "VaIp VaThres VaRst VaInit MeasCnt Start SaveData "));
        for (const auto *label : window.findChildren<QWidget *>()) {
            const QStringList lines = label->property("text").toString().split('\n');
            const int indicator = label->inherits("QCheckBox") ? 16 : 0;
            for (const QString &line : label->inherits("QLineEdit") ? QStringList() : lines) {
                const QFontMetrics metrics = label->fontMetrics();
                const QSize ink = metrics.tightBoundingRect(line).size();
                // The ink's width is rounded up, the advance has room after the last letter.
                const int width = qMin(ink.width(), metrics.horizontalAdvance(line)) + indicator;
                QVERIFY2(width <= label->width(), qPrintable(line));
                QVERIFY2(ink.height() * lines.size() <= label->height(), qPrintable(line));
            }
        }
    }

    /// Clicks that enable and disable Start. At the end the video analyzer's session is closed if
    /// its box is checked, whoever checked it.
    void readiness()
    {
        auto window = std::make_unique<Window>();
        CallRecorder recorder;
        QVERIFY(!window->click("OsInit"));
        QVERIFY(window->click("SaInit"));
        QVERIFY(window->click("VaHdmi")); // Start keeps its state until the next Init
        QVERIFY(!window->click("SaInit"));
        QVERIFY(window->click("VaInit"));
        window->find<QPushButton>("VaInit")->setText("READY"); // only "Ready" counts
        QVERIFY(!window->click("OsInit"));
        QVERIFY(!window->click("VaHdmi"));
        QVERIFY(!window->find<QWidget>("VaIp")->isEnabled());
        QVERIFY(window->click("SaInit"));
        recorder.faultOf = [](auto &entry) {
            return entry.contains("<") ? VI_ERROR_TMO : VI_SUCCESS;
        };
        QVERIFY(!window->click("OsInit")); // a failed Init takes Start back
        QCOMPARE(window->find<QPushButton>("OsInit")->text(), QString("Init"));
        window->find<QCheckBox>("VaHdmi")->setChecked(true);
        recorder.takeCalls();
        window.reset();
        QCOMPARE(recorder.takeCalls(),
                 QStringList({"scope close", "analyzer close", "video close"}));
    }

    /// The operator's entries reach the instruments, and the results of a series reach the globals.
    /// A series of 0 measurements leaves traces and instants as they are.
    void series()
    {
        auto window = std::make_unique<Window>();
        CallRecorder recorder;
        DialogWatcher dialogs;
        t.clear();
        window->find<QComboBox>("OsTyp")->setCurrentIndex(0);
        window->type("OsIp", "TCPIP::scope-kvx::INSTR");
        window->type("OsTrgLvl", " 3e-2 ");
        window->type("SaFrq", "5.2e9");
        window->type("VaThres", "");
        window->type("MeasCnt", "1");
        for (const char *name :
             {"VaHdmi", "VaRst", "OsRst", "SaveData", "SaIfDem", "OsInit", "SaInit", "VaInit"}) {
            window->click(name);
        }
        const QString sent = recorder.takeCalls().join('|');
        for (const char *command :
             {"scope-kvx < *RST;", "LEV1 0.03;", "CHAN3 ON;", "FREQ:CENT 5.2e+09;", "SWE:TIME 1;",
              "video < *RST;", "THR 0;"}) {
            QVERIFY2(sent.contains(command), command);
        }
        window->click("Start");
        QVERIFY(qAbs(mS2Hd - 95) < 5);
        QVERIFY(qAbs(mS2Snk - 120) < 20);
        QCOMPARE((t_rf - t_src) * 1000, mS2Rf);
        QCOMPARE((t_snk - t_src) * 1000, mS2Snk);
        const auto published = [] {
            return d1_src + d2_rf + d3_snk + t + QVector<double>{double(NSmp), t_src, t_rf, t_snk};
        };
        const auto before = published();
        window->type("MeasCnt", "0");
        window->click("Start");
        QCOMPARE(published(), before);
        QVERIFY(qIsNaN(mS2Rf));
        recorder.takeCalls();
        window->find<QCheckBox>("VaHdmi")->setChecked(false);
        window.reset();
        QCOMPARE(recorder.takeCalls(), QStringList({"scope-kvx close", "analyzer close"}));
    }

    void slotsByName() // what the window offers by name
    {
        Window window;
        DialogWatcher dialogs;
        const auto step = [](int index) {
            return QVector<double>(index, 0.0) + QVector<double>(101 - index, 0.2);
        };
        auto [source, rf, sink] = std::tuple(step(20), step(40), step(60));
        QVector<double> none;
        auto [toRf, toSink] = std::pair(0.0, 0.0);
        QMetaObject::invokeMethod(&window, "CalcDeltaT2", Q_ARG(int, 101),
                                  Q_ARG(QVector<double> *, &source), Q_ARG(QVector<double> *, &rf),
                                  Q_ARG(QVector<double> *, &sink), Q_ARG(QVector<double> *, &none),
                                  Q_ARG(double *, &toRf), Q_ARG(double *, &toSink));
        QCOMPARE(qRound(toRf), 240);
        QCOMPARE(qRound(toSink), 480);
        const CannedVisa visa([](auto &) { return QByteArray("#14\0\0\x80?\n", 8); });
        const QString query = "CHAN1:DATA?\n";
        QMetaObject::invokeMethod(&window, "ReadArray", Q_ARG(ViSession, 7), Q_ARG(QString, query),
                                  Q_ARG(QVector<double> *, &rf));
        iaPrintf(7, query);
        QMetaObject::invokeMethod(&window, "IntReadArray", Q_ARG(ViSession, 7),
                                  Q_ARG(QVector<double> *, &sink));
        QCOMPARE(rf + sink, QVector<double>({1.0, 1.0}));
        const QString file = home.filePath("trace.bin");
        ViInt32 count = 0;
        QCOMPARE(window.SaveBinFile(file, source, 3), 0);
        QCOMPARE(window.LoadBinFile(file, &rf, &count), 0);
        QCOMPARE(count, 3);
        QCOMPARE(rf, QVector<double>({1.0, 0.0, 0.0, 0.0}));
        QCOMPARE(window.LoadBinFile(file + ".none", &rf, &count), -1);
        QCOMPARE(dialogs.seen, QStringList{"File Error: File not found."});
    }

    /// Settings survive a restart, with unusual characters and through a symbolic link. A stored
    /// type that does not exist is ignored.
    void settings()
    {
        const QString address = "@\u00F6, \"=;%\\x41\\ \U0001F50C ";
        const QString file = home.filePath("target.cfg");
        QVERIFY(write(file, "[Oscilloscope]\nType=2"));
        QVERIFY(QFile::link(file, settingsFile()));
        {
            const Window window;
            QCOMPARE(window.shown(), QString("LPA4004|TCPIP0::scope::INSTR|TCPIP0::analyzer::INSTR|"
                                             "TCPIP0::video::INSTR|0.027|5.192e+09|35"));
            for (const char *name : {"OsIp", "SaIp", "VaIp"}) {
                window.type(name, name + address);
            }
            window.type("OsTrgLvl", "1e-5");
            window.type("SaFrq", "no number");
            window.type("VaThres", "0.5");
            for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaHdmi", "VaRst", "SaveData"}) {
                window.click(name);
            }
            window.find<QComboBox>("OsTyp")->setCurrentIndex(0);
        }
        QVERIFY(QFileInfo(settingsFile()).isSymLink());
        QCOMPARE(contents(file), contents(QFINDTESTDATA("Settings.cfg")));
        const Window window;
        QCOMPARE(window.shown(),
                 QString("KVx|OsIp%1|SaIp%1|VaIp%1|1e-05|0|0.5|OsRst|SaRst|SaIfDem|VaRst|VaHdmi|"
                         "SaveData")
                     .arg(address));
        QCOMPARE(OsTyp, 0);
        QVERIFY(VaHdmi);
        QVERIFY(window.find<QWidget>("VaThresLbl")->isEnabled());
    }

    /// A FIFO in the place of the settings file is left alone: opening it would never end.
    void fifo()
    {
        QCOMPARE(mkfifo(settingsFile().toLocal8Bit(), 0600), 0);
        QVERIFY(Window().shown().startsWith("LPA4004|TCPIP0::scope::INSTR|"));
        QVERIFY(!QFileInfo(settingsFile()).isFile());
    }
};

QTEST_MAIN(WindowTest)
#include "WindowTest.moc"
