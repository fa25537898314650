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

// 1000 to start, 12 % a year, 10 years, 100 added each month.
constexpr double Amount = 1000;
constexpr double Rate = 0.12;
constexpr double Years = 10;
constexpr double Payment = 100;
constexpr qint16 PerYear = 12;

// The same by the closed formulas: P (1 + i)^n + A ((1 + i)^n - 1) / i.
constexpr double KnownFutureValue = 25298.852343456150;

// The yearly rate that doubles money in 10 years, 2^(1/10) - 1.
constexpr double DoublingRate = 0.071773462536293164;

constexpr double Untouched = 12345.678;

} // namespace

class TestInvestmentSolver : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void futureValueIsBuiltPeriodByPeriod();
    void paymentIsSolvedFromTheFutureValue();
    void initialAmountIsSolvedWithABlankPaymentAsZero();
    void paymentNeedsRateInitialAmountAndFutureValue_data();
    void paymentNeedsRateInitialAmountAndFutureValue();
    void initialAmountNeedsAFutureValue();
    void unsolvableBlankIsStillMarkedComputed();

    void rateExactHitAtFirstTrialReturnsOneHundredth_data();
    void rateExactHitAtFirstTrialReturnsOneHundredth();
    void rateSearchConvergesOnTheRate();
    void exactHitAtALaterTrialAlsoStepsBack();
    void rateSearchForAZeroTrueRateEndsNearATenMillionth();
    void fineToleranceRefinesTheRateSearch();

    void yearsForAnUnreachableGoalAreExactly2600_data();
    void yearsForAnUnreachableGoalAreExactly2600();
    void yearsSearchFindsTheYears();
    void yearsAtZeroRateNeedPaymentAndPerYear_data();
    void yearsAtZeroRateNeedPaymentAndPerYear();

    void futureValueWithFractionalYearsRunsTheNextWholePeriod();
    void futureValueWithoutPaymentCompoundsOnceAYear();

    void invalidInputsGiveNoValueAndLeaveTheResult_data();
    void invalidInputsGiveNoValueAndLeaveTheResult();

    void storedFieldIsReturnedAsStored_data();
    void storedFieldIsReturnedAsStored();
    void fieldsWithoutAFormulaGiveZero_data();
    void fieldsWithoutAFormulaGiveZero();
};

void TestInvestmentSolver::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestInvestmentSolver::futureValueIsBuiltPeriodByPeriod()
{
    const ScenarioRecord record = scenario(Amount, Rate, Years, Payment, PerYear, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::invFuture(Amount, Rate, Years, Payment, PerYear, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    QUILLET_COMPARE_NEAR(answer.value, KnownFutureValue, 1e-6);

    const FieldDisplay shown = FieldText(record, Field::FutureValue, true);
    QCOMPARE(shown.text, QStringLiteral("$25,298.85 "));
    QVERIFY(shown.computed);
}

void TestInvestmentSolver::paymentIsSolvedFromTheFutureValue()
{
    const ScenarioRecord record = scenario(Amount, Rate, Years, Blank, PerYear, KnownFutureValue);
    const SolveResult answer = Solve(record, Field::Payment, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::invPayment(Amount, Rate, Years, PerYear, KnownFutureValue, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    QUILLET_COMPARE_NEAR(answer.value, Payment, 1e-9);
}

void TestInvestmentSolver::initialAmountIsSolvedWithABlankPaymentAsZero()
{
    const ScenarioRecord record = scenario(Blank, Rate, Years, Blank, PerYear, KnownFutureValue);

    const SolveResult initial = Solve(record, Field::InitialAmount, true);
    QVERIFY(initial.ok);
    QVERIFY(initial.computed);
    double expected = 0;
    QVERIFY(reference::invInitial(Rate, Years, 0, PerYear, KnownFutureValue, expected));
    QUILLET_COMPARE_EXACT(initial.value, expected);
    // With no payments it is the future value discounted over ten years.
    QUILLET_COMPARE_NEAR(initial.value, KnownFutureValue / std::pow(1.12, 10), 1e-8);

    const SolveResult payment = Solve(record, Field::Payment, true);
    QVERIFY(!payment.ok);
    QVERIFY(!payment.computed);
    QUILLET_COMPARE_EXACT(payment.value, 0.0);
    QCOMPARE(FieldText(record, Field::Payment, true).text, QString());
    QVERIFY(FieldText(record, Field::InitialAmount, true).computed);
}

void TestInvestmentSolver::paymentNeedsRateInitialAmountAndFutureValue_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<ScenarioRecord>("record");
    QTest::addColumn<bool>("ok");

    QTest::newRow("investment with all three")
        << true << scenario(Amount, Rate, Years, Blank, PerYear, KnownFutureValue) << true;
    QTest::newRow("investment without rate")
        << true << scenario(Amount, Blank, Years, Blank, PerYear, KnownFutureValue) << false;
    QTest::newRow("investment without initial amount")
        << true << scenario(Blank, Rate, Years, Blank, PerYear, KnownFutureValue) << false;
    QTest::newRow("investment without future value")
        << true << scenario(Amount, Rate, Years, Blank, PerYear, Blank) << false;
    QTest::newRow("loan without rate")
        << false << scenario(Amount, Blank, Years, Blank, PerYear, Blank) << false;
    QTest::newRow("loan with rate")
        << false << scenario(Amount, Rate, Years, Blank, PerYear, Blank) << true;
}

void TestInvestmentSolver::paymentNeedsRateInitialAmountAndFutureValue()
{
    QFETCH(bool, investments);
    QFETCH(ScenarioRecord, record);
    QFETCH(bool, ok);

    const SolveResult answer = Solve(record, Field::Payment, investments);
    QCOMPARE(answer.ok, ok);
    // A failed check comes before any solver: nothing is computed.
    QCOMPARE(answer.computed, ok);
    if (!ok)
        QUILLET_COMPARE_EXACT(answer.value, 0.0);
}

void TestInvestmentSolver::initialAmountNeedsAFutureValue()
{
    const ScenarioRecord record = scenario(Blank, Rate, Years, Payment, PerYear, Blank);

    const SolveResult investment = Solve(record, Field::InitialAmount, true);
    QVERIFY(!investment.ok);
    QVERIFY(!investment.computed);
    QUILLET_COMPARE_EXACT(investment.value, 0.0);
    QCOMPARE(FieldText(record, Field::InitialAmount, true).text, QString());

    // A loan needs no future value: its amount comes from the payments.
    const SolveResult loan = Solve(record, Field::InitialAmount, false);
    QVERIFY(loan.ok);
    QVERIFY(loan.computed);
}

void TestInvestmentSolver::unsolvableBlankIsStillMarkedComputed()
{
    // Nothing but blanks: InvFuture is called and refuses (no amount, no payment).
    ScenarioRecord record;
    record.makeBlank();
    const SolveResult answer = Solve(record, Field::FutureValue, true);
    QVERIFY(!answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 0.0);

    const FieldDisplay shown = FieldText(record, Field::FutureValue, true);
    QCOMPARE(shown.text, QString());
    QVERIFY(shown.computed);
}

void TestInvestmentSolver::rateExactHitAtFirstTrialReturnsOneHundredth_data()
{
    QTest::addColumn<double>("initialAmount");
    QTest::addColumn<double>("years");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<double>("futureValue");

    QTest::newRow("monthly contributions") << 1000.0 << 10.0 << 12 << 50000.0;
    QTest::newRow("yearly contributions") << 5000.0 << 20.0 << 1 << 100000.0;
    QTest::newRow("withdrawals from a lump sum") << 100000.0 << 15.0 << 4 << 1000.0;
}

void TestInvestmentSolver::rateExactHitAtFirstTrialReturnsOneHundredth()
{
    QFETCH(double, initialAmount);
    QFETCH(double, years);
    QFETCH(int, perYear);
    QFETCH(double, futureValue);

    // The engine's own payment at 10 %, so the very first trial hits exactly.
    double payment = 0;
    QVERIFY(InvPayment(initialAmount, 0.1, years, perYear, futureValue, payment));

    double rate = Untouched;
    QVERIFY(InvRate(initialAmount, years, payment, perYear, futureValue, 0, rate));
    // The hit still steps back: 0.1 - 0.1 + 0.1 / 10.
    const double stepBack = (0.1 - 0.1) + 0.1 / 10;
    QUILLET_COMPARE_EXACT(rate, stepBack);
    QUILLET_COMPARE_EXACT(rate, 0.01);

    double expected = 0;
    QVERIFY(
        reference::invRate(initialAmount, years, payment, perYear, futureValue, 1e-6, expected));
    QUILLET_COMPARE_EXACT(rate, expected);

    const ScenarioRecord record =
        scenario(initialAmount, Blank, years, payment, static_cast<qint16>(perYear), futureValue);
    const SolveResult answer = Solve(record, Field::IRate, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 0.01);
    QCOMPARE(FieldText(record, Field::IRate, true).text, QStringLiteral("1.00% "));
}

void TestInvestmentSolver::rateSearchConvergesOnTheRate()
{
    // 1000 doubling in 10 years with no payments: 2^(1/10) - 1 a year.
    const ScenarioRecord record = scenario(1000, Blank, 10, Blank, 1, 2000);
    const SolveResult answer = Solve(record, Field::IRate, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::invRate(1000, 10, 0, 1, 2000, 1e-6, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
    QUILLET_COMPARE_NEAR(answer.value, DoublingRate, 2e-6);
}

void TestInvestmentSolver::exactHitAtALaterTrialAlsoStepsBack()
{
    // 1000 x 1.07^10 is hit exactly when the search tries 7 % with a step of
    // 1 %: the step-back still follows, 0.07 - 0.01 + 0.001.
    const double future = 1000 * reference::power(1.07, 10);
    double rate = 0;
    QVERIFY(InvRate(1000, 10, 0, 1, future, 0, rate));

    double expected = 0;
    QVERIFY(reference::invRate(1000, 10, 0, 1, future, 1e-6, expected));
    QUILLET_COMPARE_EXACT(rate, expected);
    QUILLET_COMPARE_NEAR(rate, 0.061, 1e-15);
}

void TestInvestmentSolver::rateSearchForAZeroTrueRateEndsNearATenMillionth()
{
    // Nothing added and nothing gained: the search only ever moves up from 0.
    double rate = 0;
    QVERIFY(InvRate(1000, 10, 0, 12, 1000, 0, rate));
    double expected = 0;
    QVERIFY(reference::invRate(1000, 10, 0, 12, 1000, 1e-6, expected));
    QUILLET_COMPARE_EXACT(rate, expected);
    QVERIFY2(rate > 0, describe(rate).constData());
    QUILLET_COMPARE_NEAR(rate, 1e-7, 1e-12);
}

void TestInvestmentSolver::fineToleranceRefinesTheRateSearch()
{
    double coarse = 0;
    QVERIFY(InvRate(1000, 10, 0, 1, 2000, 0, coarse));
    double fine = 0;
    QVERIFY(InvRate(1000, 10, 0, 1, 2000, FineToleranceFlag, fine));

    double expected = 0;
    QVERIFY(reference::invRate(1000, 10, 0, 1, 2000, 1e-9, expected));
    QUILLET_COMPARE_EXACT(fine, expected);
    QUILLET_COMPARE_NEAR(fine, DoublingRate, 2e-9);
    QVERIFY2(std::abs(fine - DoublingRate) < std::abs(coarse - DoublingRate),
             mismatch(fine, coarse).constData());

    // The other flag bits leave the tolerance coarse.
    double busy = 0;
    QVERIFY(InvRate(1000, 10, 0, 1, 2000, BusyFlag | EditingFlag, busy));
    QUILLET_COMPARE_EXACT(busy, coarse);

    const ScenarioRecord record = scenario(1000, Blank, 10, Blank, 1, 2000);
    QUILLET_COMPARE_EXACT(Solve(record, Field::IRate, true, FineToleranceFlag).value, fine);
}

void TestInvestmentSolver::yearsForAnUnreachableGoalAreExactly2600_data()
{
    QTest::addColumn<double>("initialAmount");
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("payment");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<double>("futureValue");

    QTest::newRow("withdrawals above the earnings never reach the goal")
        << 1000.0 << 0.05 << -100.0 << 1 << 5000.0;
    QTest::newRow("monthly withdrawals above the earnings")
        << 10000.0 << 0.06 << -100.0 << 12 << 20000.0;
    QTest::newRow("a goal too large for 2600 years") << 1000.0 << 0.01 << 0.0 << 1 << 1e300;
}

void TestInvestmentSolver::yearsForAnUnreachableGoalAreExactly2600()
{
    QFETCH(double, initialAmount);
    QFETCH(double, rate);
    QFETCH(double, payment);
    QFETCH(int, perYear);
    QFETCH(double, futureValue);

    double years = Untouched;
    QVERIFY(InvYears(initialAmount, rate, payment, perYear, futureValue, years));
    QUILLET_COMPARE_EXACT(years, 2600.0);

    const ScenarioRecord record =
        scenario(initialAmount, rate, Blank, payment, static_cast<qint16>(perYear), futureValue);
    const SolveResult answer = Solve(record, Field::Years, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 2600.0);
    QCOMPARE(FieldText(record, Field::Years, true).text, QStringLiteral("2,600.0 "));
}

void TestInvestmentSolver::yearsSearchFindsTheYears()
{
    const ScenarioRecord record = scenario(1000, 0.08, Blank, 100, 12, 30000);
    const SolveResult answer = Solve(record, Field::Years, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    double expected = 0;
    QVERIFY(reference::invYears(1000, 0.08, 100, 12, 30000, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);

    // n = ln((F i + A) / (P i + A)) / ln(1 + i), in years.
    const double i = reference::investmentRate(0.08, 12);
    const double periods = std::log((30000 * i + 100) / (1000 * i + 100)) / std::log1p(i);
    QUILLET_COMPARE_NEAR(answer.value, periods / 12, 0.001);
}

void TestInvestmentSolver::yearsAtZeroRateNeedPaymentAndPerYear_data()
{
    QTest::addColumn<double>("payment");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<double>("expected");

    QTest::newRow("monthly payment") << 100.0 << 12 << true << (5000.0 - 1000.0) / (100.0 * 12);
    QTest::newRow("no payment") << 0.0 << 12 << false << 0.0;
    QTest::newRow("no payments a year") << 100.0 << 0 << false << 0.0;
    QTest::newRow("withdrawals give negative years")
        << -100.0 << 1 << true << (5000.0 - 1000.0) / (-100.0 * 1);
}

void TestInvestmentSolver::yearsAtZeroRateNeedPaymentAndPerYear()
{
    QFETCH(double, payment);
    QFETCH(int, perYear);
    QFETCH(bool, ok);
    QFETCH(double, expected);

    double years = Untouched;
    QCOMPARE(InvYears(1000, 0, payment, perYear, 5000, years), ok);
    QUILLET_COMPARE_EXACT(years, ok ? expected : Untouched);
}

void TestInvestmentSolver::futureValueWithFractionalYearsRunsTheNextWholePeriod()
{
    // 2.55 years of 12 payments is 30.6 periods: the loop runs 31.
    const double i = reference::investmentRate(Rate, 12);
    double balance = Amount;
    double afterThirty = 0;
    double afterThirtyOne = 0;
    for (int period = 1; period <= 32; ++period) {
        balance = balance + balance * i + Payment;
        if (period == 30)
            afterThirty = balance;
        if (period == 31)
            afterThirtyOne = balance;
    }
    const double afterThirtyTwo = balance;

    const ScenarioRecord record = scenario(Amount, Rate, 2.55, Payment, 12, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, afterThirtyOne);
    QUILLET_COMPARE_NEAR(answer.value, 4924.6612418807631, 1e-8);
    QVERIFY2(bitsOf(answer.value) != bitsOf(afterThirty), describe(afterThirty).constData());
    QVERIFY2(bitsOf(answer.value) != bitsOf(afterThirtyTwo), describe(afterThirtyTwo).constData());

    double expected = 0;
    QVERIFY(reference::invFuture(Amount, Rate, 2.55, Payment, 12, expected));
    QUILLET_COMPARE_EXACT(answer.value, expected);
}

void TestInvestmentSolver::futureValueWithoutPaymentCompoundsOnceAYear()
{
    // PerYear 12 is ignored: one period a year, exponent 2.55.
    const ScenarioRecord record = scenario(Amount, Rate, 2.55, 0, 12, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, true);
    QVERIFY(answer.ok);
    QVERIFY(answer.computed);

    const double yearly = reference::investmentRate(Rate, 1);
    QUILLET_COMPARE_EXACT(answer.value, Amount * reference::power(1 + yearly, 2.55));
    QUILLET_COMPARE_NEAR(answer.value, 1335.0759044914417, 1e-9);

    // A blank payment counts as 0 and takes the same way.
    const ScenarioRecord blankPayment = scenario(Amount, Rate, 2.55, Blank, 12, Blank);
    QUILLET_COMPARE_EXACT(Solve(blankPayment, Field::FutureValue, true).value, answer.value);

    const double monthly = reference::investmentRate(Rate, 12);
    const double monthlyGrowth = Amount * reference::power(1 + monthly, 2.55 * 12);
    QVERIFY2(bitsOf(answer.value) != bitsOf(monthlyGrowth),
             mismatch(answer.value, monthlyGrowth).constData());
}

void TestInvestmentSolver::invalidInputsGiveNoValueAndLeaveTheResult_data()
{
    QTest::addColumn<QString>("solver");
    QTest::addColumn<double>("initialAmount");
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("years");
    QTest::addColumn<double>("payment");
    QTest::addColumn<int>("perYear");
    QTest::addColumn<double>("futureValue");

    const QString initial = QStringLiteral("InvInitial");
    QTest::newRow("initial: negative rate")
        << initial << 0.0 << -0.01 << 10.0 << 100.0 << 12 << 5000.0;
    QTest::newRow("initial: no years") << initial << 0.0 << 0.05 << 0.0 << 100.0 << 12 << 5000.0;
    QTest::newRow("initial: no payments a year")
        << initial << 0.0 << 0.05 << 10.0 << 100.0 << 0 << 5000.0;
    QTest::newRow("initial: no future value and no payment")
        << initial << 0.0 << 0.05 << 10.0 << 0.0 << 12 << 0.0;

    const QString payment = QStringLiteral("InvPayment");
    QTest::newRow("payment: no amount and no future value")
        << payment << 0.0 << 0.05 << 10.0 << 0.0 << 12 << 0.0;
    QTest::newRow("payment: negative rate")
        << payment << 1000.0 << -0.01 << 10.0 << 0.0 << 12 << 5000.0;
    QTest::newRow("payment: negative years")
        << payment << 1000.0 << 0.05 << -1.0 << 0.0 << 12 << 5000.0;

    const QString future = QStringLiteral("InvFuture");
    QTest::newRow("future: negative rate")
        << future << 1000.0 << -0.01 << 10.0 << 100.0 << 12 << 0.0;
    QTest::newRow("future: no years") << future << 1000.0 << 0.05 << 0.0 << 100.0 << 12 << 0.0;
    QTest::newRow("future: no amount and no payment")
        << future << 0.0 << 0.05 << 10.0 << 0.0 << 12 << 0.0;

    const QString rate = QStringLiteral("InvRate");
    QTest::newRow("rate: no years") << rate << 1000.0 << 0.0 << 0.0 << 100.0 << 12 << 5000.0;
    QTest::newRow("rate: no amount and no payment")
        << rate << 0.0 << 0.0 << 10.0 << 0.0 << 12 << 5000.0;
    QTest::newRow("rate: no amount and no future value")
        << rate << 0.0 << 0.0 << 10.0 << 100.0 << 12 << 0.0;
    QTest::newRow("rate: no future value and no payment")
        << rate << 1000.0 << 0.0 << 10.0 << 0.0 << 12 << 0.0;
    QTest::newRow("rate: owing and paying out towards a gain")
        << rate << -1000.0 << 0.0 << 10.0 << -100.0 << 12 << 5000.0;
    QTest::newRow("rate: saving towards a loss")
        << rate << 1000.0 << 0.0 << 10.0 << 100.0 << 12 << -5000.0;

    const QString years = QStringLiteral("InvYears");
    QTest::newRow("years: negative rate")
        << years << 1000.0 << -0.01 << 0.0 << 100.0 << 12 << 5000.0;
    QTest::newRow("years: no payment and no amount")
        << years << 0.0 << 0.05 << 0.0 << 0.0 << 12 << 5000.0;
    QTest::newRow("years: no future value and no amount")
        << years << 0.0 << 0.05 << 0.0 << 100.0 << 12 << 0.0;
    QTest::newRow("years: no payment and no future value")
        << years << 1000.0 << 0.05 << 0.0 << 0.0 << 12 << 0.0;
    QTest::newRow("years: owing and paying out towards a gain")
        << years << -1000.0 << 0.05 << 0.0 << -100.0 << 12 << 5000.0;
    QTest::newRow("years: saving towards a loss")
        << years << 1000.0 << 0.05 << 0.0 << 100.0 << 12 << -5000.0;
}

void TestInvestmentSolver::invalidInputsGiveNoValueAndLeaveTheResult()
{
    QFETCH(QString, solver);
    QFETCH(double, initialAmount);
    QFETCH(double, rate);
    QFETCH(double, years);
    QFETCH(double, payment);
    QFETCH(int, perYear);
    QFETCH(double, futureValue);

    double result = Untouched;
    bool solved = true;
    if (solver == u"InvInitial")
        solved = InvInitial(rate, years, payment, perYear, futureValue, result);
    else if (solver == u"InvPayment")
        solved = InvPayment(initialAmount, rate, years, perYear, futureValue, result);
    else if (solver == u"InvFuture")
        solved = InvFuture(initialAmount, rate, years, payment, perYear, result);
    else if (solver == u"InvRate")
        solved = InvRate(initialAmount, years, payment, perYear, futureValue, 0, result);
    else if (solver == u"InvYears")
        solved = InvYears(initialAmount, rate, payment, perYear, futureValue, result);
    else
        QFAIL("unknown solver");
    QVERIFY(!solved);
    QUILLET_COMPARE_EXACT(result, Untouched);
}

void TestInvestmentSolver::storedFieldIsReturnedAsStored_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<Field>("field");
    QTest::addColumn<double>("stored");

    // Every field set, and none agrees with the others.
    for (const bool investments : {true, false}) {
        const char *list = investments ? "investment" : "loan";
        QTest::addRow("%s initial amount", list) << investments << Field::InitialAmount << 1.0;
        QTest::addRow("%s rate", list) << investments << Field::IRate << 0.5;
        QTest::addRow("%s years", list) << investments << Field::Years << -3.0;
        QTest::addRow("%s payment", list) << investments << Field::Payment << 1e9;
        QTest::addRow("%s future value", list) << investments << Field::FutureValue << -42.0;
    }
}

void TestInvestmentSolver::storedFieldIsReturnedAsStored()
{
    QFETCH(bool, investments);
    QFETCH(Field, field);
    QFETCH(double, stored);

    const ScenarioRecord record = scenario(1.0, 0.5, -3.0, 1e9, 12, -42.0);
    const SolveResult answer = Solve(record, field, investments);
    QVERIFY(answer.ok);
    QVERIFY(!answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, stored);
    QVERIFY(!FieldText(record, field, investments).computed);

    // A stored field is returned even when every other field is blank.
    ScenarioRecord alone;
    alone.makeBlank();
    valueField(alone, field) = stored;
    const SolveResult lone = Solve(alone, field, investments);
    QVERIFY(lone.ok);
    QVERIFY(!lone.computed);
    QUILLET_COMPARE_EXACT(lone.value, stored);
}

void TestInvestmentSolver::fieldsWithoutAFormulaGiveZero_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<Field>("field");

    QTest::newRow("investment description") << true << Field::Desc;
    QTest::newRow("investment payments a year") << true << Field::PerYear;
    QTest::newRow("loan description") << false << Field::Desc;
    QTest::newRow("loan payments a year") << false << Field::PerYear;
}

void TestInvestmentSolver::fieldsWithoutAFormulaGiveZero()
{
    QFETCH(bool, investments);
    QFETCH(Field, field);

    ScenarioRecord record;
    record.makeBlank();
    record.PerYear = 12;
    const SolveResult answer = Solve(record, field, investments);
    QVERIFY(answer.ok);
    QVERIFY(!answer.computed);
    QUILLET_COMPARE_EXACT(answer.value, 0.0);
    QCOMPARE(FieldText(record, field, investments).text, QString());
}

QTEST_GUILESS_MAIN(TestInvestmentSolver)
#include "tst_investmentsolver.moc"
