#include "Line.h"

#include "instrument/VisaLibraryPath.h"

QString visaLibraryPath()
{
    return Line::libraryPath;
}
