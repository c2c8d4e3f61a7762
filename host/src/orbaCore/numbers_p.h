#pragma once

#include <QByteArray>

#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace orba {
namespace numbers {

// Doubles as the shortest text that reads back as the same double ("0.1", "1.0", "-0.0",
// "1e+22"), always recognisable as a double: bit-exact through any correct decimal reader, and
// much quicker to write than a fixed 17 digits. Non-finite values are the caller's business.
// Locale-independent.
inline void appendDouble(QByteArray &out, double d)
{
    char buf[40];
    const auto res = std::to_chars(buf, buf + sizeof buf, d);
    const int len = int(res.ptr - buf);
    out.append(buf, len);
    // Digits alone would read back as an integer.
    for (int i = 0; i < len; ++i) {
        if (buf[i] == '.' || buf[i] == 'e')
            return;
    }
    out.append(".0", 2);
}

inline void appendInt(QByteArray &out, qint64 v)
{
    char buf[24];
    const auto res = std::to_chars(buf, buf + sizeof buf, v);
    out.append(buf, int(res.ptr - buf));
}

// Parses [first, last) entirely as a double; out-of-range values become 0 or +-inf as strtod does.
inline bool parseDouble(const char *first, const char *last, double *out)
{
    const auto res = std::from_chars(first, last, *out);
    if (res.ptr != last)
        return false;
    if (res.ec == std::errc())
        return true;
    if (res.ec != std::errc::result_out_of_range)
        return false;
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
    const QByteArray copy(first, int(last - first));
    char *end = nullptr;
    *out = strtod_l(copy.constData(), &end, cLocale);
    return end == copy.constData() + copy.size();
}

inline bool parseInt64(const char *first, const char *last, qint64 *out)
{
    const auto res = std::from_chars(first, last, *out);
    return res.ec == std::errc() && res.ptr == last;
}

} // namespace numbers
} // namespace orba
