#include "app/FormScaling.h"

#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QProxyStyle>
#include <QWidget>

namespace {

/// The label with the least room for its text: the unit beside the center frequency.
const char *const narrowestText = "Hz";
constexpr int narrowestPlace = 16; // pixels

/// The platform's style, but a font size that a widget sets in points is taken as pixels.
class PointIsPixelStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;

    void polish(QWidget *widget) override
    {
        QFont font = widget->font();
        const bool isSized =
            widget->testAttribute(Qt::WA_SetFont) && (font.resolve() & QFont::SizeResolved) != 0;
        // A plot makes room for the fonts of its scales itself.
        const QWidget *parent = widget->parentWidget();
        const bool isOfPlot = parent != nullptr && parent->inherits("QwtPlot");
        if (isSized && !isOfPlot && font.pointSize() > 0) {
            font.setPixelSize(font.pointSize());
            widget->setFont(font);
        }
        QProxyStyle::polish(widget);
    }
};

/// Make the application's font smaller until it fits the forms.
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
