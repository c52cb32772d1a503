#include "analysis/Csv.h"
#include "analysis/SeriesFiles.h"
#include "analysis/Summary.h"
#include "viewer/Export.h"
#include "viewer/Report.h"
#include "viewer/ResultsWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QIcon>
#include <QLocale>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr int exitFailure = 1;
constexpr int exitFlagged = 2;

const char *const description = R"(Look at saved series of delay measurements.

A FILE is a results file (..._Results.txt) or a folder, which stands for all in
it. Without a FILE, the folder where Orvanta saves is taken. Without an option, a
window opens; options need no display.

Exit status: 0 on success; 1 if a file cannot be read or written, or the command
line is wrong; with --summary 2 if values are flagged, or if the oscilloscope
type of a series cannot be found.)";

/// What a person asks for on the command line.
struct Request
{
    QStringList files; ///< and folders
    bool isSummary;
    bool isCsv;
    QString report; ///< file to write it to; null for none
    QString output; ///< file for the CSV; empty for the standard output
};

void complain(const QString &sentence)
{
    const QByteArray line = "OrvantaResults: " + sentence.toLocal8Bit() + '\n';
    std::fputs(line.constData(), stderr);
}

/// Write to the standard output. Returns false when that fails, such as on a full disk.
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

/// Read the command line of the application. Ends the program after --help and --version, and when
/// an option is wrong.
Request readCommandLine()
{
    QCommandLineParser parser;
    parser.setApplicationDescription(description);
    parser.addPositionalArgument("FILE", "a results file, or a folder", "[FILE...]");
    const QCommandLineOption summary("summary", "Print statistics and flags. Two series are "
                                                "compared; more than two are listed first.");
    const QCommandLineOption csv("csv", "Print a row for each measurement.");
    const QCommandLineOption output("output", "With --csv: write to this file.", "OUTPUT");
    const QCommandLineOption report(
        "report", "Write a report as .pdf; for one or two series also as .png or .svg.", "REPORT");
    parser.addOptions({summary, csv, output, report});
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(QCoreApplication::arguments());

    QString mistake;
    if (int(parser.isSet(summary)) + int(parser.isSet(csv)) + int(parser.isSet(report)) > 1) {
        mistake = "Only one of --summary, --csv and --report is possible at a time.";
    } else if (parser.isSet(output) && !parser.isSet(csv)) {
        mistake = "--output goes with --csv; --report names its file itself.";
    } else if (parser.positionalArguments().contains(QString())) {
        mistake = "The name of a file is empty.";
    }
    if (!mistake.isEmpty()) {
        complain(mistake + " See --help.");
        std::exit(exitFailure);
    }
    QStringList files = parser.positionalArguments();
    if (files.isEmpty()) {
        files += resultsFolder();
    }
    return {files, parser.isSet(summary), parser.isSet(csv), parser.value(report),
            parser.value(output)};
}

bool write(const Request &request, const QVector<Series> &series)
{
    QString problem;
    bool isWritten = false;
    if (!request.report.isNull()) {
        isWritten = writeReport(series, request.report, &problem);
    } else if (request.isSummary) {
        isWritten = print((series.size() > 2 ? summariseBriefly(series) + '\n' : QString()) +
                          describeSelection(series));
    } else {
        const QString csv = csvText(series);
        isWritten = request.output.isEmpty() ? print(csv)
                                             : writeWhole(request.output, csv.toUtf8(), &problem);
    }
    if (!problem.isEmpty()) {
        complain(problem);
    }
    return isWritten;
}

/// Do what needs no window. Returns the exit status.
int runInTerminal(const Request &request)
{
    const LoadedSeries loaded = loadSeries(request.files);
    std::for_each(loaded.problems.begin(), loaded.problems.end(), complain);
    const bool isWhole =
        (loaded.series.isEmpty() || write(request, loaded.series)) && loaded.problems.isEmpty();
    const bool isFlagged =
        request.isSummary && std::any_of(loaded.series.begin(), loaded.series.end(), isDoubtful);
    return !isWhole ? exitFailure : isFlagged ? exitFlagged : 0;
}

/// End with a sentence where Qt would abort: there is no display, or it cannot be reached.
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

int runWindow(const Request &request, int &argc, char **argv)
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
    const bool isWhole = window.open(request.files);
    const int status = QApplication::exec();
    return status == 0 && !isWhole ? exitFailure : status;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName("OrvantaResults");
    QCoreApplication::setApplicationVersion(ORVANTA_VERSION);
    // The command line decides which application it is.
    auto terminal = std::make_unique<QCoreApplication>(argc, argv);
    const Request request = readCommandLine();
    QLocale::setDefault(QLocale::c()); // axes show numbers as the files do
    if (request.isSummary || request.isCsv) {
        return runInTerminal(request);
    }
    terminal.reset();
    if (request.report.isNull()) {
        return runWindow(request, argc, argv);
    }
    qputenv("QT_QPA_PLATFORM", "offscreen"); // plots are widgets, but nobody sees them
    const QApplication application(argc, argv);
    return runInTerminal(request);
}
