#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

#include <string>

namespace simulator {

/// An instrument that observes the radio link. Each can be asked for the true delays of the last
/// event, so that a client can check what it measured.
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
