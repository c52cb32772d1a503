#include "analysis/Csv.h"
#include "analysis/Summary.h"
#include "viewer/CommandLine.h"
#include "viewer/Export.h"
#include "viewer/Report.h"
#include "viewer/ResultsWindow.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QLocale>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int exitFailure = 1;
constexpr int exitFlagged = 2;

void complain(const QString &sentence)
{
    const QByteArray line = "OrvantaResults: " + sentence.toLocal8Bit() + '\n';
    std::fputs(line.constData(), stderr);
}

/// Write to the standard output, and notice when that does not take it.
bool print(const QString &text)
{
    QFile output;
    const QByteArray bytes = text.toUtf8();
    if (output.open(stdout, QIODevice::WriteOnly) && output.write(bytes) == bytes.size() &&
        output.flush()) {
        return true;
    }
    complain("The standard output cannot be written: " + output.errorString() + '.');
    return false;
}

bool write(const CommandLine &commandLine, const QVector<Series> &series)
{
    QString problem;
    bool isWritten = false;
    if (commandLine.mode == CommandLine::Mode::Report) {
        isWritten = writeReport(series, commandLine.output, &problem);
    } else if (commandLine.mode == CommandLine::Mode::Summary) {
        isWritten = print((series.size() > 2 ? summariseBriefly(series) + '\n' : QString()) +
                          describeSelection(series));
    } else {
        QString csv = csvHeading();
        for (const Series &one : series) {
            csv += csvRows(one);
        }
        isWritten = commandLine.output.isEmpty()
                        ? print(csv)
                        : writeWhole(commandLine.output, csv.toUtf8(), &problem);
    }
    if (!problem.isEmpty()) {
        complain(problem);
    }
    return isWritten;
}

/// What needs no display.
int runInTerminal(const CommandLine &commandLine)
{
    const LoadedSeries loaded = loadSeries(commandLine.files);
    std::for_each(loaded.problems.begin(), loaded.problems.end(), complain);
    const bool isWhole =
        (loaded.series.isEmpty() || write(commandLine, loaded.series)) && loaded.problems.isEmpty();
    const bool isFlagged = commandLine.mode == CommandLine::Mode::Summary &&
                           std::any_of(loaded.series.begin(), loaded.series.end(), isDoubtful);
    return !isWhole ? exitFailure : isFlagged ? exitFlagged : 0;
}

/// Qt aborts where no window can be opened: there is no display, or it cannot be reached.
void endWithoutDisplay(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QByteArray line = qFormatLogMessage(type, context, message).toLocal8Bit() + '\n';
    if (type != QtFatalMsg) {
        std::fputs(line.constData(), stderr);
        return;
    }
    complain("There is no display for a window; --summary, --csv and --report need none.");
    std::_Exit(exitFailure);
}

int runWindow(const CommandLine &commandLine, int &argc, char **argv)
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    qInstallMessageHandler(endWithoutDisplay);
    const QApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    QIcon icon;
    for (const char *file : {":/icon/48.png", ":/icon/128.png", ":/icon/256.png"}) {
        icon.addFile(file);
    }
    QApplication::setWindowIcon(icon);
    QApplication::setDesktopFileName("org.varnholt.OrvantaResults");

    ResultsWindow window;
    window.show();
    const bool isWhole = window.open(commandLine.files);
    const int status = QApplication::exec();
    return status == 0 && !isWhole ? exitFailure : status;
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    std::setlocale(LC_ALL, ""); // an application object would, but which it is depends on these
    std::transform(argv, argv + argc, std::back_inserter(arguments),
                   [](const char *argument) { return QString::fromLocal8Bit(argument); });
    const CommandLine commandLine = readCommandLine(arguments);
    QLocale::setDefault(QLocale::c()); // axes show numbers as the files do

    switch (commandLine.mode) {
    case CommandLine::Mode::Help:
        return print(commandLine.text) ? 0 : exitFailure;
    case CommandLine::Mode::Version:
        return print("OrvantaResults " ORVANTA_VERSION "\n") ? 0 : exitFailure;
    case CommandLine::Mode::Mistake:
        complain(commandLine.text);
        complain("--help tells what can be asked for.");
        return exitFailure;
    case CommandLine::Mode::Summary:
    case CommandLine::Mode::Csv: {
        const QCoreApplication application(argc, argv);
        return runInTerminal(commandLine);
    }
    case CommandLine::Mode::Report: {
        qputenv("QT_QPA_PLATFORM", "offscreen"); // plots are widgets, but nobody sees them
        const QApplication application(argc, argv);
        return runInTerminal(commandLine);
    }
    case CommandLine::Mode::Window:
        break;
    }
    return runWindow(commandLine, argc, argv);
}
