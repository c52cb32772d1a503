#include "app/FormScaling.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"
#include "instrument/VisaBinding.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>

namespace {

/// Set the windows' icon and the name of their desktop entry, which is named after the executable.
void introduceToDesktop()
{
    QIcon icon;
    for (const char *file : {":/icon/48.png", ":/icon/128.png", ":/icon/256.png"}) {
        icon.addFile(file);
    }
    QApplication::setWindowIcon(icon);
    QApplication::setDesktopFileName("org.varnholt." +
                                     QFileInfo(QApplication::applicationFilePath()).baseName());
}

/// Returns where this executable looks for a VISA library. Relative paths start at its own folder,
/// so that the build tree and an installation can be moved.
QStringList visaLibraryPaths()
{
    QStringList paths;
    const QDir folder(QApplication::applicationDirPath());
    for (const QString &path : QStringLiteral(ORVANTA_VISA_LIBRARIES).split('|')) {
        paths << QDir::cleanPath(folder.absoluteFilePath(path));
    }
    return paths;
}

} // namespace

int main(int argc, char *argv[])
{
    scaleFormsWithScreen();
    const QApplication application(argc, argv);
    introduceToDesktop();
    fitTextToForms();
    setVisaLibraryPaths(visaLibraryPaths());
    // The window makes the settings directory, but not the one above it.
    QDir().mkpath(QFileInfo(settingsDirectory()).path());

    MainWindow window;
    window.show();
    return QApplication::exec();
}
