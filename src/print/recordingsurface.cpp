#include "recordingsurface.h"

namespace quillet {

RecordingSurface::RecordingSurface(double pageHeight) : m_pageHeight(pageHeight) {}

std::vector<RecordingSurface::Mark> RecordingSurface::texts() const
{
    std::vector<Mark> texts;
    for (const Mark &mark : m_marks) {
        if (mark.kind == Mark::Kind::Text)
            texts.push_back(mark);
    }
    return texts;
}

bool RecordingSurface::endDoc()
{
    m_ended = true;
    return m_failure.isEmpty();
}

void RecordingSurface::abortDoc()
{
    m_aborted = true;
}

double RecordingSurface::lineHeight() const
{
    return fontSize() * LineHeightPerPoint;
}

void RecordingSurface::startNewPage()
{
    ++m_page;
}

void RecordingSurface::drawText(double x, double y, const QString &text)
{
    Mark mark;
    mark.kind = Mark::Kind::Text;
    mark.page = m_page;
    mark.x = x;
    mark.y = y;
    mark.text = text;
    mark.fontSize = fontSize();
    mark.bold = fontBold();
    m_marks.push_back(mark);
}

void RecordingSurface::drawBox(double x1, double y1, double x2, double y2)
{
    Mark mark;
    mark.kind = Mark::Kind::Box;
    mark.page = m_page;
    mark.x = x1;
    mark.y = y1;
    mark.x2 = x2;
    mark.y2 = y2;
    m_marks.push_back(mark);
}

void RecordingSurface::drawSegment(double x1, double y1, double x2, double y2, double thickness)
{
    Mark mark;
    mark.kind = Mark::Kind::Line;
    mark.page = m_page;
    mark.x = x1;
    mark.y = y1;
    mark.x2 = x2;
    mark.y2 = y2;
    mark.thickness = thickness;
    m_marks.push_back(mark);
}

} // namespace quillet
