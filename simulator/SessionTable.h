#pragma once

#include "simulator/Bench.h"
#include "simulator/Session.h"

#include <map>
#include <set>

namespace simulator {

/// The open resource managers and sessions by their handles, which are never used twice.
class SessionTable
{
public:
    explicit SessionTable(Bench &bench) : bench_(bench) {}

    ViStatus openManager(ViSession &manager);
    /// Opens the instrument that a resource string names; `session` is 0 on failure.
    ViStatus open(ViSession manager, const char *resourceName, ViAccessMode accessMode,
                  ViSession &session);
    /// Closes a session, or a resource manager with its sessions.
    ViStatus close(ViObject object);

    [[nodiscard]] bool isOpen(ViObject object) const;
    /// The session with this handle; otherwise null and `status` says why.
    Session *find(ViSession handle, ViStatus &status);

private:
    ViStatus newHandle(ViSession &handle);

    Bench &bench_;
    std::set<ViSession> managers_;
    std::map<ViSession, Session> sessions_;
    ViSession lastHandle_ = 0;
};

} // namespace simulator
