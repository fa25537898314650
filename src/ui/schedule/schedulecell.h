#pragma once

#include <QLabel>

namespace quillet {

// One figure of a schedule table. A text wider than its cell is drawn
// shortened with an ellipsis on the side that is cut, never cut silently
// into what would read as another number; the whole text is then its tool
// tip and accessible description. text() is always the whole text.
class ScheduleCell final : public QLabel
{
    Q_OBJECT

public:
    explicit ScheduleCell(QWidget *parent);

    void setCellText(const QString &text);
    bool isElided() const;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace quillet
