#include "simulator/Laboratory.h"

namespace simulator {

Laboratory &Laboratory::instance()
{
    static Laboratory laboratory;
    return laboratory;
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
