#pragma once

#include "helptexts.h"

#include <QSize>
#include <QStringView>
#include <Qt>

#include <array>

namespace quillet::MainLayout {

// Everything here is in twips from the top-left corner of the client area.
inline constexpr int ClientWidth = 11295;
inline constexpr int ClientHeight = 7035;
inline constexpr int RowCount = 14;

// The command bar along the top edge.
enum class Command {
    AddNew,
    Copy,
    Delete,
    Undo,
    MoveUp,
    MoveDown,
    Amort,
    Print,
    cmdExit,
    Command2
};

struct CommandSpec
{
    Command command;
    QStringView name;
    QStringView caption;
    int left;
    QSize picture; // pixels
    bool greyPicture;
    int tabIndex;
    QStringView toolTip;
};

inline constexpr int CommandWidth = 1035;
inline constexpr int CommandHeight = 600;

inline constexpr std::array<CommandSpec, 10> Commands = {{
    {Command::AddNew,
     u"AddNew",
     u"Add New",
     0,
     {16, 15},
     false,
     123,
     u"Click here to add a new, blank, investment or loan scenario."},
    {Command::Copy,
     u"Copy",
     u"Copy",
     1030,
     {16, 15},
     true,
     124,
     u"Click here to add a copy of the currently selected investment or loan scenario."},
    {Command::Delete,
     u"Delete",
     u"Delete",
     2070,
     {14, 14},
     true,
     125,
     u"Click here to delete the currently selected investment or loan scenario."},
    {Command::Undo,
     u"Undo",
     u"Undo",
     3100,
     {16, 15},
     true,
     132,
     u"Click here to undo the last change.  (Last 10 changes kept during current session.)"},
    {Command::MoveUp,
     u"MoveUp",
     u"Move Up",
     4140,
     {70, 20},
     true,
     131,
     u"Click here to move the currently selected investment or loan scenario up one place in "
     u"the list."},
    {Command::MoveDown,
     u"MoveDown",
     u"Move Down",
     5180,
     {70, 20},
     true,
     126,
     u"Click here to move the currently selected investment or loan scenario down one place in "
     u"the list."},
    {Command::Amort,
     u"Amort",
     u"Amortize",
     6210,
     {16, 15},
     true,
     127,
     u"Click here to show a detailed amortization of the currently selected investment or loan "
     u"scenario and to be able to print it."},
    {Command::Print,
     u"Print",
     u"Print",
     7250,
     {16, 15},
     false,
     128,
     u"Click here to print out the entire list of investment or loan scenarios."},
    // Command2 lies exactly under cmdExit, which takes every click.
    {Command::cmdExit,
     u"cmdExit",
     u"Exit",
     10260,
     {16, 16},
     false,
     134,
     u"Click here to exit.  You don't have to save.  All changes are saved as you make them."},
    {Command::Command2,
     u"Command2",
     u"Exit",
     10260,
     {16, 16},
     false,
     133,
     u"Click here to exit.  You don't have to save.  All changes are saved as you make them."},
}};

// The two list switch buttons.
struct ListButtonSpec
{
    QStringView name;
    QStringView caption;
    int left;
    int tabIndex;
    QStringView toolTip;
};

inline constexpr int ListButtonTop = 765;
inline constexpr int ListButtonWidth = 1695;
inline constexpr int ListButtonHeight = 405;
inline constexpr ListButtonSpec InvestmentsButton = {
    u"Investments", u"Investments", 340, 121, u"Click here to look at \"Investment\" scenarios."};
inline constexpr ListButtonSpec LoansButton = {u"Loans", u"Loans", 2080, 122,
                                               u"Click here to look at \"Loan\" scenarios."};

// The grid: a column of row selectors, then seven columns of cells. Index 0
// of each column is its header cell, 1..14 the rows.
struct ColumnSpec
{
    GridColumn column;
    QStringView name;
    int left;
    int width;
    QStringView header;
    Qt::Alignment alignment;
    int firstTabIndex; // of the header cell; rows follow from 7 on
};

inline constexpr std::array<ColumnSpec, GridColumnCount> Columns = {{
    {GridColumn::Desc, u"Desc", 340, 3200, u"Description", Qt::AlignLeft, 0},
    {GridColumn::InitialAmount, u"InitialAmount", 3540, 1695, u"Initial Amount", Qt::AlignRight, 1},
    {GridColumn::Yield, u"Yield", 5220, 1215, u"Yield", Qt::AlignRight, 2},
    {GridColumn::Years, u"Years", 6420, 615, u"Years", Qt::AlignRight, 3},
    {GridColumn::Payment, u"Payment", 7020, 1530, u"Payment", Qt::AlignRight, 4},
    {GridColumn::PerYear, u"PerYear", 8520, 910, u"# Per Year", Qt::AlignRight, 5},
    {GridColumn::FutureValue, u"FutureValue", 9420, 1575, u"Future Value", Qt::AlignRight, 6},
}};

inline constexpr int SelLeft = 60;
inline constexpr int SelWidth = 263;
inline constexpr int SelHeaderWidth = 255;
inline constexpr int SelHeaderTop = 1215;
inline constexpr int SelHeaderHeight = 285;
inline constexpr int HeaderTop = 1170;
inline constexpr int HeaderHeight = 345;
inline constexpr int FirstRowTop = 1530;
inline constexpr int RowPitch = 270;
inline constexpr int RowHeight = 285;
inline constexpr int DescCellWidth = 3200;

inline constexpr int rowTop(int row)
{
    return FirstRowTop + RowPitch * (row - 1);
}

inline constexpr QStringView FirstSelToolTip =
    u"Click here to select a row to delete, copy, move or do an amortization.  (Click again to "
    u"de-select.)";
inline constexpr QStringView SelToolTip =
    u"Click here to select a row to delete, copy, move or do an amortization.";

inline constexpr int VScrollLeft = 10980;
inline constexpr int VScrollTop = 1530;
inline constexpr int VScrollWidth = 255;
inline constexpr int VScrollHeight = 3795;

inline constexpr int HelpBoxLeft = 60;
inline constexpr int HelpBoxTop = 5400;
inline constexpr int HelpBoxWidth = 11175;
inline constexpr int HelpBoxHeight = 1365;

// Tab indexes of the controls not in the tables above.
inline constexpr int VScrollTabIndex = 105;
inline constexpr int FirstSelTabIndex = 106;

// The tab index of grid cell `row` (1..14) of a column: each column's rows
// follow each other, except InitialAmount(6), which comes after the Yield
// column.
inline constexpr int cellTabIndex(GridColumn column, int row)
{
    switch (column) {
    case GridColumn::Desc:
        return 6 + row;
    case GridColumn::InitialAmount:
        if (row == 6)
            return 48;
        return row < 6 ? 20 + row : 19 + row;
    case GridColumn::Yield:
        return 33 + row;
    case GridColumn::Years:
        return 48 + row;
    case GridColumn::Payment:
        return 62 + row;
    case GridColumn::PerYear:
        return 76 + row;
    case GridColumn::FutureValue:
        return 90 + row;
    }
    return 0;
}

} // namespace quillet::MainLayout
