#include "simulator/BenchMemory.h"

namespace simulator {

std::unique_ptr<BenchMemory> openBenchMemory()
{
    return std::make_unique<OwnBenchMemory>();
}

} // namespace simulator
