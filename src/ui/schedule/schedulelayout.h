#pragma once

#include "helptexts.h"

#include <QStringView>
#include <Qt>

#include <array>
#include <span>

namespace quillet::ScheduleLayout {

// Everything here is in twips from the top-left corner of the client area,
// unless it says pixels.
inline constexpr int RowCount = 12;

// The scenario fields: a caption label and an edit box each.
inline constexpr int LabelLeft = 120;
inline constexpr int LabelWidth = 3075;
inline constexpr int LabelHeight = 285;
inline constexpr int DescLabelHeight = 240;
inline constexpr int FieldLeft = 3300;
inline constexpr int FieldWidth = 4815;
inline constexpr int FieldHeight = 330;

struct FieldSpec
{
    GridColumn field; // Yield edits the rate, FutureValue the last quantity
    QStringView name;
    int top;
    QStringView labelName;
    QStringView caption;
    int labelTop;
    int tabIndex;
};

// The two command buttons, alike in both windows but for Print's tool tip.
inline constexpr int ButtonLeft = 8340;
inline constexpr int PrintTop = 90;
inline constexpr int ExitTop = 1440;
inline constexpr int ButtonWidth = 1635;
inline constexpr int ButtonHeight = 1050;
inline constexpr qreal ButtonPointSize = 24;
inline constexpr QStringView ExitToolTip = u"Click here to exit the amortization schedule.";

// The rule between the column headings and the rows.
inline constexpr int LineLeft = 120;
inline constexpr int LineRight = 10020;
inline constexpr int LineTop = 3330;
inline constexpr int LineThicknessPixels = 3;

// The rows: 12 labels per column, row r at firstTop + RowPitch * r.
inline constexpr int FirstRowTop = 3420;
inline constexpr int RowPitch = 315;
inline constexpr int RowHeight = 330;

struct ColumnSpec
{
    QStringView name;
    int left;
    int width;
    Qt::Alignment alignment;
    int firstTop;
    bool fixedPitch; // Courier instead of the window's font
    QStringView headingName;
    QStringView heading;
    int headingLeft;
    int headingWidth;
    Qt::Alignment headingAlignment;
};

inline constexpr int ScrollBarTop = 3375;
inline constexpr int ScrollBarWidth = 315;
inline constexpr int ScrollBarHeight = 3885;

struct WindowSpec
{
    QStringView name;
    QStringView caption;
    int clientWidth;
    int clientHeight;
    std::array<FieldSpec, 7> fields;
    std::span<const ColumnSpec> columns;
    int headingTop;
    int headingHeight;
    bool headingsWrap;
    int scrollBarLeft;
    QStringView printToolTip;
    // Print, VScroll1 and Exit follow the fields in this order.
    int printTabIndex;
};

inline constexpr std::array<ColumnSpec, 4> InvestmentColumns = {{
    {u"Period", 120, 555, Qt::AlignLeft, FirstRowTop, true, u"Label1", u"Period", 120, 855,
     Qt::AlignLeft},
    {u"Earnings", 1440, 2175, Qt::AlignRight, FirstRowTop, false, u"Label2", u"Earnings", 2100, 915,
     Qt::AlignLeft},
    {u"CumEarnings", 4140, 2595, Qt::AlignRight, FirstRowTop, false, u"Label3",
     u"Cumulative Earnings", 4500, 1935, Qt::AlignLeft},
    {u"TotEarnings", 7140, 2895, Qt::AlignRight, FirstRowTop, false, u"Label4",
     u"Total Earnings and Payments", 7380, 2655, Qt::AlignLeft},
}};

// Principal stands 45 twips higher than the other columns; kept so.
inline constexpr int PrincipalFirstTop = 3375;

inline constexpr std::array<ColumnSpec, 6> LoanColumns = {{
    {u"Period", 120, 555, Qt::AlignLeft, FirstRowTop, false, u"Label1", u"Period / Payment", 60,
     795, Qt::AlignLeft},
    {u"Principal", 1020, 1395, Qt::AlignRight, PrincipalFirstTop, false, u"Label2",
     u"Principal Portion", 1320, 915, Qt::AlignHCenter},
    {u"Interest", 2640, 1395, Qt::AlignRight, FirstRowTop, false, u"Label3", u"Interest Portion",
     2820, 975, Qt::AlignHCenter},
    {u"CumPrincipal", 4260, 1800, Qt::AlignRight, FirstRowTop, false, u"Label4",
     u"Cumulative Principal", 4560, 1035, Qt::AlignHCenter},
    {u"CumInterest", 6240, 1800, Qt::AlignRight, FirstRowTop, false, u"Label5",
     u"Cumulative Interest", 6480, 1035, Qt::AlignHCenter},
    {u"ReBalance", 8220, 1800, Qt::AlignRight, FirstRowTop, false, u"Label6", u"Remaining Balance",
     8400, 1035, Qt::AlignHCenter},
}};

// The investment window lists Payment above PerYear, the loan window the
// other way round; the tab order of both goes Years, PerYear, Payment.
inline constexpr WindowSpec InvAmort = {
    u"InvAmort",
    u"Investment Amortization",
    10515,
    7305,
    {{
        {GridColumn::Desc, u"Desc", 45, u"lblDesc", u"Description:", 90, 0},
        {GridColumn::InitialAmount, u"InitialAmount", 405, u"lblInitialAmount", u"Intitial Amount:",
         405, 8},
        {GridColumn::Yield, u"Yield", 765, u"lblYield", u"Yield (Rate of Return):", 765, 9},
        {GridColumn::Years, u"Years", 1125, u"lblYears", u"Years:", 1125, 10},
        {GridColumn::Payment, u"Payment", 1485, u"lblPayment", u"Payment:", 1485, 12},
        {GridColumn::PerYear, u"PerYear", 1845, u"lblPerYear", u"Payments per Year:", 1845, 11},
        {GridColumn::FutureValue, u"FutureValue", 2205, u"lblFutureValue", u"Future Value:", 2205,
         13},
    }},
    InvestmentColumns,
    3015,
    285,
    false,
    10140,
    u"Click here to print out the amortization schedule for this investment scenario.",
    66,
};

inline constexpr WindowSpec Loanamort = {
    u"Loanamort",
    u"Loan Amortization",
    10455,
    7320,
    {{
        {GridColumn::Desc, u"Desc", 45, u"lblDesc", u"Description:", 90, 0},
        {GridColumn::InitialAmount, u"InitialAmount", 405, u"lblInitialAmount", u"Intitial Amount:",
         405, 8},
        {GridColumn::Yield, u"IRate", 765, u"lblIRate", u"Interest Rate:", 765, 9},
        {GridColumn::Years, u"Years", 1125, u"lblYears", u"Years:", 1125, 10},
        {GridColumn::PerYear, u"PerYear", 1485, u"lblPerYear", u"Payments per Year:", 1485, 11},
        {GridColumn::Payment, u"Payment", 1845, u"lblPayment", u"Payment:", 1845, 12},
        {GridColumn::FutureValue, u"TotalInterest", 2205, u"lblTotalInterest", u"Total Interest:",
         2205, 13},
    }},
    LoanColumns,
    2835,
    465,
    true,
    10080,
    u"Click here to print out the amortization schedule for this loan scenario.",
    92,
};

} // namespace quillet::ScheduleLayout
