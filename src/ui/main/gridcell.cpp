#include "gridcell.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace quillet {

namespace {

const QColor EditColour(192, 192, 255);

// The blank QLineEdit leaves on each side of its text.
constexpr int TextMargin = 2;

} // namespace

GridCell::GridCell(GridColumn column, int row, QWidget *parent)
    : QLineEdit(parent), m_column(column), m_row(row)
{
    setFrame(false);
    connect(this, &QLineEdit::textChanged, this, [this] {
        m_dataChanged = true;
        updateOverflow();
    });
}

void GridCell::setEditLook(bool editing)
{
    m_editLook = editing;
    setFrame(editing);
    QPalette colours = palette();
    colours.setColor(QPalette::Base, editing ? EditColour : m_background);
    setPalette(colours);
    updateOverflow();
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
    updateOverflow();
}

void GridCell::setFieldToolTip(const QString &tip)
{
    m_fieldToolTip = tip;
    updateOverflow();
}

QRect GridCell::textArea() const
{
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    return contents.adjusted(TextMargin, 0, -TextMargin, 0);
}

bool GridCell::textFits() const
{
    return fontMetrics().horizontalAdvance(text()) <= textArea().width();
}

QString GridCell::shownText() const
{
    if (m_editLook || textFits())
        return text();
    // A cut-off number must never read as another, smaller one.
    const Qt::TextElideMode side = alignment() & Qt::AlignRight ? Qt::ElideLeft : Qt::ElideRight;
    return fontMetrics().elidedText(text(), side, textArea().width());
}

void GridCell::updateOverflow()
{
    const bool cut = !m_editLook && !textFits();
    setToolTip(cut ? m_fieldToolTip + u'\n' + text() : m_fieldToolTip);
    setAccessibleDescription(cut ? text() : QString());
}

void GridCell::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    updateOverflow();
}

void GridCell::paintEvent(QPaintEvent *event)
{
    const bool fits = textFits();
    if (m_editLook || fits)
        QLineEdit::paintEvent(event);
    if (m_editLook)
        return;
    QPainter painter(this);
    if (!fits) {
        painter.fillRect(rect(), palette().color(QPalette::Base));
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(textArea(), static_cast<int>(alignment()), shownText());
    }
    // Neighbouring cells overlap by a pixel, so these lines draw one grid.
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace quillet
