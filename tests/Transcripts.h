#pragma once

#include "CallRecorder.h"
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

    /// Returns the calls to expect when the one at an index fails; -1 means that none fails.
    [[nodiscard]] QStringList callsWhenFails(int failing) const
    {
        const QString consequence = whenItFails.value(failing, "goes on");
        const QString next = consequence.section(',', 0, 0).section("goes on at ", 1);
        int from = consequence.startsWith("ends") ? calls.size() : failing + 1;
        while (from < calls.size() && !calls[from].startsWith(next)) {
            ++from;
        }
        return calls.mid(0, failing + 1) + calls.mid(from);
    }

    [[nodiscard]] bool isReadyWhenFails(int failing) const
    {
        return failing < 0 ? !whenItFails.contains("fails, not ready")
                           : !whenItFails[failing].endsWith("not ready");
    }

    /// Returns a function for CallRecorder::faultOf: the call at an index returns a status, and
    /// each call that the section marks "fails" returns an error.
    [[nodiscard]] auto fault(int failing, ViStatus status) const
    {
        return [=, call = -1](const QString &entry) mutable {
            if (entry.contains(" reads")) {
                return VI_SUCCESS;
            }
            ++call;
            const bool isFault = whenItFails.value(call).startsWith("fails");
            return call == failing ? status : isFault ? VI_ERROR_RSRC_NFOUND : VI_SUCCESS;
        };
    }

    QStringList calls;
    QStringList whenItFails;
};
