#include "textmeasure.h"

#include "characterpairs.h"
#include "twips.h"

namespace quillet {

// Characters whose advance depends on the next character alone: no letter
// 'f' (which starts every ligature of the program's fonts), nothing that
// reads right to left or takes its direction from its neighbours (marks,
// format characters such as the soft hyphen), and nothing outside the Latin
// and common scripts, which may come from another font and be shaped.
bool isPairedCharacter(QChar c)
{
    if (c.isSurrogate() || c == u'f' || c == u'\u017F')
        return false;
    switch (c.direction()) {
    case QChar::DirL:
    case QChar::DirEN:
    case QChar::DirES:
    case QChar::DirET:
    case QChar::DirCS:
    case QChar::DirWS:
    case QChar::DirON:
        break;
    default:
        return false;
    }
    return c.script() == QChar::Script_Common || c.script() == QChar::Script_Latin;
}

// The advance of a character before another, or before the end of a text.
// Advances are multiples of 1/64 pixel, so their sum is exactly the width the
// font engine adds up for the whole text.
struct TextMeasure::PairAdvances
{
    CharacterPairs<qreal> pairs;

    // The character's number from 1, or Refused.
    quint8 kind(QChar c)
    {
        const quint8 k = pairs.kind(c);
        if (k != CharacterPairs<qreal>::Unseen)
            return k;
        if (!isPairedCharacter(c)) {
            pairs.mark(c, CharacterPairs<qreal>::Refused);
            return CharacterPairs<qreal>::Refused;
        }
        return pairs.number(c);
    }

    qreal advance(const QFontMetricsF &metrics, quint8 kind, quint8 nextKind)
    {
        return pairs.pair(kind, nextKind, [&](quint8 k, quint8 next) {
            const QChar c = pairs.character(k);
            if (next == CharacterPairs<qreal>::Unseen)
                return metrics.horizontalAdvance(QString(c));
            const QChar after = pairs.character(next);
            return metrics.horizontalAdvance(QString(c) + after) -
                   metrics.horizontalAdvance(QString(after));
        });
    }
};

TextMeasure::TextMeasure(const QFont &font, qreal logicalDpi)
    : m_font(font), m_metrics(font), m_dpi(logicalDpi), m_pairs(std::make_shared<PairAdvances>())
{}

std::optional<qreal> TextMeasure::pairedWidth(QStringView text) const
{
    qreal sum = 0;
    constexpr quint8 End = CharacterPairs<qreal>::Unseen;
    constexpr quint8 Unpaired = CharacterPairs<qreal>::Refused;
    quint8 next = text.isEmpty() ? End : m_pairs->kind(text.front());
    for (qsizetype n = 0; n < text.size(); ++n) {
        const quint8 kind = next;
        next = n + 1 < text.size() ? m_pairs->kind(text[n + 1]) : End;
        if (kind == Unpaired || next == Unpaired)
            return std::nullopt;
        sum += m_pairs->advance(m_metrics, kind, next);
    }
    return sum;
}

float TextMeasure::width(QStringView text) const
{
    const std::optional<qreal> paired = pairedWidth(text);
    const qreal pixels = paired ? *paired : m_metrics.horizontalAdvance(text.toString());
    return static_cast<float>(pixelsToTwips(pixels, m_dpi));
}

float TextMeasure::height(QStringView text) const
{
    Q_UNUSED(text);
    // Every line of a font is as high as the font, whatever its characters.
    return static_cast<float>(pixelsToTwips(m_metrics.height(), m_dpi));
}

QString Fit(const QString &s, int w, const TextMeasure &measure)
{
    const float limit = static_cast<float>(w);
    qsizetype i = s.size();
    for (; i >= 1; --i) {
        if (measure.width(QStringView(s).first(i)) <= limit)
            break;
    }
    return s.first(i);
}

} // namespace quillet
