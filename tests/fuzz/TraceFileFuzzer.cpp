// Trace files of any content, read after what a trace holds already and saved with any count.
//
// Input: the number of samples that the trace has before (1 byte), the count to save (4 bytes),
// then the file.

#include "Fuzzing.h"
#include "measurement/TraceFile.h"

#include <QTemporaryDir>
#include <QVector>

#include <algorithm>
#include <numeric>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir directory;
    const QString given = directory.filePath("given.bin");
    const QString saved = directory.filePath("saved.bin");

    Input input(data, size);
    QVector<double> before(input.take<std::uint8_t>());
    std::iota(before.begin(), before.end(), 1.0);
    const int countToSave = input.take<std::int32_t>();
    const QByteArray content = input.takeRest();
    writeFile(given, content);

    QVector<double> trace = before;
    int count = -1;
    require(loadTrace(given, &trace, &count) == 0, "a file that is there is read");
    require(count == content.size() / 8, "as many samples as whole doubles in the file");
    require(trace.size() == before.size() + count, "the samples are added");
    require(bytesOf(trace.mid(0, before.size())) == bytesOf(before), "the samples before stay");
    require(bytesOf(trace.mid(before.size())) == content.left(count * 8),
            "the samples are the file's, bit for bit");
    require(readFile(given) == content, "reading leaves the file alone");

    const int expected = std::clamp(countToSave, 0, trace.size());
    require(saveTrace(saved, trace, countToSave) == 0, "a trace is saved");
    require(readFile(saved) == bytesOf(trace.mid(0, expected)),
            "the file has the first samples, no more than there are");

    QVector<double> again;
    require(loadTrace(saved, &again, &count) == 0 && count == expected &&
                bytesOf(again) == bytesOf(trace.mid(0, expected)),
            "what was saved is read alike");

    for (const QString &unreadable : {directory.path(), directory.filePath("absent.bin")}) {
        require(loadTrace(unreadable, &again, &count) == -1 && count == expected &&
                    again.size() == expected,
                "what cannot be read changes nothing");
    }
    require(saveTrace(directory.path(), trace, countToSave) == -1,
            "a directory is no file to save to");
    return 0;
}
