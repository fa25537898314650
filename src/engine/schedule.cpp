#include "schedule.h"

#include "figuretext.h"

#include "rates.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <bit>
#include <limits>

namespace quillet {

namespace {

template <typename Schedule>
auto scheduleRows(const ScheduleStart &start, int firstPeriod, int count)
{
    Schedule schedule(start);
    for (int k = 1; k < firstPeriod; ++k)
        schedule.next();
    std::vector<decltype(schedule.next())> rows;
    rows.reserve(std::max(count, 0));
    for (int j = 0; j < count; ++j)
        rows.push_back(schedule.next());
    return rows;
}

// Exactly the same start, bit for bit: a cached state answers for no other.
bool sameStart(const ScheduleStart &a, const ScheduleStart &b)
{
    const auto bits = [](double value) {
        return std::bit_cast<quint64>(value);
    };
    return bits(a.balance) == bits(b.balance) && bits(a.yearlyRate) == bits(b.yearlyRate) &&
           bits(a.payment) == bits(b.payment) && bits(a.perYear) == bits(b.perYear);
}

} // namespace

const FieldDisplay &ScheduleHeader::value(Field field) const
{
    const auto found = std::find(ValueFields.begin(), ValueFields.end(), field);
    return values.at(found == ValueFields.end() ? 0 : found - ValueFields.begin());
}

namespace {

template <typename FieldTextOf>
ScheduleHeader headerOf(const ScenarioRecord &record, FieldTextOf fieldText)
{
    ScheduleHeader header;
    const QString desc = trimmedDesc(record);
    if (!desc.isEmpty())
        header.desc = u' ' + desc;
    for (std::size_t k = 0; k < ScheduleHeader::ValueFields.size(); ++k)
        header.values[k] = fieldText(ScheduleHeader::ValueFields[k]);
    header.perYear = QString::number(record.PerYear);
    return header;
}

template <typename SolveOf> ScheduleStart startOf(SolveOf solve, double perYear)
{
    return {solve(Field::InitialAmount).value, solve(Field::IRate).value,
            solve(Field::Payment).value, perYear};
}

} // namespace

ScheduleHeader scheduleHeader(const ScenarioRecord &record, bool investments, quint16 stateFlags)
{
    return headerOf(record,
                    [&](Field field) { return FieldText(record, field, investments, stateFlags); });
}

ScheduleHeader scheduleHeader(const ScenarioRecord &record, bool investments, quint16 stateFlags,
                              SolveCache &solved)
{
    return headerOf(record, [&](Field field) {
        return solved.fieldText(record, field, investments, stateFlags);
    });
}

std::optional<double> schedulePerYear(QStringView perYearText)
{
    if (perYearText.trimmed().isEmpty())
        return 1.0;
    return parseNumber(perYearText);
}

PeriodCountOutcome PeriodCountFor(QStringView yearsText, QStringView perYearText)
{
    using Status = PeriodCountOutcome::Status;
    if (yearsText.trimmed().isEmpty())
        return {Status::YearsEmpty, 0};
    const std::optional<double> perYear = schedulePerYear(perYearText);
    const std::optional<double> years = parseNumber(yearsText);
    if (!perYear || !years)
        return {Status::NotANumber, 0};
    const double periods = roundHalfEven(*years * *perYear);
    if (!(periods >= std::numeric_limits<qint16>::min() &&
          periods <= std::numeric_limits<qint16>::max()))
        return {Status::TooMany, 0, periods};
    return {Status::Counted, static_cast<qint16>(periods), periods};
}

ScheduleStart scheduleStart(const ScenarioRecord &record, bool investments, double perYear,
                            quint16 stateFlags)
{
    return startOf([&](Field field) { return Solve(record, field, investments, stateFlags); },
                   perYear);
}

ScheduleStart scheduleStart(const ScenarioRecord &record, bool investments, double perYear,
                            quint16 stateFlags, SolveCache &solved)
{
    return startOf(
        [&](Field field) { return solved.solve(record, field, investments, stateFlags); }, perYear);
}

InvestmentSchedule::InvestmentSchedule(const ScheduleStart &start)
    : m_balance(start.balance), m_rate(PeriodicRate(start.yearlyRate, start.perYear)),
      m_payment(start.payment)
{}

InvestmentScheduleRow InvestmentSchedule::next()
{
    const double earnings = m_balance * m_rate;
    m_balance = (m_balance + earnings) + m_payment;
    m_cumulative = m_cumulative + earnings;
    return {++m_period, earnings, m_cumulative, m_balance};
}

std::vector<InvestmentScheduleRow> InvestmentSchedule::rows(const ScheduleStart &start,
                                                            int firstPeriod, int count)
{
    return scheduleRows<InvestmentSchedule>(start, firstPeriod, count);
}

LoanSchedule::LoanSchedule(const ScheduleStart &start)
    : m_balance(start.balance), m_rate(LoanPeriodicRate(start.yearlyRate, start.perYear)),
      m_payment(start.payment)
{}

LoanScheduleRow LoanSchedule::next()
{
    const double interest = m_balance * m_rate;
    const double principal = m_payment - interest;
    m_cumulativePrincipal = m_cumulativePrincipal + principal;
    m_cumulativeInterest = m_cumulativeInterest + interest;
    m_balance = m_balance - principal;
    return {++m_period,           principal, interest, m_cumulativePrincipal,
            m_cumulativeInterest, m_balance};
}

std::vector<LoanScheduleRow> LoanSchedule::rows(const ScheduleStart &start, int firstPeriod,
                                                int count)
{
    return scheduleRows<LoanSchedule>(start, firstPeriod, count);
}

template <typename Schedule>
std::vector<typename Schedule::Row> ScheduleCheckpoints::rowsOf(Track<Schedule> &track,
                                                                const ScheduleStart &start,
                                                                int firstPeriod, int count)
{
    if (track.states.empty() || !sameStart(track.start, start)) {
        track.start = start;
        track.states.assign(1, Schedule(start));
    }
    // Passing a multiple of the interval for the first time keeps the state.
    const auto advance = [&track](Schedule &schedule) {
        auto row = schedule.next();
        const int done = schedule.period();
        if (done % Interval == 0 && std::size_t(done / Interval) == track.states.size())
            track.states.push_back(schedule);
        return row;
    };

    const int skip = std::max(firstPeriod - 1, 0);
    const std::size_t nearest = std::min(std::size_t(skip / Interval), track.states.size() - 1);
    Schedule schedule = track.states[nearest];
    while (schedule.period() < skip)
        advance(schedule);
    std::vector<typename Schedule::Row> rows;
    rows.reserve(std::max(count, 0));
    for (int j = 0; j < count; ++j)
        rows.push_back(advance(schedule));
    return rows;
}

std::vector<InvestmentScheduleRow> ScheduleCheckpoints::investmentRows(const ScheduleStart &start,
                                                                       int firstPeriod, int count)
{
    return rowsOf(m_investments, start, firstPeriod, count);
}

std::vector<LoanScheduleRow> ScheduleCheckpoints::loanRows(const ScheduleStart &start,
                                                           int firstPeriod, int count)
{
    return rowsOf(m_loans, start, firstPeriod, count);
}

QString scheduleAmountText(double value)
{
    // A figure that is not finite has no text, as in the grid.
    if (!std::isfinite(value))
        return {};
    return currencyText(value);
}

QString schedulePeriodText(int period)
{
    return PadNum(period, 4);
}

} // namespace quillet
