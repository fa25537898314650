#include "printsurface.h"

#include <cmath>

namespace quillet {

void PrintSurface::setFontSize(double points)
{
    m_fontSize = points;
    fontChanged();
}

void PrintSurface::setFontBold(bool bold)
{
    m_fontBold = bold;
    fontChanged();
}

void PrintSurface::placeText(double y, double height)
{
    const bool sameLine = m_pageUsed && std::abs(y - m_lastTextTop) < height / 2;
    if (!sameLine && y + height > m_pageTop + pageHeight()) {
        // A fresh page has nothing to leave behind: the line moves to its
        // top instead of leaving it empty.
        if (m_pageUsed) {
            startNewPage();
            ++m_page;
        }
        m_pageTop = y;
        m_pageUsed = false;
    }
    m_lastTextTop = y;
}

void PrintSurface::printLine(const QString &text)
{
    const double height = lineHeight();
    const double y = m_y;
    placeText(y, height);
    drawText(m_x, y - m_pageTop, text);
    m_pageUsed = true;
    m_x = 0;
    m_y = y + height;
}

void PrintSurface::fillBox(double x1, double y1, double x2, double y2)
{
    drawBox(x1, y1 - m_pageTop, x2, y2 - m_pageTop);
    m_pageUsed = true;
    m_x = x2;
    m_y = y2;
}

void PrintSurface::drawLine(double x1, double y1, double x2, double y2, double thickness)
{
    drawSegment(x1, y1 - m_pageTop, x2, y2 - m_pageTop, thickness);
    m_pageUsed = true;
    m_x = x2;
    m_y = y2;
}

} // namespace quillet
