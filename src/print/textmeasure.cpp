#include "textmeasure.h"

#include "twips.h"

#include <cmath>
#include <limits>
#include <vector>

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

// Each character met gets a small number; the advance of a character before
// another is kept at [its number][the other's], before the end of the text
// in the last column. Advances are multiples of 1/64 pixel, so their sum is
// exactly the width the font engine adds up for the whole text.
struct TextMeasure::PairAdvances
{
    static constexpr std::size_t MaxKinds = 64;
    static constexpr std::size_t End = MaxKinds;
    static constexpr quint8 Unseen = 0;
    static constexpr quint8 Unpaired = 0xFF;

    std::vector<quint8> kinds = std::vector<quint8>(0x10000, Unseen);
    std::vector<QChar> characters;
    std::vector<qreal> advances =
        std::vector<qreal>(MaxKinds * (MaxKinds + 1), std::numeric_limits<qreal>::quiet_NaN());

    // The character's number from 1, or Unpaired.
    quint8 kind(QChar c)
    {
        quint8 &k = kinds[c.unicode()];
        if (k == Unseen) {
            if (!isPairedCharacter(c) || characters.size() >= MaxKinds) {
                k = Unpaired;
            } else {
                characters.push_back(c);
                k = static_cast<quint8>(characters.size());
            }
        }
        return k;
    }

    qreal advance(const QFontMetricsF &metrics, quint8 kind, quint8 nextKind)
    {
        const std::size_t column = nextKind == Unseen ? End : nextKind - std::size_t{1};
        qreal &a = advances[(kind - std::size_t{1}) * (MaxKinds + 1) + column];
        if (std::isnan(a)) {
            const QChar c = characters[kind - 1];
            if (nextKind == Unseen) {
                a = metrics.horizontalAdvance(QString(c));
            } else {
                const QChar next = characters[nextKind - 1];
                a = metrics.horizontalAdvance(QString(c) + next) -
                    metrics.horizontalAdvance(QString(next));
            }
        }
        return a;
    }
};

TextMeasure::TextMeasure(const QFont &font, qreal logicalDpi)
    : m_font(font), m_metrics(font), m_dpi(logicalDpi), m_pairs(std::make_shared<PairAdvances>())
{}

std::optional<qreal> TextMeasure::pairedWidth(QStringView text) const
{
    qreal sum = 0;
    quint8 next = text.isEmpty() ? PairAdvances::Unseen : m_pairs->kind(text.front());
    for (qsizetype n = 0; n < text.size(); ++n) {
        const quint8 kind = next;
        next = n + 1 < text.size() ? m_pairs->kind(text[n + 1]) : PairAdvances::Unseen;
        if (kind == PairAdvances::Unpaired || next == PairAdvances::Unpaired)
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
