#include "schedulewindows.h"

#include "investmentschedulewindow.h"
#include "loanschedulewindow.h"

namespace quillet {

ScheduleWindows::ScheduleWindows(Session &session, QWidget *parent)
    : m_session(session), m_parent(parent)
{}

ScheduleWindows::~ScheduleWindows() = default;

ScheduleWindow &ScheduleWindows::window(ListKind list)
{
    if (list == ListKind::Investments) {
        if (!m_investments)
            m_investments = std::make_unique<InvestmentScheduleWindow>(m_session, m_parent);
        return *m_investments;
    }
    if (!m_loans)
        m_loans = std::make_unique<LoanScheduleWindow>(m_session, m_parent);
    return *m_loans;
}

void ScheduleWindows::open(ListKind list, int record)
{
    ScheduleWindow &shown = window(list);
    shown.setRecord(record);
    shown.exec();
}

} // namespace quillet
