#pragma once

#include "characterpairs.h"
#include "paintedtext.h"

#include <QFont>
#include <QHash>
#include <QList>
#include <QPointF>
#include <QRawFont>
#include <QString>

#include <cstddef>
#include <limits>
#include <vector>

namespace quillet {

// Lays texts out in one font at one resolution exactly as QPainter::drawText
// sets them, quickly for the texts printouts are made of. A text of plain
// left-to-right characters (figures, Latin words, symbols) is set glyph by
// glyph from advances learnt per pair of characters, the characters the
// font lacks taken from the painter's own layout of them; any other text
// (right to left, marks, ligatures, other scripts) is laid out whole by the
// painter's rules.
class PrinterText final
{
public:
    PrinterText(const QFont &font, int dotsPerInch);

    // The glyph runs of a text from the start of its baseline. Only glyphs
    // that reach between `left` and `right` along the baseline are kept,
    // each where the whole text puts it.
    QList<PaintedRun> glyphRuns(const QString &text,
                                double left = -std::numeric_limits<double>::infinity(),
                                double right = std::numeric_limits<double>::infinity());

    const QRawFont &rawFont() const { return m_rawFont; }

private:
    // What is known of a character: its number among the plain characters
    // met, or that the font lacks it, or that it needs the full layout.
    static constexpr quint8 Unseen = CharacterPairs<QPointF>::Unseen;
    static constexpr quint8 Lacking = 0xFE;
    static constexpr quint8 Shaped = CharacterPairs<QPointF>::Refused;

    quint8 kind(QChar c)
    {
        const quint8 known = m_pairs.kind(c);
        return known != Unseen ? known : learn(c);
    }
    quint8 learn(QChar c);
    QPointF advance(quint8 kind, quint8 nextKind);
    bool isPlain(const QString &text);
    QList<PaintedRun> plainRuns(const QString &text, double left, double right);
    // Characters the font lacks, as the painter sets them alone.
    PaintedText paintedLacking(const QString &characters);

    QFont m_font;
    int m_dotsPerInch;
    QRawFont m_rawFont;
    CharacterPairs<QPointF> m_pairs; // kerned advances
    std::vector<quint32> m_glyphs;   // the glyph of each numbered character
    QHash<QString, PaintedText> m_lacking;
};

} // namespace quillet
