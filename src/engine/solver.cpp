#include "solver.h"

#include "periodloops.h"
#include "rates.h"

#include <array>
#include <cmath>
#include <utility>

namespace quillet {

namespace {

using SolverLimits::LiteralPeriods;
using SolverLimits::MaxSearchRate;

constexpr std::array<std::pair<Field, QStringView>, 7> FieldNames = {{
    {Field::Desc, u"Desc"},
    {Field::InitialAmount, u"InitialAmount"},
    {Field::IRate, u"IRate"},
    {Field::Years, u"Years"},
    {Field::Payment, u"Payment"},
    {Field::PerYear, u"PerYear"},
    {Field::FutureValue, u"FutureValue"},
}};

// Writes a finite value into result; anything else is no value.
bool store(double value, double &result)
{
    if (!std::isfinite(value))
        return false;
    result = value;
    return true;
}

void countTrial(SolveEffort *effort)
{
    if (effort)
        ++effort->trials;
}

void countPeriods(SolveEffort *effort, long long periods)
{
    if (effort)
        effort->periods += periods;
}

double rateTolerance(quint16 stateFlags)
{
    return (stateFlags & FineToleranceFlag) ? 1e-9 : 1e-6;
}

// The balance after `remaining` more periods of balance = balance +
// balance * i + payment, by the closed formula; used past the literal limit.
double growBalance(double balance, double i, double payment, double remaining)
{
    if (i == 0)
        return balance + payment * remaining;
    const double growthLessOne = std::expm1(remaining * std::log1p(i));
    return balance + balance * growthLessOne + payment * (growthLessOne / i);
}

// Total interest of `remaining` more loan periods from balance, by the closed
// formula; used past the literal limit. The loop it stands for ends early
// once the balance is paid off, and counts that period's interest in full.
double remainingLoanInterest(double balance, double i, double payment, double remaining)
{
    if (i == 0 || balance <= 0)
        return 0;
    double periods = remaining;
    const double interestNow = i * balance;
    if (payment > interestNow) {
        // The first period whose payment clears the balance.
        const double payOff =
            std::ceil(std::log(payment / (payment - interestNow)) / std::log1p(i));
        if (std::isfinite(payOff) && payOff >= 1 && payOff < periods)
            periods = payOff;
    }
    const double growthLessOne = std::expm1(periods * std::log1p(i));
    return (balance - payment / i) * growthLessOne + payment * periods;
}

// The decimal refinement of the rate searches: from 10 % in steps of 10 %,
// stepping back and refining the step tenfold whenever the trial payment is
// no longer too low. An exact hit steps back too, so it returns
// hit - step + step / 10. paymentAt gives no value for a trial that fails.
template <typename PaymentAt, typename RateTooLow>
bool refineRate(const PaymentAt &paymentAt, const RateTooLow &rateTooLow, double payment,
                quint16 stateFlags, double &result, SolveEffort *effort)
{
    const double tolerance = rateTolerance(stateFlags);
    double rate = 0.1;
    double step = 0.1;
    bool found = false;
    while (step >= tolerance && !found) {
        double p = 0;
        countTrial(effort);
        if (!paymentAt(rate, p))
            return false;
        if (p == payment)
            found = true;
        if (rateTooLow(p)) {
            rate = rate + step;
            if (rate > MaxSearchRate)
                return false;
        } else {
            rate = rate - step;
            step = step / 10;
            rate = rate + step;
        }
    }
    result = rate;
    return true;
}

// The decimal refinement of the years searches: from `start` in steps of
// `start`, while inBounds(years) and the step is above 0.0001; an exact hit
// stops at once. A goal that cannot be reached climbs out of bounds, and
// that number of years is returned.
template <typename PaymentAt, typename InBounds>
bool refineYears(const PaymentAt &paymentAt, const InBounds &inBounds, double start, double payment,
                 double &result, SolveEffort *effort)
{
    double years = start;
    double step = start;
    while (inBounds(years) && step > 0.0001) {
        double p = 0;
        countTrial(effort);
        if (!paymentAt(years, p))
            return false;
        if (p == payment)
            break;
        if (p > payment) {
            years = years + step;
        } else {
            years = years - step;
            step = step / 10;
            years = years + step;
        }
    }
    result = years;
    return true;
}

} // namespace

QString fieldName(Field field)
{
    for (const auto &[candidate, name] : FieldNames) {
        if (candidate == field)
            return name.toString();
    }
    return {};
}

std::optional<Field> fieldFromName(QStringView name)
{
    for (const auto &[field, candidate] : FieldNames) {
        if (candidate == name)
            return field;
    }
    return std::nullopt;
}

bool InvInitial(double IRate, double Years, double Payment, int PerYear, double FutureValue,
                double &result)
{
    const double n = Years * PerYear;
    if (IRate < 0 || n <= 0 || (FutureValue == 0 && Payment == 0))
        return false;
    if (IRate == 0)
        return store(FutureValue - n * Payment, result);
    const double i = PeriodicRate(IRate, PerYear);
    const double growth = std::pow(1 + i, n);
    const double paymentsValue = Payment * (growth - 1) / i;
    return store((FutureValue - paymentsValue) / growth, result);
}

bool InvPayment(double InitialAmount, double IRate, double Years, int PerYear, double FutureValue,
                double &result)
{
    if ((InitialAmount == 0 && FutureValue == 0) || IRate < 0 || Years <= 0)
        return false;
    const double n = Years * PerYear;
    if (IRate == 0)
        return store((FutureValue - InitialAmount) / n, result);
    const double i = PeriodicRate(IRate, PerYear);
    const double growth = std::pow(1 + i, n);
    return store((FutureValue - InitialAmount * growth) / ((growth - 1) / i), result);
}

bool InvFuture(double InitialAmount, double IRate, double Years, double Payment, int PerYear,
               double &result, SolveEffort *effort)
{
    // Without payments the money compounds once a year whatever PerYear says.
    const int ppy = Payment != 0 ? PerYear : 1;
    if (IRate < 0 || Years <= 0 || (InitialAmount == 0 && Payment == 0))
        return false;
    const double n = Years * ppy;
    if (IRate == 0)
        return store(InitialAmount + Payment * n, result);
    const double i = PeriodicRate(IRate, ppy);
    if (Payment == 0)
        return store(InitialAmount * std::pow(1 + i, n), result);

    // Period by period while k < n, so a fractional n counts as the next
    // whole period; past the literal limit the closed formula goes on.
    const double literal = static_cast<double>(LiteralPeriods);
    const bool beyondLimit = n > literal;
    const long long count =
        beyondLimit ? LiteralPeriods : (n > 0 ? static_cast<long long>(std::ceil(n)) : 0);
    const GrowthRun run = runGrowth(InitialAmount, i, Payment, count);
    countPeriods(effort, run.computed);
    if (run.end == LoopEnd::NotFinite)
        return false;
    // A settled balance stays as it is to the end, formula or not.
    if (run.end == LoopEnd::Finished && beyondLimit)
        return store(growBalance(run.balance, i, Payment, std::ceil(n - literal)), result);
    return store(run.balance, result);
}

bool InvRate(double InitialAmount, double Years, double Payment, int PerYear, double FutureValue,
             quint16 stateFlags, double &result, SolveEffort *effort)
{
    if (Years <= 0 || (InitialAmount == 0 && Payment == 0) ||
        (InitialAmount == 0 && FutureValue == 0) || (FutureValue == 0 && Payment == 0) ||
        (InitialAmount < 0 && Payment < 0 && FutureValue > 0) ||
        (InitialAmount > 0 && Payment > 0 && FutureValue < 0))
        return false;

    return refineRate(
        [&](double rate, double &p) {
            return InvPayment(InitialAmount, rate, Years, PerYear, FutureValue, p);
        },
        [Payment](double p) { return p > Payment; }, Payment, stateFlags, result, effort);
}

bool InvYears(double InitialAmount, double IRate, double Payment, int PerYear, double FutureValue,
              double &result, SolveEffort *effort)
{
    if (IRate < 0 || (Payment == 0 && InitialAmount == 0) ||
        (FutureValue == 0 && InitialAmount == 0) || (Payment == 0 && FutureValue == 0) ||
        (InitialAmount < 0 && Payment < 0 && FutureValue > 0) ||
        (InitialAmount > 0 && Payment > 0 && FutureValue < 0) ||
        (IRate == 0 && (Payment == 0 || PerYear == 0)))
        return false;
    if (IRate == 0)
        return store((FutureValue - InitialAmount) / (Payment * PerYear), result);

    // A goal that cannot be reached climbs to 2600 years, which is returned.
    return refineYears(
        [&](double years, double &p) {
            return InvPayment(InitialAmount, IRate, years, PerYear, FutureValue, p);
        },
        [](double years) { return years < 2600; }, 100, Payment, result, effort);
}

bool LoanAmount(double IRate, double Years, double Payment, int PerYear, double &result)
{
    const double n = Years * PerYear;
    if (IRate < 0 || n <= 0 || Payment <= 0)
        return false;
    if (IRate == 0)
        return store(n * Payment, result);
    const double i = LoanPeriodicRate(IRate, PerYear);
    return store(Payment / i * (1 - 1 / std::pow(1 + i, n)), result);
}

bool LoanPayment(double InitialAmount, double IRate, double Years, int PerYear, double &result)
{
    if (InitialAmount <= 0 || IRate < 0 || Years <= 0)
        return false;
    const double n = Years * PerYear;
    if (IRate == 0)
        return store(InitialAmount / n, result);
    const double i = LoanPeriodicRate(IRate, PerYear);
    return store(InitialAmount * i / (1 - 1 / std::pow(1 + i, n)), result);
}

bool LoanRate(double InitialAmount, double Years, double Payment, int PerYear, quint16 stateFlags,
              double &result, SolveEffort *effort)
{
    if (InitialAmount <= 0 || Years <= 0 || Payment <= 0)
        return false;

    return refineRate(
        [&](double rate, double &p) { return LoanPayment(InitialAmount, rate, Years, PerYear, p); },
        [Payment](double p) { return p < Payment; }, Payment, stateFlags, result, effort);
}

bool LoanYears(double InitialAmount, double IRate, double Payment, int PerYear, double &result,
               SolveEffort *effort)
{
    // A loan at exactly 0 % gets no years: the empty cell is intended.
    if (InitialAmount <= 0 || IRate <= 0 || Payment <= 0)
        return false;

    // A payment that never pays the loan off climbs to 110 years.
    return refineYears(
        [&](double years, double &p) {
            return LoanPayment(InitialAmount, IRate, years, PerYear, p);
        },
        [](double years) { return years <= 100; }, 10, Payment, result, effort);
}

bool LoanTotalInterest(const ScenarioRecord &record, quint16 stateFlags, double &result,
                       SolveEffort *effort)
{
    const int perYear = PerYearOr(record.PerYear, 1);
    const double storedAmount = ValueOr(record.InitialAmount, 0);
    const double storedRate = ValueOr(record.IRate, 0);
    const double storedYears = ValueOr(record.Years, 0);
    const double storedPayment = ValueOr(record.Payment, 0);

    bool ok = true;
    double amount = 0;
    if (IsSet(record.InitialAmount))
        amount = record.InitialAmount;
    else
        ok = LoanAmount(storedRate, storedYears, storedPayment, perYear, amount);

    // The rate and the years are solved from the stored amount and rate, not
    // from the ones filled in above.
    double rate = 0;
    if (ok && IsSet(record.IRate))
        rate = record.IRate;
    else
        ok = LoanRate(storedAmount, storedYears, storedPayment, perYear, stateFlags, rate, effort);

    double years = 0;
    if (ok && IsSet(record.Years))
        years = record.Years;
    else
        ok = LoanYears(storedAmount, storedRate, storedPayment, perYear, years, effort);

    // Past 300 years the answer is "solved, but zero": the program's limit.
    if (!ok || years > 300)
        return ok;

    double payment = storedPayment;
    if (payment == 0 && !LoanPayment(amount, rate, years, perYear, payment))
        return false;

    // The last payment is cut to the balance, but its interest counts in full.
    const double i = rate / perYear;
    const LoanRun run = runLoanInterest(amount, i, payment, years * perYear, LiteralPeriods);
    countPeriods(effort, run.computed);
    if (run.end == LoopEnd::NotFinite)
        return false;
    double total = run.total;
    // Past the literal limit the closed formula adds the rest.
    if (run.done == LiteralPeriods && run.periods > 0 && run.balance > 0)
        total = total + remainingLoanInterest(run.balance, i, payment, std::ceil(run.periods));
    return store(total, result);
}

SolveResult Solve(const ScenarioRecord &record, Field field, bool investments, quint16 stateFlags,
                  SolveEffort *effort)
{
    SolveResult answer;
    double stored = 0;
    switch (field) {
    case Field::InitialAmount:
        stored = record.InitialAmount;
        break;
    case Field::IRate:
        stored = record.IRate;
        break;
    case Field::Years:
        stored = record.Years;
        break;
    case Field::Payment:
        stored = record.Payment;
        break;
    case Field::FutureValue:
        stored = record.FutureValue;
        break;
    case Field::Desc:
    case Field::PerYear:
        return answer;
    }
    if (IsSet(stored)) {
        answer.value = stored;
        return answer;
    }

    // Other blanks count as their defaults, so each blank is solved alone.
    const double amount = ValueOr(record.InitialAmount, 0);
    const double rate = ValueOr(record.IRate, 0);
    const double years = ValueOr(record.Years, 0);
    const double payment = ValueOr(record.Payment, 0);
    const double future = ValueOr(record.FutureValue, 0);
    const int perYear = PerYearOr(record.PerYear, 1);

    const auto refuse = [&answer] {
        answer.ok = false;
        return answer;
    };
    double value = 0;
    bool solved = false;
    switch (field) {
    case Field::InitialAmount:
        if (investments && !IsSet(record.FutureValue))
            return refuse();
        solved = investments ? InvInitial(rate, years, payment, perYear, future, value)
                             : LoanAmount(rate, years, payment, perYear, value);
        break;
    case Field::IRate:
        solved = investments
                     ? InvRate(amount, years, payment, perYear, future, stateFlags, value, effort)
                     : LoanRate(amount, years, payment, perYear, stateFlags, value, effort);
        break;
    case Field::Years:
        solved = investments ? InvYears(amount, rate, payment, perYear, future, value, effort)
                             : LoanYears(amount, rate, payment, perYear, value, effort);
        break;
    case Field::Payment:
        if (!IsSet(record.IRate))
            return refuse();
        if (investments && (!IsSet(record.FutureValue) || !IsSet(record.InitialAmount)))
            return refuse();
        solved = investments ? InvPayment(amount, rate, years, perYear, future, value)
                             : LoanPayment(amount, rate, years, perYear, value);
        break;
    case Field::FutureValue:
        solved = investments ? InvFuture(amount, rate, years, payment, perYear, value, effort)
                             : LoanTotalInterest(record, stateFlags, value, effort);
        break;
    case Field::Desc:
    case Field::PerYear:
        break;
    }
    answer.computed = true;
    answer.ok = solved;
    answer.value = value;
    return answer;
}

} // namespace quillet
