#include <QLocale>
#include <QObject>
#include <QTest>

#include <cmath>
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

// The quantities handed to one solver; which of them it reads depends on it.
struct Inputs
{
    double initialAmount = 0;
    double rate = 0;
    double years = 0;
    double payment = 0;
    int perYear = 1;
    double futureValue = 0;
};

bool engineSolver(const QString &solver, const Inputs &in, double &result)
{
    if (solver == u"InvInitial")
        return InvInitial(in.rate, in.years, in.payment, in.perYear, in.futureValue, result);
    if (solver == u"InvPayment")
        return InvPayment(in.initialAmount, in.rate, in.years, in.perYear, in.futureValue, result);
    if (solver == u"InvFuture")
        return InvFuture(in.initialAmount, in.rate, in.years, in.payment, in.perYear, result);
    if (solver == u"InvYears")
        return InvYears(in.initialAmount, in.rate, in.payment, in.perYear, in.futureValue, result);
    if (solver == u"LoanAmount")
        return LoanAmount(in.rate, in.years, in.payment, in.perYear, result);
    if (solver == u"LoanPayment")
        return LoanPayment(in.initialAmount, in.rate, in.years, in.perYear, result);
    return false;
}

bool referenceSolver(const QString &solver, const Inputs &in, double &result)
{
    if (solver == u"InvInitial")
        return reference::invInitial(in.rate, in.years, in.payment, in.perYear, in.futureValue,
                                     result);
    if (solver == u"InvPayment")
        return reference::invPayment(in.initialAmount, in.rate, in.years, in.perYear,
                                     in.futureValue, result);
    if (solver == u"InvFuture")
        return reference::invFuture(in.initialAmount, in.rate, in.years, in.payment, in.perYear,
                                    result);
    if (solver == u"InvYears")
        return reference::invYears(in.initialAmount, in.rate, in.payment, in.perYear,
                                   in.futureValue, result);
    if (solver == u"LoanAmount")
        return reference::loanAmount(in.rate, in.years, in.payment, in.perYear, result);
    if (solver == u"LoanPayment")
        return reference::loanPayment(in.initialAmount, in.rate, in.years, in.perYear, result);
    return false;
}

} // namespace

Q_DECLARE_METATYPE(Inputs)

class TestRates : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void blankMarkerHasItsBitPattern();
    void isSetComparesTheMarkerExactly();
    void valueOrReplacesOnlyTheMarker_data();
    void valueOrReplacesOnlyTheMarker();
    void perYearOrReplacesOnlyMinusOne_data();
    void perYearOrReplacesOnlyMinusOne();

    void investmentRateCompoundsToTheYearlyRate_data();
    void investmentRateCompoundsToTheYearlyRate();
    void monthlyInvestmentRateIsBelowTheNominalRate();
    void loanRateIsThePlainDivision_data();
    void loanRateIsThePlainDivision();

    void blankPerYearBehavesLikeOne_data();
    void blankPerYearBehavesLikeOne();

    void zeroRateTakesTheZeroRateFormula_data();
    void zeroRateTakesTheZeroRateFormula();
    void tinyRateTakesTheGeneralFormula_data();
    void tinyRateTakesTheGeneralFormula();

    void roundHalfEvenSendsHalvesToTheEvenNeighbour_data();
    void roundHalfEvenSendsHalvesToTheEvenNeighbour();
};

void TestRates::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestRates::blankMarkerHasItsBitPattern()
{
    QCOMPARE(bitsOf(BlankValue), quint64(0xC1CD6DB1A0800000));
    QUILLET_COMPARE_EXACT(BlankValue, -987456321.0);
    QCOMPARE(BlankPerYear, qint16(-1));
}

void TestRates::isSetComparesTheMarkerExactly()
{
    QVERIFY(!IsSet(BlankValue));
    // One unit in the last place either side is a value like any other.
    QVERIFY(IsSet(std::nextafter(BlankValue, 0.0)));
    QVERIFY(IsSet(std::nextafter(BlankValue, -1e300)));
    QVERIFY(IsSet(0.0));
    QVERIFY(IsSet(-0.0));
    QVERIFY(IsSet(std::numeric_limits<double>::quiet_NaN()));
}

void TestRates::valueOrReplacesOnlyTheMarker_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");

    QTest::newRow("blank gives the default") << BlankValue << 7.5;
    QTest::newRow("zero stays zero") << 0.0 << 0.0;
    QTest::newRow("negative zero stays negative zero") << -0.0 << -0.0;
    QTest::newRow("a value next to the marker stays")
        << std::nextafter(BlankValue, 0.0) << std::nextafter(BlankValue, 0.0);
    QTest::newRow("an ordinary amount stays") << 1234.5 << 1234.5;
}

void TestRates::valueOrReplacesOnlyTheMarker()
{
    QFETCH(double, value);
    QFETCH(double, expected);
    QUILLET_COMPARE_EXACT(ValueOr(value, 7.5), expected);
}

void TestRates::perYearOrReplacesOnlyMinusOne_data()
{
    QTest::addColumn<int>("perYear");
    QTest::addColumn<int>("expected");

    QTest::newRow("blank gives the default") << -1 << 1;
    QTest::newRow("zero stays zero") << 0 << 0;
    QTest::newRow("minus two stays") << -2 << -2;
    QTest::newRow("twelve stays") << 12 << 12;
    QTest::newRow("largest count stays") << 32767 << 32767;
}

void TestRates::perYearOrReplacesOnlyMinusOne()
{
    QFETCH(int, perYear);
    QFETCH(int, expected);
    QCOMPARE(PerYearOr(static_cast<qint16>(perYear), 1), expected);
}

void TestRates::investmentRateCompoundsToTheYearlyRate_data()
{
    QTest::addColumn<double>("yearlyRate");
    QTest::addColumn<double>("perYear");
    QTest::addColumn<double>("known");
    QTest::addColumn<double>("tolerance");

    // A tolerance of 0 means the known figure itself is exact.
    QTest::newRow("12 % monthly") << 0.12 << 12.0 << 0.0094887929345829741 << 1e-15;
    QTest::newRow("12 % once a year") << 0.12 << 1.0 << 0.12 << 1e-15;
    QTest::newRow("12 % at zero a year is the yearly rate") << 0.12 << 0.0 << 0.12 << 0.0;
    QTest::newRow("12 % at minus one a year is the yearly rate") << 0.12 << -1.0 << 0.12 << 0.0;
    QTest::newRow("zero rate daily") << 0.0 << 365.0 << 0.0 << 0.0;
    QTest::newRow("5 % daily") << 0.05 << 365.0 << 0.00013368061711344035 << 1e-15;
}

void TestRates::investmentRateCompoundsToTheYearlyRate()
{
    QFETCH(double, yearlyRate);
    QFETCH(double, perYear);
    QFETCH(double, known);
    QFETCH(double, tolerance);

    const double rate = PeriodicRate(yearlyRate, perYear);
    QUILLET_COMPARE_EXACT(rate, reference::investmentRate(yearlyRate, perYear));
    if (tolerance == 0)
        QUILLET_COMPARE_EXACT(rate, known);
    else
        QUILLET_COMPARE_NEAR(rate, known, tolerance);
}

void TestRates::monthlyInvestmentRateIsBelowTheNominalRate()
{
    const double rate = PeriodicRate(0.12, 12);
    QVERIFY2(rate < 0.01, describe(rate).constData());
    QUILLET_COMPARE_NEAR(rate, 0.0094888, 1e-7);
}

void TestRates::loanRateIsThePlainDivision_data()
{
    QTest::addColumn<double>("yearlyRate");
    QTest::addColumn<double>("perYear");
    QTest::addColumn<double>("known");

    QTest::newRow("12 % monthly is one percent") << 0.12 << 12.0 << 0.01;
    QTest::newRow("6 % monthly is half a percent") << 0.06 << 12.0 << 0.005;
    QTest::newRow("8 % quarterly") << 0.08 << 4.0 << 0.02;
}

void TestRates::loanRateIsThePlainDivision()
{
    QFETCH(double, yearlyRate);
    QFETCH(double, perYear);
    QFETCH(double, known);

    const double rate = LoanPeriodicRate(yearlyRate, perYear);
    QUILLET_COMPARE_EXACT(rate, reference::loanRate(yearlyRate, perYear));
    QUILLET_COMPARE_EXACT(rate, known);
}

void TestRates::blankPerYearBehavesLikeOne_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<Field>("field");
    QTest::addColumn<ScenarioRecord>("record");

    const double amount = 1000;
    const double rate = 0.07;
    const double years = 5;
    const double payment = 300;
    const double future = 4000;

    QTest::newRow("investment initial amount")
        << true << Field::InitialAmount << scenario(Blank, rate, years, payment, 12, future);
    QTest::newRow("investment rate")
        << true << Field::IRate << scenario(amount, Blank, years, payment, 12, future);
    QTest::newRow("investment years")
        << true << Field::Years << scenario(amount, rate, Blank, payment, 12, future);
    QTest::newRow("investment payment")
        << true << Field::Payment << scenario(amount, rate, years, Blank, 12, future);
    QTest::newRow("investment future value")
        << true << Field::FutureValue << scenario(amount, rate, years, payment, 12, Blank);
    QTest::newRow("loan amount") << false << Field::InitialAmount
                                 << scenario(Blank, rate, years, payment, 12, Blank);
    QTest::newRow("loan rate") << false << Field::IRate
                               << scenario(amount, Blank, years, payment, 12, Blank);
    QTest::newRow("loan years") << false << Field::Years
                                << scenario(amount, rate, Blank, payment, 12, Blank);
    QTest::newRow("loan payment") << false << Field::Payment
                                  << scenario(amount, rate, years, Blank, 12, Blank);
    QTest::newRow("loan total interest")
        << false << Field::FutureValue << scenario(amount, rate, years, payment, 12, Blank);
}

void TestRates::blankPerYearBehavesLikeOne()
{
    QFETCH(bool, investments);
    QFETCH(Field, field);
    QFETCH(ScenarioRecord, record);

    ScenarioRecord blankPerYear = record;
    blankPerYear.PerYear = BlankPerYear;
    ScenarioRecord oncePerYear = record;
    oncePerYear.PerYear = 1;

    const SolveResult blank = Solve(blankPerYear, field, investments);
    const SolveResult once = Solve(oncePerYear, field, investments);
    QVERIFY(once.ok);
    QVERIFY(once.computed);
    QCOMPARE(blank.ok, once.ok);
    QCOMPARE(blank.computed, once.computed);
    QUILLET_COMPARE_EXACT(blank.value, once.value);

    // And it differs from the twelve payments a year the record came with, so
    // the PerYear really was read.
    const SolveResult monthly = Solve(record, field, investments);
    QVERIFY2(bitsOf(monthly.value) != bitsOf(once.value), describe(once.value).constData());

    QCOMPARE(FieldText(blankPerYear, field, investments).text,
             FieldText(oncePerYear, field, investments).text);
}

void TestRates::zeroRateTakesTheZeroRateFormula_data()
{
    QTest::addColumn<QString>("solver");
    QTest::addColumn<Inputs>("inputs");
    QTest::addColumn<double>("expected");

    // Written as the zero-rate formulas state them: n = Years x PerYear first.
    const double n = 2.55 * 12;
    QTest::newRow("investment initial amount is F - n x A")
        << QStringLiteral("InvInitial") << Inputs{0, 0.0, 2.55, 100, 12, 5000} << 5000 - n * 100;
    QTest::newRow("investment payment is (F - P) / n")
        << QStringLiteral("InvPayment") << Inputs{1000, 0.0, 2.55, 0, 12, 5000}
        << (5000.0 - 1000.0) / n;
    QTest::newRow("investment years is (F - P) / (A x ppy)")
        << QStringLiteral("InvYears") << Inputs{1000, 0.0, 0, 100, 12, 5000}
        << (5000.0 - 1000.0) / (100.0 * 12);
    QTest::newRow("investment future value is P + A x n, n not rounded")
        << QStringLiteral("InvFuture") << Inputs{1000, 0.0, 2.55, 100, 12, 0} << 1000 + 100 * n;
    QTest::newRow("loan amount is n x A")
        << QStringLiteral("LoanAmount") << Inputs{0, 0.0, 2.55, 100, 12, 0} << n * 100;
    QTest::newRow("loan payment is P / n")
        << QStringLiteral("LoanPayment") << Inputs{3000, 0.0, 2.55, 0, 12, 0} << 3000 / n;
}

void TestRates::zeroRateTakesTheZeroRateFormula()
{
    QFETCH(QString, solver);
    QFETCH(Inputs, inputs);
    QFETCH(double, expected);

    double result = 0;
    QVERIFY(engineSolver(solver, inputs, result));
    QUILLET_COMPARE_EXACT(result, expected);
}

void TestRates::tinyRateTakesTheGeneralFormula_data()
{
    zeroRateTakesTheZeroRateFormula_data();
}

void TestRates::tinyRateTakesTheGeneralFormula()
{
    QFETCH(QString, solver);
    QFETCH(Inputs, inputs);
    QFETCH(double, expected);

    inputs.rate = 1e-12;
    double result = 0;
    QVERIFY(engineSolver(solver, inputs, result));
    double general = 0;
    QVERIFY(referenceSolver(solver, inputs, general));
    QUILLET_COMPARE_EXACT(result, general);
    // Not the zero-rate answer, so the general branch was the one taken.
    QVERIFY2(bitsOf(result) != bitsOf(expected), mismatch(result, expected).constData());
}

void TestRates::roundHalfEvenSendsHalvesToTheEvenNeighbour_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");

    QTest::newRow("2.5 goes down to 2") << 2.5 << 2.0;
    QTest::newRow("3.5 goes up to 4") << 3.5 << 4.0;
    QTest::newRow("-2.5 goes to -2") << -2.5 << -2.0;
    QTest::newRow("2.51 goes up to 3") << 2.51 << 3.0;
    QTest::newRow("12.48 goes down to 12") << 12.48 << 12.0;
}

void TestRates::roundHalfEvenSendsHalvesToTheEvenNeighbour()
{
    QFETCH(double, value);
    QFETCH(double, expected);
    QUILLET_COMPARE_EXACT(roundHalfEven(value), expected);
}

QTEST_GUILESS_MAIN(TestRates)
#include "tst_rates.moc"
