#pragma once

#include <QString>

/// Name of the file through which traces are read: "Trace.tmp" in a directory of this process
/// alone, in memory where the platform has a run-time directory. The directory goes when the
/// process exits. Returns an empty name when no such directory can be made.
QString transferFileName();
