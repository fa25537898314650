#include "mainwindowfixture.h"
#include "pdftext.h"

#include <QDir>
#include <QFileInfo>
#include <QPrinterInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

using namespace quillet;
using namespace quillet::test;

namespace {

struct Command
{
    int exitCode = -1;
    QString out;
};

Command runCommand(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    Command command;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return command;
    command.exitCode = process.exitCode();
    command.out =
        QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
    return command;
}

bool schedulerRunning()
{
    return runCommand(QStringLiteral("lpstat"), {QStringLiteral("-r")})
        .out.contains(QStringLiteral("scheduler is running"));
}

const QString PrinterName = QStringLiteral("PDF");

// Makes the cups-pdf printer the system's default, starting the printing
// system when it is not running. Returns why it cannot, or nothing.
QString prepareCupsPdfPrinter()
{
    if (!QFileInfo::exists(QStringLiteral("/usr/sbin/cupsd")) ||
        !QFileInfo::exists(QStringLiteral("/usr/lib/cups/backend/cups-pdf")))
        return QStringLiteral("cups and printer-driver-cups-pdf are not installed");
    const bool root = geteuid() == 0;
    if (!schedulerRunning()) {
        if (!root)
            return QStringLiteral("the printing system is not running and only root may start it");
        runCommand(QStringLiteral("/usr/sbin/cupsd"), {});
        if (!QTest::qWaitFor(schedulerRunning, 15000))
            return QStringLiteral("cupsd did not start");
    }
    if (runCommand(QStringLiteral("lpstat"), {QStringLiteral("-p"), PrinterName}).exitCode != 0) {
        if (!root)
            return QStringLiteral("there is no cups-pdf printer and only root may add one");
        const Command added =
            runCommand(QStringLiteral("lpadmin"),
                       {QStringLiteral("-p"), PrinterName, QStringLiteral("-v"),
                        QStringLiteral("cups-pdf:/"), QStringLiteral("-E"), QStringLiteral("-m"),
                        QStringLiteral("lsb/usr/cups-pdf/CUPS-PDF_opt.ppd"), QStringLiteral("-o"),
                        QStringLiteral("pdftops-renderer-default=pdftocairo")});
        if (added.exitCode != 0)
            return QStringLiteral("lpadmin could not add the cups-pdf printer: ") + added.out;
    }
    const QString defaultLine = runCommand(QStringLiteral("lpstat"), {QStringLiteral("-d")}).out;
    if (!defaultLine.contains(QStringLiteral("system default destination: ") + PrinterName)) {
        if (defaultLine.contains(QStringLiteral("system default destination:")))
            return QStringLiteral("another printer is the default; the test prints only on "
                                  "the cups-pdf printer: ") +
                   defaultLine.trimmed();
        if (runCommand(QStringLiteral("lpadmin"), {QStringLiteral("-d"), PrinterName}).exitCode !=
            0)
            return QStringLiteral("the cups-pdf printer could not be made the default");
    }
    if (QPrinterInfo::defaultPrinter().printerName() != PrinterName)
        return QStringLiteral("Qt does not see the cups-pdf printer as the default");
    return {};
}

QString outputDirectory()
{
    return QDir::home().filePath(QStringLiteral("PDF"));
}

QStringList printedFiles()
{
    return QDir(outputDirectory()).entryList({QStringLiteral("*.pdf")}, QDir::Files);
}

bool noJobsWaiting()
{
    return runCommand(QStringLiteral("lpstat"), {QStringLiteral("-o"), PrinterName})
        .out.trimmed()
        .isEmpty();
}

// The PDF the printer makes of the next job: a file that was not there
// before, once the printer's queue is empty.
QString waitForPrintedFile(const QStringList &before)
{
    QString found;
    const bool printed = QTest::qWaitFor(
        [&] {
            if (!noJobsWaiting())
                return false;
            for (const QString &name : printedFiles()) {
                if (!before.contains(name)) {
                    found = QDir(outputDirectory()).filePath(name);
                    return true;
                }
            }
            return false;
        },
        120000);
    return printed ? found : QString();
}

QString reportPdf(const QStringList &arguments, const QString &output)
{
    QProcess process;
    process.start(QStringLiteral(QUILLET_REPORT_EXECUTABLE),
                  arguments + QStringList{QStringLiteral("--format"), QStringLiteral("pdf"),
                                          QStringLiteral("--output"), output,
                                          QStringLiteral("--locale"), QStringLiteral("en_US")});
    if (!process.waitForFinished(120000) || process.exitCode() != 0)
        return {};
    return output;
}

} // namespace

class TestCupsPrinting : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup() { QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX(); }
    void printingTheInvestmentListMatchesTheReportsPdf();
    void printingTheLoanListMatchesTheReportsPdf();

private:
    void printListAndCompare(bool investments);
};

void TestCupsPrinting::initTestCase()
{
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
    QTest::mouseClick(fixture.command(QStringLiteral("Print")), Qt::LeftButton);
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

QTEST_MAIN(TestCupsPrinting)
#include "tst_cupsprinting.moc"
