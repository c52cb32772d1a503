#pragma once

#include <QString>

/// Tell the operator's settings directory inside the platform's location for application data:
/// that location with a directory "Varnholt" above its last part.
QString settingsDirectoryIn(const QString &dataLocation);

/// Tell the settings directory of this user and this executable. Results and traces are written
/// beside it, their names beginning with its own.
QString settingsDirectory();
