#include "solvecache.h"
#include "solver.h"

#include <QTest>

#include <bit>

using namespace quillet;

namespace {

ScenarioRecord loanWithBlankPayment()
{
    ScenarioRecord record;
    record.makeBlank();
    record.InitialAmount = 100000;
    record.IRate = 0.06;
    record.Years = 30;
    record.PerYear = 12;
    return record;
}

bool sameResult(const SolveResult &a, const SolveResult &b)
{
    return std::bit_cast<quint64>(a.value) == std::bit_cast<quint64>(b.value) && a.ok == b.ok &&
           a.computed == b.computed;
}

} // namespace

class TestSolveCache : public QObject
{
    Q_OBJECT

private slots:
    void answersAsTheEngineDoes();
    void anyChangeOfAQuantityIsSolvedAfresh();
    void listAndToleranceAreToldApart();
    void descriptionDoesNotMatter();
    void staysWithinItsCapacity();
};

void TestSolveCache::answersAsTheEngineDoes()
{
    SolveCache cache;
    const ScenarioRecord record = loanWithBlankPayment();
    for (const Field field :
         {Field::InitialAmount, Field::IRate, Field::Years, Field::Payment, Field::FutureValue}) {
        for (int round = 0; round < 2; ++round) {
            QVERIFY(
                sameResult(cache.solve(record, field, false, 0), Solve(record, field, false, 0)));
        }
    }
    QCOMPARE(cache.size(), std::size_t(5));
}

void TestSolveCache::anyChangeOfAQuantityIsSolvedAfresh()
{
    SolveCache cache;
    ScenarioRecord record = loanWithBlankPayment();
    const SolveResult before = cache.solve(record, Field::Payment, false, 0);
    record.IRate = 0.065;
    const SolveResult after = cache.solve(record, Field::Payment, false, 0);
    QVERIFY(sameResult(after, Solve(record, Field::Payment, false, 0)));
    QVERIFY(!sameResult(before, after));

    record.PerYear = 26;
    QVERIFY(sameResult(cache.solve(record, Field::Payment, false, 0),
                       Solve(record, Field::Payment, false, 0)));
    record.Payment = 500;
    QVERIFY(sameResult(cache.solve(record, Field::FutureValue, false, 0),
                       Solve(record, Field::FutureValue, false, 0)));
}

void TestSolveCache::listAndToleranceAreToldApart()
{
    SolveCache cache;
    ScenarioRecord record = loanWithBlankPayment();
    record.FutureValue = 200000;
    record.IRate = BlankValue;
    record.Payment = 600;
    const SolveResult loan = cache.solve(record, Field::IRate, false, 0);
    const SolveResult investment = cache.solve(record, Field::IRate, true, 0);
    const SolveResult fine = cache.solve(record, Field::IRate, false, 4);
    QVERIFY(sameResult(loan, Solve(record, Field::IRate, false, 0)));
    QVERIFY(sameResult(investment, Solve(record, Field::IRate, true, 0)));
    QVERIFY(sameResult(fine, Solve(record, Field::IRate, false, 4)));
    QVERIFY(!sameResult(loan, investment));
    QVERIFY(!sameResult(loan, fine));
    // Bits other than the tolerance's decide nothing.
    QVERIFY(sameResult(cache.solve(record, Field::IRate, false, 1 | 2), loan));
}

void TestSolveCache::descriptionDoesNotMatter()
{
    SolveCache cache;
    ScenarioRecord record = loanWithBlankPayment();
    (void)cache.solve(record, Field::Payment, false, 0);
    setDescText(record, u"Another name");
    (void)cache.solve(record, Field::Payment, false, 0);
    QCOMPARE(cache.size(), std::size_t(1));
}

void TestSolveCache::staysWithinItsCapacity()
{
    SolveCache cache;
    ScenarioRecord record = loanWithBlankPayment();
    for (int n = 0; n < 3000; ++n) {
        record.InitialAmount = 1000 + n;
        QVERIFY(sameResult(cache.solve(record, Field::Payment, false, 0),
                           Solve(record, Field::Payment, false, 0)));
        QVERIFY(cache.size() <= SolveCache::Capacity);
    }
}

QTEST_GUILESS_MAIN(TestSolveCache)
#include "tst_solvecache.moc"
