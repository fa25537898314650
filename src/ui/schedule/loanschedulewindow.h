#pragma once

#include "schedulewindow.h"

namespace quillet {

// Loanamort: one loan payment by payment.
class LoanScheduleWindow final : public ScheduleWindow
{
    Q_OBJECT

public:
    explicit LoanScheduleWindow(Session &session, QWidget *parent = nullptr);
    Q_DISABLE_COPY_MOVE(LoanScheduleWindow)

    void DispLoan();
    // A whole number right-justified for `width` digits with leading blanks.
    static QString RightNumber(double value, int width);

protected:
    void displayHeader() override { DispLoan(); }
    void fillRows(const ScheduleStart &start, int firstPeriod, int count) override;
};

} // namespace quillet
