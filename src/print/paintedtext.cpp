#include "paintedtext.h"

#include <QFontMetricsF>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <climits>

namespace quillet {

namespace {

// A piece of text as the painter hands it to a paint engine: one font, one
// direction, already placed.
struct TextPiece
{
    QPointF origin;
    QString text;
    QFont font;
    bool rightToLeft = false;
};

// A paint engine that keeps the pieces of text it is asked to draw and
// draws nothing.
class TextPieceEngine final : public QPaintEngine
{
public:
    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState &) override {}
    void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
    Type type() const override { return User; }
    void drawTextItem(const QPointF &origin, const QTextItem &item) override
    {
        m_pieces.append({origin, item.text(), item.font(),
                         item.renderFlags().testFlag(QTextItem::RightToLeft)});
    }

    const QList<TextPiece> &pieces() const { return m_pieces; }

private:
    QList<TextPiece> m_pieces;
};

// A device of a resolution and no size, which paints into the engine above.
class TextPieceDevice final : public QPaintDevice
{
public:
    explicit TextPieceDevice(int dotsPerInch) : m_dotsPerInch(dotsPerInch) {}
    QPaintEngine *paintEngine() const override { return &m_engine; }
    const QList<TextPiece> &pieces() const { return m_engine.pieces(); }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return m_dotsPerInch;
        case PdmWidth:
        case PdmHeight:
            return INT_MAX / 2;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        case PdmNumColors:
            return INT_MAX;
        default:
            return 0;
        }
    }

private:
    int m_dotsPerInch;
    mutable TextPieceEngine m_engine;
};

// Whether a piece comes from amid right-to-left text: Arabic figures, which
// the painter set left to right inside a right-to-left embedding. Laid out in
// a right-to-left paragraph they stay one left-to-right run, as the painter
// had them; in a left-to-right paragraph Qt splits Persian figures into a
// run for each group of digits, five times slower.
bool readsAmidRightToLeft(const QString &text)
{
    return std::any_of(text.cbegin(), text.cend(), [](QChar c) {
        switch (c.direction()) {
        case QChar::DirR:
        case QChar::DirAL:
        case QChar::DirAN:
            return true;
        default:
            return c.script() == QChar::Script_Arabic;
        }
    });
}

// Lays one piece out alone: it has one direction and one font, so it is
// shaped as it was when the painter set it.
QList<PaintedRun> runsOfPiece(const TextPiece &piece)
{
    QTextLayout layout(piece.text, piece.font);
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(
        piece.rightToLeft || readsAmidRightToLeft(piece.text) ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (line.isValid())
        line.setNumColumns(static_cast<int>(piece.text.size()));
    layout.endLayout();
    if (!line.isValid())
        return {};
    const QPointF shift = piece.origin - QPointF(line.x(), line.y() + line.ascent());
    const QList<QGlyphRun> glyphRuns = layout.glyphRuns();
    QList<PaintedRun> runs;
    for (QGlyphRun glyphs : glyphRuns) {
        // Characters no installed font has come without a font at all.
        if (!glyphs.rawFont().isValid())
            continue;
        QList<QPointF> positions = glyphs.positions();
        for (QPointF &position : positions)
            position += shift;
        glyphs.setPositions(positions);
        // One glyph a character in a piece of one run: the glyphs are its
        // characters in order, whatever the direction they are read in.
        const bool oneForOne =
            glyphRuns.size() == 1 && glyphs.glyphIndexes().size() == piece.text.size();
        runs.append({glyphs, oneForOne ? piece.text : QString()});
    }
    return runs;
}

} // namespace

QFont fontAtResolution(const QFont &font, int dotsPerInch)
{
    const TextPieceDevice device(dotsPerInch);
    return QFont(font, &device);
}

QList<PaintedRun> paintedGlyphRuns(const QString &text, const QFont &font, int dotsPerInch)
{
    TextPieceDevice device(dotsPerInch);
    {
        QPainter painter(&device);
        painter.setFont(font);
        painter.drawText(QPointF(0, 0), text);
    }
    QList<PaintedRun> runs;
    for (const TextPiece &piece : device.pieces())
        runs.append(runsOfPiece(piece));
    return runs;
}

PaintedText paintedText(const QString &text, const QFont &font, int dotsPerInch)
{
    // The painter moves on by the text's width as the font engine lays it
    // out.
    return {paintedGlyphRuns(text, font, dotsPerInch),
            QFontMetricsF(fontAtResolution(font, dotsPerInch)).horizontalAdvance(text)};
}

} // namespace quillet
