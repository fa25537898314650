#include "headerfield.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace quillet {

HeaderField::HeaderField(GridColumn field, QWidget *parent) : QLineEdit(parent), m_field(field)
{
    setFrame(false);
    setEditLook(false);
    connect(this, &QLineEdit::textChanged, this, [this] {
        m_dataChanged = true;
        setToolTip(isElided() ? text() : QString());
        setAccessibleDescription(toolTip());
    });
}

void HeaderField::setEditLook(bool editing)
{
    m_editLook = editing;
    setFrame(editing);
    // At rest the field reads as plain text on the window.
    QPalette colours = palette();
    colours.setColor(QPalette::Base,
                     QApplication::palette().color(editing ? QPalette::Base : QPalette::Window));
    setPalette(colours);
    update();
}

void HeaderField::setBold(bool bold)
{
    if (font().bold() == bold)
        return;
    QFont fieldFont = font();
    fieldFont.setBold(bold);
    setFont(fieldFont);
}

bool HeaderField::isElided() const
{
    if (m_editLook)
        return false;
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect room = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    return fontMetrics().horizontalAdvance(text()) > room.width() - 4;
}

void HeaderField::paintEvent(QPaintEvent *event)
{
    if (!isElided()) {
        QLineEdit::paintEvent(event);
        return;
    }
    // A text wider than the box would be shown cut at one end and read as
    // another number: it is drawn shortened with an ellipsis instead.
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(isEnabled() ? QPalette::Base : QPalette::Window));
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect room =
        style()->subElementRect(QStyle::SE_LineEditContents, &option, this).adjusted(2, 0, -2, 0);
    painter.setPen(palette().color(isEnabled() ? QPalette::Text : QPalette::PlaceholderText));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(text(), Qt::ElideRight, room.width()));
}

} // namespace quillet
