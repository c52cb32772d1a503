#include "app/FormScaling.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>

namespace {

/// Give the windows their icon, and say which desktop entry they belong to: it is named after the
/// executable, like the settings file.
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

} // namespace

int main(int argc, char *argv[])
{
    scaleFormsWithScreen();
    const QApplication application(argc, argv);
    introduceToDesktop();
    fitTextToForms();
    // The window makes the settings directory itself, but not the one above it.
    QDir().mkpath(QFileInfo(settingsDirectory()).path());

    MainWindow window;
    window.show();
    return QApplication::exec();
}
