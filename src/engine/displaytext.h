#pragma once

#include "scenariorecord.h"
#include "solver.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace quillet {

// The text of one field as a cell shows it, and whether it is the solved one
// (shown bold).
struct FieldDisplay
{
    QString text;
    bool computed = false;

    // Shown bold: a solved value that has a text. A field the engine could
    // not solve stays empty, and an empty cell has no weight to show.
    bool bold() const { return computed && !text.isEmpty(); }
};

// The display text of a solved (or stored) field.
FieldDisplay displayOf(Field field, const SolveResult &solved);

// The display text of a field of the record, solved when blank.
FieldDisplay FieldText(const ScenarioRecord &record, Field field, bool investments,
                       quint16 stateFlags = 0);

// Amounts in the locale's currency with 2 decimals, rates as percentages with
// 2 decimals, years with 1 decimal, each followed by a blank that keeps the
// right-aligned text off the cell border ("% " for rates). Empty when not ok,
// and for a value whose figure is not finite (a rate whose percentage
// overflows too). Fast for amounts of any size (see figuretext.h).
QString FormatValue(Field field, double value, bool ok);

// A whole number right-justified for `width` digits with leading blanks; the
// blanks count digits only, not the grouping separators the locale adds.
QString PadNum(double value, int width);

// a when a < b, else b.
template <typename T> constexpr T MinOf(T a, T b)
{
    return a < b ? a : b;
}

// s without the first occurrence of t (exact comparison); s when t is absent.
QString RemoveText(const QString &s, const QString &t);

// A typed or shown number in the locale: accepts what FormatValue writes
// (currency symbol, grouping, the locale's negative forms, parentheses,
// surrounding blanks). No value for anything else, and for numbers too large
// to hold.
std::optional<double> parseNumber(QStringView text);

// A number as plain text for editing: the locale's decimal separator, no
// grouping, at most 15 significant digits.
QString plainNumber(double value);

} // namespace quillet
