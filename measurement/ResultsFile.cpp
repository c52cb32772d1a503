#include "measurement/ResultsFile.h"

#include "instrument/NumberText.h"

#include <QSaveFile>

namespace {

QString paragraph(const QString &name, const DelaySeries &series)
{
    QString text = name + " Delay:";
    for (const double delay : series.values) {
        text += ' ' + numberText(delay);
    }
    return text + '\n' + name + " Mean: " + numberText(series.mean);
}

} // namespace

bool writeResults(const QString &fileName, const SeriesResults &results)
{
    QSaveFile file(fileName); // a file that cannot be written whole is none
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QString text = paragraph("Source2RF", results.sourceToRf) + '\n' +
                         paragraph("Source2HD", results.sourceToHdmi) + '\n' +
                         paragraph("Source2Snk", results.sourceToSink);
    file.write(text.toUtf8());
    if (!file.flush()) { // which commit() does not notice
        file.cancelWriting();
    }
    return file.commit();
}
