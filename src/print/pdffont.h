#pragma once

#include <QByteArray>
#include <QRawFont>
#include <QString>

#include <vector>

namespace quillet {

// What tells one font face from another: its naming and header tables. A
// face's family name is not enough, and Qt may not know one.
QByteArray fontIdentity(const QRawFont &font);

// One font of a PDF document: the glyphs drawn with it, their widths and the
// characters they stand for, and the font program to embed. Glyphs are
// addressed by their index in the font (Identity encoding), so any glyph
// the text layout chose can be drawn, whatever its character.
class PdfFont final
{
public:
    explicit PdfFont(const QRawFont &font);

    // The same face at the same size.
    bool isFontOf(const QRawFont &font) const;
    // The same face, whatever its size: the same font program.
    bool hasFaceOf(const PdfFont &other) const { return m_identity == other.m_identity; }
    double size() const { return m_face.pixelSize(); }
    // True when the font's TrueType outlines can be embedded; a font without
    // them (CFF outlines) is drawn as filled paths instead.
    bool embeddable() const { return m_embeddable; }

    // A glyph's advance without kerning at the font's size, in thousandths
    // of an em, as the document's width table states it; remembered as
    // used. Each size has a table of its own, so that text set by the
    // font's advances at that size needs no adjusting but for kerning.
    double width(quint32 glyph);
    // Records the text a glyph stands for, when it is the first said.
    void mapToText(quint32 glyph, QStringView text);

    // The font's PDF name, without spaces.
    QByteArray baseName() const;
    // The objects' bodies.
    QByteArray widthArray() const;
    QByteArray toUnicodeCMap() const;
    QByteArray descriptorEntries() const; // bounding box, ascent, descent, flags
    // The glyphs drawn with this font, by index.
    std::vector<bool> usedGlyphs() const;
    // The font program: an sfnt rebuilt from the face's tables, keeping the
    // outlines of the used glyphs (and of the parts they are built of) and
    // leaving the others empty, so that glyph indexes stay as they are.
    QByteArray fontProgram(const std::vector<bool> &used) const;

private:
    QRawFont m_face;
    QByteArray m_identity;
    bool m_embeddable = false;
    std::vector<double> m_widths; // NaN where not yet used
    std::vector<QString> m_texts; // empty where unknown
};

} // namespace quillet
