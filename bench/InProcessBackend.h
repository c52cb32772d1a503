#pragma once

#include "simulator/Bench.h"

/// The bench of this process, which its VISA sessions talk to; for tests, between their calls.
simulator::Bench &bench();
