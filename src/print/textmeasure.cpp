#include "textmeasure.h"

#include "twips.h"

namespace quillet {

TextMeasure::TextMeasure(const QFont &font, qreal logicalDpi)
    : m_font(font), m_metrics(font), m_dpi(logicalDpi)
{}

float TextMeasure::width(QStringView text) const
{
    return static_cast<float>(pixelsToTwips(m_metrics.horizontalAdvance(text.toString()), m_dpi));
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
