#include "viewer/Export.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

#include <qwt_plot.h>
#include <qwt_plot_renderer.h>
#include <qwt_scale_widget.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double margin = 0.04; // of the page's shorter side
constexpr int resolution = 150; // dots per inch of pictures
constexpr double metresPerInch = 0.0254;
constexpr double pointsPerInch = 72.0;

QPageLayout layoutOf(const Page &page)
{
    return {QPageSize(QPageSize::A4),
            page.text.isEmpty() ? QPageLayout::Landscape : QPageLayout::Portrait,
            {}};
}

/// Returns the size of a picture of the page.
QSize dotsOf(const Page &page)
{
    return layoutOf(page).fullRectPixels(resolution).size();
}

QFont fontOf(const QString &family, double points, const QPainter &painter)
{
    QFont font(family);
    const double dotsPerPoint = painter.device()->logicalDpiY() / pointsPerInch;
    font.setPixelSize(std::max(1, static_cast<int>(points * dotsPerPoint)));
    return font;
}

/// Paint text in a font, or in a smaller one if it does not fit the rectangle. Returns the height
/// that it takes.
double paintText(const QString &text, QPainter *painter, const QRectF &rect, Qt::Alignment place,
                 QFont font)
{
    if (text.isEmpty()) {
        return 0.0;
    }
    constexpr double mostHeight = 0.4; // of the page
    const auto sizeOf = [&] { return QFontMetricsF(font, painter->device()).size(0, text); };
    while (font.pixelSize() > 1 &&
           (sizeOf().width() > rect.width() || sizeOf().height() > mostHeight * rect.height())) {
        font.setPixelSize(font.pixelSize() - 1);
    }
    painter->setFont(font);
    painter->drawText(rect, static_cast<int>(place), text);
    return sizeOf().height() + QFontMetricsF(font, painter->device()).lineSpacing() / 2;
}

/// Paint a plot. First its axes are aligned with its canvas, which a layout does in windows only.
void paintPlot(QwtPlot *plot, QPainter *painter, const QRectF &rect)
{
    for (const int axis : {QwtPlot::xBottom, QwtPlot::yLeft}) {
        QwtScaleWidget *scale = plot->axisWidget(axis);
        int start = 0;
        int end = 0;
        scale->getBorderDistHint(start, end);
        scale->setBorderDist(start, end);
    }
    QwtPlotRenderer renderer;
    renderer.setDiscardFlag(QwtPlotRenderer::DiscardBackground);
    renderer.render(plot, painter, rect);
}

/// Paint a page over a whole device, whose size is in dots.
void paintPage(const Page &page, QPainter *painter, const QSizeF &size)
{
    painter->fillRect(QRectF({}, size), Qt::white);
    painter->setPen(Qt::black);
    const double border = margin * std::min(size.width(), size.height());
    QRectF room(border, border, size.width() - 2 * border, size.height() - 2 * border);
    QFont bold = fontOf("sans-serif", 12.0, *painter);
    bold.setBold(true);
    // Fontconfig's name: without a display Qt knows no fixed font.
    QFont fixed = fontOf("monospace", 8.0, *painter);
    fixed.setStyleHint(QFont::Monospace);
    room.setTop(room.top() + paintText(page.title, painter, room, Qt::AlignTop, bold));
    room.setBottom(room.bottom() - paintText(page.foot, painter, room,
                                             Qt::AlignBottom | Qt::AlignHCenter,
                                             fontOf("sans-serif", 7.0, *painter)));
    room.setTop(room.top() + paintText(page.text, painter, room, Qt::AlignTop, fixed));

    // Plots below text are drawn smaller, so that they show as much as on the screen.
    const double scale = page.text.isEmpty() ? 1.0 : 0.7;
    painter->save();
    painter->scale(scale, scale);
    room = {room.topLeft() / scale, room.size() / scale};
    const double height = room.height() / std::max(1, page.rows.size());
    for (int i = 0; i < page.rows.size(); ++i) {
        const QVector<QwtPlot *> &row = page.rows[i];
        const double width = room.width() / std::max(1, row.size());
        for (int k = 0; k < row.size(); ++k) {
            paintPlot(row[k], painter,
                      {room.left() + k * width, room.top() + i * height, width - border / 2,
                       height - border / 2});
        }
    }
    painter->restore();
}

QByteArray pdfOf(int count, const std::function<Page(int)> &makePage)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setTitle("Orvanta results");
    writer.setCreator("OrvantaResults " ORVANTA_VERSION);
    QPainter painter;
    for (int i = 0; i < count; ++i) {
        const Page page = makePage(i);
        writer.setPageLayout(layoutOf(page));
        if (i == 0) {
            painter.begin(&writer);
        } else {
            writer.newPage();
        }
        paintPage(page, &painter, QSizeF(writer.width(), writer.height()));
    }
    painter.end();
    return buffer.data();
}

QByteArray pngOf(const Page &page)
{
    QImage image(dotsOf(page), QImage::Format_RGB32);
    const int dotsPerMetre = static_cast<int>(std::lround(resolution / metresPerInch));
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintPage(page, &painter, image.size());
    painter.end();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray svgOf(const Page &page)
{
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setTitle(page.title);
    generator.setResolution(resolution);
    generator.setSize(dotsOf(page));
    generator.setViewBox(QRect({}, dotsOf(page)));
    QPainter painter(&generator);
    paintPage(page, &painter, dotsOf(page));
    painter.end();
    return buffer.data();
}

} // namespace

bool exportPages(int count, const std::function<Page(int)> &makePage, const QString &fileName,
                 QString *problem)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    const bool isPicture = suffix == "png" || suffix == "svg";
    if (!isPicture && suffix != "pdf") {
        *problem = fileName + " ends in none of .pdf, .png and .svg.";
        return false;
    }
    if (isPicture && count > 1) {
        *problem = QString("A picture holds one page, not %1: choose a name that ends in .pdf.")
                       .arg(count);
        return false;
    }
    const QByteArray bytes = suffix == "pdf"   ? pdfOf(count, makePage)
                             : suffix == "png" ? pngOf(makePage(0))
                                               : svgOf(makePage(0));
    return writeWhole(fileName, bytes, problem);
}

bool writeWhole(const QString &fileName, const QByteArray &bytes, QString *problem)
{
    QSaveFile file(fileName);
    // commit() would replace a device by a file.
    const bool isDevice = QFileInfo::exists(fileName) && !QFileInfo(fileName).isFile();
    if (!isDevice && file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        // A full disk takes a part of the bytes without an error. The next write then fails.
        qint64 written = 0;
        qint64 taken = 0;
        while (written < bytes.size() &&
               (taken = file.write(bytes.constData() + written, bytes.size() - written)) > 0) {
            written += taken;
        }
        if (written == bytes.size() && file.commit()) {
            return true;
        }
    }
    *problem = QString("%1 cannot be written: %2.")
                   .arg(fileName, isDevice ? "it is no ordinary file" : file.errorString());
    return false;
}
