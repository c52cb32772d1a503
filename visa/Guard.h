#pragma once

#include "visa/Handles.h"

#include <exception>
#include <new>

namespace visa {

/// Run the body of a VISA function; no exception gets into the C caller.
template <typename Body>
ViStatus guarded(Body body) noexcept
{
    try {
        return body();
    } catch (const std::bad_alloc &) {
        return VI_ERROR_ALLOC;
    } catch (const std::exception &) {
        return VI_ERROR_SYSTEM_ERROR; // such as no lock to be had
    }
}

/// Run an operation of an open object of one kind while no other thread uses that object.
template <typename Body>
ViStatus with(ViObject handle, Object::Kind kind, Body body) noexcept
{
    return guarded([&] {
        const std::shared_ptr<Object> object = handles().find(handle);
        if (object == nullptr || object->kind != kind) {
            return object == nullptr ? VI_ERROR_INV_OBJECT : VI_ERROR_NSUP_OPER;
        }
        const std::lock_guard lock(object->mutex);
        return body(*object);
    });
}

} // namespace visa
