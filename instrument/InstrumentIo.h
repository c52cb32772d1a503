#pragma once

#include "visa/VisaTypes.h"

#include <QString>

// Thin layer over the VISA entry points. Every function but rstrip() returns a VISA status: 0 is
// success, negative an error, positive a completion code or a warning. While its entry point is
// null, a function does nothing and returns VI_ERROR_LIBRARY_NFOUND. None shows a message or
// throws.
//
// The names iaPrintf, iaQueryf and iaScanf do not stand for formatted I/O: they call viWrite() and
// viRead() only. No terminator is added, so each command must end in "\n". Commands must be ASCII.
// Replies are in the local 8-bit encoding.
//
// The last letter of a name is the type of the reply: _s a text, _f a number, _i a whole number.

/// Open the default resource manager.
ViStatus iaOpenDefaultRM(ViSession *resourceManager);

/// Open a session to the instrument that the resource string names; time-out in milliseconds.
ViStatus iaOpen(ViSession resourceManager, const QString &resource, ViAccessMode accessMode,
                ViUInt32 timeout, ViSession *session);

/// Close a session.
ViStatus iaClose(ViSession session);

/// Clear the instrument's input and output (IEEE 488.2 device clear).
ViStatus iaClear(ViSession session);

/// Write count bytes; returnedCount may be null.
ViStatus iaWrite(ViSession session, unsigned char *buffer, ViUInt32 count, ViUInt32 *returnedCount);

/// Read at most count bytes; returnedCount may be null.
ViStatus iaRead(ViSession session, unsigned char *buffer, ViUInt32 count, ViUInt32 *returnedCount);

/// Read at most count bytes into a file, which is replaced; returnedCount may be null.
ViStatus iaReadToFile(ViSession session, const QString &fileName, ViUInt32 count,
                      ViUInt32 *returnedCount);

/// Set an attribute of a session.
ViStatus iaSetAttribute(ViSession session, ViAttr attribute, ViAttrState value);

/// Read an attribute of a session into a variable of the attribute's own width.
ViStatus iaGetAttribute(ViSession session, ViAttr attribute, void *value);

/// Set the size in bytes of the formatted I/O buffers that the mask names.
ViStatus iaSetBuf(ViSession session, ViUInt16 mask, ViUInt32 size);

/// Read the status byte (IEEE 488.2 11.2).
ViStatus iaReadSTB(ViSession session, ViUInt16 *statusByte);

/// Switch between remote and local control; the modes are those of viGpibControlREN.
ViStatus iaGpibControlREN(ViSession session, ViUInt16 mode);

/// Get VISA's text for a status. The text is set even when VISA returns a failure.
ViStatus iaStatusDesc(ViSession session, ViStatus status, QString *text);

/// Write a command.
ViStatus iaPrintf(ViSession session, const QString &command);

/// Write a command and read its reply of at most 20000 bytes, terminator included. When the write
/// or the read returns a status other than 0, the status is returned and the reply is unchanged.
ViStatus iaQueryf_s(ViSession session, const QString &command, QString *reply);

/// Write a command and read a number of at most 100 bytes; otherwise like iaQueryf_s().
ViStatus iaQueryf_f(ViSession session, const QString &command, double *value);

/// Write a command and read a whole number of at most 100 bytes; otherwise like iaQueryf_s().
ViStatus iaQueryf_i(ViSession session, const QString &command, int *value);

/// Read a character code as decimal text, and set the reply to the character with this code modulo
/// 256. The reply is set whatever the read returns.
ViStatus iaScanf_s(ViSession session, QString *reply);

/// Read a number of at most 100 bytes. The value is set whatever the read returns.
ViStatus iaScanf_f(ViSession session, double *value);

/// Returns a text up to its first "\n", which is included; an empty text when it has none.
QString rstrip(const QString &text);
