#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <array>
#include <cstddef>

namespace quillet {

// The marker of a blank double field. It is compared bit for bit, so it must
// be written and read back exactly (bit pattern 0xC1CD6DB1A0800000).
inline constexpr double BlankValue = -987456321.0;
// The marker of a blank PerYear field.
inline constexpr qint16 BlankPerYear = -1;

inline constexpr int DescLength = 50;
// Bytes of one record in a list file; larger than the 94 bytes of data so
// that files stay interchangeable with earlier versions.
inline constexpr int SlotSize = 148;

// The two lists, numbered as the list files and per-list state are indexed.
enum class ListKind : int { Loans = 0, Investments = 1 };

inline constexpr int listIndex(ListKind list)
{
    return static_cast<int>(list);
}

// One scenario exactly as a slot of a list file holds it. Desc keeps the
// file's Windows-1252 bytes, so a record survives a read and a write
// unchanged whatever the description holds.
struct ScenarioRecord
{
    qint16 Spare = 0;
    std::array<char, DescLength> Desc = blankDesc();
    double InitialAmount = 0.0;
    double IRate = 0.0;
    double Years = 0.0;
    double Payment = 0.0;
    qint16 PerYear = 0;
    double FutureValue = 0.0;

    static constexpr std::array<char, DescLength> blankDesc()
    {
        std::array<char, DescLength> desc{};
        desc.fill(' ');
        return desc;
    }

    // Every field blank, Spare kept: the state of a newly added scenario.
    void makeBlank();

    friend bool operator==(const ScenarioRecord &, const ScenarioRecord &) = default;
};

// The description as text: all 50 characters, padding included.
QString descText(const ScenarioRecord &record);
// The description without leading and trailing spaces.
QString trimmedDesc(const ScenarioRecord &record);
// Stores text left-aligned, cut at 50 characters and padded with spaces. A
// character that Windows-1252 cannot hold is stored as '?'.
void setDescText(ScenarioRecord &record, QStringView text);

// Windows-1252, with the five bytes it leaves undefined mapped to the C1
// controls of the same value, so that every byte decodes and encodes back.
QString decodeWindows1252(QByteArrayView bytes);
// Encodes one character per code point; '?' for what Windows-1252 cannot hold.
QByteArray encodeWindows1252(QStringView text);

// The 148 bytes of a file slot: little-endian, filler written as zeros.
QByteArray encodeRecord(const ScenarioRecord &record);
// Reads a slot; bytes missing at the end (a short last slot) read as zeros.
ScenarioRecord decodeRecord(QByteArrayView slot);

} // namespace quillet
