#include "fonts.h"
#include "printtestsupport.h"
#include "recordingsurface.h"
#include "scheduleprintout.h"

#include <QLocale>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

// 1000 at 0 % for a year with 100 paid in monthly.
ScenarioRecord savings()
{
    ScenarioRecord record = blankRecord(QStringLiteral("Savings"));
    record.InitialAmount = 1000;
    record.IRate = 0;
    record.Years = 1;
    record.Payment = 100;
    record.PerYear = 12;
    return record;
}

// The rule under the headings: the one line of a printout.
const Mark *ruleOf(const RecordingSurface &surface)
{
    for (const Mark &mark : surface.marks()) {
        if (mark.kind == Mark::Kind::Line)
            return &mark;
    }
    return nullptr;
}

} // namespace

// Schedule printouts at their edges: a printer that refuses the document at
// its end, and headings fewer than the columns.
class TestSchedulePrintoutEdges : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void printerRefusingTheDocumentAtItsEndFailsWithItsReason();
    void withoutHeadingsTheRuleEndsWhereTheLastColumnStarts();
    void missingHeadingsLeaveTheirColumnsBlank();
};

void TestSchedulePrintoutEdges::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestSchedulePrintoutEdges::printerRefusingTheDocumentAtItsEndFailsWithItsReason()
{
    RecordingSurface surface;
    surface.failAtEnd(QStringLiteral("The printer is off line."));
    const PrintOutcome outcome =
        PrintAmort(surface, scheduleWindowMeasure(96), schedulePrintJob(savings(), true, 12));
    QCOMPARE(outcome.result, PrintOutcome::Result::Failed);
    QCOMPARE(outcome.message, QStringLiteral("The printer is off line."));
    QVERIFY(surface.ended());
    QVERIFY(!surface.aborted());
}

void TestSchedulePrintoutEdges::withoutHeadingsTheRuleEndsWhereTheLastColumnStarts()
{
    SchedulePrintJob investment = schedulePrintJob(savings(), true, 1);
    investment.headings.clear();
    RecordingSurface investmentSurface;
    QCOMPARE(PrintAmort(investmentSurface, scheduleWindowMeasure(96), investment).result,
             PrintOutcome::Result::Printed);
    const Mark *rule = ruleOf(investmentSurface);
    QVERIFY(rule);
    QCOMPARE(rule->x, 100.0);
    QCOMPARE(rule->x2, 8100.0);

    SchedulePrintJob loan = schedulePrintJob(savings(), false, 1);
    loan.headings.clear();
    RecordingSurface loanSurface;
    QCOMPARE(PrintAmort(loanSurface, scheduleWindowMeasure(96), loan).result,
             PrintOutcome::Result::Printed);
    rule = ruleOf(loanSurface);
    QVERIFY(rule);
    QCOMPARE(rule->x, 100.0);
    QCOMPARE(rule->x2, 9000.0);
}

void TestSchedulePrintoutEdges::missingHeadingsLeaveTheirColumnsBlank()
{
    SchedulePrintJob job = schedulePrintJob(savings(), true, 1);
    job.headings = QStringList{QStringLiteral("Period"), QStringLiteral("Earnings")};
    RecordingSurface surface;
    QCOMPARE(PrintAmort(surface, scheduleWindowMeasure(96), job).result,
             PrintOutcome::Result::Printed);

    // After the 14 header texts and the two blank lines: the four headings.
    const std::vector<Mark> texts = surface.texts();
    QVERIFY(texts.size() >= 20u);
    QCOMPARE(texts[16].text, QStringLiteral("Period"));
    QCOMPARE(texts[16].x, 100.0);
    QCOMPARE(texts[17].text, QStringLiteral("Earnings"));
    QCOMPARE(texts[17].x, 2000.0);
    QCOMPARE(texts[18].text, QString());
    QCOMPARE(texts[18].x, 5000.0);
    QCOMPARE(texts[19].text, QString());
    QCOMPARE(texts[19].x, 8000.0);
    // The rule still ends past the last column's start by the width of the
    // last heading there is: "Earnings", 768.515625 twips in MS Sans Serif
    // 9.75 pt at 96 dpi.
    const Mark *rule = ruleOf(surface);
    QVERIFY(rule);
    QCOMPARE(rule->x2, 8868.515625);
}

QTEST_MAIN(TestSchedulePrintoutEdges)
#include "tst_scheduleprintoutedges.moc"
