#include "app/PointIsPixelStyle.h"

#include <QWidget>

void PointIsPixelStyle::polish(QWidget *widget)
{
    QFont font = widget->font();
    const bool sizedByForm =
        widget->testAttribute(Qt::WA_SetFont) && (font.resolve() & QFont::SizeResolved) != 0;
    if (sizedByForm && font.pointSize() > 0) {
        font.setPixelSize(font.pointSize());
        widget->setFont(font);
    }
    QProxyStyle::polish(widget);
}
