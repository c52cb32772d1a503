#pragma once

#include <QObject>

/// While it lives, the program is busy: the cursor says so, and nothing that a person does reaches
/// any window, nor does it later, when the work is done and the event loop runs again. Painting
/// goes on wherever events are processed.
class Busy : public QObject
{
public:
    /// Show the cursor, and paint what has changed.
    Busy();
    /// Drop what was done meanwhile, and give the cursor back.
    ~Busy() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

    Busy(const Busy &) = delete;
    Busy &operator=(const Busy &) = delete;
};
