#include "viewer/WrapText.h"

#include <QStringList>

QString wrapText(const QString &text, int width)
{
    QStringList lines;
    for (QString line : text.split('\n')) {
        while (line.size() > width) {
            const int blank = line.lastIndexOf(' ', width);
            if (blank <= 2) {
                line = shortenText(line, width);
                break;
            }
            lines += line.left(blank);
            line = "  " + line.mid(blank + 1);
        }
        lines += line;
    }
    return lines.join('\n');
}

QString shortenText(const QString &text, int width)
{
    const int half = (width - 3) / 2;
    return text.size() <= width ? text : text.left(half) + "..." + text.right(width - 3 - half);
}
