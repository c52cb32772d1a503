#include "visa/Handles.h"

namespace visa {

namespace {

constexpr std::size_t maximumCount = 1024; // handles open at a time

/// Objects that are being closed. The connection of one that is in use ends with its last user.
struct Closing
{
    Closing() = default;
    Closing(const Closing &) = delete;
    Closing &operator=(const Closing &) = delete;
    ~Closing()
    {
        const Deadline deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        for (const auto &[handle, object] : objects) {
            const std::unique_lock lock(object->mutex, std::try_to_lock);
            Session *const session = std::get_if<Session>(&object->content);
            if (lock.owns_lock() && session != nullptr) {
                session->connection->close(deadline);
            }
        }
    }

    std::map<ViObject, std::shared_ptr<Object>> objects;
};

} // namespace

ViStatus Handles::add(const std::shared_ptr<Object> &object, ViObject *handle)
{
    const std::lock_guard lock(mutex);
    if (object->manager != 0 && objects.count(object->manager) == 0) {
        return VI_ERROR_INV_OBJECT;
    }
    if (objects.size() >= maximumCount || last + 1 == 0) {
        return VI_ERROR_ALLOC;
    }
    objects[last + 1] = object;
    *handle = ++last;
    return VI_SUCCESS;
}

std::shared_ptr<Object> Handles::find(ViObject handle)
{
    const std::lock_guard lock(mutex);
    const auto found = objects.find(handle);
    return found == objects.end() ? nullptr : found->second;
}

ViStatus Handles::close(ViObject handle)
{
    Closing closing; // destroyed after the lock is released, since connections take time
    const std::lock_guard lock(mutex);
    if (objects.count(handle) == 0) {
        return VI_ERROR_INV_OBJECT;
    }
    for (auto at = objects.begin(); at != objects.end();) {
        const auto next = std::next(at);
        if (at->first == handle || at->second->manager == handle) {
            closing.objects.insert(objects.extract(at));
        }
        at = next;
    }
    return VI_SUCCESS;
}

void Handles::closeAll()
{
    Closing closing;
    const std::lock_guard lock(mutex);
    closing.objects.swap(objects);
}

Handles &handles()
{
    // Never destroyed, since other threads may use it until the process has ended.
    static Handles &all = *new Handles;
    struct AtExit
    {
        ~AtExit() { all.closeAll(); }
    };
    static const AtExit atExit{};
    return all;
}

} // namespace visa
