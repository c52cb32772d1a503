#pragma once

#include "visa/Attributes.h"
#include "visa/DeviceConnection.h"

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace visa {

/// What a handle stands for: a resource manager, a session or a list of resources found. Whoever
/// uses it holds its mutex; nobody holds two.
struct Object
{
    enum class Kind
    {
        Manager,
        Session,
        List,
    };

    Kind kind = Kind::Manager;
    ViSession manager = 0;                          ///< that opened it
    Attributes attributes{};                        ///< not of a list
    std::unique_ptr<DeviceConnection> connection{}; ///< of a session
    unsigned locks = 0;                             ///< how often a session has locked its device
    std::deque<std::string> names;                  ///< of a list, the next one first

    std::mutex mutex{};
};

/// The open objects by their handles, which are never used twice. May be called from any thread.
/// Whoever has found an object keeps it alive; one that is closed meanwhile goes afterwards.
/// Connections that are closed together share a second for it, however many are mute.
class Handles
{
public:
    /// Add an object, to its manager if it is none itself; sets handle. Returns VI_ERROR_ALLOC when
    /// there are too many, VI_ERROR_INV_OBJECT when its manager has been closed.
    ViStatus add(const std::shared_ptr<Object> &object, ViObject *handle);
    /// Find an object; null when there is none.
    [[nodiscard]] std::shared_ptr<Object> find(ViObject handle);
    /// Close an object, with a resource manager all that it opened. Returns VI_ERROR_INV_OBJECT
    /// when there is none.
    ViStatus close(ViObject handle);
    /// Close everything.
    void closeAll();

private:
    std::mutex mutex;
    std::map<ViObject, std::shared_ptr<Object>> objects;
    ViObject last = 0;
};

/// Give access to the handles of this process. At its end all are closed: a device is told, and has
/// its connections for others.
Handles &handles();

} // namespace visa
