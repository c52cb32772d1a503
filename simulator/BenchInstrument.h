#pragma once

#include "simulator/LinkModel.h"
#include "simulator/scpi/Instrument.h"

#include <string>

namespace simulator {

/// An instrument that looks at the link. All of them tell the truth when they are asked for it.
class BenchInstrument : public Instrument
{
public:
    BenchInstrument(const std::string &identity, LinkModel &link);

protected:
    LinkModel &link() { return model; }

private:
    Error answerEvent(std::string *answer) const;

    LinkModel &model;
};

} // namespace simulator
