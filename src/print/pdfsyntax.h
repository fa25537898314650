#pragma once

#include <QByteArray>
#include <QString>

namespace quillet::pdf {

// A number as a PDF content stream takes it: fixed notation, at most
// `decimals` places, no trailing zeros, never "-0".
void appendNumber(QByteArray &out, double value, int decimals = 4);
QByteArray number(double value, int decimals = 4);
// A value of 0 to 0xFFFF as four hexadecimal digits.
void appendHex4(QByteArray &out, unsigned value);
// A text as a PDF string in UTF-16 with a byte-order mark, hexadecimal.
QByteArray textString(const QString &text);

} // namespace quillet::pdf
