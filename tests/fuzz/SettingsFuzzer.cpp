// Settings files of any content, loaded into the program's window and saved from it.

#include "app/MainWindow.h"
#include "Fuzzing.h"
#include "instrument/NumberText.h"
#include "instrument/VisaLibraryPath.h"
#include "measurement/Globals.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

namespace {

MainWindow *window = nullptr;
QStringList defaults;

template <typename Widget>
Widget *find(const char *name)
{
    auto *widget = window->findChild<Widget *>(name);
    require(widget != nullptr, name);
    return widget;
}

/// What the settings file keeps, as the window shows it.
QStringList state()
{
    QStringList state;
    for (const char *name : {"OsIp", "SaIp", "VaIp", "OsTrgLvl", "SaFrq", "VaThres"}) {
        state << find<QLineEdit>(name)->text();
    }
    for (const char *name : {"OsRst", "SaRst", "VaRst", "SaIfDem", "SaveData", "VaHdmi"}) {
        state << QString::number(find<QCheckBox>(name)->checkState());
    }
    return state << QString::number(find<QComboBox>("OsTyp")->currentIndex());
}

void load(const QString &name)
{
    require(window->LoadCfgFile(name) == 0, "loading always succeeds");

    require(OsTyp >= 0 && OsTyp < find<QComboBox>("OsTyp")->count() &&
                OsTyp == find<QComboBox>("OsTyp")->currentIndex(),
            "the oscilloscope's type is one of the box's");
    for (const char *name : {"OsTrgLvl", "SaFrq", "VaThres"}) {
        const QString text = find<QLineEdit>(name)->text();
        bool isNumber = false;
        require(numberText(text.toDouble(&isNumber)) == text && isNumber,
                "a number field shows a number");
    }
    require(find<QCheckBox>("VaHdmi")->isChecked() == VaHdmi, "the box shows the mode");
    for (const char *name : {"VaInit", "VaIp", "VaRst", "VaThres", "VaThresLbl"}) {
        require(find<QWidget>(name)->isEnabled() == VaHdmi,
                "the video analyzer's panel follows the mode");
    }
    require(QApplication::activeModalWidget() == nullptr, "no box opens");
}

/// A name that no file had before: Qt remembers the files that it has read.
QString freshName(const QString &directory)
{
    static int files = 0;
    return directory + QString("/%1.cfg").arg(++files);
}

} // namespace

/// There is none, and a box says so.
QString visaLibraryPath()
{
    return "/nonexistent";
}

int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static const QTemporaryDir home;
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // What Qt has to say of broken files is of no interest.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});

    // Both live until the process ends.
    new QApplication(*argc, *argv);
    QTimer acceptBoxes;
    QObject::connect(&acceptBoxes, &QTimer::timeout, [] {
        if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget())) {
            dialog->accept();
        }
    });
    acceptBoxes.start(0);
    window = new MainWindow;
    load(home.filePath("absent.cfg"));
    defaults = state();
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir directory;
    const QString given = freshName(directory.path());
    const QString saved = freshName(directory.path());
    const QString copy = freshName(directory.path());
    const QString absent = freshName(directory.path());
    const QByteArray content = Input(data, size).takeRest();
    writeFile(given, content);

    load(given);
    const QStringList first = state();
    require(readFile(given) == content, "loading leaves the file alone");

    window->SaveCfgFile(saved);
    load(absent);
    require(state() == defaults, "what no file holds takes its default");
    load(saved);
    require(state() == first, "what was saved is loaded alike");

    window->SaveCfgFile(given);
    require(QFile::copy(given, copy), "the fuzzer can copy its file");
    load(absent);
    load(copy);
    require(state() == first, "what was saved over another file is loaded alike");

    for (const QString &name : {given, saved, copy}) {
        QFile::remove(name);
    }
    return 0;
}
