#include "figuretext.h"

#include <QChar>
#include <QList>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace quillet {

namespace {

// From 2^53 up every double is a whole number: its fixed-point digits need
// no rounding, and the decimals are all zeros.
constexpr double WholeFrom = 9007199254740992.0;

// Longer figures are laid out from a probe below 2^53, which QLocale writes
// quickly: a whole part of 11 to 16 digits whose length differs from the
// figure's by a multiple of six, which keeps the top group of any grouping
// in twos or threes the same.
constexpr int LongestProbe = 16;
constexpr int ShortestProbe = 11;
constexpr int GroupingPeriod = 6;

enum class Kind { Currency, Number };

QString localeText(Kind kind, double value, int decimals, const QLocale &locale)
{
    return kind == Kind::Currency ? locale.toCurrencyString(value, QString(), decimals)
                                  : locale.toString(value, 'f', decimals);
}

bool isDigit(char32_t c)
{
    return QChar::category(c) == QChar::Number_DecimalDigit;
}

// A figure as the locale writes it, taken apart: what stands before and
// after the digits, the digit runs of the whole part from the top, the
// separators between them, and the decimal separator.
struct Layout
{
    std::u32string prefix;
    std::u32string suffix;
    std::vector<int> groups;
    std::u32string groupSeparator;
    std::u32string decimalSeparator;
    char32_t zero = U'0';
};

std::optional<Layout> layoutOf(const QString &text, int decimals)
{
    const QList<uint> codes = text.toUcs4();
    const std::u32string chars(codes.cbegin(), codes.cend());
    std::size_t begin = chars.size();
    std::size_t end = 0;
    for (std::size_t k = 0; k < chars.size(); ++k) {
        if (isDigit(chars[k])) {
            begin = std::min(begin, k);
            end = k + 1;
        }
    }
    if (begin >= end)
        return std::nullopt;

    Layout layout;
    layout.prefix = chars.substr(0, begin);
    layout.suffix = chars.substr(end);
    layout.zero = chars[begin] - char32_t(QChar::digitValue(chars[begin]));

    // Runs of digits and the separators between them.
    std::vector<int> runs;
    std::vector<std::u32string> separators;
    for (std::size_t k = begin; k < end;) {
        std::size_t stop = k;
        while (stop < end && isDigit(chars[stop])) {
            if (chars[stop] - layout.zero > 9)
                return std::nullopt; // digits of two scripts
            ++stop;
        }
        runs.push_back(int(stop - k));
        k = stop;
        while (stop < end && !isDigit(chars[stop]))
            ++stop;
        if (stop > k)
            separators.push_back(chars.substr(k, stop - k));
        k = stop;
    }
    if (decimals > 0) {
        if (runs.size() < 2 || runs.back() != decimals)
            return std::nullopt;
        runs.pop_back();
        layout.decimalSeparator = separators.back();
        separators.pop_back();
    }
    for (const std::u32string &separator : separators) {
        if (separator != separators.front())
            return std::nullopt;
    }
    if (!separators.empty())
        layout.groupSeparator = separators.front();
    layout.groups = runs;
    return layout;
}

// The groups of a whole part of `digits` digits, from those of a probe with
// a whole part of `probeDigits` (the same length modulo GroupingPeriod):
// the middle groups repeat.
std::optional<std::vector<int>> widened(std::vector<int> groups, int probeDigits, int digits)
{
    if (digits == probeDigits || groups.size() == 1) {
        if (groups.size() == 1)
            groups.front() = digits;
        return groups;
    }
    if (groups.size() < 3)
        return std::nullopt;
    const int middle = groups[groups.size() - 2];
    for (std::size_t k = 1; k + 1 < groups.size(); ++k) {
        if (groups[k] != middle)
            return std::nullopt;
    }
    if ((digits - probeDigits) % middle != 0)
        return std::nullopt;
    groups.insert(groups.begin() + 1, std::size_t((digits - probeDigits) / middle), middle);
    return groups;
}

std::optional<QString> wholeFigureText(Kind kind, double value, int decimals, const QLocale &locale)
{
    char ascii[400];
    const auto [end, error] = std::to_chars(ascii, ascii + sizeof ascii, std::abs(value),
                                            std::chars_format::fixed, decimals);
    if (error != std::errc())
        return std::nullopt;
    const std::string figure(ascii, end);
    const int digits = int(decimals > 0 ? figure.find('.') : figure.size());

    const int probeDigits =
        digits <= LongestProbe ? digits : ShortestProbe + (digits - ShortestProbe) % GroupingPeriod;
    const double probe = std::copysign(1.1 * std::pow(10.0, probeDigits - 1), value);
    const std::optional<Layout> layout =
        layoutOf(localeText(kind, probe, decimals, locale), decimals);
    if (!layout)
        return std::nullopt;
    int probeWhole = 0;
    for (const int group : layout->groups)
        probeWhole += group;
    if (probeWhole != probeDigits)
        return std::nullopt;
    const std::optional<std::vector<int>> groups = widened(layout->groups, probeDigits, digits);
    if (!groups)
        return std::nullopt;

    // Written in UTF-16 unit by unit: appending to a QString or converting
    // from UCS-4 would cost more than all the rest.
    std::u16string text;
    text.reserve((layout->prefix.size() + figure.size() * (1 + layout->groupSeparator.size()) +
                  layout->suffix.size() + layout->decimalSeparator.size()) *
                 2);
    const auto put = [&text](char32_t c) {
        if (QChar::requiresSurrogates(c)) {
            text.push_back(QChar::highSurrogate(c));
            text.push_back(QChar::lowSurrogate(c));
        } else {
            text.push_back(char16_t(c));
        }
    };
    const auto putAll = [&put](const std::u32string &chars) {
        for (const char32_t c : chars)
            put(c);
    };
    putAll(layout->prefix);
    std::size_t at = 0;
    for (std::size_t g = 0; g < groups->size(); ++g) {
        if (g > 0)
            putAll(layout->groupSeparator);
        for (int k = 0; k < (*groups)[g]; ++k)
            put(layout->zero + char32_t(figure[at++] - '0'));
    }
    if (decimals > 0) {
        putAll(layout->decimalSeparator);
        for (std::size_t k = std::size_t(digits) + 1; k < figure.size(); ++k)
            put(layout->zero + char32_t(figure[k] - '0'));
    }
    putAll(layout->suffix);
    return QString::fromStdU16String(text);
}

QString figureText(Kind kind, double value, int decimals, const QLocale &locale)
{
    if (std::isfinite(value) && std::abs(value) >= WholeFrom) {
        if (const std::optional<QString> text = wholeFigureText(kind, value, decimals, locale))
            return *text;
    }
    return localeText(kind, value, decimals, locale);
}

} // namespace

QString currencyText(double value, const QLocale &locale)
{
    return figureText(Kind::Currency, value, 2, locale);
}

QString numberText(double value, int decimals, const QLocale &locale)
{
    return figureText(Kind::Number, value, decimals, locale);
}

} // namespace quillet
