#pragma once

#include "scenariorecord.h"

#include <QString>
#include <QStringView>

#include <optional>

namespace quillet {

// The fields of a scenario by the names the program asks for them. For a
// loan, FutureValue stands for the total interest.
enum class Field { Desc, InitialAmount, IRate, Years, Payment, PerYear, FutureValue };

QString fieldName(Field field);
std::optional<Field> fieldFromName(QStringView name);

// The value of one field: the stored value, or the solved one (computed)
// when the field is blank. ok is false when no value can be given.
struct SolveResult
{
    double value = 0.0;
    bool ok = true;
    bool computed = false;
};

// The limits that keep every search and loop bounded whatever the input.
namespace SolverLimits {
// The rate searches give no value once the rate they try passes this
// (100,000 % a year); no scenario a person means comes near it.
inline constexpr double MaxSearchRate = 1000.0;
// Period-by-period loops run literally up to this many periods; the rest of
// a longer run is added by the closed formula.
inline constexpr long long LiteralPeriods = 1'000'000;
} // namespace SolverLimits

// What a solve computed: the trial values its searches tried and the periods
// its period-by-period loops computed. Counted for the tests that bound the
// work any input can cause.
struct SolveEffort
{
    long long trials = 0;
    long long periods = 0;
};

// Solves the named field of a record of the investments list (investments
// true) or of the loans list. stateFlags selects the search tolerance;
// effort, when given, adds up what the solve computed.
SolveResult Solve(const ScenarioRecord &record, Field field, bool investments,
                  quint16 stateFlags = 0, SolveEffort *effort = nullptr);

// The solvers. Each takes its inputs with blanks already replaced by their
// defaults (amounts, rate, years 0; payments a year 1), returns false for
// inputs it cannot solve and then leaves result untouched. A result or an
// intermediate value that is not finite gives no value either.
bool InvInitial(double IRate, double Years, double Payment, int PerYear, double FutureValue,
                double &result);
bool InvPayment(double InitialAmount, double IRate, double Years, int PerYear, double FutureValue,
                double &result);
bool InvFuture(double InitialAmount, double IRate, double Years, double Payment, int PerYear,
               double &result, SolveEffort *effort = nullptr);
bool InvRate(double InitialAmount, double Years, double Payment, int PerYear, double FutureValue,
             quint16 stateFlags, double &result, SolveEffort *effort = nullptr);
bool InvYears(double InitialAmount, double IRate, double Payment, int PerYear, double FutureValue,
              double &result, SolveEffort *effort = nullptr);

bool LoanAmount(double IRate, double Years, double Payment, int PerYear, double &result);
bool LoanPayment(double InitialAmount, double IRate, double Years, int PerYear, double &result);
bool LoanRate(double InitialAmount, double Years, double Payment, int PerYear, quint16 stateFlags,
              double &result, SolveEffort *effort = nullptr);
bool LoanYears(double InitialAmount, double IRate, double Payment, int PerYear, double &result,
               SolveEffort *effort = nullptr);
// Reads the record itself: which quantities are stored decides what it
// fills in before it runs the schedule.
bool LoanTotalInterest(const ScenarioRecord &record, quint16 stateFlags, double &result,
                       SolveEffort *effort = nullptr);

} // namespace quillet
