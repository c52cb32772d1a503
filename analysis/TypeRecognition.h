#pragma once

#include "measurement/Record.h"
#include "measurement/ResultsFile.h"

#include <QString>

#include <optional>

/// What the last record tells of the oscilloscope, which is in no file.
struct Recognition
{
    std::optional<OscilloscopeType> type;
    Instants instants;        ///< of the last record, when the type is known
    QString remark;           ///< why the type is not known, a sentence
    bool contradicts = false; ///< the saved delays are not those of the record, and wrong
};

/// Find the oscilloscope type with which the last record gives the last saved delays.
Recognition recogniseType(const Record &record, const SeriesResults &results);

/// Name a type as the operator chose it.
QString typeName(OscilloscopeType type);
