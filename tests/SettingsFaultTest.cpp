#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "instrument/VisaLibraryPath.h"
#include "SettingsShown.h"
#include "TestFiles.h"

#include <QtTest>

QString visaLibraryPath()
{
    return BENCH_LIBRARY;
}

namespace {

QString settingsFile()
{
    return settingsDirectory() + "/SettingsFaultTest.cfg";
}

const QByteArray storedAddress = "TCPIP0::10.0.0.7::INSTR";

const QByteArray everything =
    "[%General]\nSave%20Data=2\n[Oscilloscope]\nIP%20Address=" + storedAddress +
    "\nReset=true\nTrigger%20Level=1e-05\nType=0\n[Spectrum%20Analyzer]\nReset=2\n"
    "Center%20Frequency=2437000000\nIF%20Demod=1\nIP%20Address=" +
    storedAddress +
    "\n[Video%20Analyzer]\nReset=2\nThreshold=0.5\nHDMI%20Delay=true\nIP%20Address=" +
    storedAddress + '\n';

} // namespace

/// Settings files that are damaged, or no settings files at all.
class SettingsFaultTest : public QObject
{
    Q_OBJECT

    QTemporaryDir home;

private slots:
    void initTestCase()
    {
        QVERIFY(home.isValid());
        qputenv("XDG_DATA_HOME", QFile::encodeName(home.path()));
        QVERIFY(QDir(home.path()).mkpath("Varnholt/SettingsFaultTest"));
    }

    void truncated()
    {
        MainWindow window;
        const QStringList usual = shown(window);
        const QStringList stored = {
            storedAddress, storedAddress, storedAddress, "1e-05", "2.437e+09", "0.5", "1",
            "1",           "1",           "1",           "1",     "1",         "0"};
        for (int size = 0; size <= everything.size(); ++size) {
            window.findChild<QComboBox *>("OsTyp")->setCurrentIndex(1);
            QVERIFY(write(settingsFile(), everything.left(size)));
            QCOMPARE(window.LoadCfgFile(settingsFile()), 0);
            QCOMPARE(unusable(window), QString());
            const QStringList values = shown(window);
            int cut = 0;
            for (int i = 0; i < values.size(); ++i) {
                const bool whole = values[i] == usual[i] || values[i] == stored[i];
                const bool isAddress = i < 3;
                QVERIFY2(whole || !isAddress || stored[i].startsWith(values[i]),
                         qPrintable(values.join('|')));
                cut += whole ? 0 : 1;
            }
            QVERIFY2(cut <= 1, qPrintable(values.join('|'))); // the value that the end fell into
        }
        QCOMPARE(shown(window), stored);
    }

    void damaged_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const auto level = [](const QByteArray &value) {
            return "[Oscilloscope]\nTrigger%20Level=" + value + "\nType=" + value +
                   "\nIP%20Address=" + value + "\nReset=" + value +
                   "\n[Video%20Analyzer]\nHDMI%20Delay=" + value + '\n';
        };
        QByteArray withNul = everything;
        withNul[withNul.indexOf("10.0.0.7") + 3] = '\0';
        const QByteArray megabyte(1 << 20, '7');
        for (const auto &[name, bytes] :
             {std::pair{"nothing but NUL", QByteArray(4096, '\0')},
              {"NUL in a value", withNul},
              {"NUL by name", level(R"(a\0\x0z)")},
              {"line of a megabyte", megabyte + '\n' + everything},
              {"value of a megabyte", level(megabyte)},
              {"key of a megabyte", everything + megabyte + "=1\n[" + megabyte + "]\n"},
              {"list", level("1, 2, 3")},
              {"text", level(R"(five \xd800 %zz)")},
              {"bytes", level(R"(@ByteArray(\xff\0\x1))")},
              {"rectangle", level("@Rect(1 2 3 4)")},
              {"broken rectangle", level("@Rect(")},
              {"variant", level(R"(@Variant(\0\0\0\x7f\0\0\0\xeQVector<int>\0))")},
              {"long variant", level(R"(@Variant(\0\0\0\n\0\x7f\xff\xff\xfe\0\x41))")},
              {"huge numbers", level("1e999")},
              {"twice", everything + level("1")}}) {
            QTest::newRow(name) << bytes;
        }
    }

    /// What the window makes of such a file is saved, and comes back.
    void damaged()
    {
        QFETCH(const QByteArray, bytes);
        QVERIFY(write(settingsFile(), bytes));
        QStringList first;
        {
            MainWindow window;
            window.show();
            QCOMPARE(unusable(window), QString());
            first = shown(window);
        }
        QCOMPARE(shown(MainWindow()), first);
    }

    /// The name leads to, or is, something else, which stays as it was.
    void otherFiles()
    {
        const QString other = home.filePath("notes.txt");
        const QString folder = home.filePath("folder");
        const QByteArray notes = "[Notes]\n; mine\nfor all=1\nand ever\n";
        QVERIFY(QDir().mkdir(folder));
        const QString nothing = home.filePath("nothing");
        for (const QString &target : {other, folder, nothing, settingsFile()}) {
            QFile::remove(settingsFile());
            QVERIFY(write(other, notes));
            QVERIFY(QFile::link(target, settingsFile()));
            {
                const MainWindow window;
                QCOMPARE(unusable(window), QString());
                window.findChild<QLineEdit *>("OsIp")->setText(storedAddress);
            }
            QCOMPARE(contents(other), notes);
            QVERIFY(!QFileInfo::exists(nothing));
            QVERIFY(QFileInfo(folder).isDir() && QDir(folder).isEmpty());
            QVERIFY(!QFileInfo(settingsFile()).isSymLink());
            QVERIFY2(shown(MainWindow()).first() == storedAddress,
                     target.toLocal8Bit() + ": " + contents(settingsFile()));
        }

        QVERIFY(QFile::remove(settingsFile()));
        QVERIFY(write(settingsFile(), everything));
        QVERIFY(QFile::setPermissions(settingsFile(), QFileDevice::ReadOwner));
        QCOMPARE(shown(MainWindow()).first(), QString(storedAddress));
        QVERIFY(contents(settingsFile()).contains(storedAddress));

        QVERIFY(QFile::remove(settingsFile()));
        QVERIFY(QDir().mkdir(settingsFile()));
        QVERIFY(write(settingsFile() + "/inside", notes));
        QCOMPARE(unusable(MainWindow()), QString());
        QCOMPARE(contents(settingsFile() + "/inside"), notes);
        QVERIFY(QFile::remove(settingsFile() + "/inside") && QDir().rmdir(settingsFile()));
    }
};

QTEST_MAIN(SettingsFaultTest)
#include "SettingsFaultTest.moc"
