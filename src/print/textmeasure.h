#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QStringView>

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
    QFont m_font;
    QFontMetricsF m_metrics;
    qreal m_dpi;
};

// The longest beginning of s that is at most w twips wide in the measure's
// font (equality fits); the empty text when not even one character fits.
// A text that fits costs one measurement.
QString Fit(const QString &s, int w, const TextMeasure &measure);

} // namespace quillet
