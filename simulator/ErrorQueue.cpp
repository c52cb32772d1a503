#include "simulator/ErrorQueue.h"

#include <algorithm>

namespace simulator {

namespace {

const char *errorText(int error)
{
    switch (error) {
    case scpi::noError:
        return "No error";
    case scpi::syntax:
        return "Syntax error";
    case scpi::dataType:
        return "Data type error";
    case scpi::parameterNotAllowed:
        return "Parameter not allowed";
    case scpi::missingParameter:
        return "Missing parameter";
    case scpi::undefinedHeader:
        return "Undefined header";
    case scpi::headerSuffixOutOfRange:
        return "Header suffix out of range";
    case scpi::settingsConflict:
        return "Settings conflict";
    case scpi::dataOutOfRange:
        return "Data out of range";
    case scpi::illegalParameterValue:
        return "Illegal parameter value";
    case scpi::dataStale:
        return "Data corrupt or stale";
    case scpi::queueOverflow:
        return "Queue overflow";
    case scpi::inputBufferOverrun:
        return "Input buffer overrun";
    case scpi::queryInterrupted:
        return "Query INTERRUPTED";
    case scpi::queryDeadlocked:
        return "Query DEADLOCKED";
    default:
        return "Device-specific error";
    }
}

} // namespace

void ErrorQueue::push(int error)
{
    if (count_ < capacity) {
        errors_.at(count_++) = error;
    } else {
        errors_.back() = scpi::queueOverflow;
    }
}

std::string ErrorQueue::next()
{
    int error = scpi::noError;
    if (count_ > 0) {
        error = errors_.front();
        std::rotate(errors_.begin(), errors_.begin() + 1, errors_.end());
        --count_;
    }
    return std::to_string(error) + ",\"" + errorText(error) + '"';
}

} // namespace simulator
