#include "simulator/scpi/ErrorQueue.h"

namespace simulator {

void ErrorQueue::push(const Error &error)
{
    if (errors.size() < capacity) {
        errors.push_back(error);
    } else {
        errors.back() = scpi::queueOverflow;
    }
}

std::string ErrorQueue::next()
{
    Error error = scpi::noError;
    if (!errors.empty()) {
        error = errors.front();
        errors.pop_front();
    }
    return std::to_string(error.number) + ",\"" + error.text + '"';
}

} // namespace simulator
