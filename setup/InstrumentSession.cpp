#include "setup/InstrumentSession.h"

#include "instrument/InstrumentIo.h"

namespace {

constexpr ViUInt32 openTimeout = 10000; // ms

} // namespace

ViStatus reopenSession(ViSession resourceManager, const QString &resource, ViAttrState ioTimeout,
                       ViSession *session)
{
    if (*session != 0) {
        iaClose(*session);
        *session = 0;
    }
    const ViStatus status = iaOpen(resourceManager, resource, VI_NO_LOCK, openTimeout, session);
    if (status != VI_SUCCESS) {
        return status;
    }
    return iaSetAttribute(*session, VI_ATTR_TMO_VALUE, ioTimeout);
}
