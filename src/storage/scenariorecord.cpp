#include "scenariorecord.h"

#include <QList>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>

namespace quillet {

namespace {

// Offsets of the fields within a slot.
constexpr int SpareOffset = 0;
constexpr int DescOffset = 2;
constexpr int InitialAmountOffset = 52;
constexpr int IRateOffset = 60;
constexpr int YearsOffset = 68;
constexpr int PaymentOffset = 76;
constexpr int PerYearOffset = 84;
constexpr int FutureValueOffset = 86;

// Code points of the bytes 0x80..0x9F; the rest of Windows-1252 is Latin-1.
constexpr std::array<char16_t, 32> HighControlRange = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char16_t decodeByte(uchar byte)
{
    if (byte >= 0x80 && byte <= 0x9F)
        return HighControlRange[byte - 0x80];
    return byte;
}

char encodeCodePoint(char32_t codePoint)
{
    if (codePoint < 0x80 || (codePoint >= 0xA0 && codePoint <= 0xFF))
        return static_cast<char>(codePoint);
    const auto found = std::find(HighControlRange.begin(), HighControlRange.end(), codePoint);
    if (found != HighControlRange.end())
        return static_cast<char>(0x80 + (found - HighControlRange.begin()));
    return '?';
}

void putInt16(uchar *slot, int offset, qint16 value)
{
    qToLittleEndian<qint16>(value, slot + offset);
}

void putDouble(uchar *slot, int offset, double value)
{
    qToLittleEndian<quint64>(std::bit_cast<quint64>(value), slot + offset);
}

qint16 getInt16(const uchar *slot, int offset)
{
    return qFromLittleEndian<qint16>(slot + offset);
}

double getDouble(const uchar *slot, int offset)
{
    return std::bit_cast<double>(qFromLittleEndian<quint64>(slot + offset));
}

} // namespace

void ScenarioRecord::makeBlank()
{
    Desc = blankDesc();
    InitialAmount = BlankValue;
    IRate = BlankValue;
    Years = BlankValue;
    Payment = BlankValue;
    PerYear = BlankPerYear;
    FutureValue = BlankValue;
}

QString decodeWindows1252(QByteArrayView bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes)
        text.append(QChar(decodeByte(static_cast<uchar>(byte))));
    return text;
}

QByteArray encodeWindows1252(QStringView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const char32_t codePoint : text.toUcs4())
        bytes.append(encodeCodePoint(codePoint));
    return bytes;
}

QString descText(const ScenarioRecord &record)
{
    return decodeWindows1252(QByteArrayView(record.Desc.data(), record.Desc.size()));
}

QString trimmedDesc(const ScenarioRecord &record)
{
    // Only spaces pad a description; other characters are the user's.
    const QString text = descText(record);
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text.at(first) == u' ')
        ++first;
    while (last > first && text.at(last - 1) == u' ')
        --last;
    return text.mid(first, last - first);
}

void setDescText(ScenarioRecord &record, QStringView text)
{
    const QByteArray bytes = encodeWindows1252(text).left(DescLength);
    record.Desc = ScenarioRecord::blankDesc();
    std::copy(bytes.begin(), bytes.end(), record.Desc.begin());
}

QByteArray encodeRecord(const ScenarioRecord &record)
{
    QByteArray bytes(SlotSize, '\0');
    auto *slot = reinterpret_cast<uchar *>(bytes.data());
    putInt16(slot, SpareOffset, record.Spare);
    std::memcpy(slot + DescOffset, record.Desc.data(), DescLength);
    putDouble(slot, InitialAmountOffset, record.InitialAmount);
    putDouble(slot, IRateOffset, record.IRate);
    putDouble(slot, YearsOffset, record.Years);
    putDouble(slot, PaymentOffset, record.Payment);
    putInt16(slot, PerYearOffset, record.PerYear);
    putDouble(slot, FutureValueOffset, record.FutureValue);
    return bytes;
}

ScenarioRecord decodeRecord(QByteArrayView bytes)
{
    std::array<uchar, SlotSize> slot{};
    if (!bytes.isEmpty())
        std::memcpy(slot.data(), bytes.data(), std::min<qsizetype>(bytes.size(), SlotSize));

    ScenarioRecord record;
    record.Spare = getInt16(slot.data(), SpareOffset);
    std::memcpy(record.Desc.data(), slot.data() + DescOffset, DescLength);
    record.InitialAmount = getDouble(slot.data(), InitialAmountOffset);
    record.IRate = getDouble(slot.data(), IRateOffset);
    record.Years = getDouble(slot.data(), YearsOffset);
    record.Payment = getDouble(slot.data(), PaymentOffset);
    record.PerYear = getInt16(slot.data(), PerYearOffset);
    record.FutureValue = getDouble(slot.data(), FutureValueOffset);
    return record;
}

} // namespace quillet
