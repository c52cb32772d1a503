#include "simulator/FormattedIo.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h> // NOLINT(modernize-deprecated-headers): uselocale is POSIX
#include <string_view>

// The analyzer does not see that a list handed on by reference was started by its owner.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)

namespace simulator {

namespace {

constexpr int widest = 65535; // of a field, so that no format asks for gigabytes

// Arrays, IEEE 488.2 formats and blocks of VPP-4.3, and wide characters.
constexpr std::string_view unsupportedLetters = ",@*#BbyTtCS";

/// The calling thread's locale is "C" while this lives.
class CLocale
{
public:
    CLocale() : former_(uselocale(cLocale())) {}
    ~CLocale() { uselocale(former_); }
    CLocale(const CLocale &) = delete;
    CLocale &operator=(const CLocale &) = delete;

private:
    static locale_t cLocale()
    {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t former_;
};

/// The end of a conversion: its modifier and its letter.
struct Conversion
{
    std::string_view modifier; // "", "h", "hh", "l", "ll"
    char letter;
};

Conversion takeConversion(const char *&at)
{
    const char *first = at;
    at += std::strspn(at, "hl");
    const std::string_view modifier(first, static_cast<std::size_t>(at - first));
    const char letter = *at;
    at += letter == '\0' ? 0 : 1;
    return {modifier, letter};
}

/// VI_SUCCESS when `letters` has the conversion and its modifier goes with it.
ViStatus check(const Conversion &conversion, std::string_view letters)
{
    const auto &[modifier, letter] = conversion;
    if (letter != '\0' && unsupportedLetters.find(letter) != std::string_view::npos) {
        return VI_ERROR_NSUP_FMT;
    }
    const bool integer = std::string_view("diouxX").find(letter) != std::string_view::npos;
    const bool text = std::string_view("cs[").find(letter) != std::string_view::npos;
    if (letter == '\0' || letters.find(letter) == std::string_view::npos) {
        return VI_ERROR_INV_FMT;
    }
    if (modifier.empty() || (modifier == "l" && !text)) {
        return VI_SUCCESS;
    }
    if (text) {
        return VI_ERROR_NSUP_FMT; // wide characters
    }
    return integer && (modifier == "h" || modifier == "hh" || modifier == "ll") ? VI_SUCCESS
                                                                                : VI_ERROR_INV_FMT;
}

/// Passes over a width or precision; an asterisk takes its argument. False when it is too wide.
bool takeField(const char *&at, std::va_list &arguments)
{
    if (*at == '*') {
        ++at;
        const int value = va_arg(arguments, int);
        return value >= -widest && value <= widest;
    }
    const std::size_t digits = std::strspn(at, "0123456789");
    const bool fits = digits <= 5 && std::atoi(at) <= widest; // no more than 99999: no overflow
    at += digits;
    return fits;
}

/// Passes over the print conversion at `at`, behind its '%', and takes its arguments.
ViStatus takePrintArguments(const char *&at, std::va_list &arguments)
{
    at += std::strspn(at, "-+ #0");
    if (!takeField(at, arguments)) {
        return VI_ERROR_INV_FMT;
    }
    if (*at == '.' && !takeField(++at, arguments)) {
        return VI_ERROR_INV_FMT;
    }
    const Conversion conversion = takeConversion(at);
    if (const ViStatus status = check(conversion, "diouxXaAeEfFgGcs"); status != VI_SUCCESS) {
        return status;
    }
    // NOLINTNEXTLINE(bugprone-branch-clone): the types differ
    if (std::strchr("aAeEfFgG", conversion.letter) != nullptr) {
        va_arg(arguments, double);
    } else if (conversion.letter == 's') {
        return va_arg(arguments, const char *) == nullptr ? VI_ERROR_USER_BUF : VI_SUCCESS;
    } else if (conversion.modifier == "l") {
        va_arg(arguments, long);
    } else if (conversion.modifier == "ll") {
        va_arg(arguments, long long);
    } else {
        va_arg(arguments, int);
    }
    return VI_SUCCESS;
}

/// The first directive of a read format: a conversion, or everything up to the next one.
struct Directive
{
    std::string text;
    Conversion conversion{"", 0}; // letter 0: none
    bool suppressed = false;
};

/// Takes a directive from `at`; VI_ERROR_INV_FMT and such when it makes no sense.
ViStatus takeDirective(const char *&at, Directive &directive)
{
    const char *first = at;
    if (*at != '%') {
        at += std::strcspn(at, "%");
    } else if (at[1] == '%') {
        at += 2;
    } else {
        directive.suppressed = at[1] == '*';
        at += directive.suppressed ? 2 : 1;
        const std::size_t digits = std::strspn(at, "0123456789");
        if (digits > 5 || (digits > 0 && std::atoi(at) == 0)) {
            return VI_ERROR_INV_FMT;
        }
        at += digits;
        directive.conversion = takeConversion(at);
        if (directive.conversion.letter == '[') {
            // A closing bracket right after the opening one, or its '^', belongs to the set.
            at += *at == '^' ? 1 : 0;
            const char *close = *at == '\0' ? nullptr : std::strchr(at + 1, ']');
            if (close == nullptr) {
                return VI_ERROR_INV_FMT;
            }
            at = close + 1;
        }
    }
    directive.text.assign(first, at);
    const Conversion &conversion = directive.conversion;
    const bool known = directive.text.compare(0, 1, "%") != 0 || directive.text == "%%" ||
                       (conversion.letter == 't' && conversion.modifier.empty());
    return known ? VI_SUCCESS : check(conversion, "diouxXaAeEfFgGcs[");
}

/// Carries out a directive other than %t on `text`; `size` is set to what it reads. All pointers to
/// data look the same (POSIX), so the caller's goes to sscanf untyped.
ViStatus scanDirective(const char *text, const Directive &directive, void *target, int &size)
{
    size = -1;
    const std::string format = directive.text + "%n";
    const bool stores = directive.conversion.letter != 0 && !directive.suppressed;
    const int matched = stores ? std::sscanf(text, format.c_str(), target, &size)
                               : std::sscanf(text, format.c_str(), &size);
    if (size >= 0) {
        return VI_SUCCESS;
    }
    return matched == EOF ? VI_ERROR_TMO : VI_ERROR_INV_FMT;
}

} // namespace

ViStatus printText(const char *format, std::va_list &arguments, std::string &text)
{
    if (format == nullptr) {
        return VI_ERROR_INV_FMT;
    }
    // The conversions are checked, and their arguments taken, before the one call that formats:
    // it leaves its argument list in no defined place for the read format that may follow.
    std::va_list copy;
    va_copy(copy, arguments);
    ViStatus status = VI_SUCCESS;
    for (const char *at = std::strchr(format, '%'); at != nullptr && status == VI_SUCCESS;
         at = std::strchr(at, '%')) {
        ++at;
        if (*at == '%') {
            ++at;
        } else {
            status = takePrintArguments(at, arguments);
        }
    }
    if (status == VI_SUCCESS) {
        const CLocale locale;
        std::va_list measured;
        va_copy(measured, copy);
        const int size = std::vsnprintf(nullptr, 0, format, measured);
        va_end(measured);
        text.resize(static_cast<std::size_t>(std::max(size, 0)) + 1);
        std::vsnprintf(text.data(), text.size(), format, copy);
        text.pop_back(); // the zero byte
    }
    va_end(copy);
    return status;
}

ViStatus scanText(std::string &buffer, const char *format, std::va_list &arguments)
{
    if (format == nullptr) {
        return VI_ERROR_INV_FMT;
    }
    const CLocale locale;
    std::size_t read = 0;
    ViStatus status = VI_SUCCESS;
    for (const char *at = format; *at != '\0' && status == VI_SUCCESS;) {
        Directive directive;
        status = takeDirective(at, directive);
        if (status != VI_SUCCESS) {
            break;
        }
        const bool stores = directive.conversion.letter != 0 && !directive.suppressed;
        void *target = stores ? va_arg(arguments, void *) : nullptr;
        if (stores && target == nullptr) {
            status = VI_ERROR_USER_BUF;
        } else if (directive.conversion.letter == 't') {
            if (stores) {
                std::memcpy(target, buffer.c_str() + read, buffer.size() - read + 1);
            }
            read = buffer.size();
        } else {
            int size = 0;
            status = scanDirective(buffer.c_str() + read, directive, target, size);
            read += static_cast<std::size_t>(std::max(size, 0));
        }
    }
    buffer.erase(0, read);
    return status;
}

} // namespace simulator

// NOLINTEND(clang-analyzer-valist.Uninitialized)
