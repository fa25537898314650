#include "mainwindowfixture.h"
#include "fonts.h"
#include "pdfoffer.h"
#include "pdftext.h"
#include "printjob.h"
#include "progresscanceller.h"

#include <QDir>
#include <QFile>
#include <QPrinter>
#include <QScopeGuard>
#include <QTest>

#include <memory>

using namespace quillet;
using namespace quillet::test;

namespace {

// Answers the print dialogs in place of a person: no printer, and the PDF
// file to write (empty to cancel), remembering what was proposed.
struct ScriptedDialogs
{
    QString answer;
    QStringList proposed;
    int printerAsked = 0;

    PrintSeams seams()
    {
        PrintSeams seams;
        seams.defaultPrinter = [this] {
            ++printerAsked;
            return std::unique_ptr<QPrinter>();
        };
        seams.choosePdfFile = [this](QWidget *, const QString &proposedPath) {
            proposed << proposedPath;
            return answer;
        };
        return seams;
    }
};

const QString NoPrinterText = QStringLiteral(
    "There is no printer to print on: no printer is installed, or the default printer is not "
    "available.\n\nSave the printout as a PDF file instead?");

} // namespace

class TestPrinting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        installFontSubstitutions();
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }
    void cleanup() { QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX(); }
    void emptyInvestmentListSaysSoAndPrintsNothing();
    void emptyLoanListSaysSoAndPrintsNothing();
    void withoutPrinterTheListIsSavedAsPdfWhereTheUserSays();
    void loanListIsProposedAsLoansPdfWithItsOwnHeaders();
    void cancellingTheSaveDialogPrintsNothing();
    void decliningTheOfferOfAPdfPrintsNothing();
    void failingPrinterIsReportedAndNothingElseHappens();
    void unwritablePdfIsReportedAndWritesNothing();
    void longPrintoutCanBeCancelledFromItsProgressDialog();

private:
    // Made with the suite, before any window's message box watcher.
    PdfOfferAccepter m_accepter;
};

void TestPrinting::emptyInvestmentListSaysSoAndPrintsNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    ScriptedDialogs dialogs;
    fixture.window().setPrintSeams(dialogs.seams());
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("There are no investment scenarios to print.")});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(dialogs.printerAsked, 0);
    QVERIFY(dialogs.proposed.isEmpty());
}

void TestPrinting::emptyLoanListSaysSoAndPrintsNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    ScriptedDialogs dialogs;
    fixture.window().setPrintSeams(dialogs.seams());
    QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Loans")), Qt::LeftButton);
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("There are no loan scenarios to print.")});
    QCOMPARE(dialogs.printerAsked, 0);
}

void TestPrinting::withoutPrinterTheListIsSavedAsPdfWhereTheUserSays()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(
        {retirement(QStringLiteral("First plan")), retirement(QStringLiteral("Second plan"))}));
    ScriptedDialogs dialogs;
    dialogs.answer = QDir::current().filePath(QStringLiteral("chosen.pdf"));
    fixture.window().setPrintSeams(dialogs.seams());
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);

    QCOMPARE(fixture.boxes().texts(), QStringList{NoPrinterText});
    QCOMPARE(dialogs.proposed,
             QStringList{QDir::current().filePath(QStringLiteral("Investments.pdf"))});
    const QStringList lines = contentLines(pdfText(dialogs.answer, {QStringLiteral("-raw")}));
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines.at(0), QStringLiteral("Investments"));
    QCOMPARE(lines.at(1), QStringLiteral("Description Initial Amount Yield Years Payment # Per "
                                         "Year Future Value"));
    QCOMPARE(lines.at(2),
             QStringLiteral("1 First plan $1,000.00 12.00% 10.0 $100.00 12 $25,298.85"));
    QCOMPARE(lines.at(3),
             QStringLiteral("2 Second plan $1,000.00 12.00% 10.0 $100.00 12 $25,298.85"));
    QCOMPARE(pdfPageCount(dialogs.answer), 1);
    // The list files are untouched by printing.
    QCOMPARE(fixture.fileBytes(QStringLiteral("In.dat")),
             recordsBytes({retirement(QStringLiteral("First plan")),
                           retirement(QStringLiteral("Second plan"))}));
}

void TestPrinting::loanListIsProposedAsLoansPdfWithItsOwnHeaders()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    ScriptedDialogs dialogs;
    dialogs.answer = QDir::current().filePath(QStringLiteral("Loans.pdf"));
    fixture.window().setPrintSeams(dialogs.seams());
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(dialogs.proposed, QStringList{dialogs.answer});
    const QStringList lines = contentLines(pdfText(dialogs.answer, {QStringLiteral("-raw")}));
    QVERIFY2(lines.size() >= 3, qPrintable(lines.join(u'|')));
    QCOMPARE(lines.at(0), QStringLiteral("Loans"));
    QCOMPARE(lines.at(1), QStringLiteral("Description Initial Amount Rate Years Payment # Per "
                                         "Year Total Interest"));
    QCOMPARE(lines.at(2), QStringLiteral("1 House $100,000.00 6.00% 30.0 $599.55 12 $115,838.19"));
}

void TestPrinting::cancellingTheSaveDialogPrintsNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    ScriptedDialogs dialogs;
    fixture.window().setPrintSeams(dialogs.seams());
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(), QStringList{NoPrinterText});
    QCOMPARE(dialogs.proposed.size(), 1);
    QCOMPARE(QDir::current().entryList({QStringLiteral("*.pdf")}, QDir::Files), QStringList());
}

void TestPrinting::decliningTheOfferOfAPdfPrintsNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    ScriptedDialogs dialogs;
    dialogs.answer = QDir::current().filePath(QStringLiteral("never.pdf"));
    fixture.window().setPrintSeams(dialogs.seams());
    // The watcher closes the offer with OK, which is not Save.
    m_accepter.setAccepting(false);
    const auto acceptAgain = qScopeGuard([this] { m_accepter.setAccepting(true); });
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(), QStringList{NoPrinterText});
    QCOMPARE(dialogs.printerAsked, 1);
    QVERIFY(dialogs.proposed.isEmpty());
    QCOMPARE(QDir::current().entryList({QStringLiteral("*.pdf")}, QDir::Files), QStringList());
}

void TestPrinting::failingPrinterIsReportedAndNothingElseHappens()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    PrintSeams seams;
    // A printer whose output cannot be opened fails as a printer gone off line.
    seams.defaultPrinter = [] {
        auto printer = std::make_unique<QPrinter>();
        printer->setOutputFormat(QPrinter::PdfFormat);
        printer->setOutputFileName(QDir::current().filePath(QStringLiteral("missing/out.pdf")));
        return printer;
    };
    int asked = 0;
    seams.choosePdfFile = [&asked](QWidget *, const QString &) {
        ++asked;
        return QString();
    };
    fixture.window().setPrintSeams(seams);
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral(
                 "The printout could not be finished. The printer cannot be used.")});
    QCOMPARE(asked, 0);
    // Quillet goes on: the list can still be switched.
    QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Loans")), Qt::LeftButton);
    QVERIFY(!fixture.session().InvMode);
}

void TestPrinting::unwritablePdfIsReportedAndWritesNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QString path = QDir::current().filePath(QStringLiteral("missing/Investments.pdf"));
    ScriptedDialogs dialogs;
    dialogs.answer = path;
    fixture.window().setPrintSeams(dialogs.seams());
    fixture.boxes().expect(2);
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts().size(), 2);
    QVERIFY2(fixture.boxes().texts().at(1).startsWith(
                 QStringLiteral("The printout could not be finished. ") +
                 QDir::toNativeSeparators(path) + QStringLiteral(" cannot be written: ")),
             qPrintable(fixture.boxes().texts().at(1)));
    QVERIFY(!QFile::exists(path));
}

void TestPrinting::longPrintoutCanBeCancelledFromItsProgressDialog()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(600)));
    const QString path = QDir::current().filePath(QStringLiteral("Investments.pdf"));
    QVERIFY(writeBytes(path, "old printout"));
    ScriptedDialogs dialogs;
    dialogs.answer = path;
    PrintSeams seams = dialogs.seams();
    seams.progressDelayMs = 0;
    fixture.window().setPrintSeams(seams);
    ProgressCanceller canceller;
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
    QCOMPARE(canceller.shown, 1);
    QCOMPARE(fixture.boxes().texts(), QStringList{NoPrinterText});
    // Nothing written: the file the user chose keeps what it held.
    QCOMPARE(fileBytes(path), QByteArray("old printout"));
    QCOMPARE(QDir::current().entryList({QStringLiteral("*.pdf*")}, QDir::Files),
             QStringList{QStringLiteral("Investments.pdf")});
}

QTEST_MAIN(TestPrinting)
#include "tst_printing.moc"
