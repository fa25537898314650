#pragma once

#include "session.h"

#include <memory>

class QWidget;

namespace quillet {

class InvestmentScheduleWindow;
class LoanScheduleWindow;
class ScheduleWindow;

// The two schedule windows of a session. Each is made the first time it is
// needed and then kept: Exit only hides it.
class ScheduleWindows final
{
public:
    ScheduleWindows(Session &session, QWidget *parent);
    ~ScheduleWindows();
    Q_DISABLE_COPY_MOVE(ScheduleWindows)

    // The window of the list, made if it does not exist yet.
    ScheduleWindow &window(ListKind list);
    // Shows the schedule of the record modally; returns when it is closed.
    void open(ListKind list, int record);

private:
    Session &m_session;
    QWidget *m_parent;
    std::unique_ptr<InvestmentScheduleWindow> m_investments;
    std::unique_ptr<LoanScheduleWindow> m_loans;
};

} // namespace quillet
