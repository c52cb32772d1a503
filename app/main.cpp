#include "app/FormScaling.h"
#include "app/MainWindow.h"
#include "app/SettingsDirectory.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

int main(int argc, char *argv[])
{
    scaleFormsWithScreen();
    const QApplication application(argc, argv);
    fitTextToForms();
    // The window makes the settings directory itself, but not the one above it.
    QDir().mkpath(QFileInfo(settingsDirectory()).path());

    MainWindow window;
    window.show();
    return QApplication::exec();
}
