#include <QByteArray>
#include <QObject>
#include <QRandomGenerator>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

#include "periodloops.h"
#include "reference.h"
#include "scenariorecord.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

namespace {

constexpr long long Million = 1'000'000;

// A record from the bytes of its numeric fields, offsets 52 to 93 of a slot.
ScenarioRecord recordFromFieldBytes(const char *hex)
{
    QByteArray slot(148, '\0');
    slot.replace(52, 42, QByteArray::fromHex(hex));
    return decodeRecord(slot);
}

// An investment of 4.4e-308 at 1e-6 a year for 9.9e299 years, paying in
// -5e-324 a year: the balance passes 2^-1021 after some 11,000 periods, and
// its products stay subnormal for every one of the million periods run.
const char *const TinyInvestmentBytes =
    "049a0baaafa31f008dedb5a0f7c6b03e3a4b462c0bc5377e0100000000000080ffff000080a0b16dcdc1";

double fromBits(quint64 bits)
{
    return std::bit_cast<double>(bits);
}

QByteArray loanCase(double balance, double i, double payment, double periods, long long limit)
{
    return "loan loop from balance " + describe(balance) + ", rate " + describe(i) + ", payment " +
           describe(payment) + ", periods " + describe(periods) + ", limit " +
           QByteArray::number(limit);
}

// The engine's loan loop against the plain one, every value bit for bit.
void compareLoanLoop(double balance, double i, double payment, double periods, long long limit)
{
    const LoanRun run = runLoanInterest(balance, i, payment, periods, limit);
    const reference::LoanLoopState plain = reference::loanLoop(balance, i, payment, periods, limit);
    const QByteArray what = loanCase(balance, i, payment, periods, limit);
    const bool finite = std::isfinite(plain.balance) && std::isfinite(plain.total);
    QVERIFY2((run.end == LoopEnd::NotFinite) == !finite, what.constData());
    if (!finite)
        return;
    QVERIFY2(bitsOf(run.balance) == bitsOf(plain.balance),
             QByteArray(what + ": balance " + mismatch(run.balance, plain.balance)).constData());
    QVERIFY2(bitsOf(run.total) == bitsOf(plain.total),
             QByteArray(what + ": total " + mismatch(run.total, plain.total)).constData());
    QVERIFY2(bitsOf(run.periods) == bitsOf(plain.periods),
             QByteArray(what + ": periods " + mismatch(run.periods, plain.periods)).constData());
    QVERIFY2(run.done == plain.done, QByteArray(what + ": done " + QByteArray::number(run.done) +
                                                " not " + QByteArray::number(plain.done))
                                         .constData());
}

void compareGrowth(double balance, double i, double payment, long long count)
{
    const GrowthRun run = runGrowth(balance, i, payment, count);
    const double plain = reference::growth(balance, i, payment, count);
    const QByteArray what = "growth from " + describe(balance) + ", rate " + describe(i) +
                            ", payment " + describe(payment) + ", " + QByteArray::number(count) +
                            " periods";
    QVERIFY2((run.end == LoopEnd::NotFinite) == !std::isfinite(plain), what.constData());
    if (std::isfinite(plain))
        QVERIFY2(bitsOf(run.balance) == bitsOf(plain),
                 QByteArray(what + ": " + mismatch(run.balance, plain)).constData());
}

// Amounts of every kind the loops meet: subnormal, just either side of
// 2^-1021 (where the integer carrying stops), tiny normal, everyday, zeros.
double randomAmount(QRandomGenerator &random)
{
    const quint64 units = random.generate64();
    const double sign = random.bounded(4) == 0 ? -1.0 : 1.0;
    switch (random.bounded(7)) {
    case 0:
        return sign * fromBits(units & ((quint64(1) << 52) - 1)); // subnormal
    case 1:
        return sign * fromBits((quint64(1) << 53) - 1 - (units % 100000)); // below 2^-1021
    case 2:
        return sign * fromBits((quint64(1) << 53) + (units % 100000)); // above it
    case 3:
        return sign * std::ldexp(1.0 + random.generateDouble(), -1022 + int(units % 60));
    case 4:
        return sign * fromBits(units % 5000); // a few units
    case 5:
        return sign * (random.generateDouble() * 1e5);
    default:
        return units % 2 ? 0.0 : -0.0;
    }
}

// Rates of every kind, exact binary fractions among them so that products
// land exactly halfway between two units.
double randomRate(QRandomGenerator &random)
{
    const double sign = random.bounded(5) == 0 ? -1.0 : 1.0;
    switch (random.bounded(6)) {
    case 0:
        return sign * std::ldexp(1.0, -int(random.bounded(1, 80)));
    case 1:
        return sign * std::ldexp(double(random.bounded(1, 64)), -int(random.bounded(6, 40)));
    case 2:
        return sign * random.generateDouble() * 0.1;
    case 3:
        return sign * std::ldexp(1.0 + random.generateDouble(), -int(random.bounded(10, 110)));
    case 4:
        return sign * fromBits(random.generate64() & ((quint64(1) << 52) - 1));
    default:
        return random.bounded(2) ? 0.0 : -0.0;
    }
}

} // namespace

class TestPeriodLoops : public QObject
{
    Q_OBJECT

private slots:
    void tinyInvestmentRecordRunsAMillionPeriodsBitForBit();
    void tinyInvestmentRecordHasNoFutureValue();
    void tinyInvestmentOfAMillionPeriodsSolvesAsThePlainLoop_data();
    void tinyInvestmentOfAMillionPeriodsSolvesAsThePlainLoop();
    void tinyLoanRecordRunsAMillionPeriodsBitForBit();
    void tinyLoanWithinTheLimitSolvesAsThePlainLoop();

    void randomLoanLoopsMatchThePlainLoopBitForBit();
    void randomGrowthMatchesThePlainLoopBitForBit();

    void exactHalvesOfAUnitRoundToEven_data();
    void exactHalvesOfAUnitRoundToEven();
    void settledLoanSkipsToTheEndExactly_data();
    void settledLoanSkipsToTheEndExactly();
    void settledGrowthStopsWithTheSameBalance();
    void overflowingLoopsEndNotFinite();
};

void TestPeriodLoops::tinyInvestmentRecordRunsAMillionPeriodsBitForBit()
{
    const ScenarioRecord record = recordFromFieldBytes(TinyInvestmentBytes);
    QCOMPARE(bitsOf(record.InitialAmount), quint64(0x001fa3afaa0b9a04)); // 4.4e-308
    QUILLET_COMPARE_EXACT(record.IRate, 1e-6);
    QCOMPARE(bitsOf(record.Payment), quint64(0x8000000000000001));
    QCOMPARE(record.PerYear, qint16(-1));

    // Payments a year blank: one period a year.
    const double i = reference::investmentRate(record.IRate, 1);
    const GrowthRun run = runGrowth(record.InitialAmount, i, record.Payment, Million);
    QVERIFY(run.end == LoopEnd::Finished);
    QCOMPARE(run.computed, Million);
    QUILLET_COMPARE_EXACT(run.balance,
                          reference::growth(record.InitialAmount, i, record.Payment, Million));
}

void TestPeriodLoops::tinyInvestmentRecordHasNoFutureValue()
{
    // 9.9e299 years: after the million periods the closed formula overflows.
    const ScenarioRecord record = recordFromFieldBytes(TinyInvestmentBytes);
    const SolveResult answer = Solve(record, Field::FutureValue, true);
    QVERIFY(answer.computed);
    QVERIFY(!answer.ok);
}

void TestPeriodLoops::tinyInvestmentOfAMillionPeriodsSolvesAsThePlainLoop_data()
{
    QTest::addColumn<double>("years");

    QTest::newRow("a million years") << 1e6;
    QTest::newRow("half a year short of a million") << 999999.5;
    QTest::newRow("a thousand years") << 1000.0;
}

void TestPeriodLoops::tinyInvestmentOfAMillionPeriodsSolvesAsThePlainLoop()
{
    QFETCH(double, years);

    ScenarioRecord record = recordFromFieldBytes(TinyInvestmentBytes);
    record.Years = years;
    const SolveResult answer = Solve(record, Field::FutureValue, true);
    double expected = 0;
    QVERIFY(reference::invFuture(record.InitialAmount, record.IRate, years, record.Payment, 1,
                                 expected));
    QVERIFY(answer.ok);
    QUILLET_COMPARE_EXACT(answer.value, expected);
}

void TestPeriodLoops::tinyLoanRecordRunsAMillionPeriodsBitForBit()
{
    // 1e-310 borrowed at 3.2767 % for 300 years of 32,767 payments of 5e-324.
    const double i = reference::loanRate(0.032767, 32767);
    compareLoanLoop(1e-310, i, 5e-324, 300.0 * 32767, Million);
    const LoanRun run = runLoanInterest(1e-310, i, 5e-324, 300.0 * 32767, Million);
    QCOMPARE(run.done, Million);
    QVERIFY(run.end == LoopEnd::Finished);
}

void TestPeriodLoops::tinyLoanWithinTheLimitSolvesAsThePlainLoop()
{
    // 30 years: 983,010 periods, all of them run one by one.
    const ScenarioRecord record = scenario(1e-310, 0.032767, 30, 5e-324, 32767, Blank);
    const SolveResult answer = Solve(record, Field::FutureValue, false);
    double expected = 0;
    QVERIFY(reference::loanTotalInterest(record, 1e-6, expected));
    QVERIFY(answer.ok);
    QUILLET_COMPARE_EXACT(answer.value, expected);
    QVERIFY(answer.value > 0);
}

void TestPeriodLoops::randomLoanLoopsMatchThePlainLoopBitForBit()
{
    QRandomGenerator random(20261121);
    for (int n = 0; n < 4000; ++n) {
        const double balance = std::abs(randomAmount(random));
        const double i = randomRate(random);
        const double payment = randomAmount(random);
        const double periods = double(random.bounded(1, 3000)) - (random.bounded(2) ? 0.5 : 0.0);
        const long long limit = random.bounded(3) == 0 ? random.bounded(1, 3000) : 3000;
        compareLoanLoop(balance, i, payment, periods, limit);
        if (QTest::currentTestFailed())
            return;
    }
}

void TestPeriodLoops::randomGrowthMatchesThePlainLoopBitForBit()
{
    QRandomGenerator random(1121);
    for (int n = 0; n < 4000; ++n) {
        const double balance = randomAmount(random);
        const double i = std::abs(randomRate(random));
        double payment = randomAmount(random);
        if (payment == 0)
            payment = 5e-324;
        compareGrowth(balance, i, payment, random.bounded(1, 3000));
        if (QTest::currentTestFailed())
            return;
    }
}

void TestPeriodLoops::exactHalvesOfAUnitRoundToEven_data()
{
    QTest::addColumn<double>("balance");
    QTest::addColumn<double>("rate");

    // Balances in units of 2^-1074 whose interest is an odd number of halves.
    const double twoToMinus20 = std::ldexp(1.0, -20);
    for (const quint64 halves : {1, 3, 5, 7, 4097}) {
        const QByteArray count = QByteArray::number(halves);
        QTest::newRow(QByteArray(count + " halves at 2^-20").constData())
            << fromBits(halves << 19) << twoToMinus20;
        QTest::newRow(QByteArray(count + " halves at a half").constData())
            << fromBits(halves) << 0.5;
        QTest::newRow(QByteArray(count + " halves at minus 2^-20").constData())
            << fromBits(halves << 19) << -twoToMinus20;
    }
}

void TestPeriodLoops::exactHalvesOfAUnitRoundToEven()
{
    QFETCH(double, balance);
    QFETCH(double, rate);

    for (const double periods : {1.0, 2.0, 40.0}) {
        compareLoanLoop(balance, rate, 0.0, periods, Million);
        compareLoanLoop(balance, rate, 5e-324, periods, Million);
        compareGrowth(balance, std::abs(rate), -5e-324, static_cast<long long>(periods));
    }
}

void TestPeriodLoops::settledLoanSkipsToTheEndExactly_data()
{
    QTest::addColumn<double>("balance");
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("periods");
    QTest::addColumn<long long>("limit");

    // With nothing paid and an interest that rounds to zero, nothing changes.
    QTest::newRow("tiny, two and a half periods") << 1e-320 << 1e-30 << 2.5 << Million;
    QTest::newRow("tiny, past the limit") << 1e-320 << 1e-30 << 5e6 << Million;
    QTest::newRow("tiny, a count beyond 2^52") << 1e-320 << 1e-30 << 1e17 << 1000LL;
    QTest::newRow("tiny, negative rate") << 1e-320 << -1e-30 << 123456.75 << Million;
    QTest::newRow("everyday balance at no interest") << 1000.0 << 0.0 << 360.0 << Million;
    QTest::newRow("everyday balance, a fraction of a period") << 1000.0 << 0.0 << 0.3 << Million;
    QTest::newRow("everyday balance, limit reached exactly") << 1000.0 << 0.0 << 700.0 << 700LL;
}

void TestPeriodLoops::settledLoanSkipsToTheEndExactly()
{
    QFETCH(double, balance);
    QFETCH(double, rate);
    QFETCH(double, periods);
    QFETCH(long long, limit);

    compareLoanLoop(balance, rate, 0.0, periods, limit);
    const LoanRun run = runLoanInterest(balance, rate, 0.0, periods, limit);
    QVERIFY(run.end == LoopEnd::Settled);
    QVERIFY2(run.computed <= 257, QByteArray::number(run.computed).constData());
}

void TestPeriodLoops::settledGrowthStopsWithTheSameBalance()
{
    // 1 added to 1e20 is lost in the rounding: the balance never changes.
    compareGrowth(1e20, 1e-30, 1, Million);
    const GrowthRun run = runGrowth(1e20, 1e-30, 1, Million);
    QVERIFY(run.end == LoopEnd::Settled);
    QCOMPARE(run.computed, 256LL);
}

void TestPeriodLoops::overflowingLoopsEndNotFinite()
{
    compareGrowth(1e300, 1e10, 1, 100);
    QVERIFY(runGrowth(1e300, 1e10, 1, 100).end == LoopEnd::NotFinite);
    compareLoanLoop(1e300, 1e10, 0, 100, Million);
    QVERIFY(runLoanInterest(1e300, 1e10, 0, 100, Million).end == LoopEnd::NotFinite);
    QVERIFY(runLoanInterest(1e300, -1e10, 0, 100, Million).end == LoopEnd::NotFinite);
}

QTEST_GUILESS_MAIN(TestPeriodLoops)
#include "tst_periodloops.moc"
