#pragma once

#include "helptexts.h"

#include <QLineEdit>

namespace quillet {

// One cell of the grid. It keeps a changed flag that, unlike Qt's modified
// flag, is raised by every change of the text, the program's own included,
// and is lowered only when the program says so: whether a cell is saved when
// it is left depends on exactly that.
class GridCell final : public QLineEdit
{
    Q_OBJECT

public:
    GridCell(GridColumn column, int row, QWidget *parent);

    GridColumn column() const { return m_column; }
    int row() const { return m_row; }

    bool DataChanged() const { return m_dataChanged; }
    void setDataChanged(bool changed) { m_dataChanged = changed; }

    // The edit look (framed, in the edit colour) from a click to the moment
    // the cell is left; otherwise the resting look of a flat grid cell.
    void setEditLook(bool editing);
    bool hasEditLook() const { return m_editLook; }

    // Background and text colours of the resting look.
    void setColours(const QColor &background, const QColor &text);
    void setBold(bool bold);
    bool isBold() const { return font().bold(); }

    // The column's tool tip. While the text is wider than the cell, the tip
    // and the accessible description also give the whole text.
    void setFieldToolTip(const QString &tip);
    // Whether the whole text shows at rest; what the cell shows when it does
    // not: the text elided with "…" on the side that is cut.
    bool textFits() const;
    QString shownText() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QRect textArea() const;
    void updateOverflow();

    GridColumn m_column;
    int m_row;
    bool m_dataChanged = false;
    bool m_editLook = false;
    QColor m_background;
    QString m_fieldToolTip;
};

} // namespace quillet
