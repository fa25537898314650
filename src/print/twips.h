#pragma once

#include <QRect>
#include <QtGlobal>

namespace quillet {

// Windows and pages are laid out in twips, 1/1440 inch. This is the one place
// where twips become pixels: pixels = twips * logical DPI / 1440.
inline constexpr int TwipsPerInch = 1440;

inline qreal twipsToPixels(qreal twips, qreal dpi)
{
    return twips * dpi / TwipsPerInch;
}

inline qreal pixelsToTwips(qreal pixels, qreal dpi)
{
    return pixels * TwipsPerInch / dpi;
}

// A rectangle given in twips as whole pixels. Its edges are rounded rather
// than its size, so rectangles that share an edge in twips share it in pixels.
inline QRect twipsRect(int left, int top, int width, int height, qreal dpi)
{
    const int x0 = qRound(twipsToPixels(left, dpi));
    const int y0 = qRound(twipsToPixels(top, dpi));
    const int x1 = qRound(twipsToPixels(left + width, dpi));
    const int y1 = qRound(twipsToPixels(top + height, dpi));
    return QRect(x0, y0, x1 - x0, y1 - y0);
}

} // namespace quillet
