#include "instrument/CommandChain.h"

#include "instrument/InstrumentIo.h"

ViStatus sendOrStop(ViSession session, const QStringList &commands)
{
    QString reply;
    ViStatus status = VI_SUCCESS;
    for (const QString &command : commands) {
        status = iaQueryf_s(session, command, &reply);
        if (status != VI_SUCCESS) {
            break;
        }
    }
    return status;
}

ViStatus sendOrFallBack(ViSession session, const QStringList &commands)
{
    QString reply;
    ViStatus status = VI_SUCCESS;
    for (const QString &command : commands) {
        status = iaQueryf_s(session, command, &reply);
        if (status == VI_SUCCESS) {
            break;
        }
    }
    return status;
}

void sendIgnoringFailure(ViSession session, const QStringList &commands)
{
    static_cast<void>(sendOrStop(session, commands));
}
