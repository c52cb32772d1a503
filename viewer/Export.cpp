#include "viewer/Export.h"

#include <QBuffer>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTemporaryDir>

#include <qwt_plot.h>
#include <qwt_plot_renderer.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double margin = 0.04; // of the page's shorter side
constexpr int resolution = 150; // dots per inch of pictures
constexpr double millimetresPerInch = 25.4;
constexpr double pointsPerInch = 72.0;

QPageLayout layoutOf(const Page &page)
{
    return {QPageSize(QPageSize::A4), page.orientation, {}};
}

/// Millimetres.
QSizeF sizeOf(const Page &page)
{
    return layoutOf(page).fullRect(QPageLayout::Millimeter).size();
}

/// Write the text across a rectangle, as large as fits but no larger than is usual. Returns how
/// high it is.
double paintText(const QString &text, QPainter *painter, const QRectF &rect)
{
    if (text.isEmpty()) {
        return 0.0;
    }
    constexpr double usualSize = 8.0;  // points
    constexpr double mostHeight = 0.4; // of the page
    QFont font("monospace"); // fontconfig's alias: without a display Qt knows of no fixed font
    font.setStyleHint(QFont::Monospace);
    const double dotsPerPoint = painter->device()->logicalDpiY() / pointsPerInch;
    font.setPixelSize(std::max(1, static_cast<int>(usualSize * dotsPerPoint)));
    const auto sizeOf = [&] { return QFontMetricsF(font, painter->device()).size(0, text); };
    while (font.pixelSize() > 1 &&
           (sizeOf().width() > rect.width() || sizeOf().height() > mostHeight * rect.height())) {
        font.setPixelSize(font.pixelSize() - 1);
    }
    painter->save();
    painter->setFont(font);
    painter->setPen(Qt::black);
    painter->drawText(rect, Qt::AlignLeft | Qt::AlignTop, text);
    painter->restore();
    return sizeOf().height() + QFontMetricsF(font, painter->device()).lineSpacing();
}

/// Paint a page into a rectangle of a device whose resolution that knows.
void paintPage(const Page &page, QPainter *painter, const QRectF &rect)
{
    painter->fillRect(rect, Qt::white);
    const double border = margin * std::min(rect.width(), rect.height());
    QRectF room = rect.adjusted(border, border, -border, -border);
    room.setTop(room.top() + paintText(page.text, painter, room));

    QwtPlotRenderer renderer;
    renderer.setDiscardFlag(QwtPlotRenderer::DiscardBackground);
    // On a full page plots are drawn smaller, so that they hold as much as on the screen.
    const double scale = page.text.isEmpty() ? 1.0 : 0.7;
    painter->save();
    painter->scale(scale, scale);
    room = {room.topLeft() / scale, room.size() / scale};
    const double height = room.height() / std::max(1, page.rows.size());
    for (int i = 0; i < page.rows.size(); ++i) {
        const QVector<QwtPlot *> &row = page.rows[i];
        const double width = room.width() / std::max(1, row.size());
        for (int k = 0; k < row.size(); ++k) {
            renderer.render(row[k], painter,
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
    {
        QPdfWriter writer(&buffer);
        writer.setTitle("Orvanta results");
        Page page = makePage(0);
        writer.setPageLayout(layoutOf(page));
        QPainter painter(&writer);
        for (int i = 0; i < count; ++i) {
            if (i > 0) {
                page = makePage(i);
                writer.setPageLayout(layoutOf(page));
                writer.newPage();
            }
            paintPage(page, &painter, QRectF(0, 0, writer.width(), writer.height()));
        }
    }
    return buffer.data();
}

QByteArray pngOf(const Page &page)
{
    const double dotsPerMillimetre = resolution / millimetresPerInch;
    QImage image((sizeOf(page) * dotsPerMillimetre).toSize(), QImage::Format_RGB32);
    const int dotsPerMetre = static_cast<int>(std::lround(dotsPerMillimetre * 1000));
    image.setDotsPerMeterX(dotsPerMetre);
    image.setDotsPerMeterY(dotsPerMetre);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    paintPage(page, &painter, image.rect());
    painter.end();
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

/// Qwt brings Qt's SVG device along, which is none of the libraries that the programs build on: it
/// renders the page where it means to render one plot.
class PageRenderer : public QwtPlotRenderer
{
public:
    explicit PageRenderer(const Page &content) : page(content) {}
    void render(QwtPlot * /*plot*/, QPainter *painter, const QRectF &rect) const override
    {
        paintPage(page, painter, rect);
    }

private:
    const Page &page;
};

QByteArray svgOf(const Page &page)
{
    const QTemporaryDir directory;
    const QString name = directory.filePath("page.svg");
    PageRenderer renderer(page);
    QwtPlot plot;
    renderer.renderDocument(&plot, name, "svg", sizeOf(page), resolution);
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
        // A write that the disk cuts off is no error yet: the next one tells why.
        qint64 written = 0;
        qint64 step = 0;
        while (written < bytes.size() &&
               (step = file.write(bytes.constData() + written, bytes.size() - written)) > 0) {
            written += step;
        }
        if (written == bytes.size() && file.commit()) {
            return true;
        }
    }
    *problem = QString("%1 cannot be written: %2.")
                   .arg(fileName, isDevice ? "it is no ordinary file" : file.errorString());
    return false;
}
