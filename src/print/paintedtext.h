#pragma once

#include <QFont>
#include <QGlyphRun>
#include <QList>
#include <QString>

namespace quillet {

// A glyph run of a text and the characters its glyphs stand for, one a
// glyph in the order of the glyphs, or empty when that is not one for one.
struct PaintedRun
{
    QGlyphRun glyphs;
    QString characters;
};

// A text as the painter sets it: its glyph runs and how far it moves the pen.
struct PaintedText
{
    QList<PaintedRun> runs;
    qreal advance = 0;
};

// The font as it is on a device of the given resolution.
QFont fontAtResolution(const QFont &font, int dotsPerInch);

// The glyphs of a text exactly as QPainter::drawText(point, text) sets them
// on a device of the given resolution: shaped, in other fonts where the font
// lacks a character, and ordered for display direction by direction,
// positioned from the point on the baseline where the text starts.
PaintedText paintedText(const QString &text, const QFont &font, int dotsPerInch);
QList<PaintedRun> paintedGlyphRuns(const QString &text, const QFont &font, int dotsPerInch);

} // namespace quillet
