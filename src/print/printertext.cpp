#include "printertext.h"

#include "textmeasure.h"

#include <QGuiApplication>

#include <algorithm>

namespace quillet {

namespace {

// Whether a glyph from `from` to `to` along the baseline reaches between
// left and right.
bool reaches(double from, double to, double left, double right)
{
    return std::max(from, to) > left && std::min(from, to) < right;
}

// The glyphs of runs that reach between left and right, the last glyph's
// end taken as its place plus its advance.
PaintedRun withinReach(const PaintedRun &run, double left, double right)
{
    const QList<quint32> glyphs = run.glyphs.glyphIndexes();
    const QList<QPointF> positions = run.glyphs.positions();
    QList<quint32> keptGlyphs;
    QList<QPointF> keptPositions;
    QString keptCharacters;
    for (qsizetype n = 0; n < glyphs.size(); ++n) {
        const double x = positions[n].x();
        double end = 0;
        if (n + 1 < positions.size()) {
            end = positions[n + 1].x();
        } else {
            QPointF advance;
            quint32 glyph = glyphs[n];
            run.glyphs.rawFont().advancesForGlyphIndexes(&glyph, &advance, 1,
                                                         QRawFont::UseDesignMetrics);
            end = x + advance.x();
        }
        if (reaches(x, end, left, right)) {
            keptGlyphs.append(glyphs[n]);
            keptPositions.append(positions[n]);
            if (!run.characters.isEmpty())
                keptCharacters.append(run.characters[n]);
        }
    }
    PaintedRun kept{run.glyphs, keptCharacters};
    kept.glyphs.setGlyphIndexes(keptGlyphs);
    kept.glyphs.setPositions(keptPositions);
    return kept;
}

} // namespace

PrinterText::PrinterText(const QFont &font, int dotsPerInch)
    : m_font(font), m_dotsPerInch(dotsPerInch),
      m_rawFont(QRawFont::fromFont(fontAtResolution(font, dotsPerInch)))
{}

quint8 PrinterText::learn(QChar c)
{
    if (!isPairedCharacter(c)) {
        m_pairs.mark(c, Shaped);
        return Shaped;
    }
    const QList<quint32> glyph = m_rawFont.glyphIndexesForString(QString(c));
    if (glyph.size() != 1 || glyph[0] == 0) {
        m_pairs.mark(c, Lacking);
        return Lacking;
    }
    const quint8 k = m_pairs.number(c);
    if (k != Shaped)
        m_glyphs.push_back(glyph[0]);
    return k;
}

QPointF PrinterText::advance(quint8 kind, quint8 nextKind)
{
    // The font kerns a glyph against the next one only, and only against a
    // glyph of its own: the advance of a pair is the advance it has in any
    // text.
    const quint8 next = nextKind == Lacking ? Unseen : nextKind;
    return m_pairs.pair(kind, next, [this](quint8 k, quint8 after) {
        QList<quint32> pair{m_glyphs[k - 1u]};
        if (after != Unseen)
            pair.append(m_glyphs[after - 1u]);
        return m_rawFont.advancesForGlyphIndexes(pair, QRawFont::KernedAdvances |
                                                           QRawFont::UseDesignMetrics)[0];
    });
}

bool PrinterText::isPlain(const QString &text)
{
    // A painter set right to left reverses even plain texts.
    if (QGuiApplication::layoutDirection() != Qt::LeftToRight)
        return false;
    return std::none_of(text.cbegin(), text.cend(), [this](QChar c) { return kind(c) == Shaped; });
}

QList<PaintedRun> PrinterText::glyphRuns(const QString &text, double left, double right)
{
    QList<PaintedRun> runs;
    if (isPlain(text)) {
        runs = plainRuns(text, left, right);
    } else {
        for (const PaintedRun &run : paintedGlyphRuns(text, m_font, m_dotsPerInch))
            runs.append(withinReach(run, left, right));
    }
    runs.removeIf([](const PaintedRun &run) { return run.glyphs.glyphIndexes().isEmpty(); });
    return runs;
}

PaintedText PrinterText::paintedLacking(const QString &characters)
{
    // A locale's currency sign the font lacks comes back in every figure.
    auto known = m_lacking.constFind(characters);
    if (known == m_lacking.cend())
        known = m_lacking.insert(characters, paintedText(characters, m_font, m_dotsPerInch));
    return *known;
}

QList<PaintedRun> PrinterText::plainRuns(const QString &text, double left, double right)
{
    QList<PaintedRun> runs;
    QList<quint32> glyphs;
    QList<QPointF> positions;
    QString characters;
    const auto endRun = [&] {
        if (glyphs.isEmpty())
            return;
        QGlyphRun run;
        run.setRawFont(m_rawFont);
        run.setGlyphIndexes(glyphs);
        run.setPositions(positions);
        runs.append({run, characters});
        glyphs.clear();
        positions.clear();
        characters.clear();
    };
    // Each glyph is placed by the pen summed over every advance before it,
    // but only the glyphs within reach are gathered.
    QPointF pen;
    const qsizetype count = text.size();
    qsizetype n = 0;
    quint8 k = count > 0 ? kind(text[0]) : Unseen;
    while (n < count) {
        if (k == Lacking) {
            // Characters the font lacks come from the fonts the painter
            // finds for them, set as it sets them.
            qsizetype end = n;
            while (end < count && kind(text[end]) == Lacking)
                ++end;
            endRun();
            PaintedText lacking = paintedLacking(text.sliced(n, end - n));
            for (PaintedRun &run : lacking.runs) {
                QList<QPointF> placed = run.glyphs.positions();
                for (QPointF &position : placed)
                    position += pen;
                run.glyphs.setPositions(placed);
                runs.append(withinReach(run, left, right));
            }
            pen.rx() += lacking.advance;
            n = end;
            k = n < count ? kind(text[n]) : Unseen;
            continue;
        }
        const quint8 next = n + 1 < count ? kind(text[n + 1]) : Unseen;
        const QPointF at = pen;
        pen += advance(k, next);
        if (reaches(at.x(), pen.x(), left, right)) {
            glyphs.append(m_glyphs[k - 1u]);
            positions.append(at);
            characters.append(text[n]);
        }
        ++n;
        k = next;
    }
    endRun();
    return runs;
}

} // namespace quillet
