// Settings files of any content, loaded into the program's window and saved from it.

#include "app/MainWindow.h"
#include "Fuzzing.h"
#include "instrument/VisaLibraryPath.h"
#include "tests/SettingsShown.h"

#include <QTemporaryDir>

namespace {

MainWindow *window = nullptr;
QStringList defaults;

void load(const QString &name)
{
    require(window->LoadCfgFile(name) == 0, "loading always succeeds");
    require(unusable(*window).isEmpty(), "the window can be used");
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
    defaults = shown(*window);
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
    const QStringList first = shown(*window);
    require(readFile(given) == content, "loading leaves the file alone");

    window->SaveCfgFile(saved);
    window->SaveCfgFile(given); // over what it holds
    require(QFile::copy(given, copy), "the fuzzer can copy its file");
    for (const QString &name : {saved, copy}) {
        load(absent);
        require(shown(*window) == defaults, "what no file holds takes its default");
        load(name);
        require(shown(*window) == first, "what was saved is loaded alike");
        QFile::remove(name);
    }
    QFile::remove(given);
    return 0;
}
