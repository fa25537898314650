#include "fonts.h"
#include "listprintout.h"
#include "printtestsupport.h"
#include "recordingsurface.h"
#include "scenariorecord.h"

#include <QLocale>
#include <QTest>

#include <vector>

using namespace quillet;
using namespace quillet::test;

namespace {

// A list printed from records held in memory, the way the window reads them.
struct PrintedList
{
    RecordingSurface surface;
    PrintOutcome outcome;
    ScenarioRecord working;
    std::vector<int> readOrder;
};

void printRecords(PrintedList &printed, const std::vector<ScenarioRecord> &records,
                  bool investments, const PrintProgress &progress = {})
{
    ListPrintJob job;
    job.investments = investments;
    job.headers = listHeaders(investments);
    job.count = static_cast<int>(records.size());
    job.readRecord = [&](int n) {
        printed.readOrder.push_back(n);
        printed.working = records.at(static_cast<std::size_t>(n - 1));
        return Status();
    };
    printed.outcome =
        printList(printed.surface, mainWindowMeasure(96), job, printed.working, progress);
}

// 1000 at 0 % with 100 paid in monthly for a year: the future value, left
// blank, is solved as 2,200.
ScenarioRecord savings(const QString &desc = QStringLiteral("Savings"))
{
    ScenarioRecord record = blankRecord(desc);
    record.InitialAmount = 1000;
    record.IRate = 0;
    record.Years = 1;
    record.Payment = 100;
    record.PerYear = 12;
    return record;
}

// Where the measured columns of a line start when they end at their right
// edges (5900, 6750, 7500, 9000, 9650, 11550).
double rightAligned(double rightEdge, const QString &text)
{
    return static_cast<double>(static_cast<float>(rightEdge) - mainWindowMeasure(96).width(text));
}

// The list printout's own positions, written out: the 20-point heading is
// 460 twips high on the recording surface, a 9-point line 207; the gap is a
// fifth of the height of "Sample" in Arial 9 pt at 96 dpi (201.09375 twips).
constexpr double Gap = 40.21875;
constexpr double HeaderTop = 460 + 207 + 207;
constexpr double RuleTop = HeaderTop + 207 + Gap + 5;
constexpr double FirstRecordTop = RuleTop + 15 + Gap;
constexpr double RecordPitch = 207 + Gap;

} // namespace

class TestListPrintout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void leftAlignedEmptyThirdTextStillPrintsAtItsLeftEdge();
    void rightAlignedEmptyThirdTextPrintsAtItsRightEdge();
    void wideTextRightAlignedStartsLeftOfItsColumn();
    void noBoldColumnInvestmentsPrintsNothingBold();
    void loanLineHasItsLastColumnBoldEvenForTheHeader();
    void boldColumnSixMakesThePaymentsPerYearColumnBold();
    void lineAdvancesByOnePrintedLineAndLeavesBoldOff();
    void emptyListsSayWhyAndPrintNothing();
    void oneRecordListPrintsHeadingHeaderRuleAndOneLine();
    void loanListPrintsRateAndTotalInterestHeadersAndBoldTotals();
    void storedLoanTotalInterestIsStillBold();
    void blankPaymentsPerYearPrintsAnEmptySeventhColumn();
    void valueThatCannotBeSolvedPrintsEmptyButBoldColumn();
    void rowNumbersArePaddedToFourPlaces();
    void longDescriptionIsPrintedWhole();
    void recordsArePrintedInFileOrderAndWorkingRecordKeepsTheLast();
    void longListContinuesOnNewPagesWithoutRepeatingTheHeader();
    void cancellingStopsAndAbortsTheDocument();
    void unreadableRecordAbortsTheDocumentWithItsMessage();
    void printerFailureAtTheEndIsReported();
};

void TestListPrintout::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // The gap the expectations above are written for.
    QCOMPARE(mainWindowMeasure(96).height(u"Sample"), 201.09375f);
}

void TestListPrintout::leftAlignedEmptyThirdTextStillPrintsAtItsLeftEdge()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    surface.setCurrentY(1000);
    OutText8(surface, mainWindowMeasure(96), true,
             {QStringLiteral("a"), QStringLiteral("b"), QString(), QStringLiteral("c"),
              QStringLiteral("d"), QStringLiteral("e"), QStringLiteral("f"), QStringLiteral("g")},
             0, BoldNone);
    COMPARE_TEXTS(surface.texts(), 0,
                  (std::vector<ExpectedText>{{1, 100, 1000, QStringLiteral("a"), false},
                                             {1, 600, 1000, QStringLiteral("b"), false},
                                             {1, 4700, 1000, QString(), false},
                                             {1, 6250, 1000, QStringLiteral("c"), false},
                                             {1, 7050, 1000, QStringLiteral("d"), false},
                                             {1, 8200, 1000, QStringLiteral("e"), false},
                                             {1, 9250, 1000, QStringLiteral("f"), false},
                                             {1, 10400, 1000, QStringLiteral("g"), false}}));
}

void TestListPrintout::rightAlignedEmptyThirdTextPrintsAtItsRightEdge()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    OutText8(surface, mainWindowMeasure(96), true, {}, 1, BoldNone);
    const auto texts = surface.texts();
    QCOMPARE(texts.size(), 8u);
    const std::vector<double> starts = {100, 600, 5900, 6750, 7500, 9000, 9650, 11550};
    for (std::size_t k = 0; k < starts.size(); ++k)
        QCOMPARE(texts[k].x, starts[k]);
}

void TestListPrintout::wideTextRightAlignedStartsLeftOfItsColumn()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    const QString wide = QStringLiteral("$123,456,789,012.00 ");
    OutText8(surface, mainWindowMeasure(96), true,
             {QString(), QString(), wide, wide, QString(), QString(), QString(), QString()}, 1,
             BoldNone);
    const auto texts = surface.texts();
    QCOMPARE(texts[2].text, wide);
    QCOMPARE(texts[2].x, rightAligned(5900, wide));
    QVERIFY(texts[2].x < 4700);
    QCOMPARE(texts[3].x, rightAligned(6750, wide));
    QVERIFY(texts[3].x < 6250);
}

void TestListPrintout::noBoldColumnInvestmentsPrintsNothingBold()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    OutText8(surface, mainWindowMeasure(96), true,
             {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
              QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8")},
             0, BoldNone);
    for (const Mark &mark : surface.texts())
        QVERIFY2(!mark.bold, qPrintable(describe(mark)));
}

void TestListPrintout::loanLineHasItsLastColumnBoldEvenForTheHeader()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    const std::array<QString, 7> headers = listHeaders(false);
    OutText8(surface, mainWindowMeasure(96), false,
             {QString(), headers[0], headers[1], headers[2], headers[3], headers[4], headers[5],
              headers[6]},
             0, BoldNone);
    const auto texts = surface.texts();
    for (std::size_t k = 0; k < 7; ++k)
        QVERIFY2(!texts[k].bold, qPrintable(describe(texts[k])));
    QCOMPARE(texts[7].text, QStringLiteral("Total Interest"));
    QVERIFY(texts[7].bold);
    QVERIFY(!surface.fontBold());
}

void TestListPrintout::boldColumnSixMakesThePaymentsPerYearColumnBold()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    OutText8(surface, mainWindowMeasure(96), true,
             {QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
              QStringLiteral("5"), QStringLiteral("6"), QStringLiteral("7"), QStringLiteral("8")},
             1, BoldPerYear);
    const auto texts = surface.texts();
    for (std::size_t k = 0; k < 8; ++k)
        QCOMPARE(texts[k].bold, k == 6);
}

void TestListPrintout::lineAdvancesByOnePrintedLineAndLeavesBoldOff()
{
    RecordingSurface surface;
    surface.setFontSize(9);
    surface.setCurrentY(500);
    OutText8(surface, mainWindowMeasure(96), true, {}, 1, BoldFutureValue);
    QCOMPARE(surface.currentY(), 707.0);
    QVERIFY(!surface.fontBold());
    QVERIFY(surface.texts().back().bold);
}

void TestListPrintout::emptyListsSayWhyAndPrintNothing()
{
    for (const bool investments : {true, false}) {
        PrintedList printed;
        printRecords(printed, {}, investments);
        QCOMPARE(printed.outcome.result, PrintOutcome::Result::Empty);
        QCOMPARE(printed.outcome.message,
                 investments ? QStringLiteral("There are no investment scenarios to print.")
                             : QStringLiteral("There are no loan scenarios to print."));
        QVERIFY(printed.surface.marks().empty());
        QVERIFY(!printed.surface.ended());
        QVERIFY(!printed.surface.aborted());
    }
}

void TestListPrintout::oneRecordListPrintsHeadingHeaderRuleAndOneLine()
{
    PrintedList printed;
    printRecords(printed, {savings()}, true);
    QCOMPARE(printed.outcome.result, PrintOutcome::Result::Printed);
    QVERIFY(printed.surface.ended());

    const auto &marks = printed.surface.marks();
    QCOMPARE(marks.size(), 1u + 2 + 8 + 1 + 8);
    COMPARE_TEXTS(marks, 0,
                  (std::vector<ExpectedText>{
                      {1, 100, 0, QStringLiteral("Investments"), true},
                      {1, 0, 460, QStringLiteral(" "), false},
                      {1, 0, 667, QStringLiteral(" "), false},
                      {1, 100, HeaderTop, QString(), false},
                      {1, 600, HeaderTop, QStringLiteral("Description"), false},
                      {1, 4700, HeaderTop, QStringLiteral("Initial Amount"), false},
                      {1, 6250, HeaderTop, QStringLiteral("Yield"), false},
                      {1, 7050, HeaderTop, QStringLiteral("Years"), false},
                      {1, 8200, HeaderTop, QStringLiteral("Payment"), false},
                      {1, 9250, HeaderTop, QStringLiteral("# Per Year"), false},
                      {1, 10400, HeaderTop, QStringLiteral("Future Value"), false},
                  }));
    QCOMPARE(marks[0].fontSize, 20.0);
    QCOMPARE(marks[1].fontSize, 9.0);
    QCOMPARE(marks[10].fontSize, 9.0);

    const Mark &rule = marks[11];
    QCOMPARE(rule.kind, Mark::Kind::Box);
    QCOMPARE(rule.x, 100.0);
    QCOMPARE(rule.y, RuleTop);
    QCOMPARE(rule.x2, 11600.0);
    QCOMPARE(rule.y2, RuleTop + 15);

    COMPARE_TEXTS(marks, 12,
                  (std::vector<ExpectedText>{
                      {1, 100, FirstRecordTop, QStringLiteral("   1"), false},
                      {1, 600, FirstRecordTop, QStringLiteral("Savings"), false},
                      {1, rightAligned(5900, QStringLiteral("$1,000.00 ")), FirstRecordTop,
                       QStringLiteral("$1,000.00 "), false},
                      {1, rightAligned(6750, QStringLiteral("0.00% ")), FirstRecordTop,
                       QStringLiteral("0.00% "), false},
                      {1, rightAligned(7500, QStringLiteral("1.0 ")), FirstRecordTop,
                       QStringLiteral("1.0 "), false},
                      {1, rightAligned(9000, QStringLiteral("$100.00 ")), FirstRecordTop,
                       QStringLiteral("$100.00 "), false},
                      {1, rightAligned(9650, QStringLiteral("12")), FirstRecordTop,
                       QStringLiteral("12"), false},
                      {1, rightAligned(11550, QStringLiteral("$2,200.00 ")), FirstRecordTop,
                       QStringLiteral("$2,200.00 "), true},
                  }));
    QCOMPARE(printed.surface.pageCount(), 1);
}

void TestListPrintout::loanListPrintsRateAndTotalInterestHeadersAndBoldTotals()
{
    // 1200 borrowed at 0 % over a year, paid monthly: the payment is solved.
    ScenarioRecord loan = blankRecord(QStringLiteral("Car"));
    loan.InitialAmount = 1200;
    loan.IRate = 0;
    loan.Years = 1;
    loan.PerYear = 12;
    PrintedList printed;
    printRecords(printed, {loan}, false);
    const auto texts = printed.surface.texts();
    QCOMPARE(texts[0].text, QStringLiteral("Loans"));
    QVERIFY(texts[0].bold);
    QCOMPARE(texts[6].text, QStringLiteral("Rate"));
    QCOMPARE(texts[10].text, QStringLiteral("Total Interest"));
    QVERIFY(texts[10].bold);
    COMPARE_TEXTS(texts, 16,
                  (std::vector<ExpectedText>{
                      {1, rightAligned(9000, QStringLiteral("$100.00 ")), FirstRecordTop,
                       QStringLiteral("$100.00 "), true},
                      {1, rightAligned(9650, QStringLiteral("12")), FirstRecordTop,
                       QStringLiteral("12"), false},
                      {1, rightAligned(11550, QStringLiteral("$0.00 ")), FirstRecordTop,
                       QStringLiteral("$0.00 "), true},
                  }));
}

void TestListPrintout::storedLoanTotalInterestIsStillBold()
{
    ScenarioRecord loan = blankRecord(QStringLiteral("Stored"));
    loan.InitialAmount = 1200;
    loan.IRate = 0;
    loan.Years = 1;
    loan.Payment = 100;
    loan.PerYear = 12;
    loan.FutureValue = 55;
    PrintedList printed;
    printRecords(printed, {loan}, false);
    const auto texts = printed.surface.texts();
    COMPARE_TEXTS(texts, 11,
                  (std::vector<ExpectedText>{
                      {1, 100, FirstRecordTop, QStringLiteral("   1"), false},
                      {1, 600, FirstRecordTop, QStringLiteral("Stored"), false},
                      {1, rightAligned(5900, QStringLiteral("$1,200.00 ")), FirstRecordTop,
                       QStringLiteral("$1,200.00 "), false},
                      {1, rightAligned(6750, QStringLiteral("0.00% ")), FirstRecordTop,
                       QStringLiteral("0.00% "), false},
                      {1, rightAligned(7500, QStringLiteral("1.0 ")), FirstRecordTop,
                       QStringLiteral("1.0 "), false},
                      {1, rightAligned(9000, QStringLiteral("$100.00 ")), FirstRecordTop,
                       QStringLiteral("$100.00 "), false},
                      {1, rightAligned(9650, QStringLiteral("12")), FirstRecordTop,
                       QStringLiteral("12"), false},
                      {1, rightAligned(11550, QStringLiteral("$55.00 ")), FirstRecordTop,
                       QStringLiteral("$55.00 "), true},
                  }));
}

void TestListPrintout::blankPaymentsPerYearPrintsAnEmptySeventhColumn()
{
    ScenarioRecord record = savings();
    record.PerYear = BlankPerYear;
    PrintedList printed;
    printRecords(printed, {record}, true);
    const auto texts = printed.surface.texts();
    COMPARE_TEXTS(texts, 17,
                  (std::vector<ExpectedText>{{1, 9650, FirstRecordTop, QString(), false}}));
}

void TestListPrintout::valueThatCannotBeSolvedPrintsEmptyButBoldColumn()
{
    // Nothing paid in and no interest: 1000 never grows to 2000.
    ScenarioRecord record = blankRecord(QStringLiteral("Never"));
    record.InitialAmount = 1000;
    record.IRate = 0;
    record.Payment = 0;
    record.PerYear = 1;
    record.FutureValue = 2000;
    PrintedList printed;
    printRecords(printed, {record}, true);
    const auto texts = printed.surface.texts();
    COMPARE_TEXTS(texts, 15,
                  (std::vector<ExpectedText>{{1, 7500, FirstRecordTop, QString(), true}}));
    QVERIFY(!texts[18].bold);
    QCOMPARE(texts[18].text, QStringLiteral("$2,000.00 "));
}

void TestListPrintout::rowNumbersArePaddedToFourPlaces()
{
    std::vector<ScenarioRecord> records(1000, savings());
    PrintedList printed;
    printRecords(printed, records, true);
    QCOMPARE(printed.outcome.result, PrintOutcome::Result::Printed);
    const auto texts = printed.surface.texts();
    // Each record line prints 8 texts after the 11 of heading and header.
    const auto rowNumber = [&](int row) {
        return texts.at(11 + 8 * static_cast<std::size_t>(row - 1));
    };
    QCOMPARE(rowNumber(1).text, QStringLiteral("   1"));
    QCOMPARE(rowNumber(9).text, QStringLiteral("   9"));
    QCOMPARE(rowNumber(10).text, QStringLiteral("  10"));
    QCOMPARE(rowNumber(99).text, QStringLiteral("  99"));
    QCOMPARE(rowNumber(100).text, QStringLiteral(" 100"));
    QCOMPARE(rowNumber(999).text, QStringLiteral(" 999"));
    QCOMPARE(rowNumber(1000).text, QStringLiteral("1,000"));
    QCOMPARE(rowNumber(1000).x, 100.0);
    QCOMPARE(texts.size(), 11u + 8 * 1000);
}

void TestListPrintout::longDescriptionIsPrintedWhole()
{
    const QString desc = QStringLiteral("A description of fifty characters, all of them kept");
    PrintedList printed;
    printRecords(printed, {savings(desc)}, true);
    QCOMPARE(printed.surface.texts().at(12).text, desc.left(50));
    QCOMPARE(printed.surface.texts().at(12).x, 600.0);
}

void TestListPrintout::recordsArePrintedInFileOrderAndWorkingRecordKeepsTheLast()
{
    PrintedList printed;
    printRecords(printed,
                 {savings(QStringLiteral("First")), savings(QStringLiteral("   Second   ")),
                  savings(QStringLiteral("  Third"))},
                 true);
    QCOMPARE(printed.readOrder, (std::vector<int>{1, 2, 3}));
    const auto texts = printed.surface.texts();
    COMPARE_TEXTS(
        texts, 11,
        (std::vector<ExpectedText>{{1, 100, FirstRecordTop, QStringLiteral("   1"), false},
                                   {1, 600, FirstRecordTop, QStringLiteral("First"), false}}));
    COMPARE_TEXTS(texts, 19,
                  (std::vector<ExpectedText>{
                      {1, 100, FirstRecordTop + RecordPitch, QStringLiteral("   2"), false},
                      {1, 600, FirstRecordTop + RecordPitch, QStringLiteral("Second"), false}}));
    COMPARE_TEXTS(texts, 27,
                  (std::vector<ExpectedText>{
                      {1, 100, FirstRecordTop + 2 * RecordPitch, QStringLiteral("   3"), false},
                      {1, 600, FirstRecordTop + 2 * RecordPitch, QStringLiteral("Third"), false}}));
    QCOMPARE(descText(printed.working), QStringLiteral("Third").leftJustified(50, u' '));
}

void TestListPrintout::longListContinuesOnNewPagesWithoutRepeatingTheHeader()
{
    std::vector<ScenarioRecord> records(120, savings());
    PrintedList printed;
    printRecords(printed, records, true);
    const auto texts = printed.surface.texts();
    QCOMPARE(texts.size(), 11u + 8 * 120);

    // Page 1 holds the lines that end by its bottom (15000 twips).
    const int firstPageLines = static_cast<int>((15000 - FirstRecordTop - 207) / RecordPitch) + 1;
    QCOMPARE(firstPageLines, 56);
    QCOMPARE(printed.surface.pageCount(), 3);
    for (int row = 1; row <= 120; ++row) {
        const std::size_t first = 11 + 8 * static_cast<std::size_t>(row - 1);
        // Every column of a line stays on the page of its first column.
        for (std::size_t k = 1; k < 8; ++k) {
            QCOMPARE(texts[first + k].page, texts[first].page);
            QCOMPARE(texts[first + k].y, texts[first].y);
        }
    }
    const Mark &lastOnFirst = texts[11 + 8 * (firstPageLines - 1)];
    const Mark &firstOnSecond = texts[11 + 8 * firstPageLines];
    QCOMPARE(lastOnFirst.page, 1);
    QCOMPARE(lastOnFirst.y, FirstRecordTop + (firstPageLines - 1) * RecordPitch);
    QCOMPARE(firstOnSecond.page, 2);
    QCOMPARE(firstOnSecond.text, QStringLiteral("  57"));
    QCOMPARE(firstOnSecond.y, 0.0);
    // The next line follows at the usual pitch from the new page's top.
    QCOMPARE(texts[11 + 8 * (firstPageLines + 1)].y, RecordPitch);
    // Heading and header once, on the first page.
    for (const Mark &mark : texts) {
        if (mark.page > 1) {
            QVERIFY(mark.text != QStringLiteral("Investments"));
            QVERIFY(mark.text != QStringLiteral("Description"));
        }
    }
}

void TestListPrintout::cancellingStopsAndAbortsTheDocument()
{
    std::vector<ScenarioRecord> records(10, savings());
    PrintedList printed;
    std::vector<int> seen;
    printRecords(printed, records, true, [&](int done, int total) {
        seen.push_back(done);
        return !(done == 3 && total == 10);
    });
    QCOMPARE(printed.outcome.result, PrintOutcome::Result::Cancelled);
    QCOMPARE(seen, (std::vector<int>{1, 2, 3}));
    QVERIFY(printed.surface.aborted());
    QVERIFY(!printed.surface.ended());
}

void TestListPrintout::unreadableRecordAbortsTheDocumentWithItsMessage()
{
    RecordingSurface surface;
    ScenarioRecord working;
    ListPrintJob job;
    job.investments = true;
    job.headers = listHeaders(true);
    job.count = 2;
    job.readRecord = [&](int n) {
        if (n == 2)
            return Status::failure(QStringLiteral("In.dat cannot be read: disk gone"));
        working = savings();
        return Status();
    };
    const PrintOutcome outcome = printList(surface, mainWindowMeasure(96), job, working);
    QCOMPARE(outcome.result, PrintOutcome::Result::Failed);
    QCOMPARE(outcome.message, QStringLiteral("In.dat cannot be read: disk gone"));
    QVERIFY(surface.aborted());
    QVERIFY(!surface.ended());
}

void TestListPrintout::printerFailureAtTheEndIsReported()
{
    PrintedList printed;
    printed.surface.failAtEnd(QStringLiteral("The printer is off line."));
    printRecords(printed, {savings()}, true);
    QCOMPARE(printed.outcome.result, PrintOutcome::Result::Failed);
    QCOMPARE(printed.outcome.message, QStringLiteral("The printer is off line."));
}

QTEST_MAIN(TestListPrintout)
#include "tst_listprintout.moc"
