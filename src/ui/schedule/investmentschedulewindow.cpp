#include "investmentschedulewindow.h"

namespace quillet {

InvestmentScheduleWindow::InvestmentScheduleWindow(Session &session, QWidget *parent)
    : ScheduleWindow(session, ListKind::Investments, ScheduleLayout::InvAmort, parent)
{}

void InvestmentScheduleWindow::DispInv()
{
    showHeader();
}

void InvestmentScheduleWindow::fillRows(const ScheduleStart &start, int firstPeriod, int count)
{
    const std::vector<InvestmentScheduleRow> rows =
        m_checkpoints.investmentRows(start, firstPeriod, count);
    for (std::size_t j = 0; j < rows.size(); ++j) {
        const InvestmentScheduleRow &row = rows[j];
        setRowTexts(int(j),
                    {schedulePeriodText(row.period), scheduleAmountText(row.earnings),
                     scheduleAmountText(row.cumulativeEarnings), scheduleAmountText(row.balance)});
    }
}

} // namespace quillet
