#include "fonts.h"
#include "printtestsupport.h"
#include "recordingsurface.h"
#include "scheduleprintout.h"

#include <QLocale>
#include <QTest>

#include <vector>

using namespace quillet;
using namespace quillet::test;

namespace {

TextMeasure windowMeasure()
{
    return scheduleWindowMeasure(96);
}

double rightAligned(double rightEdge, const QString &text)
{
    return static_cast<double>(static_cast<float>(rightEdge) - windowMeasure().width(text));
}

// The recording surface prints 10-point lines 230 twips high; each text but
// the last of a line steps back up by the window font's line, 217.734375
// twips in MS Sans Serif 9.75 pt at 96 dpi, so the next one lands 12.265625
// twips lower.
constexpr double Line = 230;
constexpr double Step = 230 - 217.734375;

// 1000 at 0 % for a year with 100 paid in monthly; the future value (2,200)
// is solved.
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

// 1000 borrowed at 12 % a year, 100 paid monthly: the periodic rate is 1 %.
ScenarioRecord loan(double years = 1)
{
    ScenarioRecord record = blankRecord(QStringLiteral("Loan"));
    record.InitialAmount = 1000;
    record.IRate = 0.12;
    record.Years = years;
    record.Payment = 100;
    record.PerYear = 12;
    return record;
}

// The top of a header line n (0 to 6): each line advances by a printed line
// plus the step between its label and its value.
constexpr double headerTop(int n)
{
    return n * (Line + Step);
}
constexpr double HeadingsTop = 7 * (Line + Step) + 2 * Line;

} // namespace

class TestSchedulePrintout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void headerLineHasLabelAt100AndValueAt3000();
    void boldHeaderValueIsSwitchedOffAfterIt();
    void investmentPrintoutPlacesHeaderHeadingsRuleAndEveryPeriod();
    void loanPrintoutUsesSixColumnsAndThePlainPeriodicRate();
    void emptyScheduleprintsHeaderHeadingsAndRuleOnly();
    void loanOf360PeriodsRunsOverSeveralPagesWithHeadingsOnce();
    void periodThousandIsGroupedWithoutBlanks();
    void figuresWiderThanTheirColumnExtendLeft();
    void cancellingStopsTheSchedule();
    void printoutOfARecordUsesTheWindowsCaptions();
};

void TestSchedulePrintout::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QCOMPARE(windowMeasure().height(u"Period"), 217.734375f);
}

void TestSchedulePrintout::headerLineHasLabelAt100AndValueAt3000()
{
    RecordingSurface surface;
    surface.setCurrentY(1000);
    OutText2(surface, windowMeasure(), QStringLiteral("Years:"), QStringLiteral("10.0 "), false);
    COMPARE_TEXTS(surface.texts(), 0,
                  (std::vector<ExpectedText>{
                      {1, 100, 1000, QStringLiteral("Years:"), false},
                      {1, 3000, 1000 + Step, QStringLiteral("10.0 "), false},
                  }));
    QCOMPARE(surface.currentY(), 1000 + Step + Line);
}

void TestSchedulePrintout::boldHeaderValueIsSwitchedOffAfterIt()
{
    RecordingSurface surface;
    OutText2(surface, windowMeasure(), QStringLiteral("Future Value:"),
             QStringLiteral("$2,200.00 "), true);
    QVERIFY(!surface.fontBold());
    OutText2(surface, windowMeasure(), QStringLiteral("Next:"), QStringLiteral("x"), false);
    const auto texts = surface.texts();
    QVERIFY(!texts[0].bold);
    QVERIFY(texts[1].bold);
    QVERIFY(!texts[2].bold);
    QVERIFY(!texts[3].bold);
}

void TestSchedulePrintout::investmentPrintoutPlacesHeaderHeadingsRuleAndEveryPeriod()
{
    RecordingSurface surface;
    const PrintOutcome outcome =
        PrintAmort(surface, windowMeasure(), schedulePrintJob(savings(), true, 12));
    QCOMPARE(outcome.result, PrintOutcome::Result::Printed);
    QVERIFY(surface.ended());
    const auto &marks = surface.marks();
    QCOMPARE(marks.size(), 14u + 2 + 4 + 1 + 12 * 4);

    COMPARE_TEXTS(
        marks, 0,
        (std::vector<ExpectedText>{
            {1, 100, headerTop(0), QStringLiteral("Description:"), false},
            {1, 3000, headerTop(0) + Step, QStringLiteral(" Savings"), false},
            {1, 100, headerTop(1), QStringLiteral("Intitial Amount:"), false},
            {1, 3000, headerTop(1) + Step, QStringLiteral("$1,000.00 "), false},
            {1, 100, headerTop(2), QStringLiteral("Yield (Rate of Return):"), false},
            {1, 3000, headerTop(2) + Step, QStringLiteral("0.00% "), false},
            {1, 100, headerTop(3), QStringLiteral("Years:"), false},
            {1, 3000, headerTop(3) + Step, QStringLiteral("1.0 "), false},
            {1, 100, headerTop(4), QStringLiteral("Payment:"), false},
            {1, 3000, headerTop(4) + Step, QStringLiteral("$100.00 "), false},
            {1, 100, headerTop(5), QStringLiteral("Payments per Year:"), false},
            {1, 3000, headerTop(5) + Step, QStringLiteral("12"), false},
            {1, 100, headerTop(6), QStringLiteral("Future Value:"), false},
            {1, 3000, headerTop(6) + Step, QStringLiteral("$2,200.00 "), true},
            {1, 0, headerTop(7), QStringLiteral(" "), false},
            {1, 0, headerTop(7) + Line, QStringLiteral(" "), false},
            {1, 100, HeadingsTop, QStringLiteral("Period"), false},
            {1, 2000, HeadingsTop + Step, QStringLiteral("Earnings"), false},
            {1, 5000, HeadingsTop + 2 * Step, QStringLiteral("Cumulative Earnings"), false},
            {1, 8000, HeadingsTop + 3 * Step, QStringLiteral("Total Earnings and Payments"), false},
        }));

    const double rowsTop = HeadingsTop + 3 * Step + Line;
    const Mark &rule = marks[20];
    QCOMPARE(rule.kind, Mark::Kind::Line);
    QCOMPARE(rule.x, 100.0);
    QCOMPARE(rule.x2, 8100 + static_cast<double>(windowMeasure().width(
                                 QStringLiteral("Total Earnings and Payments"))));
    QCOMPARE(rule.y, rowsTop + 15);
    QCOMPARE(rule.y2, rowsTop + 15);
    QCOMPARE(rule.thickness, 20.0);

    // The first figures start below the rule's lower edge.
    const double firstRow = rowsTop + 15;
    QVERIFY(rule.y + rule.thickness / 2 <= firstRow + 10);
    COMPARE_TEXTS(marks, 21,
                  (std::vector<ExpectedText>{
                      {1, 100, firstRow, QStringLiteral("   1"), false},
                      {1, rightAligned(2600, QStringLiteral("$0.00")), firstRow + Step,
                       QStringLiteral("$0.00"), false},
                      {1, rightAligned(6400, QStringLiteral("$0.00")), firstRow + 2 * Step,
                       QStringLiteral("$0.00"), false},
                      {1, rightAligned(9600, QStringLiteral("$1,100.00")), firstRow + 3 * Step,
                       QStringLiteral("$1,100.00"), false},
                  }));
    const double lastRow = firstRow + 11 * (3 * Step + Line);
    COMPARE_TEXTS(marks, 21 + 11 * 4,
                  (std::vector<ExpectedText>{{1, 100, lastRow, QStringLiteral("  12"), false}}));
    COMPARE_TEXTS(
        marks, 21 + 11 * 4 + 3,
        (std::vector<ExpectedText>{{1, rightAligned(9600, QStringLiteral("$2,200.00")),
                                    lastRow + 3 * Step, QStringLiteral("$2,200.00"), false}}));
}

void TestSchedulePrintout::loanPrintoutUsesSixColumnsAndThePlainPeriodicRate()
{
    RecordingSurface surface;
    PrintAmort(surface, windowMeasure(), schedulePrintJob(loan(), false, 12));
    const auto &marks = surface.marks();
    QCOMPARE(marks.size(), 14u + 2 + 6 + 1 + 12 * 6);
    const auto texts = surface.texts();
    QCOMPARE(texts[4].text, QStringLiteral("Interest Rate:"));
    QCOMPARE(texts[5].text, QStringLiteral("12.00% "));
    QCOMPARE(texts[8].text, QStringLiteral("Payment:"));
    QCOMPARE(texts[10].text, QStringLiteral("Payments per Year:"));
    QCOMPARE(texts[12].text, QStringLiteral("Total Interest:"));
    QVERIFY(texts[13].bold);
    COMPARE_TEXTS(
        texts, 16,
        (std::vector<ExpectedText>{
            {1, 100, HeadingsTop, QStringLiteral("Period / Payment"), false},
            {1, 1800, HeadingsTop + Step, QStringLiteral("Principal Portion"), false},
            {1, 3300, HeadingsTop + 2 * Step, QStringLiteral("Interest Portion"), false},
            {1, 4800, HeadingsTop + 3 * Step, QStringLiteral("Cumulative Principal"), false},
            {1, 6700, HeadingsTop + 4 * Step, QStringLiteral("Cumulative Interest"), false},
            {1, 8800, HeadingsTop + 5 * Step, QStringLiteral("Remaining Balance"), false},
        }));
    const Mark &rule = marks[22];
    QCOMPARE(rule.kind, Mark::Kind::Line);
    QCOMPARE(rule.x2, 9000 + static_cast<double>(
                                 windowMeasure().width(QStringLiteral("Remaining Balance"))));
    const double firstRow = HeadingsTop + 5 * Step + Line + 15;
    COMPARE_TEXTS(texts, 22,
                  (std::vector<ExpectedText>{
                      {1, 100, firstRow, QStringLiteral("   1"), false},
                      {1, rightAligned(2800, QStringLiteral("$90.00")), firstRow + Step,
                       QStringLiteral("$90.00"), false},
                      {1, rightAligned(4300, QStringLiteral("$10.00")), firstRow + 2 * Step,
                       QStringLiteral("$10.00"), false},
                      {1, rightAligned(6000, QStringLiteral("$90.00")), firstRow + 3 * Step,
                       QStringLiteral("$90.00"), false},
                      {1, rightAligned(7900, QStringLiteral("$10.00")), firstRow + 4 * Step,
                       QStringLiteral("$10.00"), false},
                      {1, rightAligned(10000, QStringLiteral("$910.00")), firstRow + 5 * Step,
                       QStringLiteral("$910.00"), false},
                  }));
    // Second period: 1 % of 910.
    QCOMPARE(texts[28].text, QStringLiteral("   2"));
    QCOMPARE(texts[30].text, QStringLiteral("$9.10"));
    QCOMPARE(texts[33].text, QStringLiteral("$819.10"));
}

void TestSchedulePrintout::emptyScheduleprintsHeaderHeadingsAndRuleOnly()
{
    RecordingSurface surface;
    const PrintOutcome outcome =
        PrintAmort(surface, windowMeasure(), schedulePrintJob(savings(), true, 0));
    QCOMPARE(outcome.result, PrintOutcome::Result::Printed);
    QCOMPARE(surface.marks().size(), 14u + 2 + 4 + 1);
    QCOMPARE(surface.marks().back().kind, Mark::Kind::Line);
    QVERIFY(surface.ended());
}

void TestSchedulePrintout::loanOf360PeriodsRunsOverSeveralPagesWithHeadingsOnce()
{
    RecordingSurface surface;
    PrintAmort(surface, windowMeasure(), schedulePrintJob(loan(30), false, 360));
    const auto texts = surface.texts();
    QCOMPARE(texts.size(), 14u + 2 + 6 + 360 * 6);
    QVERIFY(surface.pageCount() >= 5);
    int headings = 0;
    int lastPage = 1;
    for (std::size_t row = 0; row < 360; ++row) {
        const std::size_t first = 22 + 6 * row;
        QCOMPARE(texts[first].text, QStringLiteral("%1")
                                        .arg(row + 1, 4, 10, QLatin1Char(' '))
                                        .replace(QStringLiteral(" 1000"), QStringLiteral("1,000")));
        QVERIFY(texts[first].page >= lastPage);
        lastPage = texts[first].page;
        for (std::size_t k = 1; k < 6; ++k)
            QCOMPARE(texts[first + k].page, texts[first].page);
        // Nothing crosses the bottom of its page by more than a column's step.
        QVERIFY(texts[first + 5].y + Line <= 15000 + 5 * Step);
    }
    for (const Mark &mark : texts) {
        if (mark.text == QStringLiteral("Period / Payment"))
            ++headings;
    }
    QCOMPARE(headings, 1);
    QCOMPARE(lastPage, surface.pageCount());
}

void TestSchedulePrintout::periodThousandIsGroupedWithoutBlanks()
{
    RecordingSurface surface(1e9);
    PrintAmort(surface, windowMeasure(), schedulePrintJob(savings(), true, 1000));
    const auto texts = surface.texts();
    QCOMPARE(texts[20 + 4 * 998].text, QStringLiteral(" 999"));
    QCOMPARE(texts[20 + 4 * 999].text, QStringLiteral("1,000"));
    QCOMPARE(texts[20 + 4 * 999].x, 100.0);
}

void TestSchedulePrintout::figuresWiderThanTheirColumnExtendLeft()
{
    ScenarioRecord record = savings();
    record.InitialAmount = 123456789012.0;
    RecordingSurface surface;
    PrintAmort(surface, windowMeasure(), schedulePrintJob(record, true, 1));
    const auto texts = surface.texts();
    const Mark &balance = texts[23];
    QCOMPARE(balance.text, QStringLiteral("$123,456,789,112.00"));
    QCOMPARE(balance.x, rightAligned(9600, balance.text));
    QVERIFY(balance.x < 8000);
}

void TestSchedulePrintout::cancellingStopsTheSchedule()
{
    RecordingSurface surface;
    const PrintOutcome outcome =
        PrintAmort(surface, windowMeasure(), schedulePrintJob(loan(30), false, 360),
                   [](int done, int) { return done < 5; });
    QCOMPARE(outcome.result, PrintOutcome::Result::Cancelled);
    QVERIFY(surface.aborted());
    QVERIFY(!surface.ended());
    QCOMPARE(surface.texts().size(), 14u + 2 + 6 + 5 * 6);
}

void TestSchedulePrintout::printoutOfARecordUsesTheWindowsCaptions()
{
    const SchedulePrintJob investment = schedulePrintJob(savings(), true, 12);
    QCOMPARE(investment.headings, (QStringList{QStringLiteral("Period"), QStringLiteral("Earnings"),
                                               QStringLiteral("Cumulative Earnings"),
                                               QStringLiteral("Total Earnings and Payments")}));
    const SchedulePrintJob loanJob = schedulePrintJob(loan(), false, 12);
    QCOMPARE(loanJob.header[0].label, QStringLiteral("Description:"));
    QCOMPARE(loanJob.header[1].label, QStringLiteral("Intitial Amount:"));
    QCOMPARE(loanJob.header[5].label, QStringLiteral("Payments per Year:"));
    QCOMPARE(loanJob.header[6].label, QStringLiteral("Total Interest:"));
    QCOMPARE(loanJob.header[0].value, QStringLiteral(" Loan"));
}

QTEST_MAIN(TestSchedulePrintout)
#include "tst_scheduleprintout.moc"
