#include "pdffont.h"

#include "pdfsyntax.h"

#include <QtEndian>

#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace quillet {

namespace {

// The tables a TrueType font program needs to draw its glyphs, in the order
// of their tags; the first six must be there.
constexpr std::array<const char *, 6> RequiredTables = {"glyf", "head", "hhea",
                                                        "hmtx", "loca", "maxp"};
constexpr std::array<const char *, 13> ProgramTables = {"OS/2", "cmap", "cvt ", "fpgm", "glyf",
                                                        "head", "hhea", "hmtx", "loca", "maxp",
                                                        "name", "post", "prep"};
constexpr int HeadChecksumAdjustment = 8;
constexpr int HeadIndexToLocFormat = 50;
constexpr int MaxpNumGlyphs = 4;

// Composite glyph flags: how long each part's entry is, and whether more
// parts follow.
constexpr quint16 ArgsAreWords = 0x0001;
constexpr quint16 HaveScale = 0x0008;
constexpr quint16 MoreComponents = 0x0020;
constexpr quint16 HaveXAndYScale = 0x0040;
constexpr quint16 HaveTwoByTwo = 0x0080;

qint16 signedAt(const QByteArray &table, int offset)
{
    if (table.size() < offset + 2)
        return 0;
    return qFromBigEndian<qint16>(table.constData() + offset);
}

quint16 unsignedAt(const QByteArray &table, int offset)
{
    if (table.size() < offset + 2)
        return 0;
    return qFromBigEndian<quint16>(table.constData() + offset);
}

quint32 checksum(const QByteArray &data)
{
    quint32 sum = 0;
    for (qsizetype at = 0; at < data.size(); at += 4) {
        std::array<uchar, 4> word{};
        for (int k = 0; k < 4 && at + k < data.size(); ++k)
            word[static_cast<std::size_t>(k)] = static_cast<uchar>(data[at + k]);
        sum += qFromBigEndian<quint32>(word.data());
    }
    return sum;
}

void appendBigEndian16(QByteArray &out, quint16 value)
{
    const std::array<char, 2> bytes = {static_cast<char>(value >> 8), static_cast<char>(value)};
    out.append(bytes.data(), 2);
}

void appendBigEndian32(QByteArray &out, quint32 value)
{
    appendBigEndian16(out, static_cast<quint16>(value >> 16));
    appendBigEndian16(out, static_cast<quint16>(value));
}

quint32 unsigned32At(const QByteArray &table, qsizetype offset)
{
    if (table.size() < offset + 4)
        return 0;
    return qFromBigEndian<quint32>(table.constData() + offset);
}

// Where each glyph's outline starts in the glyf table, and where the last
// ends: numGlyphs + 1 offsets. Empty when the table does not add up.
std::vector<quint32> glyphOffsets(const QByteArray &loca, bool longOffsets, int glyphCount,
                                  qsizetype glyfSize)
{
    std::vector<quint32> offsets;
    for (int g = 0; g <= glyphCount; ++g) {
        const quint32 offset =
            longOffsets ? unsigned32At(loca, qsizetype{g} * 4) : 2u * unsignedAt(loca, g * 2);
        if (offset > glyfSize || (!offsets.empty() && offset < offsets.back()))
            return {};
        offsets.push_back(offset);
    }
    return offsets;
}

// The glyphs a composite glyph is made of.
std::vector<quint16> componentsOf(QByteArrayView outline)
{
    std::vector<quint16> parts;
    const QByteArray data = outline.toByteArray();
    if (data.size() < 10 || signedAt(data, 0) >= 0)
        return parts;
    int at = 10;
    quint16 flags = MoreComponents;
    while ((flags & MoreComponents) && at + 4 <= data.size()) {
        flags = unsignedAt(data, at);
        parts.push_back(unsignedAt(data, at + 2));
        at += 4 + ((flags & ArgsAreWords) ? 4 : 2);
        if (flags & HaveScale)
            at += 2;
        else if (flags & HaveXAndYScale)
            at += 4;
        else if (flags & HaveTwoByTwo)
            at += 8;
    }
    return parts;
}

// Keeps the outlines of the used glyphs and their parts; the others become
// empty. The new loca table has long offsets.
bool subsetOutlines(QByteArray &glyf, QByteArray &loca, QByteArray &head, const QByteArray &maxp,
                    std::vector<bool> used)
{
    const int glyphCount = unsignedAt(maxp, MaxpNumGlyphs);
    const bool longOffsets = signedAt(head, HeadIndexToLocFormat) == 1;
    const std::vector<quint32> offsets = glyphOffsets(loca, longOffsets, glyphCount, glyf.size());
    if (offsets.empty() || head.size() < HeadIndexToLocFormat + 2)
        return false;
    used.resize(static_cast<std::size_t>(glyphCount), false);
    used[0] = true; // .notdef, drawn for what no font has
    std::vector<quint16> pending;
    for (int g = 0; g < glyphCount; ++g) {
        if (used[static_cast<std::size_t>(g)])
            pending.push_back(static_cast<quint16>(g));
    }
    while (!pending.empty()) {
        const quint16 g = pending.back();
        pending.pop_back();
        const QByteArrayView outline =
            QByteArrayView(glyf).sliced(offsets[g], offsets[g + 1u] - offsets[g]);
        for (const quint16 part : componentsOf(outline)) {
            if (part < glyphCount && !used[part]) {
                used[part] = true;
                pending.push_back(part);
            }
        }
    }
    QByteArray keptGlyf;
    QByteArray keptLoca;
    for (int g = 0; g < glyphCount; ++g) {
        appendBigEndian32(keptLoca, static_cast<quint32>(keptGlyf.size()));
        if (!used[static_cast<std::size_t>(g)])
            continue;
        keptGlyf.append(glyf.constData() + offsets[static_cast<std::size_t>(g)],
                        offsets[g + 1u] - offsets[static_cast<std::size_t>(g)]);
        keptGlyf.append(QByteArray((4 - keptGlyf.size() % 4) % 4, '\0'));
    }
    appendBigEndian32(keptLoca, static_cast<quint32>(keptGlyf.size()));
    glyf = keptGlyf;
    loca = keptLoca;
    head[HeadIndexToLocFormat] = 0;
    head[HeadIndexToLocFormat + 1] = 1;
    return true;
}

} // namespace

QByteArray fontIdentity(const QRawFont &font)
{
    return font.fontTable("name") + font.fontTable("head");
}

PdfFont::PdfFont(const QRawFont &font) : m_face(font), m_identity(fontIdentity(font))
{
    m_embeddable = true;
    for (const char *tag : RequiredTables)
        m_embeddable = m_embeddable && !m_face.fontTable(tag).isEmpty();
}

bool PdfFont::isFontOf(const QRawFont &font) const
{
    if (font == m_face)
        return true;
    return font.pixelSize() == m_face.pixelSize() && fontIdentity(font) == m_identity;
}

double PdfFont::width(quint32 glyph)
{
    if (glyph >= m_widths.size())
        m_widths.resize(glyph + 1, std::numeric_limits<double>::quiet_NaN());
    double &width = m_widths[glyph];
    if (std::isnan(width)) {
        QPointF advance;
        m_face.advancesForGlyphIndexes(&glyph, &advance, 1, QRawFont::UseDesignMetrics);
        // The table holds six decimals; the text is placed by what it holds.
        width = std::round(advance.x() * 1000 / m_face.pixelSize() * 1e6) / 1e6;
    }
    return width;
}

void PdfFont::mapToText(quint32 glyph, QStringView text)
{
    // Direction marks and the like are invisible and often share one empty
    // glyph: they are left out of the text rather than mistaken for another.
    if (text.size() == 1 && text[0].category() == QChar::Other_Format)
        return;
    if (glyph >= m_texts.size())
        m_texts.resize(glyph + 1);
    if (m_texts[glyph].isEmpty())
        m_texts[glyph] = text.toString();
}

QByteArray PdfFont::baseName() const
{
    // The PostScript name the naming table gives, in Unicode or Mac Roman.
    const QByteArray table = m_face.fontTable("name");
    const int count = unsignedAt(table, 2);
    const int strings = unsignedAt(table, 4);
    QByteArray name;
    for (int record = 0; record < count && name.isEmpty(); ++record) {
        const int at = 6 + 12 * record;
        const int platform = unsignedAt(table, at);
        if (unsignedAt(table, at + 6) != 6 || (platform != 1 && platform != 3))
            continue;
        const int length = unsignedAt(table, at + 8);
        const int offset = strings + unsignedAt(table, at + 10);
        const int step = platform == 3 ? 2 : 1;
        for (int k = step - 1; k < length && offset + k < table.size(); k += step) {
            const char c = table[offset + k];
            // Names are printable ASCII without delimiters.
            if (c > 0x20 && c < 0x7F && !QByteArrayView("()<>[]{}/%#").contains(c))
                name.append(c);
        }
    }
    return name.isEmpty() ? QByteArrayLiteral("Font") : name;
}

QByteArray PdfFont::widthArray() const
{
    QByteArray out("[");
    std::size_t g = 0;
    while (g < m_widths.size()) {
        if (std::isnan(m_widths[g])) {
            ++g;
            continue;
        }
        out.append(QByteArray::number(static_cast<qulonglong>(g)));
        out.append('[');
        for (; g < m_widths.size() && !std::isnan(m_widths[g]); ++g) {
            pdf::appendNumber(out, m_widths[g], 6);
            out.append(' ');
        }
        out.append("]\n");
    }
    out.append(']');
    return out;
}

QByteArray PdfFont::toUnicodeCMap() const
{
    std::vector<std::pair<std::size_t, QString>> entries;
    for (std::size_t g = 0; g < m_texts.size(); ++g) {
        if (!m_texts[g].isEmpty())
            entries.emplace_back(g, m_texts[g]);
    }
    QByteArray out("/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
                   "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
                   "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
                   "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n");
    // A block holds at most a hundred entries.
    for (std::size_t start = 0; start < entries.size(); start += 100) {
        const std::size_t end = std::min(entries.size(), start + 100);
        out.append(QByteArray::number(static_cast<qulonglong>(end - start)) + " beginbfchar\n");
        for (std::size_t k = start; k < end; ++k) {
            out.append('<');
            pdf::appendHex4(out, static_cast<unsigned>(entries[k].first));
            out.append("> <");
            for (const QChar c : entries[k].second)
                pdf::appendHex4(out, c.unicode());
            out.append(">\n");
        }
        out.append("endbfchar\n");
    }
    out.append("endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n");
    return out;
}

QByteArray PdfFont::descriptorEntries() const
{
    const QByteArray head = m_face.fontTable("head");
    const QByteArray hhea = m_face.fontTable("hhea");
    const double unitsPerEm = unsignedAt(head, 18) ? unsignedAt(head, 18) : 1000;
    const auto scaled = [&](qint16 units) {
        return pdf::number(units * 1000.0 / unitsPerEm, 0);
    };
    const QByteArray ascent = scaled(signedAt(hhea, 4));
    QByteArray out("/Flags 32 /FontBBox [");
    out.append(scaled(signedAt(head, 36)) + ' ' + scaled(signedAt(head, 38)) + ' ' +
               scaled(signedAt(head, 40)) + ' ' + scaled(signedAt(head, 42)));
    out.append("] /ItalicAngle 0 /Ascent " + ascent + " /Descent " + scaled(signedAt(hhea, 6)) +
               " /CapHeight " + ascent + " /StemV 80");
    return out;
}

std::vector<bool> PdfFont::usedGlyphs() const
{
    std::vector<bool> used(m_widths.size());
    for (std::size_t g = 0; g < m_widths.size(); ++g)
        used[g] = !std::isnan(m_widths[g]);
    return used;
}

QByteArray PdfFont::fontProgram(const std::vector<bool> &used) const
{
    QByteArray glyf = m_face.fontTable("glyf");
    QByteArray loca = m_face.fontTable("loca");
    QByteArray head = m_face.fontTable("head");
    // A font whose tables do not add up is embedded whole.
    if (!subsetOutlines(glyf, loca, head, m_face.fontTable("maxp"), used)) {
        glyf = m_face.fontTable("glyf");
        loca = m_face.fontTable("loca");
        head = m_face.fontTable("head");
    }
    std::vector<std::pair<const char *, QByteArray>> tables;
    for (const char *tag : ProgramTables) {
        QByteArray data = qstrcmp(tag, "glyf") == 0   ? glyf
                          : qstrcmp(tag, "loca") == 0 ? loca
                          : qstrcmp(tag, "head") == 0 ? head
                                                      : m_face.fontTable(tag);
        if (!data.isEmpty())
            tables.emplace_back(tag, std::move(data));
    }
    const auto count = static_cast<quint16>(tables.size());
    quint16 power = 1;
    quint16 log2 = 0;
    while (power * 2 <= count) {
        power *= 2;
        ++log2;
    }
    QByteArray out;
    appendBigEndian32(out, 0x00010000);
    appendBigEndian16(out, count);
    appendBigEndian16(out, static_cast<quint16>(power * 16));
    appendBigEndian16(out, log2);
    appendBigEndian16(out, static_cast<quint16>(count * 16 - power * 16));
    quint32 offset = 12 + 16u * count;
    qsizetype headAt = -1;
    for (auto &[tag, data] : tables) {
        if (qstrcmp(tag, "head") == 0 && data.size() >= HeadChecksumAdjustment + 4) {
            // The whole font's checksum is set once the font is put together.
            data.replace(HeadChecksumAdjustment, 4, QByteArray(4, '\0'));
            headAt = offset;
        }
        out.append(tag, 4);
        appendBigEndian32(out, checksum(data));
        appendBigEndian32(out, offset);
        appendBigEndian32(out, static_cast<quint32>(data.size()));
        offset += static_cast<quint32>((data.size() + 3) & ~qsizetype(3));
    }
    for (const auto &table : tables) {
        out.append(table.second);
        out.append(QByteArray((4 - table.second.size() % 4) % 4, '\0'));
    }
    if (headAt >= 0) {
        QByteArray adjustment;
        appendBigEndian32(adjustment, 0xB1B0AFBAu - checksum(out));
        out.replace(headAt + HeadChecksumAdjustment, 4, adjustment);
    }
    return out;
}

} // namespace quillet
