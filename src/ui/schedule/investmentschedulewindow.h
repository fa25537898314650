#pragma once

#include "schedulewindow.h"

namespace quillet {

// InvAmort: the growth of one investment, period by period.
class InvestmentScheduleWindow final : public ScheduleWindow
{
    Q_OBJECT

public:
    explicit InvestmentScheduleWindow(Session &session, QWidget *parent = nullptr);
    Q_DISABLE_COPY_MOVE(InvestmentScheduleWindow)

    void DispInv();

protected:
    void displayHeader() override { DispInv(); }
    void fillRows(const ScheduleStart &start, int firstPeriod, int count) override;
};

} // namespace quillet
