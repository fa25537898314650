#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QStringView>

#include <memory>
#include <optional>

namespace quillet {

// Measures text in a window's font, in twips and single precision, the way
// the program places text on screen and on the printed page.
class TextMeasure final
{
public:
    TextMeasure(const QFont &font, qreal logicalDpi);

    float width(QStringView text) const;
    float height(QStringView text) const;
    const QFont &font() const { return m_font; }

private:
    struct PairAdvances;

    // The width in pixels the font engine gives the whole text, summed from
    // the advances of its characters each laid out before the next; none
    // when a character might take part in more than a pair (a ligature, a
    // mark, a direction or format character) or too many kinds are met.
    std::optional<qreal> pairedWidth(QStringView text) const;

    QFont m_font;
    QFontMetricsF m_metrics;
    qreal m_dpi;
    // Learnt as characters are met and shared by copies: a schedule's long
    // figures then cost a look-up a character instead of a shaping each.
    std::shared_ptr<PairAdvances> m_pairs;
};

// Whether a character's advance depends on the next character alone, and it
// is set left to right whatever surrounds it: such characters can be set
// and measured from advances learnt per pair.
bool isPairedCharacter(QChar c);

// The longest beginning of s that is at most w twips wide in the measure's
// font (equality fits); the empty text when not even one character fits.
// A text that fits costs one measurement.
QString Fit(const QString &s, int w, const TextMeasure &measure);

} // namespace quillet
