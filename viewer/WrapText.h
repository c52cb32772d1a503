#pragma once

#include <QString>

/// Break the lines of a text that are longer than so many characters between words; what is broken
/// off is indented. A word longer than a line, as a path, is shortened.
QString wrapText(const QString &text, int width);

/// Shorten a text to so many characters in its middle: how a path begins and ends tells most.
QString shortenText(const QString &text, int width);

/// As long as lines of statistics are.
constexpr int statisticsWidth = 118;
