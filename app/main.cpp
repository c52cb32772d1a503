#include "app/MainWindow.h"
#include "app/PointIsPixelStyle.h"
#include "app/SettingsDirectory.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

int main(int argc, char *argv[])
{
    // The forms have fixed geometry in device-independent pixels: dense screens scale them whole,
    // by their exact factor, and no text outgrows its place.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);

    QApplication application(argc, argv);
    // Any earlier, and the style would stand on Qt's fallback instead of the platform's style.
    QApplication::setStyle(new PointIsPixelStyle);

    // The window makes the settings directory itself, but not the one above it.
    QDir().mkpath(QFileInfo(settingsDirectory()).path());

    MainWindow window;
    window.show();
    return QApplication::exec();
}
