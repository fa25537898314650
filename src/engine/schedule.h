#pragma once

#include "displaytext.h"
#include "scenariorecord.h"
#include "solvecache.h"

#include <QString>
#include <QStringView>

#include <array>
#include <optional>
#include <vector>

namespace quillet {

// The header of a schedule window: the description with one leading blank
// (empty when there is none), the five value fields as the grid shows them,
// and the stored payments a year as plain text, -1 for a blank one included.
struct ScheduleHeader
{
    static constexpr std::array<Field, 5> ValueFields = {
        Field::InitialAmount, Field::IRate, Field::Years, Field::Payment, Field::FutureValue};

    QString desc;
    std::array<FieldDisplay, 5> values;
    QString perYear;

    const FieldDisplay &value(Field field) const;
};

ScheduleHeader scheduleHeader(const ScenarioRecord &record, bool investments,
                              quint16 stateFlags = 0);
// The same, with solved fields remembered: a window redrawn for the same
// record solves nothing again.
ScheduleHeader scheduleHeader(const ScenarioRecord &record, bool investments, quint16 stateFlags,
                              SolveCache &solved);

// Payments a year as the schedule reads them from the PerYear text: 1 when
// the text is empty, else the number; no value for text that is no number.
std::optional<double> schedulePerYear(QStringView perYearText);

// The number of periods of a schedule from the displayed Years and PerYear
// texts: years * payments a year, a half rounding to even.
struct PeriodCountOutcome
{
    enum class Status {
        Counted,    // count holds the number of periods
        YearsEmpty, // no Years text: the previous count stays
        NotANumber, // a text is no number
        TooMany     // more periods than a schedule can count (32,767)
    };
    Status status = Status::YearsEmpty;
    qint16 count = 0;
    // The rounded product, also when it is too many to count.
    double periods = 0;
};

PeriodCountOutcome PeriodCountFor(QStringView yearsText, QStringView perYearText);

// The quantities a schedule starts from: the record's (stored or solved)
// initial amount, yearly rate and payment, and the payments a year.
struct ScheduleStart
{
    double balance = 0;
    double yearlyRate = 0;
    double payment = 0;
    double perYear = 1;
};

ScheduleStart scheduleStart(const ScenarioRecord &record, bool investments, double perYear,
                            quint16 stateFlags = 0);
ScheduleStart scheduleStart(const ScenarioRecord &record, bool investments, double perYear,
                            quint16 stateFlags, SolveCache &solved);

struct InvestmentScheduleRow
{
    int period = 0;
    double earnings = 0;
    double cumulativeEarnings = 0;
    double balance = 0;
};

// An investment period by period: the earnings on the balance at the start
// of the period, then the payment, which earns nothing in its own period.
class InvestmentSchedule final
{
public:
    using Row = InvestmentScheduleRow;

    explicit InvestmentSchedule(const ScheduleStart &start);

    InvestmentScheduleRow next();
    // The number of periods run so far.
    int period() const { return m_period; }
    // Rows firstPeriod .. firstPeriod + count - 1; the periods before are
    // computed and passed over.
    static std::vector<InvestmentScheduleRow> rows(const ScheduleStart &start, int firstPeriod,
                                                   int count);

private:
    double m_balance;
    double m_rate;
    double m_payment;
    double m_cumulative = 0;
    int m_period = 0;
};

struct LoanScheduleRow
{
    int period = 0;
    double principal = 0;
    double interest = 0;
    double cumulativePrincipal = 0;
    double cumulativeInterest = 0;
    double balance = 0;
};

// A loan payment by payment at the nominal periodic rate. Every period
// applies the full payment: the balance may end a little either side of zero
// and goes on below it when the schedule is longer than the loan.
class LoanSchedule final
{
public:
    using Row = LoanScheduleRow;

    explicit LoanSchedule(const ScheduleStart &start);

    LoanScheduleRow next();
    int period() const { return m_period; }
    static std::vector<LoanScheduleRow> rows(const ScheduleStart &start, int firstPeriod,
                                             int count);

private:
    double m_balance;
    double m_rate;
    double m_payment;
    double m_cumulativePrincipal = 0;
    double m_cumulativeInterest = 0;
    int m_period = 0;
};

// The rows of a page of a schedule, the same bits as running the schedule
// from its first period every time, without the wait: the state of the loop
// is kept every Interval periods as it is passed, so a later page resumes
// from the nearest kept state before it. Kept for one start of each kind;
// another start begins afresh.
class ScheduleCheckpoints final
{
public:
    static constexpr int Interval = 64;

    std::vector<InvestmentScheduleRow> investmentRows(const ScheduleStart &start, int firstPeriod,
                                                      int count);
    std::vector<LoanScheduleRow> loanRows(const ScheduleStart &start, int firstPeriod, int count);

    // The states kept for the schedule of that kind, the fresh one included.
    std::size_t investmentStates() const { return m_investments.states.size(); }
    std::size_t loanStates() const { return m_loans.states.size(); }

private:
    template <typename Schedule> struct Track
    {
        ScheduleStart start;
        std::vector<Schedule> states; // states[j]: after j * Interval periods
    };
    template <typename Schedule>
    static std::vector<typename Schedule::Row>
    rowsOf(Track<Schedule> &track, const ScheduleStart &start, int firstPeriod, int count);

    Track<InvestmentSchedule> m_investments;
    Track<LoanSchedule> m_loans;
};

// The texts of a schedule's table, the same in the windows, the printouts and
// quillet-report: amounts in the locale's currency with 2 decimals (none for
// a figure that is not finite), period numbers right-justified for 4 digits.
QString scheduleAmountText(double value);
QString schedulePeriodText(int period);

} // namespace quillet
