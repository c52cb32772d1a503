#pragma once

#include "simulator/Bench.h"

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
};

/// A laboratory of the process's own.
class OwnBenchMemory : public BenchMemory
{
public:
    BenchState &state() override { return state_; }
    void lock() override {}
    void unlock() override {}

private:
    BenchState state_;
};

/// The memory for this process. The library shares it with the other processes of the user where it
/// can; a test links a definition that does not.
std::unique_ptr<BenchMemory> openBenchMemory();

} // namespace simulator
