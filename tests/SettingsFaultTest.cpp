#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"

#include <QtTest>
#include <QtWidgets>

#include <random>

QString visaLibraryPath()
{
    return BENCH_LIBRARY;
}

namespace {

QString settingsFile()
{
    return settingsDirectory() + "/SettingsFaultTest.cfg";
}

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("no such file");
}

void write(const QString &fileName, const QByteArray &bytes)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

const QByteArray storedAddress = "TCPIP0::10.0.0.7::INSTR";

const QByteArray everything =
    "[%General]\nSave%20Data=2\n[Oscilloscope]\nIP%20Address=" + storedAddress +
    "\nReset=2\nTrigger%20Level=1e-05\nType=0\n[Spectrum%20Analyzer]\nReset=2\n"
    "Center%20Frequency=2437000000\nIF%20Demod=2\nIP%20Address=" +
    storedAddress +
    "\n[Video%20Analyzer]\nReset=2\nThreshold=0.5\nHDMI%20Delay=true\nIP%20Address=" +
    storedAddress + '\n';

/// All that the window keeps in its settings, as it shows it.
QStringList shown(const MainWindow &window)
{
    QStringList values;
    for (const char *name : {"OsIp", "SaIp", "VaIp", "OsTrgLvl", "SaFrq", "VaThres"}) {
        values << window.findChild<QLineEdit *>(name)->text();
    }
    for (const char *name : {"OsRst", "SaRst", "SaIfDem", "VaRst", "VaHdmi", "SaveData"}) {
        values << QString::number(window.findChild<QCheckBox *>(name)->isChecked());
    }
    return values << window.findChild<QComboBox *>("OsTyp")->currentText();
}

/// What of the window cannot be used; nothing is the rule.
QString unusable(const MainWindow &window)
{
    QStringList wrong;
    for (const char *name : {"OsTrgLvl", "SaFrq", "VaThres"}) {
        bool isNumber = false;
        window.findChild<QLineEdit *>(name)->text().toDouble(&isNumber);
        wrong += isNumber ? QString() : name;
    }
    wrong += window.findChild<QComboBox *>("OsTyp")->currentIndex() == OsTyp ? "" : "OsTyp";
    wrong += window.findChild<QCheckBox *>("VaHdmi")->isChecked() == VaHdmi ? "" : "VaHdmi";
    for (const char *name : {"VaInit", "VaIp", "VaRst", "VaThres", "VaThresLbl"}) {
        wrong += window.findChild<QWidget *>(name)->isEnabled() == VaHdmi ? "" : name;
    }
    for (const char *name : {"OsInit", "SaInit", "OsIp", "SaIp", "MeasCnt"}) {
        wrong += window.findChild<QWidget *>(name)->isEnabled() ? "" : name;
    }
    wrong.removeAll(QString());
    return wrong.join(' ');
}

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
            "1",           "1",           "1",           "1",     "1",         "KVx"};
        for (int size = 0; size <= everything.size(); ++size) {
            window.findChild<QComboBox *>("OsTyp")->setCurrentIndex(1);
            write(settingsFile(), everything.left(size));
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
        QTest::newRow("nothing but NUL") << QByteArray(4096, '\0');
        QByteArray withNul = everything;
        withNul[withNul.indexOf("10.0.0.7") + 3] = '\0';
        QTest::newRow("NUL in a value") << withNul;
        QTest::newRow("NUL by name") << level(R"(a\0\x0z)");
        QTest::newRow("line of a megabyte") << QByteArray(1 << 20, 'x') + '\n' + everything;
        QTest::newRow("value of a megabyte") << level(QByteArray(1 << 20, '7'));
        QTest::newRow("key of a megabyte")
            << everything + QByteArray(1 << 20, 'k') + "=1\n[" + QByteArray(1 << 20, 's') + "]\n";
        QTest::newRow("list") << level("1, 2, 3");
        QTest::newRow("text") << level(R"(five \xd800 %zz)");
        QTest::newRow("bytes") << level(R"(@ByteArray(\xff\0\x1))");
        QTest::newRow("rectangle") << level("@Rect(1 2 3 4)");
        QTest::newRow("broken rectangle") << level("@Rect(");
        QTest::newRow("invalid") << level("@Invalid()");
        QTest::newRow("variant") << level(R"(@Variant(\0\0\0\x7f\0\0\0\xeQVector<int>\0))");
        QTest::newRow("long variant") << level(R"(@Variant(\0\0\0\n\0\x7f\xff\xff\xfe\0\x41))");
        QTest::newRow("huge numbers") << level("1e999");
        QTest::newRow("twice") << everything + level("1");
        std::mt19937 random; // NOLINT(bugprone-random-generator-seed): the same bytes at every run
        for (int i = 0; i < 20; ++i) {
            QByteArray bytes = i % 2 == 0 ? QByteArray(2000, '\0') : everything;
            const int changes = i % 2 == 0 ? bytes.size() : 20;
            for (int k = 0; k < changes; ++k) {
                const int at =
                    i % 2 == 0 ? k
                               : static_cast<int>(random() % static_cast<unsigned>(bytes.size()));
                bytes[at] = static_cast<char>(random() & 0xFFU);
            }
            QTest::addRow("random %d", i) << bytes;
        }
    }

    /// What the window makes of such a file is saved, and comes back.
    void damaged()
    {
        QFETCH(const QByteArray, bytes);
        write(settingsFile(), bytes);
        QStringList first;
        {
            MainWindow window;
            window.show();
            QCOMPARE(unusable(window), QString());
            first = shown(window);
        }
        const MainWindow window;
        QCOMPARE(unusable(window), QString());
        QCOMPARE(shown(window), first);
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
            write(other, notes);
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
            const MainWindow window;
            QVERIFY2(shown(window).first() == storedAddress,
                     target.toLocal8Bit() + ": " + contents(settingsFile()));
        }

        QVERIFY(QFile::remove(settingsFile()));
        write(settingsFile(), everything);
        QVERIFY(QFile::setPermissions(settingsFile(), QFileDevice::ReadOwner));
        {
            const MainWindow window;
            QCOMPARE(shown(window).first(), QString(storedAddress));
        }
        QVERIFY(contents(settingsFile()).contains(storedAddress));

        QVERIFY(QFile::remove(settingsFile()));
        QVERIFY(QDir().mkdir(settingsFile()));
        write(settingsFile() + "/inside", notes);
        {
            const MainWindow window;
            QCOMPARE(unusable(window), QString());
        }
        QCOMPARE(contents(settingsFile() + "/inside"), notes);
        QVERIFY(QFile::remove(settingsFile() + "/inside") && QDir().rmdir(settingsFile()));
    }
};

QTEST_MAIN(SettingsFaultTest)
#include "SettingsFaultTest.moc"
