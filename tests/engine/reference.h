#pragma once

#include <vector>

#include "scenariorecord.h"

// The engine's arithmetic written out a second time, step by step in the order
// the algorithms state it and with none of the engine's guards, so that the
// tests can demand bit-identical results. Only for inputs that stay finite
// and end. Kept in its own source file so that the compiler cannot fold
// these powers at compile time with a rounding the library's pow() may not
// share.
namespace quillet::reference {

double power(double base, double exponent);

// (1 + r)^(1/ppy) - 1 when ppy > 0, else r.
double investmentRate(double yearlyRate, double perYear);
// r / ppy.
double loanRate(double yearlyRate, double perYear);

bool invInitial(double rate, double years, double payment, int perYear, double futureValue,
                double &result);
bool invPayment(double initialAmount, double rate, double years, int perYear, double futureValue,
                double &result);
bool invFuture(double initialAmount, double rate, double years, double payment, int perYear,
               double &result);
bool invRate(double initialAmount, double years, double payment, int perYear, double futureValue,
             double tolerance, double &result);
bool invYears(double initialAmount, double rate, double payment, int perYear, double futureValue,
              double &result);

bool loanAmount(double rate, double years, double payment, int perYear, double &result);
bool loanPayment(double initialAmount, double rate, double years, int perYear, double &result);
bool loanRateSearch(double initialAmount, double years, double payment, int perYear,
                    double tolerance, double &result);
bool loanYears(double initialAmount, double rate, double payment, int perYear, double &result);
bool loanTotalInterest(const ScenarioRecord &record, double tolerance, double &result);

// The investment loop alone: `count` periods of balance = balance + balance
// * i + payment, with nothing stopping it early.
double growth(double balance, double i, double payment, long long count);

struct LoanLoopState
{
    double balance = 0;
    double total = 0;
    double periods = 0;
    long long done = 0;
};

// The loan loop alone, at most `limit` periods, from a total of 0.
LoanLoopState loanLoop(double balance, double i, double payment, double periods, long long limit);

struct InvestmentRow
{
    double earnings = 0;
    double cumulative = 0;
    double balance = 0;
};

// Periods 1 .. count of an investment schedule.
std::vector<InvestmentRow> investmentSchedule(double balance, double yearlyRate, double payment,
                                              double perYear, int count);

struct LoanRow
{
    double principal = 0;
    double interest = 0;
    double cumulativePrincipal = 0;
    double cumulativeInterest = 0;
    double balance = 0;
};

// Periods 1 .. count of a loan schedule.
std::vector<LoanRow> loanSchedule(double balance, double yearlyRate, double payment, double perYear,
                                  int count);

} // namespace quillet::reference
