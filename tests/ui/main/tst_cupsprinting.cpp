#include "mainwindowfixture.h"
#include "cupsprinter.h"
#include "fonts.h"
#include "pdftext.h"
#include "printjob.h"
#include "progresscanceller.h"

#include <QDir>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

class TestCupsPrinting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX(); }
    void printingTheInvestmentListMatchesTheReportsPdf();
    void printingTheLoanListMatchesTheReportsPdf();
    void cancelledPrintoutSendsNothingToThePrinter();

private:
    void printListAndCompare(bool investments);
};

void TestCupsPrinting::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    if (const QString why = prepareCupsPdfPrinter(); !why.isEmpty())
        QSKIP(qPrintable(QStringLiteral("no cups-pdf default printer: ") + why));
}

void TestCupsPrinting::printListAndCompare(bool investments)
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(
        {retirement(QStringLiteral("Retirement")), retirement(QStringLiteral("Second plan"))},
        {mortgage(QStringLiteral("House"))}));
    if (!investments)
        QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Loans")), Qt::LeftButton);

    const QStringList before = printedFiles();
    const int lastJob = lastJobId();
    QVERIFY(lastJob >= 0);
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    // The printout is one job, handed over when the click is done.
    QCOMPARE(lastJobId(), lastJob + 1);
    const QString printed = waitForPrintedFile(before);
    QVERIFY2(!printed.isEmpty(), "the printer made no PDF");

    const QString expected =
        reportPdf({QStringLiteral("list"),
                   investments ? QStringLiteral("investments") : QStringLiteral("loans")},
                  QDir::current().filePath(QStringLiteral("report.pdf")));
    QVERIFY2(!expected.isEmpty(), "quillet-report wrote no PDF");
    const QStringList printedLines = contentLines(pdfText(printed, {QStringLiteral("-raw")}));
    QVERIFY2(!printedLines.isEmpty(), qPrintable(printed));
    QCOMPARE(printedLines, contentLines(pdfText(expected, {QStringLiteral("-raw")})));
    QFile::remove(printed);
}

void TestCupsPrinting::printingTheInvestmentListMatchesTheReportsPdf()
{
    printListAndCompare(true);
}

void TestCupsPrinting::printingTheLoanListMatchesTheReportsPdf()
{
    printListAndCompare(false);
}

void TestCupsPrinting::cancelledPrintoutSendsNothingToThePrinter()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(600)));
    PrintSeams seams = PrintSeams::system();
    seams.progressDelayMs = 0;
    fixture.window().setPrintSeams(seams);
    const int lastJob = lastJobId();
    QVERIFY(lastJob >= 0);
    ProgressCanceller canceller;
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(canceller.shown, 1);
    // Not a page reached the printer: it was given no job at all.
    QCOMPARE(lastJobId(), lastJob);
}

QTEST_MAIN(TestCupsPrinting)
#include "tst_cupsprinting.moc"
