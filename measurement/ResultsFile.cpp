#include "measurement/ResultsFile.h"

#include "instrument/NumberText.h"

#include <QFile>

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
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    const QString text = paragraph("Source2RF", results.sourceToRf) + '\n' +
                         paragraph("Source2HD", results.sourceToHdmi) + '\n' +
                         paragraph("Source2Snk", results.sourceToSink);
    file.write(text.toUtf8());
    return true;
}
