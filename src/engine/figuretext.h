#pragma once

#include <QLocale>
#include <QString>

namespace quillet {

// Figures exactly as the locale writes them, fast whatever their size.
// QLocale spends some 0.2 ms on the 300 digits of an amount near the largest
// double; these give the same text in about a microsecond: below 2^53 they
// ask the locale itself, above it (whole numbers, no rounding to do) they
// write the digits themselves and lay them out as the locale lays out a
// 16-digit figure: its signs, symbol, digits, grouping and decimal point.

// locale.toCurrencyString(value, QString(), 2).
QString currencyText(double value, const QLocale &locale = QLocale());

// locale.toString(value, 'f', decimals).
QString numberText(double value, int decimals, const QLocale &locale = QLocale());

} // namespace quillet
