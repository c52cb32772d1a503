#pragma once

#include "simulator/Bench.h"

/// Give access to the bench of this process's VISA sessions; for tests, between their calls.
simulator::Bench &bench();
