#include "loanschedulewindow.h"

#include "displaytext.h"

namespace quillet {

LoanScheduleWindow::LoanScheduleWindow(Session &session, QWidget *parent)
    : ScheduleWindow(session, ListKind::Loans, ScheduleLayout::Loanamort, parent)
{}

void LoanScheduleWindow::DispLoan()
{
    showHeader();
}

QString LoanScheduleWindow::RightNumber(double value, int width)
{
    // The same rule as the period numbers everywhere else.
    return PadNum(value, width);
}

void LoanScheduleWindow::fillRows(const ScheduleStart &start, int firstPeriod, int count)
{
    const std::vector<LoanScheduleRow> rows = m_checkpoints.loanRows(start, firstPeriod, count);
    for (std::size_t j = 0; j < rows.size(); ++j) {
        const LoanScheduleRow &row = rows[j];
        setRowTexts(int(j),
                    {RightNumber(row.period, 4), scheduleAmountText(row.principal),
                     scheduleAmountText(row.interest), scheduleAmountText(row.cumulativePrincipal),
                     scheduleAmountText(row.cumulativeInterest), scheduleAmountText(row.balance)});
    }
}

} // namespace quillet
