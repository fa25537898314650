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

bool ScheduleCell::isElided() const
{
    return fontMetrics().horizontalAdvance(text()) > contentsRect().width();
}

void ScheduleCell::paintEvent(QPaintEvent *event)
{
    if (!isElided()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QRect room = contentsRect();
    // Right-aligned figures lose their left end, left-aligned ones the right.
    const Qt::TextElideMode mode = alignment() & Qt::AlignRight ? Qt::ElideLeft : Qt::ElideRight;
    painter.drawText(room, int(alignment()), fontMetrics().elidedText(text(), mode, room.width()));
}

} // namespace quillet
