#pragma once

#include <QSharedPointer>
#include <QString>
#include <QVector>

#include <functional>

class QwtPlot;

/// An A4 page: a title, text in a fixed font, rows of plots, and a line at the foot. It is upright
/// if it has text. Empty parts take no room.
struct Page
{
    QString title;
    QString text;
    QString foot;
    QVector<QVector<QwtPlot *>> rows;
    QVector<QSharedPointer<QwtPlot>> kept; ///< the plots of `rows` that the page deletes
};

/// Write pages to a file whose name ends in .pdf, or a single page to one that ends in .svg or
/// .png. Each page is made when it is written, since plots of long records are large. Returns false
/// and a sentence on failure.
bool exportPages(int count, const std::function<Page(int)> &makePage, const QString &fileName,
                 QString *problem);

/// Write bytes to a file, whole or not at all. Returns false and a sentence on failure.
bool writeWhole(const QString &fileName, const QByteArray &bytes, QString *problem);
