#pragma once

#include "simulator/Bench.h"

/// Returns the bench that this process's VISA sessions use. Tests use it between VISA calls.
simulator::Bench &bench();
