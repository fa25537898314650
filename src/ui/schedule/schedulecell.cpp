#include "schedulecell.h"

#include <QPainter>

namespace quillet {

ScheduleCell::ScheduleCell(QWidget *parent) : QLabel(parent) {}

void ScheduleCell::setCellText(const QString &text)
{
    setText(text);
    const bool elided = isElided();
    setToolTip(elided ? text : QString());
    setAccessibleDescription(elided ? text : QString());
}

int ScheduleCell::textWidth() const
{
    return fontMetrics().horizontalAdvance(text());
}

bool ScheduleCell::isSqueezed() const
{
    const int room = contentsRect().width();
    return textWidth() > room && textWidth() * NarrowestSqueeze <= room;
}

bool ScheduleCell::isElided() const
{
    return textWidth() * NarrowestSqueeze > contentsRect().width();
}

void ScheduleCell::paintEvent(QPaintEvent *event)
{
    const QRect room = contentsRect();
    const int needed = textWidth();
    if (needed <= room.width()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    if (isSqueezed()) {
        // Four-digit periods in the narrow period column, for one.
        painter.translate(room.left(), 0);
        painter.scale(qreal(room.width()) / needed, 1);
        painter.drawText(QRect(0, room.top(), needed, room.height()), int(alignment()), text());
        return;
    }
    // Right-aligned figures lose their left end, left-aligned ones the right.
    const Qt::TextElideMode mode = alignment() & Qt::AlignRight ? Qt::ElideLeft : Qt::ElideRight;
    painter.drawText(room, int(alignment()), fontMetrics().elidedText(text(), mode, room.width()));
}

} // namespace quillet
