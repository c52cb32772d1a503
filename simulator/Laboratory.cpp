#include "simulator/Laboratory.h"

namespace simulator {

namespace {

std::uint32_t layout()
{
    BenchState state;
    return Bench(state).layout();
}

} // namespace

Laboratory::Laboratory() : memory_(openBenchMemory(layout())), bench_(memory_->state()) {}

Laboratory &Laboratory::instance()
{
    static Laboratory &laboratory = *new Laboratory;
    struct AtExit
    {
        ~AtExit() { laboratory.leave(); }
    };
    static const AtExit atExit;
    return laboratory;
}

void Laboratory::leave()
{
    const std::lock_guard threads(mutex_);
    memory_->leave();
}

void Laboratory::lock()
{
    std::unique_lock threads(mutex_);
    memory_->lock();
    bench_.switchOn();
    threads.release();
}

void Laboratory::unlock()
{
    memory_->unlock();
    mutex_.unlock();
}

} // namespace simulator
