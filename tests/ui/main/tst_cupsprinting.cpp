#include "mainwindowfixture.h"
#include "cupsprinter.h"
#include "fonts.h"
#include "pdftext.h"
#include "printjob.h"
#include "progresscanceller.h"
#include "testfiles.h"
#include "pdfsurface.h"

#include <QDir>
#include <QFile>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScopeGuard>
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
    void printerThatRefusesTheDocumentSaysSoAndKeepsNoCopy();

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

void TestCupsPrinting::printerThatRefusesTheDocumentSaysSoAndKeepsNoCopy()
{
    if (const QString why = prepareRefusingPrinter(); !why.isEmpty())
        QSKIP(qPrintable(QStringLiteral("no refusing printer: ") + why));
    // The document is drawn into a file of the temporary folder first; none
    // is left behind.
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString spool = dir.filePath(QStringLiteral("spool"));
    QVERIFY(QDir().mkdir(spool));
    const QByteArray oldTemp = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(spool));
    const auto restore = qScopeGuard([&oldTemp] { qputenv("TMPDIR", oldTemp); });
    QPrinter printer(QPrinterInfo::printerInfo(RefusingPrinterName), QPrinter::HighResolution);
    QCOMPARE(printer.printerName(), RefusingPrinterName);
    {
        PrinterSurface surface(printer, QStringLiteral("Refused"));
        QVERIFY(surface.isOpen());
        surface.printLine(QStringLiteral("Never printed"));
        QVERIFY(!surface.endDoc());
        QCOMPARE(surface.errorText(),
                 QStringLiteral("The printer QuilletRefusing did not accept the document."));
    }
    QCOMPARE(QDir(spool).entryList(QDir::Files), QStringList());
}

QTEST_MAIN(TestCupsPrinting)
#include "tst_cupsprinting.moc"
