#include "reference.h"

#include <cmath>

namespace quillet::reference {

namespace {

// Written out rather than taken from the engine, so the marker is checked too.
constexpr double Marker = -987456321.0;
constexpr int BlankCount = -1;

bool isSet(double value)
{
    return value != Marker;
}

double orZero(double value)
{
    return isSet(value) ? value : 0;
}

} // namespace

double power(double base, double exponent)
{
    return std::pow(base, exponent);
}

double investmentRate(double yearlyRate, double perYear)
{
    if (perYear > 0)
        return power(1 + yearlyRate, 1 / perYear) - 1;
    return yearlyRate;
}

double loanRate(double yearlyRate, double perYear)
{
    return yearlyRate / perYear;
}

bool invInitial(double rate, double years, double payment, int perYear, double futureValue,
                double &result)
{
    const double n = years * perYear;
    if (rate < 0 || n <= 0 || (futureValue == 0 && payment == 0))
        return false;
    if (rate == 0) {
        result = futureValue - n * payment;
        return true;
    }
    const double i = investmentRate(rate, perYear);
    result = (futureValue - payment * (power(1 + i, n) - 1) / i) / power(1 + i, n);
    return true;
}

bool invPayment(double initialAmount, double rate, double years, int perYear, double futureValue,
                double &result)
{
    if ((initialAmount == 0 && futureValue == 0) || rate < 0 || years <= 0)
        return false;
    const double n = years * perYear;
    if (rate == 0) {
        result = (futureValue - initialAmount) / n;
        return true;
    }
    const double i = investmentRate(rate, perYear);
    result = (futureValue - initialAmount * power(1 + i, n)) / ((power(1 + i, n) - 1) / i);
    return true;
}

bool invFuture(double initialAmount, double rate, double years, double payment, int perYear,
               double &result)
{
    const int ppy = payment != 0 ? perYear : 1;
    if (rate < 0 || years <= 0 || (initialAmount == 0 && payment == 0))
        return false;
    const double n = years * ppy;
    if (rate == 0) {
        result = initialAmount + payment * n;
        return true;
    }
    const double i = investmentRate(rate, ppy);
    if (payment == 0) {
        result = initialAmount * power(1 + i, n);
        return true;
    }
    double balance = initialAmount;
    double k = 0;
    while (k < n) {
        balance = balance + balance * i + payment;
        k = k + 1;
    }
    result = balance;
    return true;
}

bool invRate(double initialAmount, double years, double payment, int perYear, double futureValue,
             double tolerance, double &result)
{
    if (years <= 0 || (initialAmount == 0 && payment == 0) ||
        (initialAmount == 0 && futureValue == 0) || (futureValue == 0 && payment == 0) ||
        (initialAmount < 0 && payment < 0 && futureValue > 0) ||
        (initialAmount > 0 && payment > 0 && futureValue < 0))
        return false;
    double rate = 0.1;
    double step = 0.1;
    bool found = false;
    while (step >= tolerance && !found) {
        double p = 0;
        invPayment(initialAmount, rate, years, perYear, futureValue, p);
        if (p == payment)
            found = true;
        if (p > payment) {
            rate = rate + step;
        } else {
            rate = rate - step;
            step = step / 10;
            rate = rate + step;
        }
    }
    result = rate;
    return true;
}

bool invYears(double initialAmount, double rate, double payment, int perYear, double futureValue,
              double &result)
{
    if (rate < 0 || (payment == 0 && initialAmount == 0) ||
        (futureValue == 0 && initialAmount == 0) || (payment == 0 && futureValue == 0) ||
        (initialAmount < 0 && payment < 0 && futureValue > 0) ||
        (initialAmount > 0 && payment > 0 && futureValue < 0) ||
        (rate == 0 && (payment == 0 || perYear == 0)))
        return false;
    if (rate == 0) {
        result = (futureValue - initialAmount) / (payment * perYear);
        return true;
    }
    double years = 100;
    double step = 100;
    bool done = false;
    while (years < 2600 && step > 0.0001 && !done) {
        double p = 0;
        if (!invPayment(initialAmount, rate, years, perYear, futureValue, p))
            return false;
        if (p == payment) {
            done = true;
        } else if (p > payment) {
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

bool loanAmount(double rate, double years, double payment, int perYear, double &result)
{
    const double n = years * perYear;
    if (rate < 0 || n <= 0 || payment <= 0)
        return false;
    if (rate == 0) {
        result = n * payment;
        return true;
    }
    const double i = loanRate(rate, perYear);
    result = payment / i * (1 - 1 / power(1 + i, n));
    return true;
}

bool loanPayment(double initialAmount, double rate, double years, int perYear, double &result)
{
    if (initialAmount <= 0 || rate < 0 || years <= 0)
        return false;
    const double n = years * perYear;
    if (rate == 0) {
        result = initialAmount / n;
        return true;
    }
    const double i = loanRate(rate, perYear);
    result = initialAmount * i / (1 - 1 / power(1 + i, n));
    return true;
}

bool loanRateSearch(double initialAmount, double years, double payment, int perYear,
                    double tolerance, double &result)
{
    if (initialAmount <= 0 || years <= 0 || payment <= 0)
        return false;
    double rate = 0.1;
    double step = 0.1;
    bool found = false;
    while (step >= tolerance && !found) {
        double p = 0;
        loanPayment(initialAmount, rate, years, perYear, p);
        if (p == payment)
            found = true;
        if (p < payment) {
            rate = rate + step;
        } else {
            rate = rate - step;
            step = step / 10;
            rate = rate + step;
        }
    }
    result = rate;
    return true;
}

bool loanYears(double initialAmount, double rate, double payment, int perYear, double &result)
{
    if (initialAmount <= 0 || rate <= 0 || payment <= 0)
        return false;
    double years = 10;
    double step = 10;
    bool done = false;
    while (years <= 100 && step > 0.0001 && !done) {
        double p = 0;
        loanPayment(initialAmount, rate, years, perYear, p);
        if (p == payment) {
            done = true;
        } else if (p > payment) {
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

bool loanTotalInterest(const ScenarioRecord &record, double tolerance, double &result)
{
    const int perYear = record.PerYear != BlankCount ? record.PerYear : 1;
    bool ok = true;

    double amount = 0;
    if (!isSet(record.InitialAmount))
        ok = loanAmount(orZero(record.IRate), orZero(record.Years), orZero(record.Payment), perYear,
                        amount);
    else
        amount = record.InitialAmount;

    double rate = 0;
    if (ok && isSet(record.IRate))
        rate = record.IRate;
    else
        ok = loanRateSearch(orZero(record.InitialAmount), orZero(record.Years),
                            orZero(record.Payment), perYear, tolerance, rate);

    double years = 0;
    if (ok && isSet(record.Years))
        years = record.Years;
    else
        ok = loanYears(orZero(record.InitialAmount), orZero(record.IRate), orZero(record.Payment),
                       perYear, years);

    int ppy = 0;
    double payment = 0;
    if (ok) {
        ppy = perYear;
        payment = orZero(record.Payment);
    }
    if (!ok || years > 300)
        return ok;
    if (payment == 0)
        ok = loanPayment(amount, rate, years, ppy, payment);
    if (ok) {
        const double i = rate / ppy;
        double periods = years * ppy;
        double balance = amount;
        double total = 0;
        while (periods > 0 && balance > 0) {
            const double interest = i * balance;
            double principal = payment - interest;
            if (principal > balance)
                principal = balance;
            balance = balance - principal;
            total = total + interest;
            periods = periods - 1;
        }
        result = total;
        ok = true;
    }
    return ok;
}

double growth(double balance, double i, double payment, long long count)
{
    for (long long k = 0; k < count; ++k)
        balance = balance + balance * i + payment;
    return balance;
}

LoanLoopState loanLoop(double balance, double i, double payment, double periods, long long limit)
{
    LoanLoopState state{balance, 0, periods, 0};
    while (state.done < limit && state.periods > 0 && state.balance > 0) {
        const double interest = i * state.balance;
        double principal = payment - interest;
        if (principal > state.balance)
            principal = state.balance;
        state.balance = state.balance - principal;
        state.total = state.total + interest;
        state.periods = state.periods - 1;
        ++state.done;
    }
    return state;
}

std::vector<InvestmentRow> investmentSchedule(double balance, double yearlyRate, double payment,
                                              double perYear, int count)
{
    const double i = investmentRate(yearlyRate, perYear);
    double b = balance;
    double c = 0;
    std::vector<InvestmentRow> rows;
    for (int k = 1; k <= count; ++k) {
        const double e = b * i;
        b = (b + e) + payment;
        c = c + e;
        rows.push_back({e, c, b});
    }
    return rows;
}

std::vector<LoanRow> loanSchedule(double balance, double yearlyRate, double payment, double perYear,
                                  int count)
{
    const double i = yearlyRate / perYear;
    double b = balance;
    double cp = 0;
    double ci = 0;
    std::vector<LoanRow> rows;
    for (int k = 1; k <= count; ++k) {
        const double interest = b * i;
        const double principal = payment - interest;
        cp = cp + principal;
        ci = ci + interest;
        b = b - principal;
        rows.push_back({principal, interest, cp, ci, b});
    }
    return rows;
}

} // namespace quillet::reference
