// Timings of the financial engine: every Solve of both lists on everyday
// scenarios and on the inputs that make its loops and searches run longest,
// plus the schedule rows a schedule window computes.

#include "figuretext.h"
#include "scenariorecord.h"
#include "schedule.h"
#include "solver.h"

#include <QByteArray>
#include <QLocale>
#include <QString>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace quillet;

// One scenario's quantities; blanks are marked when a record is made.
struct Quantities
{
    double amount;
    double rate;
    double years;
    double payment;
    qint16 perYear;
    double future;
};

ScenarioRecord makeRecord(const Quantities &q, std::initializer_list<Field> blanks)
{
    ScenarioRecord record;
    record.InitialAmount = q.amount;
    record.IRate = q.rate;
    record.Years = q.years;
    record.Payment = q.payment;
    record.PerYear = q.perYear;
    record.FutureValue = q.future;
    for (const Field field : blanks) {
        switch (field) {
        case Field::InitialAmount:
            record.InitialAmount = BlankValue;
            break;
        case Field::IRate:
            record.IRate = BlankValue;
            break;
        case Field::Years:
            record.Years = BlankValue;
            break;
        case Field::Payment:
            record.Payment = BlankValue;
            break;
        case Field::PerYear:
            record.PerYear = BlankPerYear;
            break;
        case Field::FutureValue:
            record.FutureValue = BlankValue;
            break;
        case Field::Desc:
            break;
        }
    }
    return record;
}

// A record from the bytes of its numeric fields, offsets 52 to 93 of a slot.
ScenarioRecord recordFromFieldBytes(const char *hex)
{
    QByteArray slot(SlotSize, '\0');
    slot.replace(52, 42, QByteArray::fromHex(hex));
    return decodeRecord(slot);
}

// The value that makes a scenario consistent, 0 when the solver has none.
double futureOf(double amount, double rate, double years, double payment, int perYear)
{
    double future = 0;
    return InvFuture(amount, rate, years, payment, perYear, future) ? future : 0;
}

double loanPaymentOf(double amount, double rate, double years, int perYear)
{
    double payment = 0;
    return LoanPayment(amount, rate, years, perYear, payment) ? payment : 0;
}

std::string label(const SolveResult &answer)
{
    if (!answer.ok)
        return "no value";
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%.10g", answer.value);
    return text.data();
}

void registerSolve(const std::string &name, const ScenarioRecord &record, Field field,
                   bool investments)
{
    benchmark::RegisterBenchmark(name.c_str(), [record, field,
                                                investments](benchmark::State &state) {
        SolveResult answer;
        for (auto _ : state) {
            answer = Solve(record, field, investments);
            benchmark::DoNotOptimize(answer);
        }
        state.SetLabel(label(answer));
    })->Unit(benchmark::kMicrosecond);
}

const std::array<std::pair<Field, const char *>, 5> InvFields = {{
    {Field::InitialAmount, "InitialAmount"},
    {Field::IRate, "IRate"},
    {Field::Years, "Years"},
    {Field::Payment, "Payment"},
    {Field::FutureValue, "FutureValue"},
}};

// The loan's fifth column, total interest, goes by FutureValue.
const std::array<std::pair<Field, const char *>, 4> LoanInputs = {{
    {Field::InitialAmount, "InitialAmount"},
    {Field::IRate, "IRate"},
    {Field::Years, "Years"},
    {Field::Payment, "Payment"},
}};

// An investment scenario: each quantity blank in turn and solved.
void registerInvestment(const std::string &scenario, const Quantities &q)
{
    for (const auto &[field, fieldName] : InvFields)
        registerSolve("inv/" + scenario + "/" + fieldName, makeRecord(q, {field}), field, true);
}

// A loan scenario: each input blank in turn, solved by itself and through
// the total interest, then the total interest with every input stored.
void registerLoan(const std::string &scenario, const Quantities &q)
{
    for (const auto &[field, fieldName] : LoanInputs) {
        const ScenarioRecord record = makeRecord(q, {field, Field::FutureValue});
        registerSolve("loan/" + scenario + "/" + fieldName, record, field, false);
        registerSolve("loan/" + scenario + "/TotalInterest." + fieldName + "Blank", record,
                      Field::FutureValue, false);
    }
    registerSolve("loan/" + scenario + "/TotalInterest", makeRecord(q, {Field::FutureValue}),
                  Field::FutureValue, false);
}

constexpr qint16 MaxPerYear = 32767;

void registerScenarios()
{
    // Everyday scenarios, and the same with one input pushed to an extreme.
    const Quantities inv{1000, 0.12, 10, 100, 12, futureOf(1000, 0.12, 10, 100, 12)};
    const Quantities loan{100000, 0.06, 30, loanPaymentOf(100000, 0.06, 30, 12), 12, 0};

    std::vector<std::pair<std::string, std::pair<Quantities, Quantities>>> scenarios;
    scenarios.push_back({"typical", {inv, loan}});
    scenarios.push_back(
        {"amounts-1e308", {{1e308, 0.12, 10, 1e308, 12, 1e308}, {1e308, 0.06, 30, 1e308, 12, 0}}});
    scenarios.push_back(
        {"amounts-1e-300",
         {{1e-300, 0.12, 10, 1e-300, 12, 1e-300}, {1e-300, 0.06, 30, 1e-300, 12, 0}}});
    {
        Quantities i = inv, l = loan;
        i.rate = l.rate = 1e-300;
        scenarios.push_back({"rate-1e-300", {i, l}});
        i.rate = l.rate = 1e308;
        scenarios.push_back({"rate-1e308", {i, l}});
    }
    scenarios.push_back({"negative-everything",
                         {{-1000, -0.12, -10, -100, -12, -inv.future},
                          {-100000, -0.06, -30, -loan.payment, -12, 0}}});
    {
        // Rate and years as usual, so the loops run on negative amounts.
        Quantities i = inv, l = loan;
        i.amount = -i.amount;
        i.payment = -i.payment;
        i.future = -i.future;
        l.amount = -l.amount;
        l.payment = -l.payment;
        scenarios.push_back({"negative-amounts", {i, l}});
    }
    {
        Quantities i = inv, l = loan;
        i.perYear = l.perYear = MaxPerYear;
        scenarios.push_back({"perYear-32767-same-payment", {i, l}});
        i.payment = 1200.0 / MaxPerYear;
        i.future = futureOf(i.amount, i.rate, i.years, i.payment, MaxPerYear);
        l.payment = loanPaymentOf(l.amount, l.rate, l.years, MaxPerYear);
        scenarios.push_back({"perYear-32767", {i, l}});
    }
    {
        Quantities i = inv, l = loan;
        i.years = l.years = 1e9;
        scenarios.push_back({"years-1e9", {i, l}});
        i.perYear = l.perYear = MaxPerYear;
        scenarios.push_back({"years-1e9-perYear-32767", {i, l}});
    }
    {
        // About a million periods: the longest literal loop under the limit.
        Quantities i = inv, l = loan;
        i.years = l.years = 30;
        i.perYear = l.perYear = MaxPerYear;
        i.payment = 1200.0 / MaxPerYear;
        i.future = futureOf(i.amount, i.rate, i.years, i.payment, MaxPerYear);
        l.payment = loanPaymentOf(l.amount, l.rate, l.years, MaxPerYear);
        scenarios.push_back({"30y-x-32767", {i, l}});
    }
    for (const auto &[name, pair] : scenarios) {
        registerInvestment(name, pair.first);
        registerLoan(name, pair.second);
    }
}

// Inputs built to keep one loop or search going as long as it can.
void registerWorstCases()
{
    const auto inv = [](const std::string &name, const Quantities &q, Field blank) {
        registerSolve("worst/inv/" + name, makeRecord(q, {blank}), blank, true);
    };
    // The total interest with the given input blank, or with all stored.
    const auto loanTotal = [](const std::string &name, const Quantities &q,
                              std::optional<Field> blank = std::nullopt) {
        const ScenarioRecord record = blank ? makeRecord(q, {*blank, Field::FutureValue})
                                            : makeRecord(q, {Field::FutureValue});
        registerSolve("worst/loan/" + name, record, Field::FutureValue, false);
    };
    const auto loan = [](const std::string &name, const Quantities &q, Field blank) {
        registerSolve("worst/loan/" + name, makeRecord(q, {blank, Field::FutureValue}), blank,
                      false);
    };
    const double perPeriod = 1200.0 / MaxPerYear;

    // The future value loop: just under, just over and far over the limit.
    inv("FutureValue.30y-x-32767-literal", {1000, 0.12, 30, perPeriod, MaxPerYear, 0},
        Field::FutureValue);
    inv("FutureValue.31y-x-32767-limit", {1000, 0.12, 31, perPeriod, MaxPerYear, 0},
        Field::FutureValue);
    inv("FutureValue.1e9y-x-32767-limit", {1000, 1e-9, 1e9, 1, MaxPerYear, 0}, Field::FutureValue);

    // Total interest of loans that are never paid off, up to 300 years.
    const double amount = 100000;
    const double rate = 0.06;
    const double interest = amount * rate / MaxPerYear;
    loanTotal("TotalInterest.payment=interest-30y-x-32767",
              {amount, rate, 30, interest, MaxPerYear, 0});
    loanTotal("TotalInterest.payment=interest-300y-x-32767",
              {amount, rate, 300, interest, MaxPerYear, 0});
    loanTotal("TotalInterest.payment=half-interest-300y-x-32767",
              {amount, rate, 300, interest / 2, MaxPerYear, 0});
    loanTotal("TotalInterest.payment-negative-300y-x-32767",
              {amount, rate, 300, -1, MaxPerYear, 0});
    loanTotal("TotalInterest.payment-tiny-300y-x-32767",
              {amount, rate, 300, 1e-300, MaxPerYear, 0});
    // Years blank: the years search climbs to 110, then the loop runs.
    loanTotal("TotalInterest.YearsBlank.payment=interest-x-32767",
              {amount, rate, 0, interest, MaxPerYear, 0}, Field::Years);
    // Amount blank: paid off only at the very end of 300 years.
    loanTotal("TotalInterest.InitialAmountBlank-300y-x-32767",
              {0, rate, 300, loanPaymentOf(amount, rate, 300, MaxPerYear), MaxPerYear, 0},
              Field::InitialAmount);

    // Tiny amounts, whose subnormal arithmetic is slow in hardware. The
    // investment of 4.4e-308 at 1e-6 for 9.9e299 years paying -5e-324 a year
    // (as its record's bytes), and the loan of 1e-310 at 3.2767 % paying
    // 5e-324 32,767 times a year: both run a million periods.
    registerSolve(
        "worst/inv/FutureValue.tiny-4.4e-308-record",
        recordFromFieldBytes(
            "049a0baaafa31f008dedb5a0f7c6b03e3a4b462c0bc5377e0100000000000080ffff000080a0b16dcdc1"),
        Field::FutureValue, true);
    loanTotal("TotalInterest.tiny-1e-310-300y-x-32767",
              {1e-310, 0.032767, 300, 5e-324, MaxPerYear, 0});
    loanTotal("TotalInterest.tiny-1e-310-30y-x-32767",
              {1e-310, 0.032767, 30, 5e-324, MaxPerYear, 0});
    // Subnormal from the first period: balance, products and payment.
    inv("FutureValue.subnormal-1e-315-1e6y", {1e-315, 1e-6, 1e6, 5e-324, 1, 0}, Field::FutureValue);
    // An everyday-sized tiny balance whose interest is subnormal.
    loanTotal("TotalInterest.interest-subnormal-1e-300-300y-x-32767",
              {1e-300, 1e-4, 300, 5e-324, MaxPerYear, 0});
    // A tiny loan that borrows 1e-305 more each period: its balance is
    // normal, its interest subnormal and its payment too large to carry in
    // integers, so the hardware computes every period. The slowest found.
    loanTotal("TotalInterest.borrowing-1e-305-more-from-1e-310-300y-x-32767",
              {1e-310, 3.2767e-5, 300, -1e-305, MaxPerYear, 0});
    // Amounts near the largest double: the loan whose schedule is huge.
    registerSolve(
        "worst/loan/TotalInterest.huge-1e303-record",
        recordFromFieldBytes(
            "da72d01ce354d77e9a9999999999b93f000000000000f03fda72d01ce354f7feff7f000080a0b16dcdc1"),
        Field::FutureValue, false);

    // Rate searches that climb in steps of 0.1 to a rate near 1000.
    inv("IRate.climb-to-bound-1y", {1, 0, 1, 1, 1, 1e300}, Field::IRate);
    inv("IRate.climb-to-bound-30y-x-32767", {1, 0, 30, 1, MaxPerYear, 1e300}, Field::IRate);
    inv("IRate.climb-to-999-1y", {1, 0, 1, 0, 1, 1000}, Field::IRate);
    loan("IRate.climb-to-bound-1y", {1, 0, 1, 1e300, 1, 0}, Field::IRate);
    loan("IRate.climb-to-bound-30y-x-32767", {1, 0, 30, 1e300, MaxPerYear, 0}, Field::IRate);
    loan("IRate.climb-to-999-1y", {1, 0, 1, 1000, 1, 0}, Field::IRate);
    loanTotal("TotalInterest.IRateBlank.climb-to-bound-30y-x-32767",
              {1, 0, 30, 1e300, MaxPerYear, 0}, Field::IRate);
    loanTotal("TotalInterest.IRateBlank.climb-to-999-30y-x-32767",
              {amount, 0, 30, loanPaymentOf(amount, 999, 30, MaxPerYear), MaxPerYear, 0},
              Field::IRate);

    // Years searches whose goal cannot be reached.
    inv("Years.unreachable-2600", {1000, 0.12, 0, -1000, 12, 1e6}, Field::Years);
    loan("Years.payment=interest-110", {amount, rate, 0, amount * rate / 12, 12, 0}, Field::Years);
}

// A schedule window's rows: a whole 32,767-period schedule, and its last
// page, which computes and passes over every period before it.
void registerSchedules()
{
    constexpr int Periods = MaxPerYear;
    constexpr int PageRows = 14;
    const ScheduleStart inv{1000, 0.12, 1200.0 / MaxPerYear, MaxPerYear};
    const ScheduleStart loan{100000, 0.06, loanPaymentOf(100000, 0.06, 1, MaxPerYear), MaxPerYear};

    benchmark::RegisterBenchmark("schedule/inv/rows-all-32767", [inv](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(InvestmentSchedule::rows(inv, 1, Periods));
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("schedule/inv/rows-last-page", [inv](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(
                InvestmentSchedule::rows(inv, Periods - PageRows + 1, PageRows));
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("schedule/loan/rows-all-32767", [loan](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(LoanSchedule::rows(loan, 1, Periods));
    })->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark("schedule/loan/rows-last-page", [loan](benchmark::State &state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(LoanSchedule::rows(loan, Periods - PageRows + 1, PageRows));
    })->Unit(benchmark::kMicrosecond);
}

// Display texts of huge amounts: one text by QLocale and by the fast path,
// and every text of the 32,767-period schedule of the loan of 1e303 paying
// -4e303 32,767 times a year, whose every cell is a 300-digit amount.
void registerFormatting()
{
    const QLocale locale(QLocale::English, QLocale::UnitedStates);
    for (const double value : {1234.5678, -4e303, 1e303}) {
        char name[64];
        std::snprintf(name, sizeof name, "%g", value);
        benchmark::RegisterBenchmark((std::string("format/currency-qlocale/") + name).c_str(),
                                     [value, locale](benchmark::State &state) {
                                         for (auto _ : state)
                                             benchmark::DoNotOptimize(
                                                 locale.toCurrencyString(value, QString(), 2));
                                     })
            ->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((std::string("format/currency-fast/") + name).c_str(),
                                     [value, locale](benchmark::State &state) {
                                         for (auto _ : state)
                                             benchmark::DoNotOptimize(currencyText(value, locale));
                                     })
            ->Unit(benchmark::kMicrosecond);
    }

    constexpr int Periods = MaxPerYear;
    const ScheduleStart huge{1e303, 0.1, -4e303, MaxPerYear};
    benchmark::RegisterBenchmark(
        "format/loan-schedule-32767-huge-all-texts",
        [huge, locale](benchmark::State &state) {
            qsizetype characters = 0;
            for (auto _ : state) {
                characters = 0;
                for (const LoanScheduleRow &row : LoanSchedule::rows(huge, 1, Periods)) {
                    for (const double value : {row.principal, row.interest, row.cumulativePrincipal,
                                               row.cumulativeInterest, row.balance})
                        characters += currencyText(value, locale).size();
                }
            }
            state.SetLabel(std::to_string(characters) + " characters");
        })
        ->Unit(benchmark::kMillisecond);
}

} // namespace

int main(int argc, char **argv)
{
    registerScenarios();
    registerWorstCases();
    registerSchedules();
    registerFormatting();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
