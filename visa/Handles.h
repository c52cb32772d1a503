#pragma once

#include "visa/Attributes.h"
#include "visa/DeviceConnection.h"

#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <variant>

namespace visa {

/// A resource manager.
struct Manager
{
    Attributes attributes;
};

/// A client's session with a device.
struct Session
{
    Attributes attributes;
    std::unique_ptr<DeviceConnection> connection;
    unsigned locks = 0; ///< how often the session has locked its device
};

/// The names that viFindRsrc has found and viFindNext has not yet returned.
using FindList = std::deque<std::string>;

/// What a handle stands for. Hold the mutex to use the content, and never two of them.
struct Object
{
    using Content = std::variant<Manager, Session, FindList>;

    template <typename Kind>
    Object(ViSession manager, Kind kind)
        : manager(manager), content(std::in_place_type<Kind>, std::move(kind))
    {
    }

    const ViSession manager; ///< that opened it; 0 for a manager
    Content content;
    std::mutex mutex{};
};

/// The open objects by their handles, which are never used twice. May be called from any thread.
/// An object that is closed while a thread uses it lives until that thread is done.
class Handles
{
public:
    /// Add an object and set its handle. Returns VI_ERROR_ALLOC when there are too many,
    /// VI_ERROR_INV_OBJECT when its manager has been closed.
    ViStatus add(const std::shared_ptr<Object> &object, ViObject *handle);
    /// Returns an object; null when there is none.
    [[nodiscard]] std::shared_ptr<Object> find(ViObject handle);
    /// Close an object. A resource manager closes all that it opened, too. Connections share a
    /// second to end in. Returns VI_ERROR_INV_OBJECT when there is no such object.
    ViStatus close(ViObject handle);
    /// Close everything, within a second.
    void closeAll();

private:
    std::mutex mutex;
    std::map<ViObject, std::shared_ptr<Object>> objects;
    ViObject last = 0;
};

/// Returns the handles of this process. All are closed when it ends, so that devices have their
/// connections free for others.
Handles &handles();

/// Run the body of a VISA function. Exceptions become statuses, since the callers are C.
template <typename Body>
ViStatus guarded(Body body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return VI_ERROR_ALLOC;
    } catch (const std::exception &) {
        return VI_ERROR_SYSTEM_ERROR; // such as a thread or a lock that cannot be had
    }
}

/// Run an operation of an open Manager, Session or FindList while no other thread uses it.
template <typename Kind, typename Body>
ViStatus with(ViObject handle, Body body) noexcept
{
    return guarded([&] {
        const std::shared_ptr<Object> object = handles().find(handle);
        if (object == nullptr) {
            return VI_ERROR_INV_OBJECT;
        }
        const std::lock_guard lock(object->mutex);
        Kind *const content = std::get_if<Kind>(&object->content);
        return content != nullptr ? body(*content) : VI_ERROR_NSUP_OPER;
    });
}

} // namespace visa
