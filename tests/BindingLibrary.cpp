// A shared library with VISA's symbols, to be bound by the test. Each function ignores what it is
// called with and returns a number of its own. The incomplete one lacks viReadToFile.

#include "instrument/VisaTypes.h"

#define VISA_FUNCTION(name, number, parameters)                                                    \
    extern "C" __attribute__((visibility("default"))) ViStatus name parameters                     \
    {                                                                                              \
        return number;                                                                             \
    }

VISA_FUNCTION(viOpenDefaultRM, 1, (ViSession *))
VISA_FUNCTION(viOpen, 2, (ViSession, const ViChar *, ViAccessMode, ViUInt32, ViSession *))
VISA_FUNCTION(viClose, 3, (ViObject))
VISA_FUNCTION(viClear, 4, (ViSession))
VISA_FUNCTION(viSetBuf, 5, (ViSession, ViUInt16, ViUInt32))
VISA_FUNCTION(viReadSTB, 6, (ViSession, ViUInt16 *))
VISA_FUNCTION(viGpibControlREN, 7, (ViSession, ViUInt16))
VISA_FUNCTION(viSetAttribute, 8, (ViObject, ViAttr, ViAttrState))
VISA_FUNCTION(viGetAttribute, 9, (ViObject, ViAttr, void *))
VISA_FUNCTION(viStatusDesc, 10, (ViObject, ViStatus, ViChar *))
VISA_FUNCTION(viWrite, 11, (ViSession, const ViByte *, ViUInt32, ViUInt32 *))
VISA_FUNCTION(viRead, 12, (ViSession, ViByte *, ViUInt32, ViUInt32 *))
VISA_FUNCTION(viQueryf, 13, (ViSession, const ViChar *, const ViChar *, ...))
VISA_FUNCTION(viPrintf, 14, (ViSession, const ViChar *, ...))
VISA_FUNCTION(viScanf, 15, (ViSession, const ViChar *, ...))
#ifdef BINDING_LIBRARY_IS_COMPLETE
VISA_FUNCTION(viReadToFile, 16, (ViSession, const ViChar *, ViUInt32, ViUInt32 *))
#endif
