#pragma once

#include "Line.h"
#include "TestFiles.h"

#include <QtTest>

/// A section of Transcripts.txt: calls, and what follows when one of them fails.
struct Transcript
{
    explicit Transcript(const QString &heading)
    {
        static const QString text = contents(QFINDTESTDATA("Transcripts.txt"));
        const QString section = text.section('[' + heading + "]\n", 1).section("\n\n", 0, 0);
        for (const QString &line : section.split('\n', Qt::SkipEmptyParts)) {
            calls << line.section("  ", 0, 0);
            whenItFails << line.section("  ", 1).trimmed();
        }
    }

    /// Returns what is seen of the calls when the one at an index fails; -1 is none.
    [[nodiscard]] QStringList without(int failing) const
    {
        const QString consequence = whenItFails.value(failing, "goes on");
        const QString next = consequence.section(',', 0, 0).section("goes on at ", 1);
        int from = consequence.startsWith("ends") ? calls.size() : failing + 1;
        while (from < calls.size() && !calls[from].startsWith(next)) {
            ++from;
        }
        return calls.mid(0, failing + 1) + calls.mid(from);
    }

    QStringList calls;
    QStringList whenItFails;
};

/// Returns a fault for Line::fails: of all calls but reads, the one at an index has this status.
inline auto failing(int index, ViStatus status)
{
    return [=, call = 0](const QString &entry) mutable {
        return entry.contains(" reads") || call++ != index ? VI_SUCCESS : status;
    };
}
