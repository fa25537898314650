#include <QLocale>
#include <QObject>
#include <QString>
#include <QTest>

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "displaytext.h"
#include "rates.h"
#include "reference.h"
#include "scenariorecord.h"
#include "schedule.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

using Status = PeriodCountOutcome::Status;
Q_DECLARE_METATYPE(quillet::PeriodCountOutcome::Status)

namespace {

// The rows a schedule window shows from firstPeriod, as many as the count
// allows up to its 12 rows.
int visibleRows(int periodCount)
{
    return MinOf(periodCount, 12);
}

ScheduleStart startOf(const ScenarioRecord &record, bool investments)
{
    const ScheduleHeader header = scheduleHeader(record, investments);
    const std::optional<double> perYear = schedulePerYear(header.perYear);
    return scheduleStart(record, investments, perYear.value_or(1));
}

} // namespace

class TestSchedule : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void periodCountRoundsHalvesToEven_data();
    void periodCountRoundsHalvesToEven();
    void periodCountReadsTheLocaleNumbers();
    void periodCountUsesTheDisplayedYears();
    void perYearTextDefaultsToOnceAYear_data();
    void perYearTextDefaultsToOnceAYear();

    void headerShowsTheDescriptionAfterOneBlank_data();
    void headerShowsTheDescriptionAfterOneBlank();
    void headerShowsTheStoredPerYearAsPlainText_data();
    void headerShowsTheStoredPerYearAsPlainText();
    void headerValuesAreTheCellTexts_data();
    void headerValuesAreTheCellTexts();
    void startTakesTheSolvedPaymentAtFullPrecision();

    void investmentScheduleMatchesTheWrittenOutLoop();
    void investmentFirstPeriodEarnsBeforeThePaymentArrives();
    void investmentMonthlyRateIsTheEffectiveRate();
    void zeroYieldEarnsNothingAndAddsThePayment();
    void withdrawalsAboveTheEarningsRunTheBalanceNegative();
    void thirteenPeriodsShowTwoToThirteenOnTheSecondPage();
    void investmentPerYearZeroUsesTheYearlyRate();
    void blankPerYearGivesANegativeCountAndNoRows();
    void perYearZeroGivesNoRows();
    void printedInvestmentScheduleRunsEveryPeriod();

    void loanScheduleMatchesTheWrittenOutLoop();
    void loanMonthlyRateIsExactlyOnePercent();
    void zeroInterestLoanFallsByThePaymentAndGoesNegative();
    void paymentOfTheFirstInterestKeepsTheBalance();
    void paymentBelowTheFirstInterestGrowsTheBalance();
    void overpaidLoanContinuesBelowZero();
    void thirtyYearLoanLastPageShowsPayments349To360();

    void periodNumbersArePaddedToFourDigits_data();
    void periodNumbersArePaddedToFourDigits();

    void checkpointedPagesAreTheBitsOfTheLoopFromPeriodOne_data();
    void checkpointedPagesAreTheBitsOfTheLoopFromPeriodOne();
    void checkpointsAreKeptOnlyForTheStartTheyBelongTo();
    void amountTextsAreTheLocaleCurrencyWithTwoDecimals();
};

void TestSchedule::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestSchedule::cleanup()
{
    QLocale::setDefault(unitedStates());
}

void TestSchedule::periodCountRoundsHalvesToEven_data()
{
    QTest::addColumn<QString>("years");
    QTest::addColumn<QString>("perYear");
    QTest::addColumn<Status>("status");
    QTest::addColumn<int>("count");

    QTest::newRow("2.5 years once a year rounds down to 2")
        << QStringLiteral("2.5 ") << QStringLiteral("1") << Status::Counted << 2;
    QTest::newRow("3.5 years once a year rounds up to 4")
        << QStringLiteral("3.5 ") << QStringLiteral("1") << Status::Counted << 4;
    QTest::newRow("30 years monthly")
        << QStringLiteral("30.0 ") << QStringLiteral("12") << Status::Counted << 360;
    QTest::newRow("12 periods") << QStringLiteral("1.0 ") << QStringLiteral("12") << Status::Counted
                                << 12;
    QTest::newRow("13 periods") << QStringLiteral("13.0 ") << QStringLiteral("1") << Status::Counted
                                << 13;
    QTest::newRow("1.1 years monthly is 13 periods")
        << QStringLiteral("1.1 ") << QStringLiteral("12") << Status::Counted << 13;
    QTest::newRow("empty payments a year count once a year")
        << QStringLiteral("2.5 ") << QString() << Status::Counted << 2;
    QTest::newRow("blank payments a year give a negative count")
        << QStringLiteral("10.0 ") << QStringLiteral("-1") << Status::Counted << -10;
    QTest::newRow("zero payments a year give no periods")
        << QStringLiteral("10.0 ") << QStringLiteral("0") << Status::Counted << 0;
    QTest::newRow("largest count")
        << QStringLiteral("32767") << QStringLiteral("1") << Status::Counted << 32767;
    QTest::newRow("one more is too many")
        << QStringLiteral("32768") << QStringLiteral("1") << Status::TooMany << 0;
    QTest::newRow("3000 years monthly is too many")
        << QStringLiteral("3,000.0 ") << QStringLiteral("12") << Status::TooMany << 0;
    QTest::newRow("empty years keep the previous count")
        << QString() << QStringLiteral("12") << Status::YearsEmpty << 0;
    QTest::newRow("years that are no number")
        << QStringLiteral("abc") << QStringLiteral("12") << Status::NotANumber << 0;
    QTest::newRow("payments a year that are no number")
        << QStringLiteral("10.0 ") << QStringLiteral("x") << Status::NotANumber << 0;
}

void TestSchedule::periodCountRoundsHalvesToEven()
{
    QFETCH(QString, years);
    QFETCH(QString, perYear);
    QFETCH(Status, status);
    QFETCH(int, count);

    const PeriodCountOutcome outcome = PeriodCountFor(years, perYear);
    QCOMPARE(outcome.status, status);
    if (status == Status::Counted)
        QCOMPARE(int(outcome.count), count);
}

void TestSchedule::periodCountReadsTheLocaleNumbers()
{
    const DefaultLocale pinned(germany());
    const PeriodCountOutcome outcome = PeriodCountFor(u"2,5 ", u"1");
    QCOMPARE(outcome.status, Status::Counted);
    QCOMPARE(int(outcome.count), 2);

    const PeriodCountOutcome grouped = PeriodCountFor(u"1.000,0 ", u"12");
    QCOMPARE(grouped.status, Status::Counted);
    QCOMPARE(int(grouped.count), 12000);
}

void TestSchedule::periodCountUsesTheDisplayedYears()
{
    // 1.04 years show as 1.0: 365 daily periods, not the 380 of 1.04 x 365.
    const ScenarioRecord record = scenario(1000, 0.05, 1.04, 1, 365, Blank);
    const ScheduleHeader header = scheduleHeader(record, true);
    QCOMPARE(header.value(Field::Years).text, QStringLiteral("1.0 "));
    const PeriodCountOutcome outcome =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    QCOMPARE(outcome.status, Status::Counted);
    QCOMPARE(int(outcome.count), 365);
    QUILLET_COMPARE_EXACT(roundHalfEven(1.04 * 365), 380.0);
}

void TestSchedule::perYearTextDefaultsToOnceAYear_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<double>("expected");

    QTest::newRow("empty text is once a year") << QString() << true << 1.0;
    QTest::newRow("twelve") << QStringLiteral("12") << true << 12.0;
    QTest::newRow("stored blank shows as -1") << QStringLiteral("-1") << true << -1.0;
    QTest::newRow("zero") << QStringLiteral("0") << true << 0.0;
    QTest::newRow("no number") << QStringLiteral("abc") << false << 0.0;
}

void TestSchedule::perYearTextDefaultsToOnceAYear()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(double, expected);

    const std::optional<double> perYear = schedulePerYear(text);
    QCOMPARE(perYear.has_value(), valid);
    if (valid)
        QUILLET_COMPARE_EXACT(*perYear, expected);
}

void TestSchedule::headerShowsTheDescriptionAfterOneBlank_data()
{
    QTest::addColumn<QString>("desc");
    QTest::addColumn<QString>("shown");

    QTest::newRow("trimmed, then one blank")
        << QStringLiteral("  Retirement  ") << QStringLiteral(" Retirement");
    QTest::newRow("inner blanks kept") << QStringLiteral("New car") << QStringLiteral(" New car");
    QTest::newRow("blank description shows nothing") << QString() << QString();
    QTest::newRow("only blanks show nothing") << QStringLiteral("     ") << QString();
}

void TestSchedule::headerShowsTheDescriptionAfterOneBlank()
{
    QFETCH(QString, desc);
    QFETCH(QString, shown);

    ScenarioRecord record = scenario(1000, 0.05, 10, 100, 12, Blank);
    setDescText(record, desc);
    QCOMPARE(scheduleHeader(record, true).desc, shown);
    QCOMPARE(scheduleHeader(record, false).desc, shown);
}

void TestSchedule::headerShowsTheStoredPerYearAsPlainText_data()
{
    QTest::addColumn<int>("perYear");
    QTest::addColumn<QString>("shown");

    QTest::newRow("monthly") << 12 << QStringLiteral("12");
    QTest::newRow("blank shows its marker") << -1 << QStringLiteral("-1");
    QTest::newRow("zero") << 0 << QStringLiteral("0");
    QTest::newRow("no grouping") << 1000 << QStringLiteral("1000");
}

void TestSchedule::headerShowsTheStoredPerYearAsPlainText()
{
    QFETCH(int, perYear);
    QFETCH(QString, shown);

    const ScenarioRecord record =
        scenario(1000, 0.05, 10, 100, static_cast<qint16>(perYear), Blank);
    QCOMPARE(scheduleHeader(record, true).perYear, shown);
}

void TestSchedule::headerValuesAreTheCellTexts_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<ScenarioRecord>("record");

    QTest::newRow("investment with future value blank")
        << true << scenario(1000, 0.12, 10, 100, 12, Blank);
    QTest::newRow("investment with payment blank")
        << true << scenario(1000, 0.12, 10, Blank, 12, 25000);
    QTest::newRow("loan with payment blank")
        << false << scenario(100000, 0.06, 30, Blank, 12, Blank);
    QTest::newRow("loan with years blank")
        << false << scenario(100000, 0.06, Blank, 700, 12, Blank);
}

void TestSchedule::headerValuesAreTheCellTexts()
{
    QFETCH(bool, investments);
    QFETCH(ScenarioRecord, record);

    const ScheduleHeader header = scheduleHeader(record, investments);
    int bold = 0;
    for (const Field field : ScheduleHeader::ValueFields) {
        const FieldDisplay cell = FieldText(record, field, investments);
        QCOMPARE(header.value(field).text, cell.text);
        QCOMPARE(header.value(field).computed, cell.computed);
        bold += cell.computed ? 1 : 0;
    }
    // A loan's total interest is always solved; otherwise one blank, one bold.
    QCOMPARE(bold, investments ? 1 : 2);
}

void TestSchedule::startTakesTheSolvedPaymentAtFullPrecision()
{
    const ScenarioRecord record = scenario(100000, 0.06, 30, Blank, 12, Blank);
    const ScheduleStart start = scheduleStart(record, false, 12);
    QUILLET_COMPARE_EXACT(start.balance, 100000.0);
    QUILLET_COMPARE_EXACT(start.yearlyRate, 0.06);
    QUILLET_COMPARE_EXACT(start.payment, Solve(record, Field::Payment, false).value);
    QUILLET_COMPARE_NEAR(start.payment, 599.55052515275239, 1e-9);
    QUILLET_COMPARE_EXACT(start.perYear, 12.0);
}

void TestSchedule::investmentScheduleMatchesTheWrittenOutLoop()
{
    const ScenarioRecord record = scenario(1000, 0.12, 10, 100, 12, Blank);
    const ScheduleStart start = startOf(record, true);
    const std::vector<InvestmentScheduleRow> rows = InvestmentSchedule::rows(start, 1, 120);
    const std::vector<reference::InvestmentRow> expected =
        reference::investmentSchedule(1000, 0.12, 100, 12, 120);

    QCOMPARE(rows.size(), expected.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QCOMPARE(rows[k].period, int(k) + 1);
        QUILLET_COMPARE_EXACT(rows[k].earnings, expected[k].earnings);
        QUILLET_COMPARE_EXACT(rows[k].cumulativeEarnings, expected[k].cumulative);
        QUILLET_COMPARE_EXACT(rows[k].balance, expected[k].balance);
    }
    // The last balance is the future value the solver builds the same way.
    QUILLET_COMPARE_EXACT(rows.back().balance, Solve(record, Field::FutureValue, true).value);
    QUILLET_COMPARE_NEAR(rows.back().balance, 25298.852343456150, 1e-6);
}

void TestSchedule::investmentFirstPeriodEarnsBeforeThePaymentArrives()
{
    const ScheduleStart start{1000, 0.12, 100, 12};
    InvestmentSchedule schedule(start);
    const InvestmentScheduleRow first = schedule.next();

    const double i = reference::investmentRate(0.12, 12);
    const double earnings = 1000 * i;
    QCOMPARE(first.period, 1);
    QUILLET_COMPARE_EXACT(first.earnings, earnings);
    QUILLET_COMPARE_EXACT(first.cumulativeEarnings, earnings);
    QUILLET_COMPARE_EXACT(first.balance, (1000 + earnings) + 100);

    // The payment earns from the second period on.
    const InvestmentScheduleRow second = schedule.next();
    QUILLET_COMPARE_EXACT(second.earnings, first.balance * i);
    QUILLET_COMPARE_EXACT(second.cumulativeEarnings, earnings + second.earnings);
}

void TestSchedule::investmentMonthlyRateIsTheEffectiveRate()
{
    const std::vector<InvestmentScheduleRow> rows =
        InvestmentSchedule::rows(ScheduleStart{1000, 0.12, 0, 12}, 1, 12);
    QUILLET_COMPARE_NEAR(rows.front().earnings, 9.4887929345829741, 1e-12);
    QVERIFY2(rows.front().earnings < 10, describe(rows.front().earnings).constData());
    // Twelve months compound to the yearly 12 %.
    QUILLET_COMPARE_NEAR(rows.back().balance, 1120, 1e-9);
    QCOMPARE(FormatValue(Field::FutureValue, rows.front().earnings, true),
             QStringLiteral("$9.49 "));
}

void TestSchedule::zeroYieldEarnsNothingAndAddsThePayment()
{
    const ScenarioRecord record = scenario(1000, 0, 2, 100, 12, Blank);
    const ScheduleStart start = startOf(record, true);
    const std::vector<InvestmentScheduleRow> rows = InvestmentSchedule::rows(start, 1, 24);

    double balance = 1000;
    for (const InvestmentScheduleRow &row : rows) {
        QUILLET_COMPARE_EXACT(row.earnings, 0.0);
        QUILLET_COMPARE_EXACT(row.cumulativeEarnings, 0.0);
        balance = balance + 100;
        QUILLET_COMPARE_EXACT(row.balance, balance);
        QCOMPARE(FormatValue(Field::FutureValue, row.earnings, true), QStringLiteral("$0.00 "));
    }
    QUILLET_COMPARE_EXACT(rows.back().balance, 3400.0);
}

void TestSchedule::withdrawalsAboveTheEarningsRunTheBalanceNegative()
{
    const ScheduleStart start{1000, 0.05, -300, 12};
    const std::vector<InvestmentScheduleRow> rows = InvestmentSchedule::rows(start, 1, 12);
    const std::vector<reference::InvestmentRow> expected =
        reference::investmentSchedule(1000, 0.05, -300, 12, 12);

    QCOMPARE(rows.size(), std::size_t(12));
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QUILLET_COMPARE_EXACT(rows[k].balance, expected[k].balance);
        QUILLET_COMPARE_EXACT(rows[k].earnings, expected[k].earnings);
        if (k > 0)
            QVERIFY(rows[k].balance < rows[k - 1].balance);
    }
    // Below zero from the fourth period; from then on the earnings are negative.
    QVERIFY2(rows[3].balance < 0, describe(rows[3].balance).constData());
    QVERIFY2(rows[4].earnings < 0, describe(rows[4].earnings).constData());
    QVERIFY2(rows[11].cumulativeEarnings < 0, describe(rows[11].cumulativeEarnings).constData());
    QVERIFY(FormatValue(Field::FutureValue, rows[11].balance, true).startsWith(u"($"));
    QVERIFY(FormatValue(Field::FutureValue, rows[11].earnings, true).startsWith(u"($"));
}

void TestSchedule::thirteenPeriodsShowTwoToThirteenOnTheSecondPage()
{
    const ScenarioRecord record = scenario(1000, 0.12, 13, 100, 1, Blank);
    const ScheduleHeader header = scheduleHeader(record, true);
    const PeriodCountOutcome outcome =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    QCOMPARE(outcome.status, Status::Counted);
    QCOMPARE(int(outcome.count), 13);

    const ScheduleStart start = startOf(record, true);
    const std::vector<InvestmentScheduleRow> all = InvestmentSchedule::rows(start, 1, 13);
    const std::vector<InvestmentScheduleRow> second =
        InvestmentSchedule::rows(start, 2, visibleRows(outcome.count));
    QCOMPARE(second.size(), std::size_t(12));
    for (std::size_t j = 0; j < second.size(); ++j) {
        QCOMPARE(second[j].period, int(j) + 2);
        QUILLET_COMPARE_EXACT(second[j].earnings, all[j + 1].earnings);
        QUILLET_COMPARE_EXACT(second[j].cumulativeEarnings, all[j + 1].cumulativeEarnings);
        QUILLET_COMPARE_EXACT(second[j].balance, all[j + 1].balance);
    }
}

void TestSchedule::investmentPerYearZeroUsesTheYearlyRate()
{
    const std::vector<InvestmentScheduleRow> rows =
        InvestmentSchedule::rows(ScheduleStart{1000, 0.12, 0, 0}, 1, 1);
    QUILLET_COMPARE_EXACT(rows.front().earnings, 1000 * 0.12);
}

void TestSchedule::blankPerYearGivesANegativeCountAndNoRows()
{
    const ScenarioRecord record = scenario(1000, 0.05, 10, 100, BlankPerYear, Blank);
    for (const bool investments : {true, false}) {
        const ScheduleHeader header = scheduleHeader(record, investments);
        QCOMPARE(header.perYear, QStringLiteral("-1"));
        const PeriodCountOutcome outcome =
            PeriodCountFor(header.value(Field::Years).text, header.perYear);
        QCOMPARE(outcome.status, Status::Counted);
        QCOMPARE(int(outcome.count), -10);

        const ScheduleStart start = startOf(record, investments);
        QUILLET_COMPARE_EXACT(start.perYear, -1.0);
        QVERIFY(InvestmentSchedule::rows(start, 1, visibleRows(outcome.count)).empty());
        QVERIFY(LoanSchedule::rows(start, 1, visibleRows(outcome.count)).empty());
    }
}

void TestSchedule::perYearZeroGivesNoRows()
{
    const PeriodCountOutcome outcome = PeriodCountFor(u"10.0 ", u"0");
    QCOMPARE(outcome.status, Status::Counted);
    QCOMPARE(int(outcome.count), 0);
    const ScheduleStart start{1000, 0.05, 100, 0};
    QVERIFY(InvestmentSchedule::rows(start, 1, visibleRows(outcome.count)).empty());
    QVERIFY(LoanSchedule::rows(start, 1, visibleRows(outcome.count)).empty());
}

void TestSchedule::printedInvestmentScheduleRunsEveryPeriod()
{
    // 100 years monthly: the printout runs all 1200 periods from the first.
    const ScenarioRecord record = scenario(1000, 0.03, 100, 10, 12, Blank);
    const ScheduleHeader header = scheduleHeader(record, true);
    const PeriodCountOutcome outcome =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    QCOMPARE(int(outcome.count), 1200);

    const std::vector<InvestmentScheduleRow> rows =
        InvestmentSchedule::rows(startOf(record, true), 1, outcome.count);
    const std::vector<reference::InvestmentRow> expected =
        reference::investmentSchedule(1000, 0.03, 10, 12, 1200);
    QCOMPARE(rows.size(), expected.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QCOMPARE(rows[k].period, int(k) + 1);
        QUILLET_COMPARE_EXACT(rows[k].balance, expected[k].balance);
        QUILLET_COMPARE_EXACT(rows[k].cumulativeEarnings, expected[k].cumulative);
    }
    QCOMPARE(PadNum(rows[999].period, 4), QStringLiteral("1,000"));
    QCOMPARE(PadNum(rows[998].period, 4), QStringLiteral(" 999"));
}

void TestSchedule::loanScheduleMatchesTheWrittenOutLoop()
{
    const ScenarioRecord record = scenario(100000, 0.06, 30, Blank, 12, Blank);
    const ScheduleStart start = startOf(record, false);
    const std::vector<LoanScheduleRow> rows = LoanSchedule::rows(start, 1, 360);
    const std::vector<reference::LoanRow> expected =
        reference::loanSchedule(100000, 0.06, start.payment, 12, 360);

    QCOMPARE(rows.size(), expected.size());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QCOMPARE(rows[k].period, int(k) + 1);
        QUILLET_COMPARE_EXACT(rows[k].principal, expected[k].principal);
        QUILLET_COMPARE_EXACT(rows[k].interest, expected[k].interest);
        QUILLET_COMPARE_EXACT(rows[k].cumulativePrincipal, expected[k].cumulativePrincipal);
        QUILLET_COMPARE_EXACT(rows[k].cumulativeInterest, expected[k].cumulativeInterest);
        QUILLET_COMPARE_EXACT(rows[k].balance, expected[k].balance);
    }
    // With the full-precision payment the loan ends within a hair of zero.
    QUILLET_COMPARE_NEAR(rows.back().balance, 0, 1e-6);
    QUILLET_COMPARE_NEAR(rows.back().cumulativePrincipal, 100000, 1e-6);
    QUILLET_COMPARE_NEAR(rows.back().cumulativeInterest, 115838.18905499086, 1e-6);
    QUILLET_COMPARE_EXACT(rows.front().interest, 100000 * (0.06 / 12));
}

void TestSchedule::loanMonthlyRateIsExactlyOnePercent()
{
    const ScheduleStart start{1000, 0.12, 100, 12};
    const LoanScheduleRow first = LoanSchedule(start).next();
    QUILLET_COMPARE_EXACT(first.interest, 10.0);
    QUILLET_COMPARE_EXACT(first.principal, 90.0);
    QUILLET_COMPARE_EXACT(first.balance, 910.0);

    // The investment window on the same figures earns less.
    const InvestmentScheduleRow invested = InvestmentSchedule(start).next();
    QVERIFY2(invested.earnings < first.interest, describe(invested.earnings).constData());
}

void TestSchedule::zeroInterestLoanFallsByThePaymentAndGoesNegative()
{
    const ScenarioRecord record = scenario(1000, 0, 1, 100, 12, Blank);
    const ScheduleStart start = startOf(record, false);
    const std::vector<LoanScheduleRow> rows = LoanSchedule::rows(start, 1, 12);

    const std::vector<reference::LoanRow> expected = reference::loanSchedule(1000, 0, 100, 12, 12);
    double balance = 1000;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        const LoanScheduleRow &row = rows[k];
        // Zero, with the sign of the balance it was taken from.
        QVERIFY2(row.interest == 0, describe(row.interest).constData());
        QUILLET_COMPARE_EXACT(row.interest, expected[k].interest);
        QUILLET_COMPARE_EXACT(row.principal, 100.0);
        QUILLET_COMPARE_EXACT(row.cumulativeInterest, 0.0);
        balance = balance - 100;
        QUILLET_COMPARE_EXACT(row.balance, balance);
    }
    // Repaid after 1000 / 100 = 10 periods, then below zero.
    QUILLET_COMPARE_EXACT(rows[9].balance, 0.0);
    QUILLET_COMPARE_EXACT(rows[10].balance, -100.0);
    QUILLET_COMPARE_EXACT(rows[11].balance, -200.0);
    QCOMPARE(FormatValue(Field::FutureValue, rows[11].balance, true), QStringLiteral("($200.00) "));
}

void TestSchedule::paymentOfTheFirstInterestKeepsTheBalance()
{
    const double payment = 100000 * (0.06 / 12);
    const std::vector<LoanScheduleRow> rows =
        LoanSchedule::rows(ScheduleStart{100000, 0.06, payment, 12}, 1, 12);
    for (const LoanScheduleRow &row : rows) {
        QUILLET_COMPARE_EXACT(row.principal, 0.0);
        QUILLET_COMPARE_EXACT(row.interest, payment);
        QUILLET_COMPARE_EXACT(row.balance, 100000.0);
        QUILLET_COMPARE_EXACT(row.cumulativePrincipal, 0.0);
    }
    QUILLET_COMPARE_NEAR(rows.back().cumulativeInterest, 6000, 1e-9);
}

void TestSchedule::paymentBelowTheFirstInterestGrowsTheBalance()
{
    const std::vector<LoanScheduleRow> rows =
        LoanSchedule::rows(ScheduleStart{100000, 0.06, 400, 12}, 1, 24);
    const std::vector<reference::LoanRow> expected =
        reference::loanSchedule(100000, 0.06, 400, 12, 24);
    double previous = 100000;
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QUILLET_COMPARE_EXACT(rows[k].balance, expected[k].balance);
        QVERIFY2(rows[k].principal < 0, describe(rows[k].principal).constData());
        QVERIFY2(rows[k].balance > previous, describe(rows[k].balance).constData());
        QVERIFY2(rows[k].cumulativePrincipal < 0,
                 describe(rows[k].cumulativePrincipal).constData());
        previous = rows[k].balance;
    }
    QVERIFY(FormatValue(Field::FutureValue, rows[0].principal, true).startsWith(u"($"));
}

void TestSchedule::overpaidLoanContinuesBelowZero()
{
    const std::vector<LoanScheduleRow> rows =
        LoanSchedule::rows(ScheduleStart{1000, 0.12, 200, 12}, 1, 12);
    const std::vector<reference::LoanRow> expected =
        reference::loanSchedule(1000, 0.12, 200, 12, 12);
    QCOMPARE(rows.size(), std::size_t(12));
    for (std::size_t k = 0; k < rows.size(); ++k) {
        QUILLET_COMPARE_EXACT(rows[k].interest, expected[k].interest);
        QUILLET_COMPARE_EXACT(rows[k].balance, expected[k].balance);
    }
    // Every period applies the full payment: past zero the interest turns negative.
    QVERIFY2(rows[5].balance < 0, describe(rows[5].balance).constData());
    QVERIFY2(rows[6].interest < 0, describe(rows[6].interest).constData());
    QVERIFY2(rows[11].balance < rows[10].balance, describe(rows[11].balance).constData());
}

void TestSchedule::thirtyYearLoanLastPageShowsPayments349To360()
{
    const ScenarioRecord record = scenario(100000, 0.06, 30, Blank, 12, Blank);
    const ScheduleHeader header = scheduleHeader(record, false);
    const PeriodCountOutcome outcome =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    QCOMPARE(outcome.status, Status::Counted);
    QCOMPARE(int(outcome.count), 360);
    // The last top row a window can scroll to.
    const int lastTop = outcome.count - 11;
    QCOMPARE(lastTop, 349);

    const ScheduleStart start = startOf(record, false);
    const std::vector<LoanScheduleRow> all = LoanSchedule::rows(start, 1, 360);
    const std::vector<LoanScheduleRow> page =
        LoanSchedule::rows(start, lastTop, visibleRows(outcome.count));
    QCOMPARE(page.size(), std::size_t(12));
    for (std::size_t j = 0; j < page.size(); ++j) {
        QCOMPARE(page[j].period, lastTop + int(j));
        QUILLET_COMPARE_EXACT(page[j].balance, all[lastTop - 1 + j].balance);
        QUILLET_COMPARE_EXACT(page[j].cumulativeInterest, all[lastTop - 1 + j].cumulativeInterest);
    }
    QCOMPARE(PadNum(page.front().period, 4), QStringLiteral(" 349"));
    QCOMPARE(PadNum(page.back().period, 4), QStringLiteral(" 360"));
}

void TestSchedule::periodNumbersArePaddedToFourDigits_data()
{
    QTest::addColumn<int>("period");
    QTest::addColumn<QString>("shown");

    QTest::newRow("1 gets three blanks") << 1 << QStringLiteral("   1");
    QTest::newRow("9 gets three blanks") << 9 << QStringLiteral("   9");
    QTest::newRow("10 gets two blanks") << 10 << QStringLiteral("  10");
    QTest::newRow("99 gets two blanks") << 99 << QStringLiteral("  99");
    QTest::newRow("100 gets one blank") << 100 << QStringLiteral(" 100");
    QTest::newRow("999 gets one blank") << 999 << QStringLiteral(" 999");
    QTest::newRow("1000 is grouped without a blank") << 1000 << QStringLiteral("1,000");
    QTest::newRow("32767 is grouped without a blank") << 32767 << QStringLiteral("32,767");
}

void TestSchedule::periodNumbersArePaddedToFourDigits()
{
    QFETCH(int, period);
    QFETCH(QString, shown);
    QCOMPARE(PadNum(period, 4), shown);
}

namespace {

template <typename Row>
void compareRows(const std::vector<Row> &page, const std::vector<Row> &loop);

template <>
void compareRows(const std::vector<InvestmentScheduleRow> &page,
                 const std::vector<InvestmentScheduleRow> &loop)
{
    QCOMPARE(page.size(), loop.size());
    for (std::size_t j = 0; j < page.size(); ++j) {
        QCOMPARE(page[j].period, loop[j].period);
        QUILLET_COMPARE_EXACT(page[j].earnings, loop[j].earnings);
        QUILLET_COMPARE_EXACT(page[j].cumulativeEarnings, loop[j].cumulativeEarnings);
        QUILLET_COMPARE_EXACT(page[j].balance, loop[j].balance);
    }
}

template <>
void compareRows(const std::vector<LoanScheduleRow> &page, const std::vector<LoanScheduleRow> &loop)
{
    QCOMPARE(page.size(), loop.size());
    for (std::size_t j = 0; j < page.size(); ++j) {
        QCOMPARE(page[j].period, loop[j].period);
        QUILLET_COMPARE_EXACT(page[j].principal, loop[j].principal);
        QUILLET_COMPARE_EXACT(page[j].interest, loop[j].interest);
        QUILLET_COMPARE_EXACT(page[j].cumulativePrincipal, loop[j].cumulativePrincipal);
        QUILLET_COMPARE_EXACT(page[j].cumulativeInterest, loop[j].cumulativeInterest);
        QUILLET_COMPARE_EXACT(page[j].balance, loop[j].balance);
    }
}

} // namespace

void TestSchedule::checkpointedPagesAreTheBitsOfTheLoopFromPeriodOne_data()
{
    QTest::addColumn<double>("balance");
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("payment");
    QTest::addColumn<double>("perYear");

    QTest::newRow("daily saving") << 1000.0 << 0.07 << 3.25 << 365.0;
    QTest::newRow("withdrawals running below zero") << 5000.0 << 0.05 << -40.0 << 12.0;
    QTest::newRow("a loan never repaid") << 100000.0 << 0.06 << 0.1 << 32767.0;
    QTest::newRow("zero rate") << 1000.0 << 0.0 << 1.0 << 1.0;
}

void TestSchedule::checkpointedPagesAreTheBitsOfTheLoopFromPeriodOne()
{
    QFETCH(double, balance);
    QFETCH(double, rate);
    QFETCH(double, payment);
    QFETCH(double, perYear);
    const ScheduleStart start{balance, rate, payment, perYear};

    ScheduleCheckpoints checkpoints;
    // Pages in the order a person scrolls: the first, the last of 32,767
    // periods, back up, a page that starts on a kept state, and one step on.
    for (const int first : {1, 32756, 13, 64, 65, 129, 32756, 2, 30000, 1}) {
        compareRows(checkpoints.investmentRows(start, first, 12),
                    InvestmentSchedule::rows(start, first, 12));
        compareRows(checkpoints.loanRows(start, first, 12), LoanSchedule::rows(start, first, 12));
    }
    // The literal restatement agrees with the last page too.
    const std::vector<reference::InvestmentRow> expected =
        reference::investmentSchedule(balance, rate, payment, perYear, 32767);
    const std::vector<InvestmentScheduleRow> last = checkpoints.investmentRows(start, 32756, 12);
    for (std::size_t j = 0; j < last.size(); ++j) {
        QUILLET_COMPARE_EXACT(last[j].balance, expected[32755 + j].balance);
        QUILLET_COMPARE_EXACT(last[j].cumulativeEarnings, expected[32755 + j].cumulative);
    }
    const std::vector<reference::LoanRow> expectedLoan =
        reference::loanSchedule(balance, rate, payment, perYear, 32767);
    const std::vector<LoanScheduleRow> lastLoan = checkpoints.loanRows(start, 32756, 12);
    for (std::size_t j = 0; j < lastLoan.size(); ++j) {
        QUILLET_COMPARE_EXACT(lastLoan[j].balance, expectedLoan[32755 + j].balance);
        QUILLET_COMPARE_EXACT(lastLoan[j].cumulativeInterest,
                              expectedLoan[32755 + j].cumulativeInterest);
    }
}

void TestSchedule::checkpointsAreKeptOnlyForTheStartTheyBelongTo()
{
    ScheduleCheckpoints checkpoints;
    const ScheduleStart first{1000, 0.05, 10, 12};
    (void)checkpoints.investmentRows(first, 32756, 12);
    // The fresh state and one for every 64 periods passed: 32,767 / 64.
    QCOMPARE(checkpoints.investmentStates(), std::size_t(512));
    QCOMPARE(checkpoints.loanStates(), std::size_t(0));

    // A payment one bit larger is another schedule.
    ScheduleStart other = first;
    other.payment = std::nextafter(10.0, 11.0);
    compareRows(checkpoints.investmentRows(other, 100, 12),
                InvestmentSchedule::rows(other, 100, 12));
    QCOMPARE(checkpoints.investmentStates(), std::size_t(2));
    compareRows(checkpoints.investmentRows(first, 32756, 12),
                InvestmentSchedule::rows(first, 32756, 12));
}

void TestSchedule::amountTextsAreTheLocaleCurrencyWithTwoDecimals()
{
    QCOMPARE(scheduleAmountText(1234.565), QStringLiteral("$1,234.57"));
    QCOMPARE(scheduleAmountText(0), QStringLiteral("$0.00"));
    QCOMPARE(scheduleAmountText(-200), QStringLiteral("($200.00)"));
    QCOMPARE(scheduleAmountText(std::numeric_limits<double>::infinity()), QString());
    QCOMPARE(scheduleAmountText(-std::numeric_limits<double>::infinity()), QString());
    QCOMPARE(scheduleAmountText(std::numeric_limits<double>::quiet_NaN()), QString());
    QCOMPARE(schedulePeriodText(7), QStringLiteral("   7"));
    QCOMPARE(schedulePeriodText(1000), QStringLiteral("1,000"));
    const DefaultLocale pinned(germany());
    QCOMPARE(scheduleAmountText(-1234.5), QStringLiteral("-1.234,50\u00a0\u20ac"));
    QCOMPARE(schedulePeriodText(1000), QStringLiteral("1.000"));
}

QTEST_GUILESS_MAIN(TestSchedule)
#include "tst_schedule.moc"
