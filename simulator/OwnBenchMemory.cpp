#include "simulator/BenchMemory.h"

namespace simulator {

std::unique_ptr<BenchMemory> openBenchMemory(std::uint32_t /*layout*/)
{
    return std::make_unique<OwnBenchMemory>();
}

} // namespace simulator
