#include "app/FormScaling.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QProxyStyle>
#include <QWidget>

namespace {

/// The narrowest place for text of the platform's size: the unit beside the center frequency.
const char *const narrowestText = "Hz";
constexpr int narrowestPlace = 16; // pixels

/// The platform's style, in which a widget's own font size in points counts in pixels.
class PointIsPixelStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;

    void polish(QWidget *widget) override
    {
        QFont font = widget->font();
        const bool isSized =
            widget->testAttribute(Qt::WA_SetFont) && (font.resolve() & QFont::SizeResolved) != 0;
        // A plot sizes the fonts of its scales itself, and makes room for them.
        const QWidget *parent = widget->parentWidget();
        const bool isOfPlot = parent != nullptr && parent->inherits("QwtPlot");
        if (isSized && !isOfPlot && font.pointSize() > 0) {
            font.setPixelSize(font.pointSize());
            widget->setFont(font);
        }
        QProxyStyle::polish(widget);
    }
};

/// Make the platform's font smaller where the forms have no place for it.
void fitFont()
{
    QFont font = QApplication::font();
    int size = QFontInfo(font).pixelSize();
    const int usualSize = size;
    while (size > 1 && QFontMetrics(font).horizontalAdvance(narrowestText) > narrowestPlace) {
        font.setPixelSize(--size);
    }
    if (size < usualSize) {
        QApplication::setFont(font);
    }
}

} // namespace

void scaleFormsWithScreen()
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void fitTextToForms()
{
    QApplication::setStyle(new PointIsPixelStyle);

    fitFont();
    // Some platform themes set their font once the event loop runs.
    QObject::connect(qGuiApp, &QGuiApplication::fontChanged, [] { fitFont(); });
}
