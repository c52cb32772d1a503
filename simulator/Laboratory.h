#pragma once

#include "simulator/BenchMemory.h"

#include <memory>
#include <mutex>

namespace simulator {

/// The bench behind the VISA functions of this process. Whoever has locked it finds it switched on.
class Laboratory
{
public:
    /// It is never destroyed: other threads may use it until the process has ended.
    static Laboratory &instance();

    void lock();
    void unlock();

    Bench &bench() { return bench_; }

private:
    Laboratory();
    void leave();

    std::mutex mutex_; // for threads; the memory's lock is for processes
    std::unique_ptr<BenchMemory> memory_;
    Bench bench_;
};

/// The bench of this process, for use between the calls of VISA functions.
inline Bench &bench()
{
    return Laboratory::instance().bench();
}

} // namespace simulator
