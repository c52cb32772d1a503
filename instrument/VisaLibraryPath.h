#pragma once

#include <QString>

/// Absolute path of the VISA library that this executable loads. Every executable links one
/// definition; nothing else tells the real program from the demo.
QString visaLibraryPath();
