#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

#include <string>

namespace simulator {

/// An instrument that looks at the link. All of them tell the truth when they are asked for it.
class BenchInstrument : public Instrument
{
public:
    BenchInstrument(const std::string &identity, RadioLink &link);

protected:
    RadioLink &radioLink() { return link; }

private:
    Error answerEvent(std::string *answer) const;

    RadioLink &link;
};

} // namespace simulator
