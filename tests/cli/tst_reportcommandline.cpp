#include "pdftext.h"
#include "reporttestsupport.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace quillet;
using namespace quillet::test;

namespace {

QStringList words(std::initializer_list<const char *> arguments)
{
    QStringList list;
    for (const char *argument : arguments)
        list.append(QString::fromLatin1(argument));
    return list;
}

} // namespace

// Command lines quillet-report refuses before reading anything, and the
// spellings of options it takes.
class TestReportCommandLine : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void refusedCommandLineExitsWith2NamingTheProblem_data();
    void refusedCommandLineExitsWith2NamingTheProblem();
    void pdfFormatGivenWithAnEqualsSignPrintsTheList();
    void cAndPosixLocalesAreTheSameAndAccepted();

private:
    QString path() const { return m_dir->path(); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestReportCommandLine::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY2(m_dir->isValid(), "no temporary directory");
    QVERIFY(writeList(QDir(path()).filePath(InvestmentsFile), {}));
    QVERIFY(writeList(QDir(path()).filePath(LoansFile),
                      {scenario(QStringLiteral("Car"), 40000, 0.06, 4, Blank, 12, Blank)}));
}

void TestReportCommandLine::refusedCommandLineExitsWith2NamingTheProblem_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("chart narrower than 200")
        << words({"chart", "loans", "1", "--output", "c.png", "--size", "199x500"})
        << "--size '199x500' must be WIDTHxHEIGHT in pixels, each from 200 to 8000";
    QTest::newRow("chart lower than 200")
        << words({"chart", "loans", "1", "--output", "c.png", "--size", "500x199"})
        << "--size '500x199' must be WIDTHxHEIGHT in pixels, each from 200 to 8000";
    QTest::newRow("chart higher than 8000")
        << words({"chart", "loans", "1", "--output", "c.png", "--size", "500x8001"})
        << "--size '500x8001' must be WIDTHxHEIGHT in pixels, each from 200 to 8000";
    QTest::newRow("infinite rate") << words({"solve", "loan", "--rate", "inf"})
                                   << "--rate 'inf' is not a number (write it like 1234.5 or "
                                      "6.5%)";
    QTest::newRow("amount beyond a double")
        << words({"solve", "loan", "--initial", "1e400"})
        << "--initial '1e400' is not a number (write it like 1234.5)";
    QTest::newRow("amount that is no number")
        << words({"solve", "loan", "--initial", "nan"})
        << "--initial 'nan' is not a number (write it like 1234.5)";
    QTest::newRow("payments per year in words")
        << words({"solve", "loan", "--per-year", "twelve"})
        << "--per-year must be a whole number from 1 to 365, not 'twelve'";
    QTest::newRow("solve as a printout") << words({"solve", "loan", "--format", "pdf"})
                                         << "unknown format 'pdf' for solve: use text or json";
    QTest::newRow("size for a list")
        << words({"list", "loans", "--size", "300x300"}) << "--size is only for chart";
    QTest::newRow("size for a schedule printout")
        << words({"schedule", "loans", "1", "--format", "pdf", "--output", "s.pdf", "--size",
                  "300x300"})
        << "--size is only for chart";
    QTest::newRow("output for solve")
        << words({"solve", "loan", "--output", "x.png"}) << "--output is only for chart";
    QTest::newRow("chart without a list")
        << words({"chart"}) << "chart: which list, investments or loans?";
    QTest::newRow("chart without a record")
        << words({"chart", "loans"}) << "chart: which record number?";
    QTest::newRow("format without its value")
        << words({"list", "loans", "--format"}) << "Missing value after '--format'.";
    QTest::newRow("printout without output, equals sign")
        << words({"list", "loans", "--format=pdf"}) << "--format pdf needs --output FILE";
}

void TestReportCommandLine::refusedCommandLineExitsWith2NamingTheProblem()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const Run run = runReport(arguments, path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QByteArray());
    const QStringList lines = run.errText().split(u'\n');
    QCOMPARE(lines.first(), QStringLiteral("quillet-report: ") + message);
    QVERIFY(lines.at(1).startsWith(QStringLiteral("Usage: quillet-report list investments|loans")));
    QCOMPARE(QDir(path()).entryList(QDir::Files, QDir::Name),
             (QStringList{InvestmentsFile, LoansFile}));
}

void TestReportCommandLine::pdfFormatGivenWithAnEqualsSignPrintsTheList()
{
    const QString pdf = QDir(path()).filePath(QStringLiteral("loans.pdf"));
    const Run run = runReport({QStringLiteral("list"), QStringLiteral("loans"),
                               QStringLiteral("--format=pdf"), QStringLiteral("--output"), pdf},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(pdfPageCount(pdf), 1);
    QVERIFY2(pdfText(pdf).contains(QStringLiteral("Car")), qPrintable(pdfText(pdf)));
}

void TestReportCommandLine::cAndPosixLocalesAreTheSameAndAccepted()
{
    const Run c = runReport({QStringLiteral("list"), QStringLiteral("loans"),
                             QStringLiteral("--locale"), QStringLiteral("C")},
                            path());
    QCOMPARE(c.errText(), QString());
    QCOMPARE(c.exitCode, 0);
    QVERIFY(c.outText().startsWith(QStringLiteral("Record  Description  Initial Amount")));
    QVERIFY(c.outText().contains(QStringLiteral("Car")));

    const Run posix = runReport({QStringLiteral("list"), QStringLiteral("loans"),
                                 QStringLiteral("--locale"), QStringLiteral("POSIX")},
                                path());
    QCOMPARE(posix.errText(), QString());
    QCOMPARE(posix.exitCode, 0);
    QCOMPARE(posix.outText(), c.outText());
}

QTEST_GUILESS_MAIN(TestReportCommandLine)
#include "tst_reportcommandline.moc"
