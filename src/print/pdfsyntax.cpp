#include "pdfsyntax.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace quillet::pdf {

void appendNumber(QByteArray &out, double value, int decimals)
{
    char buffer[64];
    if (!std::isfinite(value) || std::abs(value) > 1e15)
        value = 0;
    const auto [end, error] =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    char *last = error == std::errc() ? end : buffer;
    const char *point = std::find(buffer, last, '.');
    if (point != last) {
        while (last[-1] == '0')
            --last;
        if (last[-1] == '.')
            --last;
    }
    const bool negativeZero = last - buffer == 2 && buffer[0] == '-' && buffer[1] == '0';
    if (last == buffer || negativeZero)
        out.append('0');
    else
        out.append(buffer, last - buffer);
}

QByteArray number(double value, int decimals)
{
    QByteArray out;
    appendNumber(out, value, decimals);
    return out;
}

void appendHex4(QByteArray &out, unsigned value)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    const char hex[4] = {Digits[(value >> 12) & 0xF], Digits[(value >> 8) & 0xF],
                         Digits[(value >> 4) & 0xF], Digits[value & 0xF]};
    out.append(hex, 4);
}

QByteArray textString(const QString &text)
{
    QByteArray out("<FEFF");
    for (const QChar c : text)
        appendHex4(out, c.unicode());
    out.append('>');
    return out;
}

} // namespace quillet::pdf
