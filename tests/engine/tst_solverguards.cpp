#include <QLocale>
#include <QObject>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "displaytext.h"
#include "rates.h"
#include "reference.h"
#include "scenariorecord.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Inf = std::numeric_limits<double>::infinity();
constexpr double Untouched = 12345.678;

// What one solve may compute, whatever its inputs: the rate searches climb
// to a rate of 1000 in steps of 0.1 and refine five times, and a
// period-by-period loop runs at most a million periods one by one.
constexpr long long TrialBound = 10'100;
constexpr long long PeriodBound = 1'000'000;

QByteArray overBound(const SolveEffort &effort)
{
    if (effort.trials > TrialBound)
        return "tried " + QByteArray::number(effort.trials) + " values";
    if (effort.periods > PeriodBound)
        return "computed " + QByteArray::number(effort.periods) + " periods";
    return {};
}

const Field ValueFields[] = {Field::InitialAmount, Field::IRate, Field::Years, Field::Payment,
                             Field::FutureValue};

// A solver answer must be a number when there is one.
QByteArray badAnswer(const ScenarioRecord &record, Field field, bool investments,
                     const SolveResult &answer, const SolveEffort &effort)
{
    const double stored = [&] {
        ScenarioRecord copy = record;
        return valueField(copy, field);
    }();
    QByteArray problem = overBound(effort);
    if (!problem.isEmpty()) {
        // Computed more than any input may make it compute.
    } else if (answer.computed && answer.ok && !std::isfinite(answer.value)) {
        problem = "solved a non-finite value";
    } else if (!answer.computed && answer.ok && bitsOf(answer.value) != bitsOf(stored)) {
        problem = "did not return the stored value";
    } else if (!answer.ok && answer.value != 0) {
        problem = "gave a value without ok";
    }
    if (problem.isEmpty())
        return {};
    return problem + ": " + (investments ? "investment " : "loan ") + fieldName(field).toLatin1() +
           " of {" + describe(record.InitialAmount) + ", " + describe(record.IRate) + ", " +
           describe(record.Years) + ", " + describe(record.Payment) + ", " +
           QByteArray::number(record.PerYear) + ", " + describe(record.FutureValue) + "} -> " +
           describe(answer.value);
}

} // namespace

class TestSolverGuards : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void extremeInputsEndWithAFiniteValueOrNone_data();
    void extremeInputsEndWithAFiniteValueOrNone();
    void everyBlankOfExtremeScenariosEndsWithAFiniteValueOrNone();
    void nonFiniteStoredValuesAreReturnedAsStored_data();
    void nonFiniteStoredValuesAreReturnedAsStored();

    void investmentRateSearchGivesUpPastOneThousand();
    void loanRateSearchGivesUpPastOneThousand();
    void loanRateSearchStillReachesRatesBelowOneThousand();

    void millionPeriodFutureValueMatchesTheLiteralLoop();
    void millionPeriodTotalInterestMatchesTheLiteralLoop();
    void longerFutureValueEndsCloseToTheLiteralLoop();
    void longerTotalInterestEndsCloseToTheLiteralLoop_data();
    void longerTotalInterestEndsCloseToTheLiteralLoop();
};

void TestSolverGuards::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestSolverGuards::extremeInputsEndWithAFiniteValueOrNone_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<Field>("field");
    QTest::addColumn<ScenarioRecord>("record");

    QTest::newRow("future value over a billion years at 32767 a year")
        << true << Field::FutureValue << scenario(1000, 0.05, 1e9, 100, 32767, Blank);
    QTest::newRow("future value at a rate of 1e308")
        << true << Field::FutureValue << scenario(1000, 1e308, 10, 100, 12, Blank);
    QTest::newRow("future value of 1e308 growing")
        << true << Field::FutureValue << scenario(1e308, 0.05, 10, 1e308, 12, Blank);
    QTest::newRow("future value at a rate of 1e-300")
        << true << Field::FutureValue << scenario(1000, 1e-300, 1e9, 100, 32767, Blank);
    QTest::newRow("future value with negative everything")
        << true << Field::FutureValue << scenario(-1000, -0.05, -10, -100, -12, Blank);
    QTest::newRow("future value with a NaN payment")
        << true << Field::FutureValue << scenario(1000, 0.05, 10, NaN, 12, Blank);
    QTest::newRow("future value with infinite years")
        << true << Field::FutureValue << scenario(1000, 0.05, Inf, 100, 12, Blank);
    QTest::newRow("initial amount of an infinite goal")
        << true << Field::InitialAmount << scenario(Blank, 0.05, 10, 100, 12, Inf);
    QTest::newRow("initial amount over a billion years")
        << true << Field::InitialAmount << scenario(Blank, 0.05, 1e9, 100, 32767, 1e6);
    QTest::newRow("payment for 1e308 at 1e-300")
        << true << Field::Payment << scenario(1e308, 1e-300, 10, Blank, 12, -1e308);
    QTest::newRow("rate with payments of 1e308")
        << true << Field::IRate << scenario(1000, Blank, 10, 1e308, 12, 1e6);
    QTest::newRow("rate with 1e-300 everywhere")
        << true << Field::IRate << scenario(1e-300, Blank, 1e-300, 1e-300, 32767, 1e-300);
    QTest::newRow("rate over a billion years")
        << true << Field::IRate << scenario(1000, Blank, 1e9, 100, 32767, 1e6);
    QTest::newRow("rate with a NaN goal")
        << true << Field::IRate << scenario(1000, Blank, 10, 100, 12, NaN);
    QTest::newRow("years at a rate of 1e308")
        << true << Field::Years << scenario(1000, 1e308, Blank, 100, 12, 1e6);
    QTest::newRow("years at a rate of 1e-300")
        << true << Field::Years << scenario(1000, 1e-300, Blank, 100, 32767, 1e6);
    QTest::newRow("years with a NaN rate")
        << true << Field::Years << scenario(1000, NaN, Blank, 100, 12, 1e6);
    QTest::newRow("years with no payments a year")
        << true << Field::Years << scenario(1000, 0.05, Blank, 100, 0, 1e6);

    QTest::newRow("loan amount at a rate of 1e-300")
        << false << Field::InitialAmount << scenario(Blank, 1e-300, 30, 600, 12, Blank);
    QTest::newRow("loan amount over a billion years")
        << false << Field::InitialAmount << scenario(Blank, 0.06, 1e9, 600, 32767, Blank);
    QTest::newRow("loan payment of 1e308 at 1e308")
        << false << Field::Payment << scenario(1e308, 1e308, 30, Blank, 12, Blank);
    QTest::newRow("loan payment at a rate of 1e-300")
        << false << Field::Payment << scenario(1e5, 1e-300, 30, Blank, 12, Blank);
    QTest::newRow("loan rate for 1e-300 borrowed")
        << false << Field::IRate << scenario(1e-300, Blank, 30, 1e308, 12, Blank);
    QTest::newRow("loan rate over a billion years")
        << false << Field::IRate << scenario(1e5, Blank, 1e9, 600, 32767, Blank);
    QTest::newRow("loan years for 1e308 borrowed")
        << false << Field::Years << scenario(1e308, 0.06, Blank, 1e308, 32767, Blank);
    QTest::newRow("loan years with an infinite rate")
        << false << Field::Years << scenario(1e5, Inf, Blank, 600, 12, Blank);
    QTest::newRow("total interest over 300 years at 32767 a year")
        << false << Field::FutureValue << scenario(1e5, 0.06, 300, Blank, 32767, Blank);
    QTest::newRow("total interest of 1e308 borrowed")
        << false << Field::FutureValue << scenario(1e308, 0.06, 30, 1e300, 12, Blank);
    QTest::newRow("total interest when the payment never repays")
        << false << Field::FutureValue << scenario(1e5, 0.5, 300, 1, 32767, Blank);
    QTest::newRow("total interest at a rate of 1e-300")
        << false << Field::FutureValue << scenario(1e5, 1e-300, 300, Blank, 32767, Blank);
    QTest::newRow("total interest with negative everything")
        << false << Field::FutureValue << scenario(-1e5, -0.06, -30, -600, -12, Blank);
    QTest::newRow("total interest with a NaN amount")
        << false << Field::FutureValue << scenario(NaN, 0.06, 30, 600, 12, Blank);
    QTest::newRow("total interest with infinite payment")
        << false << Field::FutureValue << scenario(1e5, 0.06, 30, Inf, 12, Blank);
}

void TestSolverGuards::extremeInputsEndWithAFiniteValueOrNone()
{
    QFETCH(bool, investments);
    QFETCH(Field, field);
    QFETCH(ScenarioRecord, record);

    SolveEffort effort;
    const SolveResult answer = Solve(record, field, investments, 0, &effort);
    const QByteArray problem = badAnswer(record, field, investments, answer, effort);
    QVERIFY2(problem.isEmpty(), problem.constData());
    QVERIFY(answer.computed);
    // Whatever came back can be shown: a figure or an empty cell.
    const QString text = FormatValue(field, answer.value, answer.ok);
    QVERIFY2(!text.contains(u"nan", Qt::CaseInsensitive), qPrintable(text));
    QVERIFY2(!text.contains(u"inf", Qt::CaseInsensitive), qPrintable(text));
}

void TestSolverGuards::everyBlankOfExtremeScenariosEndsWithAFiniteValueOrNone()
{
    // Each blank field of every scenario whose other four fields take these
    // values, with each of these payments a year, in both lists.
    const double values[] = {1e308, -1e308, 1e-300, -1, NaN, Inf, 1e9, 0.05, 1000};
    const qint16 perYears[] = {1, 12, 32767, 0, -1};
    const int count = int(std::size(values));
    const int combinations = count * count * count * count;

    int calls = 0;
    SolveEffort most;
    for (const Field blank : ValueFields) {
        for (int combination = 0; combination < combinations; ++combination) {
            for (const qint16 perYear : perYears) {
                ScenarioRecord record = scenario(Blank, Blank, Blank, Blank, perYear, Blank);
                int digits = combination;
                for (const Field field : ValueFields) {
                    if (field == blank)
                        continue;
                    valueField(record, field) = values[digits % count];
                    digits /= count;
                }
                for (const bool investments : {true, false}) {
                    SolveEffort effort;
                    const SolveResult answer = Solve(record, blank, investments, 0, &effort);
                    ++calls;
                    most.trials = std::max(most.trials, effort.trials);
                    most.periods = std::max(most.periods, effort.periods);
                    const QByteArray problem =
                        badAnswer(record, blank, investments, answer, effort);
                    QVERIFY2(problem.isEmpty(), problem.constData());
                }
            }
        }
    }
    qInfo("%d solves, at most %lld trial values and %lld periods in one", calls, most.trials,
          most.periods);
}

void TestSolverGuards::nonFiniteStoredValuesAreReturnedAsStored_data()
{
    QTest::addColumn<double>("stored");

    QTest::newRow("NaN") << NaN;
    QTest::newRow("infinity") << Inf;
    QTest::newRow("minus infinity") << -Inf;
}

void TestSolverGuards::nonFiniteStoredValuesAreReturnedAsStored()
{
    QFETCH(double, stored);

    for (const bool investments : {true, false}) {
        for (const Field field : ValueFields) {
            ScenarioRecord record = scenario(1000, 0.05, 10, 100, 12, 5000);
            valueField(record, field) = stored;
            const SolveResult answer = Solve(record, field, investments);
            QVERIFY(answer.ok);
            QVERIFY(!answer.computed);
            QUILLET_COMPARE_EXACT(answer.value, stored);
        }
    }
}

void TestSolverGuards::investmentRateSearchGivesUpPastOneThousand()
{
    // 1 growing to 1e300 in a year would need a rate of about 1e300.
    double rate = Untouched;
    SolveEffort effort;
    QVERIFY(!InvRate(1, 1, 0, 1, 1e300, 0, rate, &effort));
    // Climbing in steps of 0.1: 0.1, 0.2, ..., 999.9, then giving up.
    QCOMPARE(effort.trials, 9999LL);
    QUILLET_COMPARE_EXACT(rate, Untouched);

    const SolveResult answer = Solve(scenario(1, Blank, 1, 0, 1, 1e300), Field::IRate, true);
    QVERIFY(!answer.ok);
    QVERIFY(answer.computed);
}

void TestSolverGuards::loanRateSearchGivesUpPastOneThousand()
{
    // Borrowing 1 for a year and paying back 1e300: the rate would be 1e300.
    double rate = Untouched;
    SolveEffort effort;
    QVERIFY(!LoanRate(1, 1, 1e300, 1, 0, rate, &effort));
    QCOMPARE(effort.trials, 9999LL);
    QUILLET_COMPARE_EXACT(rate, Untouched);
}

void TestSolverGuards::loanRateSearchStillReachesRatesBelowOneThousand()
{
    // Borrowing 1 for a year and paying back 1000 is a yearly rate of 999.
    double rate = 0;
    QVERIFY(LoanRate(1, 1, 1000, 1, 0, rate));
    double expected = 0;
    QVERIFY(reference::loanRateSearch(1, 1, 1000, 1, 1e-6, expected));
    QUILLET_COMPARE_EXACT(rate, expected);
    QUILLET_COMPARE_NEAR(rate, 999, 2e-6);
}

void TestSolverGuards::millionPeriodFutureValueMatchesTheLiteralLoop()
{
    // 100 years of 10,000 payments: exactly the last period the loop runs literally.
    const double years = 100;
    const int perYear = 10000;
    QCOMPARE(static_cast<long long>(years * perYear), SolverLimits::LiteralPeriods);

    double future = 0;
    QVERIFY(InvFuture(1000, 0.05, years, 1, perYear, future));
    double expected = 0;
    QVERIFY(reference::invFuture(1000, 0.05, years, 1, perYear, expected));
    QUILLET_COMPARE_EXACT(future, expected);

    const SolveResult answer =
        Solve(scenario(1000, 0.05, years, 1, perYear, Blank), Field::FutureValue, true);
    QVERIFY(answer.ok);
    QUILLET_COMPARE_EXACT(answer.value, expected);
}

void TestSolverGuards::millionPeriodTotalInterestMatchesTheLiteralLoop()
{
    const ScenarioRecord record = scenario(100000, 0.06, 100, Blank, 10000, Blank);
    double total = 0;
    QVERIFY(LoanTotalInterest(record, 0, total));
    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_EXACT(total, expected);

    // Interest only, so the balance never falls and all 1,000,000 periods run.
    const ScenarioRecord interestOnly = scenario(100000, 0.06, 100, 0.6, 10000, Blank);
    QVERIFY(LoanTotalInterest(interestOnly, 0, total));
    QVERIFY(reference::loanTotalInterest(interestOnly, 1e-6, expected));
    QUILLET_COMPARE_EXACT(total, expected);
    QUILLET_COMPARE_NEAR(total, 600000, 1e-3);
}

void TestSolverGuards::longerFutureValueEndsCloseToTheLiteralLoop()
{
    // 150 years of 10,000: half a million periods past the literal limit.
    double future = 0;
    SolveEffort effort;
    QVERIFY(InvFuture(1000, 0.05, 150, 1, 10000, future, &effort));
    QCOMPARE(effort.periods, 1'000'000LL);
    QVERIFY(std::isfinite(future));
    double expected = 0;
    QVERIFY(reference::invFuture(1000, 0.05, 150, 1, 10000, expected));
    QUILLET_COMPARE_NEAR(future, expected, 1e-9 * expected);
}

void TestSolverGuards::longerTotalInterestEndsCloseToTheLiteralLoop_data()
{
    QTest::addColumn<ScenarioRecord>("record");

    QTest::newRow("repaid in the last period") << scenario(100000, 0.06, 150, Blank, 10000, Blank);
    QTest::newRow("repaid after the literal periods")
        << scenario(100000, 0.06, 150, 0.6005, 10000, Blank);
    QTest::newRow("interest only") << scenario(100000, 0.06, 150, 0.6, 10000, Blank);
    QTest::newRow("never repaid") << scenario(100000, 0.06, 150, 0.5, 10000, Blank);
    QTest::newRow("300 years of 32767") << scenario(100000, 0.06, 300, Blank, 32767, Blank);
}

void TestSolverGuards::longerTotalInterestEndsCloseToTheLiteralLoop()
{
    QFETCH(ScenarioRecord, record);

    double total = 0;
    SolveEffort effort;
    QVERIFY(LoanTotalInterest(record, 0, total, &effort));
    QVERIFY2(effort.periods <= PeriodBound, QByteArray::number(effort.periods).constData());
    QVERIFY(std::isfinite(total));
    // Over millions of periods the literal loop drifts by its own rounding
    // (about 4e-9 of the total at 9.8 million periods), so only closeness counts.
    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QUILLET_COMPARE_NEAR(total, expected, 1e-8 * expected);
}

QTEST_GUILESS_MAIN(TestSolverGuards)
#include "tst_solverguards.moc"
