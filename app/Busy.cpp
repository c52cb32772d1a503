#include "app/Busy.h"

#include <QApplication>
#include <QEvent>

namespace {

bool isUserInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::InputMethod:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

Busy::Busy()
{
    qApp->installEventFilter(this);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QCoreApplication::processEvents();
}

Busy::~Busy()
{
    QGuiApplication::sync(); // fetches the input that the window system still holds
    QCoreApplication::processEvents();
    QApplication::restoreOverrideCursor();
}

bool Busy::eventFilter(QObject * /*watched*/, QEvent *event)
{
    if (!isUserInput(event->type())) {
        return false;
    }
    event->ignore(); // a close event that is not ignored closes the window
    return true;
}
