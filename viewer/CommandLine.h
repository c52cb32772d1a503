#pragma once

#include <QStringList>

/// What a person asks for on the command line.
struct CommandLine
{
    enum class Mode
    {
        Window,
        Summary,
        Csv,
        Report,
        Help,
        Version,
        Mistake,
    };
    Mode mode = Mode::Window;
    QStringList files; ///< and folders; the results folder when none was named
    QString output;    ///< file for the CSV or the report; the CSV's may be empty: standard output
    QString text;      ///< the help, or what the mistake is
};

/// Read the command line; the first argument is the program.
CommandLine readCommandLine(const QStringList &arguments);
