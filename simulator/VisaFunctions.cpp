#include "simulator/VisaFunctions.h"

#include "simulator/FormattedIo.h"
#include "simulator/Laboratory.h"
#include "simulator/ResourceName.h"
#include "simulator/SessionTable.h"
#include "simulator/StatusText.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>

namespace {

using simulator::Attributes;
using simulator::Laboratory;
using simulator::Session;
using simulator::SessionTable;

SessionTable &sessions()
{
    // Never destroyed, as the laboratory is.
    static SessionTable &table = *new SessionTable(Laboratory::instance().bench());
    return table;
}

/// Runs one VISA function at a time, and lets no exception into the C caller.
template <typename Body>
ViStatus guarded(Body body) noexcept
{
    try {
        const std::lock_guard lock(Laboratory::instance());
        return body();
    } catch (const std::bad_alloc &) {
        return VI_ERROR_ALLOC;
    } catch (const std::exception &) {
        return VI_ERROR_SYSTEM_ERROR; // such as no lock on the laboratory
    }
}

/// Runs one operation of an open instrument session.
template <typename Body>
ViStatus withSession(ViSession handle, Body body) noexcept
{
    return guarded([&] {
        ViStatus status = VI_SUCCESS;
        Session *session = sessions().session(handle, status);
        return session != nullptr ? body(*session) : status;
    });
}

/// Runs one operation of a resource manager.
template <typename Body>
ViStatus withManager(ViSession handle, Body body) noexcept
{
    return guarded([&] {
        const ViStatus status = sessions().managerStatus(handle);
        return status == VI_SUCCESS ? body() : status;
    });
}

/// Answers for a session or a resource manager, neither of which ever has an event.
ViStatus withoutEvents(ViSession handle, ViStatus answer) noexcept
{
    return guarded([=] {
        ViStatus status = VI_SUCCESS;
        return sessions().attributes(handle, status) != nullptr ? answer : status;
    });
}

/// Copies a text with its zero byte, where the caller has a buffer for it.
void copyText(ViChar *buffer, std::string_view text)
{
    if (buffer != nullptr) {
        *std::copy(text.begin(), text.end(), buffer) = '\0';
    }
}

struct CloseFile
{
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

void report(ViUInt32 *returnedCount, std::size_t count)
{
    if (returnedCount != nullptr) {
        *returnedCount = static_cast<ViUInt32>(count);
    }
}

ViStatus print(Session &session, const char *format, std::va_list &arguments)
{
    std::string text;
    const ViStatus status = simulator::printText(format, arguments, text);
    return status == VI_SUCCESS ? session.write(text) : status;
}

ViStatus scan(Session &session, const char *format, std::va_list &arguments)
{
    std::string *buffer = nullptr;
    const ViStatus status = session.fillScanBuffer(buffer);
    return status == VI_SUCCESS ? simulator::scanText(*buffer, format, arguments) : status;
}

} // namespace

ViStatus viOpenDefaultRM(ViSession *resourceManager)
{
    if (resourceManager == nullptr) {
        return VI_ERROR_USER_BUF;
    }
    return guarded([=] { return sessions().openManager(*resourceManager); });
}

ViStatus viFindRsrc(ViSession resourceManager, const ViChar *expression, ViFindList *list,
                    ViUInt32 *count, ViChar *description)
{
    return withManager(resourceManager, [=] {
        if (expression == nullptr || description == nullptr) {
            return expression == nullptr ? VI_ERROR_INV_EXPR : VI_ERROR_USER_BUF;
        }
        std::vector<std::string> names;
        ViStatus status = sessions().find(expression, names);
        if (status == VI_SUCCESS && list != nullptr) {
            status = sessions().openList(resourceManager, {names.begin() + 1, names.end()}, *list);
        }
        if (status == VI_SUCCESS) {
            copyText(description, names.front());
            report(count, names.size());
        }
        return status;
    });
}

ViStatus viFindNext(ViFindList list, ViChar *description)
{
    return guarded([=] {
        std::string name;
        const ViStatus status =
            description == nullptr ? VI_ERROR_USER_BUF : sessions().findNext(list, name);
        if (status == VI_SUCCESS) {
            copyText(description, name);
        }
        return status;
    });
}

ViStatus viParseRsrc(ViSession resourceManager, const ViChar *resourceName, ViUInt16 *interfaceType,
                     ViUInt16 *interfaceNumber)
{
    return viParseRsrcEx(resourceManager, resourceName, interfaceType, interfaceNumber, nullptr,
                         nullptr, nullptr);
}

// Names are only taken apart: whether the instrument is there is up to viOpen.
ViStatus viParseRsrcEx(ViSession resourceManager, const ViChar *resourceName,
                       ViUInt16 *interfaceType, ViUInt16 *interfaceNumber, ViChar *resourceClass,
                       ViChar *expandedName, ViChar *alias)
{
    return withManager(resourceManager, [=] {
        if (interfaceType == nullptr || interfaceNumber == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        const auto name =
            resourceName == nullptr ? std::nullopt : simulator::parseResourceName(resourceName);
        if (!name) {
            return VI_ERROR_INV_RSRC_NAME;
        }
        *interfaceType = VI_INTF_TCPIP;
        *interfaceNumber = name->board;
        copyText(resourceClass, "INSTR");
        copyText(expandedName, simulator::resourceString(*name));
        copyText(alias, "");
        return VI_SUCCESS;
    });
}

// The bench is always there: there is no opening to wait for.
ViStatus viOpen(ViSession resourceManager, const ViChar *resourceName, ViAccessMode accessMode,
                ViUInt32 /*timeoutMs*/, ViSession *session)
{
    return withManager(resourceManager, [=] {
        if (session == nullptr || resourceName == nullptr) {
            return session == nullptr ? VI_ERROR_USER_BUF : VI_ERROR_INV_RSRC_NAME;
        }
        return sessions().open(resourceManager, resourceName, accessMode, *session);
    });
}

ViStatus viClose(ViObject object)
{
    if (object == 0) {
        return VI_WARN_NULL_OBJECT;
    }
    return guarded([=] { return sessions().close(object); });
}

ViStatus viStatusDesc(ViObject object, ViStatus status, ViChar *description)
{
    return guarded([=] {
        if (!sessions().isOpen(object)) {
            return VI_ERROR_INV_OBJECT;
        }
        if (description == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        bool known = false;
        const std::string text = simulator::statusText(status, known);
        std::memcpy(description, text.c_str(), text.size() + 1);
        return known ? VI_SUCCESS : VI_WARN_UNKNOWN_STATUS;
    });
}

ViStatus viSetAttribute(ViObject object, ViAttr attribute, ViAttrState value)
{
    return guarded([=] {
        ViStatus status = VI_SUCCESS;
        Attributes *attributes = sessions().attributes(object, status);
        return attributes != nullptr ? attributes->set(attribute, value) : status;
    });
}

ViStatus viGetAttribute(ViObject object, ViAttr attribute, void *value)
{
    return guarded([=] {
        ViStatus status = VI_SUCCESS;
        const Attributes *attributes = sessions().attributes(object, status);
        if (attributes == nullptr || value == nullptr) {
            return attributes == nullptr ? status : VI_ERROR_USER_BUF;
        }
        return attributes->get(attribute, value);
    });
}

// The bench raises no events, and none can be enabled.
ViStatus viDisableEvent(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/)
{
    return withoutEvents(session, VI_SUCCESS_EVENT_DIS);
}

ViStatus viDiscardEvents(ViSession session, ViEventType /*type*/, ViUInt16 /*mechanism*/)
{
    return withoutEvents(session, VI_SUCCESS_QUEUE_EMPTY);
}

ViStatus viWrite(ViSession session, const ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    return withSession(session, [=](Session &open) {
        report(returnedCount, 0);
        if (buffer == nullptr) {
            return count == 0 ? VI_SUCCESS : VI_ERROR_USER_BUF;
        }
        const ViStatus status = open.write({reinterpret_cast<const char *>(buffer), count});
        report(returnedCount, count);
        return status;
    });
}

ViStatus viRead(ViSession session, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    return withSession(session, [=](Session &open) {
        report(returnedCount, 0);
        if (buffer == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        std::string_view bytes;
        const ViStatus status = open.read(count, bytes);
        std::copy(bytes.begin(), bytes.end(), buffer);
        report(returnedCount, bytes.size());
        return status;
    });
}

// Files are opened and written between the locks: one that blocks holds nobody else up.
ViStatus viReadToFile(ViSession session, const ViChar *fileName, ViUInt32 count,
                      ViUInt32 *returnedCount)
{
    report(returnedCount, 0);
    const ViStatus opened = withSession(session, [](const Session &) { return VI_SUCCESS; });
    if (opened != VI_SUCCESS) {
        return opened;
    }
    const File file(fileName == nullptr ? nullptr : std::fopen(fileName, "wb"));
    if (!file) {
        return VI_ERROR_FILE_ACCESS;
    }
    std::string bytes;
    const ViStatus status = withSession(session, [&](Session &open) {
        std::string_view part;
        const ViStatus result = open.read(count, part);
        bytes = part;
        return result;
    });
    const std::size_t written = std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    report(returnedCount, written);
    return written == bytes.size() && std::fflush(file.get()) == 0 ? status : VI_ERROR_FILE_IO;
}

ViStatus viClear(ViSession session)
{
    return withSession(session, [](Session &open) {
        open.clear();
        return VI_SUCCESS;
    });
}

// Every answer fits into the buffers as they are: their sizes do not matter.
ViStatus viSetBuf(ViSession session, ViUInt16 mask, ViUInt32 /*size*/)
{
    return withSession(session, [=](Session &) {
        constexpr unsigned buffers = VI_READ_BUF | VI_WRITE_BUF | VI_IO_IN_BUF | VI_IO_OUT_BUF;
        return mask == 0 || (mask & ~buffers) != 0 ? VI_ERROR_INV_MASK : VI_SUCCESS;
    });
}

ViStatus viReadSTB(ViSession session, ViUInt16 *statusByte)
{
    return withSession(session, [=](const Session &open) {
        if (statusByte == nullptr) {
            return VI_ERROR_USER_BUF;
        }
        *statusByte = open.statusByte();
        return VI_SUCCESS;
    });
}

ViStatus viGpibControlREN(ViSession session, ViUInt16 mode)
{
    return withSession(session, [=](Session &open) { return open.controlRemote(mode); });
}

ViStatus viPrintf(ViSession session, const ViChar *writeFormat, ...)
{
    std::va_list arguments;
    va_start(arguments, writeFormat);
    const ViStatus status =
        withSession(session, [&](Session &open) { return print(open, writeFormat, arguments); });
    va_end(arguments);
    return status;
}

ViStatus viScanf(ViSession session, const ViChar *readFormat, ...)
{
    std::va_list arguments;
    va_start(arguments, readFormat);
    const ViStatus status =
        withSession(session, [&](Session &open) { return scan(open, readFormat, arguments); });
    va_end(arguments);
    return status;
}

ViStatus viQueryf(ViSession session, const ViChar *writeFormat, const ViChar *readFormat, ...)
{
    std::va_list arguments;
    va_start(arguments, readFormat);
    const ViStatus status = withSession(session, [&](Session &open) {
        const ViStatus printed = print(open, writeFormat, arguments);
        return printed == VI_SUCCESS ? scan(open, readFormat, arguments) : printed;
    });
    va_end(arguments);
    return status;
}
