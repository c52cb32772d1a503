#include "viewer/WrapText.h"

#include <QStringList>

QString wrapText(const QString &text, int width)
{
    QStringList lines;
    for (QString line : text.split('\n')) {
        while (line.size() > width) {
            const int blank = line.lastIndexOf(' ', width);
            if (blank <= 2) {
                break;
            }
            lines += line.left(blank);
            line = "  " + line.mid(blank + 1);
        }
        lines += line;
    }
    return lines.join('\n');
}
