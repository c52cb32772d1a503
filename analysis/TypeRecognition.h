#pragma once

#include "measurement/Record.h"
#include "measurement/ResultsFile.h"

#include <QString>

#include <optional>

/// The oscilloscope type of a series, found by its last record, since no file names it.
struct Recognition
{
    std::optional<OscilloscopeType> type;
    Instants instants;        ///< of the last record, when the type is known
    QString remark;           ///< a sentence that says why the type is not known
    bool contradicts = false; ///< neither type gives the saved delays
};

/// Find the oscilloscope type with which the last record gives the last saved delays.
Recognition recogniseType(const Record &record, const SeriesResults &results);

/// Returns the name of a type, as the operator chooses it.
QString typeName(OscilloscopeType type);
