#include "instrument/VisaLibraryPath.h"

QString visaLibraryPath()
{
    return QStringLiteral(ORVANTA_VISA_LIBRARY);
}
