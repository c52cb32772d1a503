#include "instrument/NumberText.h"

#include <clocale>
#include <cstdlib>
#include <limits>
#ifdef __APPLE__
#include <xlocale.h>
#endif

double leadingNumber(const char *text)
{
    // Qt sets the operator's locale. Where that has a decimal comma, strtod() would stop at the
    // point of an instrument's reply.
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text, nullptr, cLocale);
}

int leadingInteger(const char *text)
{
    const long value = std::strtol(text, nullptr, 10);
    return static_cast<int>(
        qBound<long>(std::numeric_limits<int>::min(), value, std::numeric_limits<int>::max()));
}
