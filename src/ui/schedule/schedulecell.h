#pragma once

#include <QLabel>

namespace quillet {

// One figure of a schedule table. A text a little wider than its cell is
// drawn narrower, whole; one much wider is drawn shortened with an ellipsis
// on the side that is cut, never cut silently into what would read as
// another number, and the whole text is then its tool tip and accessible
// description. text() is always the whole text.
class ScheduleCell final : public QLabel
{
    Q_OBJECT

public:
    explicit ScheduleCell(QWidget *parent);

    // How narrow a text may be drawn to fit whole.
    static constexpr qreal NarrowestSqueeze = 0.75;

    void setCellText(const QString &text);
    bool isSqueezed() const;
    bool isElided() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int textWidth() const;
};

} // namespace quillet
