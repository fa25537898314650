#include <QLocale>
#include <QObject>
#include <QTest>

#include <cmath>

#include "displaytext.h"
#include "rates.h"
#include "reference.h"
#include "scenariorecord.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

namespace {

// 100,000 borrowed at 6 % for 30 years, paid monthly.
constexpr double Amount = 100000;
constexpr double Rate = 0.06;
constexpr double Years = 30;
constexpr qint16 PerYear = 12;

// 100000 x 0.005 / (1 - 1.005^-360), and 360 such payments less the amount.
constexpr double KnownPayment = 599.55052515275239;
constexpr double KnownTotalInterest = 115838.18905499086;

constexpr double Untouched = 12345.678;

} // namespace

class TestLoanSolver : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void thirtyYearMonthlyPaymentIs599();
    void thirtyYearTotalInterestSumsAll360Periods();
    void totalInterestWithBlankPaymentComputesThePaymentFirst();
    void storedZeroPaymentIsComputedLikeABlankOne();

    void zeroRatePaymentDividesTheAmount_data();
    void zeroRatePaymentDividesTheAmount();
    void zeroRateAmountMultipliesThePayment_data();
    void zeroRateAmountMultipliesThePayment();
    void zeroRateYearsGiveAnEmptyCell();

    void paymentOfOnePeriodsInterestGives110Years_data();
    void paymentOfOnePeriodsInterestGives110Years();
    void yearsSearchStopsAtAnExactHit();
    void yearsSearchFindsTheTerm();

    void rateExactHitAtFirstTrialReturnsOneHundredth_data();
    void rateExactHitAtFirstTrialReturnsOneHundredth();
    void rateSearchConvergesOnTheRate();
    void rateSearchBelowTheZeroInterestPaymentEndsNearATenMillionth();
    void fineToleranceRefinesTheRateSearch();

    void termAbove300YearsGivesABoldZero_data();
    void termAbove300YearsGivesABoldZero();
    void termOf300YearsIsStillComputed();

    void totalInterestSolvesABlankAmountFirst();
    void totalInterestSolvesABlankRateFromTheStoredAmount();
    void totalInterestSolvesBlankYears();
    void totalInterestRateSearchSeesTheStoredBlankAmount();
    void totalInterestWithTwoBlanksGivesNoValue_data();
    void totalInterestWithTwoBlanksGivesNoValue();

    void lastPaymentIsCutButItsInterestCountsInFull();
    void fractionalPeriodsCountAsTheNextWholeOne_data();
    void fractionalPeriodsCountAsTheNextWholeOne();

    void invalidInputsGiveNoValueAndLeaveTheResult_data();
    void invalidInputsGiveNoValueAndLeaveTheResult();
};

void TestLoanSolver::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestLoanSolver::thirtyYearMonthlyPaymentIs599()
{
    const ScenarioRecord record = scenario(Amount, Rate, Years, Blank, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::Payment, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    // P x i / (1 - 1 / (1 + i)^n) with the nominal monthly rate.
    const double i = 0.06 / 12;
    const double literal = 100000 * i / (1 - 1 / reference::power(1 + i, 30.0 * 12));
    QUILLET_COMPARE_EXACT(answer.value, literal);
    QUILLET_COMPARE_NEAR(answer.value, KnownPayment, 1e-9);

    const FieldDisplay shown = FieldText(record, Field::Payment, false);
    QCOMPARE(shown.text, QStringLiteral("$599.55 "));
    QVERIFY(shown.computed);
}

void TestLoanSolver::thirtyYearTotalInterestSumsAll360Periods()
{
    double payment = 0;
    QVERIFY(LoanPayment(Amount, Rate, Years, PerYear, payment));
    const ScenarioRecord record = scenario(Amount, Rate, Years, payment, PerYear, Blank);

    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    // The schedule written out: 360 periods at most, stopping once paid off.
    const double i = Rate / PerYear;
    double balance = Amount;
    double total = 0;
    int periods = 0;
    for (double left = Years * PerYear; left > 0 && balance > 0; left = left - 1) {
        const double interest = i * balance;
        double principal = payment - interest;
        if (principal > balance)
            principal = balance;
        balance = balance - principal;
        total = total + interest;
        ++periods;
    }
    QVERIFY2(periods >= 359 && periods <= 360, QByteArray::number(periods).constData());
    QUILLET_COMPARE_EXACT(answer.value, total);
    QUILLET_COMPARE_NEAR(answer.value, KnownTotalInterest, 1e-6);

    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);

    const FieldDisplay shown = FieldText(record, Field::FutureValue, false);
    QCOMPARE(shown.text, QStringLiteral("$115,838.19 "));
    QVERIFY(shown.computed);
}

void TestLoanSolver::totalInterestWithBlankPaymentComputesThePaymentFirst()
{
    const ScenarioRecord record = scenario(Amount, Rate, Years, Blank, PerYear, Blank);
    double total = Untouched;
    QVERIFY(LoanTotalInterest(record, 0, total));

    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(total, expected);
    QUILLET_COMPARE_NEAR(total, KnownTotalInterest, 1e-6);

    // The same as with the computed payment stored.
    double payment = 0;
    QVERIFY(LoanPayment(Amount, Rate, Years, PerYear, payment));
    double withPayment = 0;
    QVERIFY(
        LoanTotalInterest(scenario(Amount, Rate, Years, payment, PerYear, Blank), 0, withPayment));
    QUILLET_COMPARE_EXACT(total, withPayment);

    // A smaller quarterly loan.
    const ScenarioRecord quarterly = scenario(5000, 0.09, 3, Blank, 4, Blank);
    const SolveResult answer = Solve(quarterly, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QVERIFY(reference::loanTotalInterest(quarterly, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    double quarterlyPayment = 0;
    QVERIFY(reference::loanPayment(5000, 0.09, 3, 4, quarterlyPayment));
    QUILLET_COMPARE_NEAR(answer.value, 12 * quarterlyPayment - 5000, 1e-6);
}

void TestLoanSolver::storedZeroPaymentIsComputedLikeABlankOne()
{
    double blank = 0;
    QVERIFY(LoanTotalInterest(scenario(Amount, Rate, Years, Blank, PerYear, Blank), 0, blank));
    double zero = 0;
    QVERIFY(LoanTotalInterest(scenario(Amount, Rate, Years, 0, PerYear, Blank), 0, zero));
    QUILLET_COMPARE_EXACT(zero, blank);
}

void TestLoanSolver::zeroRatePaymentDividesTheAmount_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<double>("years");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<double>("expected");

    QTest::newRow("1200 over a year of months") << 1200.0 << 1.0 << 12 << 100.0;
    QTest::newRow("1000 over 2.5 years of quarters") << 1000.0 << 2.5 << 4 << 1000.0 / (2.5 * 4);
    QTest::newRow("1000 over 3 years of months") << 1000.0 << 3.0 << 12 << 1000.0 / (3.0 * 12);
}

void TestLoanSolver::zeroRatePaymentDividesTheAmount()
{
    QFETCH(double, amount);
    QFETCH(double, years);
    QFETCH(int, perYear);
    QFETCH(double, expected);

    double payment = Untouched;
    QVERIFY(LoanPayment(amount, 0, years, perYear, payment));
    QUILLET_COMPARE_EXACT(payment, expected);

    const ScenarioRecord record =
        scenario(amount, 0, years, Blank, static_cast<qint16>(perYear), Blank);
    const SolveResult answer = Solve(record, Field::Payment, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, expected);
}

void TestLoanSolver::zeroRateAmountMultipliesThePayment_data()
{
    QTest::addColumn<double>("payment");
    QTest::addColumn<double>("years");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<double>("expected");

    QTest::newRow("150 a month for 2 years") << 150.0 << 2.0 << 12 << 3600.0;
    QTest::newRow("99.99 a quarter for 2.55 years") << 99.99 << 2.55 << 4 << (2.55 * 4) * 99.99;
}

void TestLoanSolver::zeroRateAmountMultipliesThePayment()
{
    QFETCH(double, payment);
    QFETCH(double, years);
    QFETCH(int, perYear);
    QFETCH(double, expected);

    double amount = Untouched;
    QVERIFY(LoanAmount(0, years, payment, perYear, amount));
    QUILLET_COMPARE_EXACT(amount, expected);

    const ScenarioRecord record =
        scenario(Blank, 0, years, payment, static_cast<qint16>(perYear), Blank);
    const SolveResult answer = Solve(record, Field::InitialAmount, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, expected);
}

void TestLoanSolver::zeroRateYearsGiveAnEmptyCell()
{
    double years = Untouched;
    QVERIFY(!LoanYears(1200, 0, 100, 12, years));
    QUILLET_COMPARE_EXACT(years, Untouched);

    const ScenarioRecord record = scenario(1200, 0, Blank, 100, 12, Blank);
    const SolveResult answer = Solve(record, Field::Years, false);
    QVERIFY(!answer.ok);
    QVERIFY(answer.computed);
    QCOMPARE(FieldText(record, Field::Years, false).text, QString());

    // The smallest positive rate is searched as usual.
    QVERIFY(LoanYears(1200, 1e-12, 100, 12, years));
    double expected = 0;
    QVERIFY(reference::loanYears(1200, 1e-12, 100, 12, expected));
    QUILLET_COMPARE_EXACT(years, expected);
    QUILLET_COMPARE_NEAR(years, 1.0, 0.001);
}

void TestLoanSolver::paymentOfOnePeriodsInterestGives110Years_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<double>("payment");

    QTest::newRow("monthly interest only") << Amount << Rate << 12 << Amount * (Rate / 12);
    QTest::newRow("yearly interest only") << 1000.0 << 0.05 << 1 << 1000 * (0.05 / 1);
    QTest::newRow("payment below the interest") << Amount << Rate << 12 << 400.0;
}

void TestLoanSolver::paymentOfOnePeriodsInterestGives110Years()
{
    QFETCH(double, amount);
    QFETCH(double, rate);
    QFETCH(int, perYear);
    QFETCH(double, payment);

    double years = Untouched;
    QVERIFY(LoanYears(amount, rate, payment, perYear, years));
    QUILLET_COMPARE_EXACT(years, 110.0);

    const ScenarioRecord record =
        scenario(amount, rate, Blank, payment, static_cast<qint16>(perYear), Blank);
    const SolveResult answer = Solve(record, Field::Years, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 110.0);
    QCOMPARE(FieldText(record, Field::Years, false).text, QStringLiteral("110.0 "));
}

void TestLoanSolver::yearsSearchStopsAtAnExactHit()
{
    // The engine's own 30-year payment is hit exactly at 10 + 10 + 10 years,
    // and unlike the rate search the years search takes no step back.
    double payment = 0;
    QVERIFY(LoanPayment(Amount, Rate, 30, PerYear, payment));
    double years = 0;
    QVERIFY(LoanYears(Amount, Rate, payment, PerYear, years));
    QUILLET_COMPARE_EXACT(years, 30.0);
}

void TestLoanSolver::yearsSearchFindsTheTerm()
{
    const ScenarioRecord record = scenario(Amount, Rate, Blank, 700, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::Years, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::loanYears(Amount, Rate, 700, PerYear, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);

    // n = ln(A / (A - P i)) / ln(1 + i), in years.
    const double i = Rate / PerYear;
    const double periods = std::log(700 / (700 - Amount * i)) / std::log1p(i);
    QUILLET_COMPARE_NEAR(answer.value, periods / PerYear, 0.001);
}

void TestLoanSolver::rateExactHitAtFirstTrialReturnsOneHundredth_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<double>("years");
    QTest::addColumn<int>("perYear");

    QTest::newRow("30 years monthly") << Amount << 30.0 << 12;
    QTest::newRow("5 years yearly") << 20000.0 << 5.0 << 1;
    QTest::newRow("2.5 years weekly") << 3000.0 << 2.5 << 52;
}

void TestLoanSolver::rateExactHitAtFirstTrialReturnsOneHundredth()
{
    QFETCH(double, amount);
    QFETCH(double, years);
    QFETCH(int, perYear);

    // The engine's own payment at 10 %, so the very first trial hits exactly.
    double payment = 0;
    QVERIFY(LoanPayment(amount, 0.1, years, perYear, payment));

    double rate = Untouched;
    QVERIFY(LoanRate(amount, years, payment, perYear, 0, rate));
    QUILLET_COMPARE_EXACT(rate, (0.1 - 0.1) + 0.1 / 10);
    QUILLET_COMPARE_EXACT(rate, 0.01);

    double expected = 0;
    QVERIFY(reference::loanRateSearch(amount, years, payment, perYear, 1e-6, expected));
    QUILLET_COMPARE_EXACT(rate, expected);

    const ScenarioRecord record =
        scenario(amount, Blank, years, payment, static_cast<qint16>(perYear), Blank);
    const SolveResult answer = Solve(record, Field::IRate, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 0.01);
    QCOMPARE(FieldText(record, Field::IRate, false).text, QStringLiteral("1.00% "));
}

void TestLoanSolver::rateSearchConvergesOnTheRate()
{
    // The payment rounded to cents: close to, but not exactly, 6 %.
    const ScenarioRecord record = scenario(Amount, Blank, Years, 599.55, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::IRate, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::loanRateSearch(Amount, Years, 599.55, PerYear, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    QUILLET_COMPARE_NEAR(answer.value, Rate, 2e-6);
}

void TestLoanSolver::rateSearchBelowTheZeroInterestPaymentEndsNearATenMillionth()
{
    // 90 a month never repays 1200 in a year, even at no interest.
    double rate = 0;
    QVERIFY(LoanRate(1200, 1, 90, 12, 0, rate));
    double expected = 0;
    QVERIFY(reference::loanRateSearch(1200, 1, 90, 12, 1e-6, expected));
    QUILLET_COMPARE_EXACT(rate, expected);
    QVERIFY2(rate > 0, describe(rate).constData());
    QUILLET_COMPARE_NEAR(rate, 1e-7, 1e-12);
}

void TestLoanSolver::fineToleranceRefinesTheRateSearch()
{
    double coarse = 0;
    QVERIFY(LoanRate(Amount, Years, 599.55, PerYear, 0, coarse));
    double fine = 0;
    QVERIFY(LoanRate(Amount, Years, 599.55, PerYear, FineToleranceFlag, fine));

    double expected = 0;
    QVERIFY(reference::loanRateSearch(Amount, Years, 599.55, PerYear, 1e-9, expected));
    QUILLET_COMPARE_EXACT(fine, expected);
    QVERIFY2(bitsOf(fine) != bitsOf(coarse), mismatch(fine, coarse).constData());
    QUILLET_COMPARE_NEAR(fine, coarse, 1.1e-6);

    // The payment at the fine rate is within a hundredth of a cent.
    double payment = 0;
    QVERIFY(reference::loanPayment(Amount, fine, Years, PerYear, payment));
    QUILLET_COMPARE_NEAR(payment, 599.55, 1e-4);
}

void TestLoanSolver::termAbove300YearsGivesABoldZero_data()
{
    QTest::addColumn<ScenarioRecord>("record");

    QTest::newRow("301 years with a payment") << scenario(Amount, Rate, 301, 600, PerYear, Blank);
    QTest::newRow("301 years with a blank payment")
        << scenario(Amount, Rate, 301, Blank, PerYear, Blank);
    QTest::newRow("300 and a bit years")
        << scenario(Amount, Rate, std::nextafter(300.0, 400.0), Blank, PerYear, Blank);
    QTest::newRow("a billion years") << scenario(Amount, Rate, 1e9, Blank, PerYear, Blank);
}

void TestLoanSolver::termAbove300YearsGivesABoldZero()
{
    QFETCH(ScenarioRecord, record);

    double total = Untouched;
    QVERIFY(LoanTotalInterest(record, 0, total));
    QUILLET_COMPARE_EXACT(total, Untouched);

    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 0.0);

    const FieldDisplay shown = FieldText(record, Field::FutureValue, false);
    QCOMPARE(shown.text, QStringLiteral("$0.00 "));
    QVERIFY(shown.computed);
}

void TestLoanSolver::termOf300YearsIsStillComputed()
{
    const ScenarioRecord record = scenario(Amount, Rate, 300, Blank, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    QVERIFY2(answer.value > 1e6, describe(answer.value).constData());
}

void TestLoanSolver::totalInterestSolvesABlankAmountFirst()
{
    const ScenarioRecord record = scenario(Blank, Rate, Years, 599.55, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);

    double amount = 0;
    QVERIFY(reference::loanAmount(Rate, Years, 599.55, PerYear, amount));
    QUILLET_COMPARE_NEAR(answer.value, 360 * 599.55 - amount, 1e-6);
}

void TestLoanSolver::totalInterestSolvesABlankRateFromTheStoredAmount()
{
    const ScenarioRecord record = scenario(Amount, Blank, Years, 599.55, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    // About 360 payments less the amount: a rate off by up to 1e-6 leaves a
    // few dollars of balance after the last period.
    QUILLET_COMPARE_NEAR(answer.value, 360 * 599.55 - Amount, 20);

    double fine = 0;
    QVERIFY(LoanTotalInterest(record, FineToleranceFlag, fine));
    QVERIFY(reference::loanTotalInterest(record, 1e-9, expected));
    QUILLET_COMPARE_EXACT(fine, expected);
}

void TestLoanSolver::totalInterestSolvesBlankYears()
{
    const ScenarioRecord record = scenario(Amount, Rate, Blank, 700, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);

    // Paid off before the searched years end: the payments less the amount.
    const double i = Rate / PerYear;
    const double periods = std::log(700 / (700 - Amount * i)) / std::log1p(i);
    QUILLET_COMPARE_NEAR(answer.value, periods * 700 - Amount, 700);
}

void TestLoanSolver::totalInterestRateSearchSeesTheStoredBlankAmount()
{
    // The amount is found first (n x payment at the blank, zero rate), but the
    // rate is then searched with the stored amount, blank: no value.
    const ScenarioRecord record = scenario(Blank, Blank, Years, 600, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(!answer.ok);
    QVERIFY(answer.computed);
    QCOMPARE(FieldText(record, Field::FutureValue, false).text, QString());

    double expected = Untouched;
    QVERIFY(!reference::loanTotalInterest(record, 1e-6, expected));

    // Had the solved amount been used, there would be a value.
    double amount = 0;
    QVERIFY(LoanAmount(0, Years, 600, PerYear, amount));
    const SolveResult stored =
        Solve(scenario(amount, Blank, Years, 600, PerYear, Blank), Field::FutureValue, false);
    QVERIFY(stored.ok);
}

void TestLoanSolver::totalInterestWithTwoBlanksGivesNoValue_data()
{
    QTest::addColumn<ScenarioRecord>("record");

    QTest::newRow("rate and years blank") << scenario(Amount, Blank, Blank, 700, PerYear, Blank);
    QTest::newRow("amount and years blank") << scenario(Blank, Rate, Blank, 700, PerYear, Blank);
    QTest::newRow("amount and payment blank")
        << scenario(Blank, Rate, Years, Blank, PerYear, Blank);
    QTest::newRow("rate and payment blank")
        << scenario(Amount, Blank, Years, Blank, PerYear, Blank);
    QTest::newRow("everything blank") << scenario(Blank, Blank, Blank, Blank, -1, Blank);
}

void TestLoanSolver::totalInterestWithTwoBlanksGivesNoValue()
{
    QFETCH(ScenarioRecord, record);

    double total = Untouched;
    QVERIFY(!LoanTotalInterest(record, 0, total));
    QUILLET_COMPARE_EXACT(total, Untouched);
    double expected = Untouched;
    QVERIFY(!reference::loanTotalInterest(record, 1e-6, expected));

    const SolveResult answer = Solve(record, Field::FutureValue, false);
    QVERIFY(!answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 0.0);
}

void TestLoanSolver::lastPaymentIsCutButItsInterestCountsInFull()
{
    // 1000 at 10 % a year, 600 a year: interest 100, then 50 on the last 500.
    const ScenarioRecord record = scenario(1000, 0.1, 3, 600, 1, Blank);
    double total = 0;
    QVERIFY(LoanTotalInterest(record, 0, total));
    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(total, expected);
    QUILLET_COMPARE_NEAR(total, 150, 1e-9);
}

void TestLoanSolver::fractionalPeriodsCountAsTheNextWholeOne_data()
{
    QTest::addColumn<double>("years");
    QTest::addColumn<double>("periods");

    QTest::newRow("2 years run 2 periods") << 2.0 << 2.0;
    QTest::newRow("2.01 years run 3 periods") << 2.01 << 3.0;
    QTest::newRow("2.5 years run 3 periods") << 2.5 << 3.0;
    QTest::newRow("3 years run 3 periods") << 3.0 << 3.0;
}

void TestLoanSolver::fractionalPeriodsCountAsTheNextWholeOne()
{
    QFETCH(double, years);
    QFETCH(double, periods);

    // Interest only: the balance stays and every period adds the same 100.
    const ScenarioRecord record = scenario(1000, 0.1, years, 100, 1, Blank);
    double total = 0;
    QVERIFY(LoanTotalInterest(record, 0, total));
    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(total, expected);
    QUILLET_COMPARE_NEAR(total, 100 * periods, 1e-9);
}

void TestLoanSolver::invalidInputsGiveNoValueAndLeaveTheResult_data()
{
    QTest::addColumn<QString>("solver");
    QTest::addColumn<double>("amount");
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("years");
    QTest::addColumn<double>("payment");
    QTest::addColumn<int>("perYear");

    const QString amount = QStringLiteral("LoanAmount");
    QTest::newRow("amount: negative rate") << amount << 0.0 << -0.01 << 30.0 << 600.0 << 12;
    QTest::newRow("amount: no years") << amount << 0.0 << 0.06 << 0.0 << 600.0 << 12;
    QTest::newRow("amount: no payments a year") << amount << 0.0 << 0.06 << 30.0 << 600.0 << 0;
    QTest::newRow("amount: no payment") << amount << 0.0 << 0.06 << 30.0 << 0.0 << 12;
    QTest::newRow("amount: negative payment") << amount << 0.0 << 0.06 << 30.0 << -600.0 << 12;

    const QString payment = QStringLiteral("LoanPayment");
    QTest::newRow("payment: no amount") << payment << 0.0 << 0.06 << 30.0 << 0.0 << 12;
    QTest::newRow("payment: negative amount") << payment << -1.0 << 0.06 << 30.0 << 0.0 << 12;
    QTest::newRow("payment: negative rate") << payment << 1000.0 << -0.01 << 30.0 << 0.0 << 12;
    QTest::newRow("payment: no years") << payment << 1000.0 << 0.06 << 0.0 << 0.0 << 12;

    const QString rate = QStringLiteral("LoanRate");
    QTest::newRow("rate: no amount") << rate << 0.0 << 0.0 << 30.0 << 600.0 << 12;
    QTest::newRow("rate: no years") << rate << 1000.0 << 0.0 << 0.0 << 600.0 << 12;
    QTest::newRow("rate: no payment") << rate << 1000.0 << 0.0 << 30.0 << 0.0 << 12;

    const QString years = QStringLiteral("LoanYears");
    QTest::newRow("years: no amount") << years << 0.0 << 0.06 << 0.0 << 600.0 << 12;
    QTest::newRow("years: zero rate") << years << 1000.0 << 0.0 << 0.0 << 600.0 << 12;
    QTest::newRow("years: negative rate") << years << 1000.0 << -0.01 << 0.0 << 600.0 << 12;
    QTest::newRow("years: no payment") << years << 1000.0 << 0.06 << 0.0 << 0.0 << 12;
}

void TestLoanSolver::invalidInputsGiveNoValueAndLeaveTheResult()
{
    QFETCH(QString, solver);
    QFETCH(double, amount);
    QFETCH(double, rate);
    QFETCH(double, years);
    QFETCH(double, payment);
    QFETCH(int, perYear);

    double result = Untouched;
    bool solved = true;
    if (solver == u"LoanAmount")
        solved = LoanAmount(rate, years, payment, perYear, result);
    else if (solver == u"LoanPayment")
        solved = LoanPayment(amount, rate, years, perYear, result);
    else if (solver == u"LoanRate")
        solved = LoanRate(amount, years, payment, perYear, 0, result);
    else if (solver == u"LoanYears")
        solved = LoanYears(amount, rate, payment, perYear, result);
    else
        QFAIL("unknown solver");
    QVERIFY(!solved);
    QUILLET_COMPARE_EXACT(result, Untouched);
}

QTEST_GUILESS_MAIN(TestLoanSolver)
#include "tst_loansolver.moc"
