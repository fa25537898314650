#pragma once

// frmMain, the main window: one list at a time as a grid of 14 rows.
//
// Data flows one way through it. A row is drawn by reading its record from
// the list file into the session's working record, asking the engine for
// each of the five quantities (stored, or solved when blank), and showing
// the display texts, the solved one in bold. An edit goes back the same way:
// the cell's text is parsed into the working record, which is written to the
// file at once, and the row is drawn again, so the file is always the truth.

#include "gridcell.h"
#include "helptexts.h"
#include "mainlayout.h"
#include "printjob.h"
#include "session.h"
#include "solvecache.h"
#include "status.h"
#include "textmeasure.h"

#include <QWidget>

#include <array>
#include <functional>
#include <memory>

class QAbstractButton;
class QKeySequence;
class QLabel;
class QPushButton;
class QScrollBar;
class QToolButton;

namespace quillet {

class MainWindow final : public QWidget
{
    Q_OBJECT

public:
    using CellColumn = std::array<GridCell *, MainLayout::RowCount + 1>;

    explicit MainWindow(Session &session, QWidget *parent = nullptr);
    ~MainWindow() override;
    Q_DISABLE_COPY_MOVE(MainWindow)

    // Opens the list files of the current directory and shows a list. A list
    // that cannot be written or read is explained in a message; the window
    // opens all the same.
    void Form_Load();
    void Form_Activate();

    void SwitchTo(const QString &name);
    void DoVerticalScroll();
    void DispRows();
    void DispRow(int k);
    void ClearRow(int k);
    void ClearAllRows();
    void doFocus();
    void EnableButtons();

    const CellColumn &cells(GridColumn column) const;

    // Shows the schedule of a record of a list, modally, and returns when it
    // is closed. The schedule windows live above this window's library, so
    // the program hands their opener in; without one, Amortize does nothing.
    using ScheduleOpener = std::function<void(ListKind list, int record)>;
    void setScheduleOpener(ScheduleOpener opener) { m_scheduleOpener = std::move(opener); }

    // The printer and dialogs Print uses; tests answer them instead of a person.
    void setPrintSeams(PrintSeams seams) { m_printSeams = std::move(seams); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildLayout();
    void buildCommandBar();
    void buildListButtons();
    void buildGrid();
    void buildScrollBarAndHelpBox();
    void setTabOrder();
    QRect pixelRect(int left, int top, int width, int height) const;

    void Investments_Click();
    void Loans_Click();
    void VScroll1_Change(int value);
    void Sel_Click(int index);
    void cmdExit_Click();
    void AddNew_Click();
    void Copy_Click();
    void Delete_Click();
    void MoveUp_Click();
    void MoveDown_Click();
    void Undo_Click();
    void Amort_Click();
    void Print_Click();

    void cell_Click(GridCell *cell);
    bool cell_KeyPress(GridCell *cell, const QKeyEvent *event);
    void cell_LostFocus(GridCell *cell);
    void saveCell(GridCell *cell, int record);
    // Ends the edit of the cell being edited, if any, as leaving it does.
    void endEdit();
    // Ends the edit and starts editing the cell rowStep rows down and
    // columnStep columns right, scrolling the list to it.
    void moveEdit(GridCell *cell, int rowStep, int columnStep);
    void addCommandKey(QAbstractButton *button, const QKeySequence &key);
    void pressByKey(QAbstractButton *button);
    void addPagingKeys();
    bool handlesRow(int k) const;

    bool readRecord(int n);
    bool writeRecord(int n, const ScenarioRecord &record);
    bool swapRecords(int first, int second);
    bool roomForOneMore();
    void clearRowsAfterLastRecord();
    void showHelp(const QString &text);
    void updateAccessibleName(GridCell *cell);
    void reportProblem(const QString &message);

    Session &m_session;
    std::unique_ptr<TextMeasure> m_measure;
    SolveCache m_solved;
    ScheduleOpener m_scheduleOpener;
    PrintSeams m_printSeams = PrintSeams::system();
    QString m_helpText;
    GridCell *m_editing = nullptr; // the cell in the edit look, if any

    std::array<CellColumn, GridColumnCount> m_columns{};
    CellColumn &Desc;
    CellColumn &InitialAmount;
    CellColumn &Yield;
    CellColumn &Years;
    CellColumn &Payment;
    CellColumn &PerYear;
    CellColumn &FutureValue;
    std::array<QPushButton *, MainLayout::RowCount + 1> Sel{};

    std::array<QToolButton *, MainLayout::Commands.size()> m_commands{};
    QToolButton *AddNew = nullptr;
    QToolButton *Copy = nullptr;
    QToolButton *Delete = nullptr;
    QToolButton *Undo = nullptr;
    QToolButton *MoveUp = nullptr;
    QToolButton *MoveDown = nullptr;
    QToolButton *Amort = nullptr;
    QToolButton *Print = nullptr;
    QToolButton *cmdExit = nullptr;
    QToolButton *Command2 = nullptr;
    QPushButton *Investments = nullptr;
    QPushButton *Loans = nullptr;
    QScrollBar *VScroll1 = nullptr;
    QLabel *HelpBox = nullptr;
};

} // namespace quillet
