#pragma once

#include "helptexts.h"

#include <QLineEdit>

namespace quillet {

// One scenario field of a schedule window's header: plain text until it is
// clicked, then a framed box to type in. Like a grid cell it keeps a changed
// flag that every change of the text raises, the program's own included,
// and that only the program lowers.
class HeaderField final : public QLineEdit
{
    Q_OBJECT

public:
    HeaderField(GridColumn field, QWidget *parent);

    GridColumn field() const { return m_field; }

    bool DataChanged() const { return m_dataChanged; }
    void setDataChanged(bool changed) { m_dataChanged = changed; }

    void setEditLook(bool editing);
    bool hasEditLook() const { return m_editLook; }

    void setBold(bool bold);
    bool isBold() const { return font().bold(); }

    // True while the resting text is wider than the box and drawn cut short.
    bool isElided() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    GridColumn m_field;
    bool m_dataChanged = false;
    bool m_editLook = false;
};

} // namespace quillet
