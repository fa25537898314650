#pragma once

// What the two amortization schedule windows share: a header of seven
// scenario fields that are edited in place and written to the list file at
// once, a table of 12 periods paged by a scroll bar, and Print and Exit.
// Each window shows one record of its list, read from the file every time
// the window is activated; the table is computed from that record by the
// engine's schedule code, the same code the printouts and quillet-report use.

#include "headerfield.h"
#include "schedulecell.h"
#include "printjob.h"
#include "schedulelayout.h"
#include "schedule.h"
#include "session.h"
#include "solvecache.h"

#include <QDialog>

#include <array>
#include <vector>

class QPushButton;
class QScrollBar;

namespace quillet {

class ScheduleWindow : public QDialog
{
    Q_OBJECT

public:
    using CellColumn = std::array<ScheduleCell *, ScheduleLayout::RowCount>;

    ~ScheduleWindow() override;
    Q_DISABLE_COPY_MOVE(ScheduleWindow)

    ListKind list() const { return m_list; }
    // The record shown, read again from the list file on every activation.
    void setRecord(int record) { m_record = record; }
    int record() const { return m_record; }

    // Runs each time the window is shown and after every accepted numeric
    // edit: the header, the period count, the scroll bar and the table from
    // period 1.
    void Form_Activate();
    // The 12 table rows from FirstPeriod.
    void DispAmort();
    void VScroll1_Change(int value);
    void Exit_Click();
    // Prints the whole schedule, every period, then gives the focus back to
    // the scroll bar.
    void Print_Click();
    // The printer and dialogs Print uses; tests answer them instead of a person.
    void setPrintSeams(PrintSeams seams) { m_printSeams = std::move(seams); }

    HeaderField *field(GridColumn field) const;
    const CellColumn &column(int index) const { return m_cells.at(std::size_t(index)); }

protected:
    ScheduleWindow(Session &session, ListKind list, const ScheduleLayout::WindowSpec &layout,
                   QWidget *parent);

    // DispInv or DispLoan.
    virtual void displayHeader() = 0;
    // Fills rows 0 .. count - 1 with the periods from firstPeriod on.
    virtual void fillRows(const ScheduleStart &start, int firstPeriod, int count) = 0;

    // The seven header fields from the working record.
    void showHeader();
    void setRowTexts(int row, const std::vector<QString> &texts);

    Session &m_session;
    ScheduleCheckpoints m_checkpoints;

    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void reject() override;

private:
    void buildHeader();
    void buildButtons();
    void buildTable();
    void buildScrollBar();
    void addKeys();
    void setTabOrder();
    QRect pixelRect(int left, int top, int width, int height) const;

    bool readShownRecord();
    void field_Click(HeaderField *field);
    bool field_KeyPress(HeaderField *field, const QKeyEvent *event);
    void field_LostFocus(HeaderField *field);
    bool saveField(HeaderField *field);
    void endEdit();
    void showPeriodCount(const PeriodCountOutcome &outcome);
    void clearRow(int row);
    void updateAccessibleName(HeaderField *field);
    void reportProblem(const QString &message);

    ListKind m_list;
    const ScheduleLayout::WindowSpec &m_layout;
    int m_record = 0;
    SolveCache m_solved;
    PrintSeams m_printSeams = PrintSeams::system();
    HeaderField *m_editing = nullptr; // the field in the edit look, if any

    std::array<HeaderField *, GridColumnCount> m_fields{};
    std::array<QLabel *, GridColumnCount> m_captions{};
    std::vector<CellColumn> m_cells;
    std::vector<QLabel *> m_headings;
    QScrollBar *VScroll1 = nullptr;
    QPushButton *Print = nullptr;
    QPushButton *Exit = nullptr;
    QWidget *Line1 = nullptr;
};

} // namespace quillet
