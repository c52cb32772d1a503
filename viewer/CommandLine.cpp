#include "viewer/CommandLine.h"

#include "analysis/SeriesFiles.h"

#include <QCommandLineParser>

namespace {

// Qt's own help wants an application object, and which of them is known only after reading.
const char *const help = R"(Usage: OrvantaResults [--summary | --csv | --report REPORT] [FILE...]
Look at saved series of delay measurements.

A FILE is a results file (..._Results.txt) or a folder, which stands for all in
it; without any, the folder where Orvanta saves. Without an option, a window
opens.

  --summary         print statistics and flags, no display needed; two series
                    are compared, more have an overview before them
  --csv             print one row a measurement, no display needed
  --output OUTPUT   with --csv: write to this file
  --report REPORT   write a report, no display needed: .pdf, or of one series or
                    two .png or .svg
  --help            print this
  --version         print the version

Exit status: 0; 1 when a file cannot be read or written, or the command line is
wrong; with --summary 2 when a series has flags, or its traces do not tell the
oscilloscope type: they are missing or broken, or its delays are wrong.
)";

} // namespace

CommandLine readCommandLine(const QStringList &arguments)
{
    QCommandLineParser parser;
    const QCommandLineOption summary("summary");
    const QCommandLineOption csv("csv");
    const QCommandLineOption output("output", QString(), "file");
    const QCommandLineOption report("report", QString(), "file");
    const QCommandLineOption helpOption(QStringList{"h", "help"});
    const QCommandLineOption version(QStringList{"v", "version"});
    parser.addOptions({summary, csv, output, report, helpOption, version});

    const auto mistake = [](const QString &what) {
        return CommandLine{CommandLine::Mode::Mistake, {}, {}, what};
    };
    if (!parser.parse(arguments)) {
        return mistake(parser.errorText());
    }
    if (parser.isSet(helpOption)) {
        return {CommandLine::Mode::Help, {}, {}, help};
    }
    if (parser.isSet(version)) {
        return {CommandLine::Mode::Version, {}, {}, {}};
    }
    if (int(parser.isSet(summary)) + int(parser.isSet(csv)) + int(parser.isSet(report)) > 1) {
        return mistake("Only one of --summary, --csv and --report can be had at a time.");
    }
    if (parser.isSet(output) && !parser.isSet(csv)) {
        return mistake("--output goes with --csv; --report names its file itself.");
    }
    CommandLine read;
    read.mode = parser.isSet(summary)  ? CommandLine::Mode::Summary
                : parser.isSet(csv)    ? CommandLine::Mode::Csv
                : parser.isSet(report) ? CommandLine::Mode::Report
                                       : CommandLine::Mode::Window;
    read.output = parser.value(parser.isSet(csv) ? output : report);
    read.files = parser.positionalArguments();
    if (read.files.isEmpty()) {
        read.files += resultsFolder();
    }
    return read;
}
