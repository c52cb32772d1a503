#pragma once

#include <QObject>

/// While an object of this class lives, the cursor is the busy one and the input of the user is
/// dropped, so that it is not handled later either, when the work is done. Windows are still
/// painted when events are processed.
class Busy : public QObject
{
public:
    /// Show the busy cursor, and paint what has changed.
    Busy();
    /// Drop the input that came meanwhile, and restore the cursor.
    ~Busy() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    Busy(const Busy &) = delete;
    Busy &operator=(const Busy &) = delete;
};
