#pragma once

#include "simulator/Bench.h"

#include <cstdint>
#include <memory>

namespace simulator {

/// Where the laboratory's state is, with the lock that its users take turns by.
class BenchMemory
{
public:
    virtual ~BenchMemory() = default;

    /// Switched off at first, unless somebody else uses it.
    virtual BenchState &state() = 0;

    /// Throws std::system_error when there is no lock to be had.
    virtual void lock() = 0;
    virtual void unlock() = 0;

    /// Gives it to its other users, as the process exits. Calls that come later still find it.
    virtual void leave() = 0;
};

/// A laboratory of the process's own.
class OwnBenchMemory : public BenchMemory
{
public:
    BenchState &state() override { return state_; }
    void lock() override {}
    void unlock() override {}
    void leave() override {}

private:
    BenchState state_;
};

/// The memory for this process. The library shares it with the user's other processes whose state
/// has the same layout, where it can; a test links a definition that does not.
std::unique_ptr<BenchMemory> openBenchMemory(std::uint32_t layout);

} // namespace simulator
