#include "cupsprinter.h"
#include "messageboxwatcher.h"
#include "fonts.h"
#include "pdfoffer.h"
#include "pdftext.h"
#include "printjob.h"
#include "schedulefixture.h"

#include <QDir>
#include <QPrinter>
#include <QTest>

#include <memory>

using namespace quillet;
using namespace quillet::test;

namespace {

// No printer, and the PDF file the user names (empty to cancel).
PrintSeams pdfInstead(const QString &answer, QStringList *proposed = nullptr)
{
    PrintSeams seams;
    seams.defaultPrinter = [] {
        return std::unique_ptr<QPrinter>();
    };
    seams.choosePdfFile = [answer, proposed](QWidget *, const QString &proposedPath) {
        if (proposed)
            *proposed << proposedPath;
        return answer;
    };
    return seams;
}

const QString NoPrinterText = QStringLiteral(
    "There is no printer to print on: no printer is installed, or the default printer is not "
    "available.\n\nSave the printout as a PDF file instead?");

QStringList reportLines(const QStringList &arguments)
{
    const QString path = reportPdf(arguments, QDir::current().filePath(QStringLiteral("r.pdf")));
    return path.isEmpty() ? QStringList() : contentLines(pdfText(path, {QStringLiteral("-raw")}));
}

// 1000 at 12 % for 2 years, 100 paid in monthly: 24 periods, the future
// value solved.
ScenarioRecord savings()
{
    return scenario(QStringLiteral("Savings"), 1000, 0.12, 2, 100, 12);
}

// 100,000 at 6 % over 30 years monthly: 360 payments, the payment solved.
ScenarioRecord house()
{
    return scenario(QStringLiteral("House"), 100000, 0.06, 30, BlankValue, 12);
}

} // namespace

class TestSchedulePrinting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        installFontSubstitutions();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }
    void cleanup() { QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX(); }
    void investmentScheduleIsPrintedWholeAsTheReportPrintsIt();
    void loanScheduleOf360PeriodsPrintsEveryPaymentOnSeveralPages();
    void printingGivesTheFocusBackToTheScrollBar();
    void cancellingPrintsNothingAndStillGivesTheFocusBack();
    void printingOnTheCupsPdfPrinterMatchesTheReport();
};

void TestSchedulePrinting::investmentScheduleIsPrintedWholeAsTheReportPrintsIt()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({savings()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    PdfOfferAccepter accepter;
    MessageBoxWatcher boxes;
    QStringList proposed;
    const QString path = QDir::current().filePath(QStringLiteral("chosen.pdf"));
    window->setPrintSeams(pdfInstead(path, &proposed));
    boxes.expect();
    QTest::mouseClick(fixture.button(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(boxes.texts(), QStringList{NoPrinterText});
    QCOMPARE(proposed, QStringList{QDir::current().filePath(QStringLiteral("Savings.pdf"))});

    const QStringList lines = contentLines(pdfText(path, {QStringLiteral("-raw")}));
    QCOMPARE(lines.size(), 8 + 24);
    QCOMPARE(
        lines.mid(0, 8),
        (QStringList{QStringLiteral("Description: Savings"),
                     QStringLiteral("Intitial Amount: $1,000.00"),
                     QStringLiteral("Yield (Rate of Return): 12.00%"), QStringLiteral("Years: 2.0"),
                     QStringLiteral("Payment: $100.00"), QStringLiteral("Payments per Year: 12"),
                     QStringLiteral("Future Value: $3,935.46"),
                     QStringLiteral("Period Earnings Cumulative Earnings Total Earnings and "
                                    "Payments")}));
    QCOMPARE(lines.at(8), QStringLiteral("1 $9.49 $9.49 $1,109.49"));
    QVERIFY2(lines.last().startsWith(QStringLiteral("24 ")), qPrintable(lines.last()));
    QVERIFY2(lines.last().endsWith(QStringLiteral(" $3,935.46")), qPrintable(lines.last()));
    QCOMPARE(lines, reportLines({QStringLiteral("schedule"), QStringLiteral("investments"),
                                 QStringLiteral("1")}));
}

void TestSchedulePrinting::loanScheduleOf360PeriodsPrintsEveryPaymentOnSeveralPages()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {house()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    PdfOfferAccepter accepter;
    MessageBoxWatcher boxes;
    QStringList proposed;
    const QString path = QDir::current().filePath(QStringLiteral("House.pdf"));
    window->setPrintSeams(pdfInstead(path, &proposed));
    boxes.expect();
    QTest::mouseClick(fixture.button(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(proposed, QStringList{path});
    QCOMPARE(pdfPageCount(path), 7);
    const QString text = pdfText(path, {QStringLiteral("-raw")});
    QCOMPARE(text.count(QStringLiteral("Period / Payment")), 1);
    const QStringList lines = contentLines(text);
    QCOMPARE(lines.size(), 8 + 360);
    QCOMPARE(lines.at(4), QStringLiteral("Payment: $599.55"));
    QCOMPARE(lines.at(5), QStringLiteral("Payments per Year: 12"));
    QCOMPARE(lines.at(6), QStringLiteral("Total Interest: $115,838.19"));
    QCOMPARE(lines.at(8), QStringLiteral("1 $99.55 $500.00 $99.55 $500.00 $99,900.45"));
    QCOMPARE(lines, reportLines({QStringLiteral("schedule"), QStringLiteral("loans"),
                                 QStringLiteral("1")}));
}

void TestSchedulePrinting::printingGivesTheFocusBackToTheScrollBar()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {house()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    PdfOfferAccepter accepter;
    MessageBoxWatcher boxes;
    window->setPrintSeams(pdfInstead(QDir::current().filePath(QStringLiteral("x.pdf"))));
    boxes.expect();
    QTest::mouseClick(fixture.button(QStringLiteral("Print")), Qt::LeftButton);
    QVERIFY(QFile::exists(QStringLiteral("x.pdf")));
    QCOMPARE(window->focusWidget(), fixture.scrollBar());
}

void TestSchedulePrinting::cancellingPrintsNothingAndStillGivesTheFocusBack()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({savings()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    PdfOfferAccepter accepter;
    MessageBoxWatcher boxes;
    window->setPrintSeams(pdfInstead(QString()));
    boxes.expect();
    QTest::mouseClick(fixture.button(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(boxes.texts(), QStringList{NoPrinterText});
    QCOMPARE(QDir::current().entryList({QStringLiteral("*.pdf")}, QDir::Files), QStringList());
    QCOMPARE(window->focusWidget(), fixture.scrollBar());
}

void TestSchedulePrinting::printingOnTheCupsPdfPrinterMatchesTheReport()
{
    if (const QString why = prepareCupsPdfPrinter(); !why.isEmpty())
        QSKIP(qPrintable(QStringLiteral("no cups-pdf default printer: ") + why));
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {house()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    const QStringList before = printedFiles();
    QTest::mouseClick(fixture.button(QStringLiteral("Print")), Qt::LeftButton);
    const QString printed = waitForPrintedFile(before);
    QVERIFY2(!printed.isEmpty(), "the printer made no PDF");
    const QStringList lines = contentLines(pdfText(printed, {QStringLiteral("-raw")}));
    QFile::remove(printed);
    QCOMPARE(lines.size(), 8 + 360);
    QCOMPARE(lines, reportLines({QStringLiteral("schedule"), QStringLiteral("loans"),
                                 QStringLiteral("1")}));
}

QTEST_MAIN(TestSchedulePrinting)
#include "tst_scheduleprinting.moc"
