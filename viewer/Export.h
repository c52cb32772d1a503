#pragma once

#include <QSharedPointer>
#include <QString>
#include <QVector>

#include <functional>

class QwtPlot;

/// An A4 page, upright if it has text: a title, lines of text in columns as on a terminal, rows of
/// plots, and a line at the foot. What is empty takes no room.
struct Page
{
    QString title;
    QString text;
    QString foot;
    QVector<QVector<QwtPlot *>> rows;
    QVector<QSharedPointer<QwtPlot>> kept; ///< plots in `rows` that the page deletes
};

/// Write pages to a file as its name says: .pdf, or .svg and .png, which hold one page only. A page
/// is made when its turn comes: plots of long records are large. Returns false and a sentence when
/// that is not possible.
bool exportPages(int count, const std::function<Page(int)> &makePage, const QString &fileName,
                 QString *problem);

/// Write bytes to a file, whole or not at all. Returns false and a sentence when that fails.
bool writeWhole(const QString &fileName, const QByteArray &bytes, QString *problem);
