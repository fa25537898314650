#include "gridcell.h"

#include <QPainter>

namespace quillet {

namespace {

const QColor EditColour(192, 192, 255);

} // namespace

GridCell::GridCell(GridColumn column, int row, QWidget *parent)
    : QLineEdit(parent), m_column(column), m_row(row)
{
    setFrame(false);
    connect(this, &QLineEdit::textChanged, this, [this] { m_dataChanged = true; });
}

void GridCell::setEditLook(bool editing)
{
    m_editLook = editing;
    setFrame(editing);
    QPalette colours = palette();
    colours.setColor(QPalette::Base, editing ? EditColour : m_background);
    setPalette(colours);
}

void GridCell::setColours(const QColor &background, const QColor &text)
{
    m_background = background;
    QPalette colours = palette();
    colours.setColor(QPalette::Base, background);
    colours.setColor(QPalette::Text, text);
    setPalette(colours);
}

void GridCell::setBold(bool bold)
{
    if (font().bold() == bold)
        return;
    QFont cellFont = font();
    cellFont.setBold(bold);
    setFont(cellFont);
}

void GridCell::paintEvent(QPaintEvent *event)
{
    QLineEdit::paintEvent(event);
    if (m_editLook)
        return;
    // Neighbouring cells overlap by a pixel, so these lines draw one grid.
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace quillet
