#pragma once

#include <QString>

/// Returns the settings directory for a location of application data: the same path with a
/// directory "Varnholt" above its last part.
QString settingsDirectoryIn(const QString &dataLocation);

/// Returns the settings directory of this user and this executable. Results and traces are written
/// beside it, into files whose names begin with the directory's name.
QString settingsDirectory();
