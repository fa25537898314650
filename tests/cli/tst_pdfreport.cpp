#include "pdftext.h"
#include "scenariorecord.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <vector>

using namespace quillet;
using namespace quillet::test;

namespace {

ScenarioRecord scenario(const QString &desc, double initial, double rate, double years,
                        double payment, qint16 perYear, double fifth)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, desc);
    record.InitialAmount = initial;
    record.IRate = rate;
    record.Years = years;
    record.Payment = payment;
    record.PerYear = perYear;
    record.FutureValue = fifth;
    return record;
}

bool writeList(const QString &path, const std::vector<ScenarioRecord> &records)
{
    QByteArray bytes;
    for (const ScenarioRecord &record : records)
        bytes += encodeRecord(record);
    return writeBytes(path, bytes);
}

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;
};

Run report(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral(QUILLET_REPORT_EXECUTABLE),
                  arguments + QStringList{QStringLiteral("--locale"), QStringLiteral("en_US")});
    Run run;
    if (!process.waitForFinished(120000))
        return run;
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

const double Blank = BlankValue;

} // namespace

class TestPdfReport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void listPdfHoldsHeadingHeaderAndOneLinePerRecordInOrder();
    void loanListPdfHasRateAndTotalInterestHeaders();
    void longListRunsOnWithoutRepeatingTheHeader();
    void loanOf360PeriodsFillsSeveralPagesWithHeadingsOnTheFirstOnly();
    void investmentSchedulePdfHoldsHeaderAndEveryPeriod();
    void emptyListWritesNoFileAndSaysWhy();
    void pdfWithoutOutputIsAUsageError();
    void unwritableOutputFailsAndLeavesNoFile();

private:
    std::unique_ptr<ScratchDirectory> m_dir;
};

void TestPdfReport::init()
{
    m_dir = std::make_unique<ScratchDirectory>();
    QVERIFY2(m_dir->isValid(), "no temporary directory");
    QVERIFY(
        writeList(QStringLiteral("In.dat"),
                  {scenario(QStringLiteral("Retirement"), 1000, 0.12, 10, 100, 12, Blank),
                   scenario(QStringLiteral("College fund"), 5000, 0.07, 18, Blank, 12, 100000),
                   scenario(QStringLiteral("No per year"), 2000, 0, 3, 0, BlankPerYear, Blank)}));
    QVERIFY(writeList(QStringLiteral("Ln.dat"),
                      {scenario(QStringLiteral("House"), 100000, 0.06, 30, Blank, 12, Blank),
                       scenario(QStringLiteral("Car"), 1000, 0.12, 1, 100, 12, 55)}));
}

void TestPdfReport::listPdfHoldsHeadingHeaderAndOneLinePerRecordInOrder()
{
    const Run run =
        report({QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--format"),
                QStringLiteral("pdf"), QStringLiteral("--output"), QStringLiteral("list.pdf")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QString());
    QCOMPARE(contentLines(pdfText(QStringLiteral("list.pdf"), {QStringLiteral("-raw")})),
             (QStringList{
                 QStringLiteral("Investments"),
                 QStringLiteral("Description Initial Amount Yield Years Payment # Per Year "
                                "Future Value"),
                 QStringLiteral("1 Retirement $1,000.00 12.00% 10.0 $100.00 12 $25,298.85"),
                 QStringLiteral("2 College fund $5,000.00 7.00% 18.0 $197.43 12 $100,000.00"),
                 QStringLiteral("3 No per year $2,000.00 0.00% 3.0 $0.00 $2,000.00"),
             }));
    QCOMPARE(pdfPageCount(QStringLiteral("list.pdf")), 1);
}

void TestPdfReport::loanListPdfHasRateAndTotalInterestHeaders()
{
    const Run run =
        report({QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--format=pdf"),
                QStringLiteral("--output"), QStringLiteral("loans.pdf")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(contentLines(pdfText(QStringLiteral("loans.pdf"), {QStringLiteral("-raw")})),
             (QStringList{
                 QStringLiteral("Loans"),
                 QStringLiteral("Description Initial Amount Rate Years Payment # Per Year "
                                "Total Interest"),
                 QStringLiteral("1 House $100,000.00 6.00% 30.0 $599.55 12 $115,838.19"),
                 QStringLiteral("2 Car $1,000.00 12.00% 1.0 $100.00 12 $55.00"),
             }));
}

void TestPdfReport::longListRunsOnWithoutRepeatingTheHeader()
{
    std::vector<ScenarioRecord> records;
    for (int n = 1; n <= 150; ++n)
        records.push_back(scenario(QStringLiteral("Plan %1").arg(n), 1000, 0, 1, 100, 12, Blank));
    QVERIFY(writeList(QStringLiteral("In.dat"), records));
    QCOMPARE(
        report({QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--format"),
                QStringLiteral("pdf"), QStringLiteral("--output"), QStringLiteral("long.pdf")})
            .exitCode,
        0);
    const QString text = pdfText(QStringLiteral("long.pdf"), {QStringLiteral("-raw")});
    const QStringList pages = text.split(u'\f', Qt::SkipEmptyParts);
    QVERIFY2(pdfPageCount(QStringLiteral("long.pdf")) >= 2, qPrintable(text.left(200)));
    QVERIFY(pages.first().startsWith(QStringLiteral("Investments\n")));
    const QStringList lines = contentLines(text);
    QCOMPARE(lines.size(), 2 + 150);
    for (int n = 1; n <= 150; ++n) {
        QCOMPARE(lines.at(1 + n),
                 QStringLiteral("%1 Plan %1 $1,000.00 0.00% 1.0 $100.00 12 $2,200.00").arg(n));
    }
    QCOMPARE(text.count(QStringLiteral("Description")), 1);
}

void TestPdfReport::loanOf360PeriodsFillsSeveralPagesWithHeadingsOnTheFirstOnly()
{
    const Run run = report({QStringLiteral("schedule"), QStringLiteral("loans"),
                            QStringLiteral("1"), QStringLiteral("--format"), QStringLiteral("pdf"),
                            QStringLiteral("--output"), QStringLiteral("house.pdf")});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.err, QString());
    const QString text = pdfText(QStringLiteral("house.pdf"), {QStringLiteral("-raw")});
    const QStringList pages = text.split(u'\f', Qt::SkipEmptyParts);
    QCOMPARE(pdfPageCount(QStringLiteral("house.pdf")), 7);
    QCOMPARE(pages.size(), 7);
    for (qsizetype page = 1; page < pages.size(); ++page)
        QVERIFY(!pages.at(page).contains(QStringLiteral("Period / Payment")));

    const QStringList lines = contentLines(text);
    QCOMPARE(
        lines.mid(0, 8),
        (QStringList{QStringLiteral("Description: House"),
                     QStringLiteral("Intitial Amount: $100,000.00"),
                     QStringLiteral("Interest Rate: 6.00%"), QStringLiteral("Years: 30.0"),
                     QStringLiteral("Payment: $599.55"), QStringLiteral("Payments per Year: 12"),
                     QStringLiteral("Total Interest: $115,838.19"),
                     QStringLiteral("Period / Payment Principal Portion Interest Portion "
                                    "Cumulative Principal Cumulative Interest Remaining "
                                    "Balance")}));
    QCOMPARE(lines.size(), 8 + 360);
    QCOMPARE(lines.at(8), QStringLiteral("1 $99.55 $500.00 $99.55 $500.00 $99,900.45"));
    for (int period = 1; period <= 360; ++period)
        QVERIFY(lines.at(7 + period).startsWith(QString::number(period) + u' '));
    QVERIFY2(lines.last().startsWith(QStringLiteral("360 $596.57 $2.98 ")),
             qPrintable(lines.last()));
}

void TestPdfReport::investmentSchedulePdfHoldsHeaderAndEveryPeriod()
{
    QCOMPARE(report({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("3"),
                     QStringLiteral("--format"), QStringLiteral("pdf"), QStringLiteral("--output"),
                     QStringLiteral("plain.pdf")})
                 .exitCode,
             0);
    const QStringList lines =
        contentLines(pdfText(QStringLiteral("plain.pdf"), {QStringLiteral("-raw")}));
    // A blank payments per year is the stored -1: no periods to print.
    QCOMPARE(lines, (QStringList{QStringLiteral("Description: No per year"),
                                 QStringLiteral("Intitial Amount: $2,000.00"),
                                 QStringLiteral("Yield (Rate of Return): 0.00%"),
                                 QStringLiteral("Years: 3.0"), QStringLiteral("Payment: $0.00"),
                                 QStringLiteral("Payments per Year: -1"),
                                 QStringLiteral("Future Value: $2,000.00"),
                                 QStringLiteral("Period Earnings Cumulative Earnings Total "
                                                "Earnings and Payments")}));

    QCOMPARE(report({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("1"),
                     QStringLiteral("--format"), QStringLiteral("pdf"), QStringLiteral("--output"),
                     QStringLiteral("retirement.pdf")})
                 .exitCode,
             0);
    const QStringList retirement =
        contentLines(pdfText(QStringLiteral("retirement.pdf"), {QStringLiteral("-raw")}));
    QCOMPARE(retirement.size(), 8 + 120);
    QCOMPARE(retirement.at(6), QStringLiteral("Future Value: $25,298.85"));
    QCOMPARE(retirement.at(8), QStringLiteral("1 $9.49 $9.49 $1,109.49"));
    QCOMPARE(retirement.last(), QStringLiteral("120 $236.86 $12,298.85 $25,298.85"));
}

void TestPdfReport::emptyListWritesNoFileAndSaysWhy()
{
    QVERIFY(writeList(QStringLiteral("Ln.dat"), {}));
    const Run run =
        report({QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--format"),
                QStringLiteral("pdf"), QStringLiteral("--output"), QStringLiteral("none.pdf")});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.err, QStringLiteral("quillet-report: There are no loan scenarios to print.\n"));
    QVERIFY(!QFile::exists(QStringLiteral("none.pdf")));
}

void TestPdfReport::pdfWithoutOutputIsAUsageError()
{
    const Run run = report({QStringLiteral("list"), QStringLiteral("investments"),
                            QStringLiteral("--format"), QStringLiteral("pdf")});
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(
        run.err.startsWith(QStringLiteral("quillet-report: --format pdf needs --output FILE\n")),
        qPrintable(run.err));
}

void TestPdfReport::unwritableOutputFailsAndLeavesNoFile()
{
    const Run run = report({QStringLiteral("list"), QStringLiteral("investments"),
                            QStringLiteral("--format"), QStringLiteral("pdf"),
                            QStringLiteral("--output"), QStringLiteral("missing/list.pdf")});
    QCOMPARE(run.exitCode, 1);
    QVERIFY2(run.err.startsWith(QStringLiteral("quillet-report: missing/list.pdf cannot be "
                                               "written: ")),
             qPrintable(run.err));
    QVERIFY(!QFile::exists(QStringLiteral("missing/list.pdf")));
}

QTEST_GUILESS_MAIN(TestPdfReport)
#include "tst_pdfreport.moc"
