#pragma once

#include <QString>

/// Break the lines of a text that are longer than so many characters between words, as far as there
/// are any; what is broken off is indented.
QString wrapText(const QString &text, int width);

/// As long as lines of statistics are.
constexpr int statisticsWidth = 118;
