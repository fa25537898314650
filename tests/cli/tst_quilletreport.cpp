#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <initializer_list>
#include <memory>
#include <utility>

#include "reporttestsupport.h"
#include "scenariorecord.h"

using namespace quillet;
using namespace quillet::test;

namespace {

// Investments: a solved future value, a solved payment, a blank payments per
// year, a description with accents, and values that cannot be solved. Loans:
// a solved payment, a description with a comma on an overpaid loan whose
// balance ends below zero, and a loan that cannot be solved.
bool writeFixture(const QDir &dir)
{
    return writeList(
               dir.filePath(InvestmentsFile),
               {scenario(QStringLiteral("Retirement fund"), 1000, 0.12, 2, 100, 12, Blank),
                scenario(QStringLiteral("Épargne études"), 5000, 0.05, 10, Blank, 4, 20000),
                scenario(QStringLiteral("Blank per year"), 2000, 0.06, 3, 0, BlankPerYear, Blank),
                scenario(QStringLiteral("Unsolvable"), Blank, 0.04, 5, Blank, 12, Blank)}) &&
           writeList(
               dir.filePath(LoansFile),
               {scenario(QStringLiteral("Car loan"), 20000, 0.06, 1, Blank, 12, Blank),
                scenario(QStringLiteral("Short loan, overpaid"), 1000, 0.12, 0.5, 200, 12, Blank),
                scenario(QStringLiteral("Unsolvable loan"), 0, 0.05, 5, Blank, 12, Blank)});
}

const QStringList InvestmentsTextEnUs = {
    QStringLiteral("Record  Description      Initial Amount    Yield  Years   Payment  # Per Year  "
                   "Future Value  Computed"),
    QStringLiteral("     1  Retirement fund      $1,000.00   12.00%    2.0   $100.00           12  "
                   "  $3,935.46   FutureValue"),
    QStringLiteral("     2  Épargne études       $5,000.00    5.00%   10.0   $231.35            4  "
                   " $20,000.00   Payment"),
    QStringLiteral("     3  Blank per year       $2,000.00    6.00%    3.0     $0.00               "
                   "  $2,382.03   FutureValue"),
    QStringLiteral("     4  Unsolvable                        4.00%    5.0                     12"),
};

const QStringList LoansTextEnUs = {
    QStringLiteral(
        "Record  Description           Initial Amount     Rate  Years     Payment  # Per "
        "Year  Total Interest  Computed"),
    QStringLiteral("     1  Car loan                 $20,000.00    6.00%    1.0   $1,721.33        "
                   "   12        $655.94   Payment TotalInterest"),
    QStringLiteral("     2  Short loan, overpaid      $1,000.00   12.00%    0.5     $200.00        "
                   "   12         $31.12   TotalInterest"),
    QStringLiteral("     3  Unsolvable loan               $0.00    5.00%    5.0                    "
                   "   12"),
};

const QStringList InvestmentsTextDeDe = {
    QStringLiteral(
        "Record  Description      Initial Amount    Yield  Years    Payment  # Per Year  "
        "Future Value  Computed"),
    QStringLiteral(
        "     1  Retirement fund     1.000,00\u00a0€   12,00%    2,0   100,00\u00a0€      "
        "     12   3.935,46\u00a0€   FutureValue"),
    QStringLiteral(
        "     2  Épargne études      5.000,00\u00a0€    5,00%   10,0   231,35\u00a0€      "
        "      4  20.000,00\u00a0€   Payment"),
    QStringLiteral(
        "     3  Blank per year      2.000,00\u00a0€    6,00%    3,0     0,00\u00a0€      "
        "          2.382,03\u00a0€   FutureValue"),
    QStringLiteral(
        "     4  Unsolvable                        4,00%    5,0                      12"),
};

const QStringList LoansTextDeDe = {
    QStringLiteral(
        "Record  Description           Initial Amount     Rate  Years      Payment  # Per "
        "Year  Total Interest  Computed"),
    QStringLiteral(
        "     1  Car loan                20.000,00\u00a0€    6,00%    1,0   1.721,33\u00a0€ "
        "          12       655,94\u00a0€   Payment TotalInterest"),
    QStringLiteral(
        "     2  Short loan, overpaid     1.000,00\u00a0€   12,00%    0,5     200,00\u00a0€ "
        "          12        31,12\u00a0€   TotalInterest"),
    QStringLiteral(
        "     3  Unsolvable loan              0,00\u00a0€    5,00%    5,0                   "
        "     12"),
};

// CSV numbers are plain and the same in every locale.
const QStringList InvestmentsCsv = {
    QStringLiteral("Record,Description,Initial Amount,Rate (%),Years,Payment,# Per Year,Future "
                   "Value,Computed"),
    QStringLiteral("1,Retirement fund,1000.00,12.00,2.0,100.00,12,3935.46,FutureValue"),
    QStringLiteral("2,Épargne études,5000.00,5.00,10.0,231.35,4,20000.00,Payment"),
    QStringLiteral("3,Blank per year,2000.00,6.00,3.0,0.00,,2382.03,FutureValue"),
    QStringLiteral("4,Unsolvable,,4.00,5.0,,12,,"),
};

const QStringList LoansCsv = {
    QStringLiteral("Record,Description,Initial Amount,Rate (%),Years,Payment,# Per Year,Total "
                   "Interest,Computed"),
    QStringLiteral("1,Car loan,20000.00,6.00,1.0,1721.33,12,655.94,Payment TotalInterest"),
    QStringLiteral("2,\"Short loan, overpaid\",1000.00,12.00,0.5,200.00,12,31.12,TotalInterest"),
    QStringLiteral("3,Unsolvable loan,0.00,5.00,5.0,,12,,"),
};

// The JSON list of the investments; the texts are the only part that
// depends on the locale.
QStringList investmentsJson(const QString &locale, const QStringList &texts)
{
    QStringList lines = {
        QStringLiteral("{"),
        QStringLiteral("  \"report\": \"list\","),
        QStringLiteral("  \"list\": \"investments\","),
        QStringLiteral("  \"file\": \"In.dat\","),
        QStringLiteral("  \"locale\": \"%1\",").arg(locale),
        QStringLiteral("  \"records\": ["),
        QStringLiteral("    {"),
        QStringLiteral("      \"record\": 1,"),
        QStringLiteral("      \"description\": \"Retirement fund\","),
        QStringLiteral("      \"fields\": {"),
        QStringLiteral(
            "        \"InitialAmount\": {\"text\": \"%1\", \"value\": 1000, \"ok\": true, "
            "\"computed\": false},"),
        QStringLiteral("        \"IRate\": {\"text\": \"%1\", \"value\": 0.12, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"Years\": {\"text\": \"%1\", \"value\": 2, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"Payment\": {\"text\": \"%1\", \"value\": 100, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"FutureValue\": {\"text\": \"%1\", \"value\": 3935.4575565708792, "
                       "\"ok\": true, \"computed\": true}"),
        QStringLiteral("      },"),
        QStringLiteral("      \"perYear\": {\"text\": \"12\", \"stored\": 12},"),
        QStringLiteral("      \"computed\": [\"FutureValue\"]"),
        QStringLiteral("    },"),
        QStringLiteral("    {"),
        QStringLiteral("      \"record\": 2,"),
        QStringLiteral("      \"description\": \"Épargne études\","),
        QStringLiteral("      \"fields\": {"),
        QStringLiteral(
            "        \"InitialAmount\": {\"text\": \"%1\", \"value\": 5000, \"ok\": true, "
            "\"computed\": false},"),
        QStringLiteral("        \"IRate\": {\"text\": \"%1\", \"value\": 0.050000000000000003, "
                       "\"ok\": true, \"computed\": false},"),
        QStringLiteral("        \"Years\": {\"text\": \"%1\", \"value\": 10, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"Payment\": {\"text\": \"%1\", \"value\": 231.34846250196614, "
                       "\"ok\": true, \"computed\": true},"),
        QStringLiteral(
            "        \"FutureValue\": {\"text\": \"%1\", \"value\": 20000, \"ok\": true, "
            "\"computed\": false}"),
        QStringLiteral("      },"),
        QStringLiteral("      \"perYear\": {\"text\": \"4\", \"stored\": 4},"),
        QStringLiteral("      \"computed\": [\"Payment\"]"),
        QStringLiteral("    },"),
        QStringLiteral("    {"),
        QStringLiteral("      \"record\": 3,"),
        QStringLiteral("      \"description\": \"Blank per year\","),
        QStringLiteral("      \"fields\": {"),
        QStringLiteral(
            "        \"InitialAmount\": {\"text\": \"%1\", \"value\": 2000, \"ok\": true, "
            "\"computed\": false},"),
        QStringLiteral("        \"IRate\": {\"text\": \"%1\", \"value\": 0.059999999999999998, "
                       "\"ok\": true, \"computed\": false},"),
        QStringLiteral("        \"Years\": {\"text\": \"%1\", \"value\": 3, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"Payment\": {\"text\": \"%1\", \"value\": 0, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"FutureValue\": {\"text\": \"%1\", \"value\": 2382.0320000000002, "
                       "\"ok\": true, \"computed\": true}"),
        QStringLiteral("      },"),
        QStringLiteral("      \"perYear\": {\"text\": \"\", \"stored\": -1},"),
        QStringLiteral("      \"computed\": [\"FutureValue\"]"),
        QStringLiteral("    },"),
        QStringLiteral("    {"),
        QStringLiteral("      \"record\": 4,"),
        QStringLiteral("      \"description\": \"Unsolvable\","),
        QStringLiteral("      \"fields\": {"),
        QStringLiteral(
            "        \"InitialAmount\": {\"text\": \"\", \"value\": null, \"ok\": false, "
            "\"computed\": false},"),
        QStringLiteral("        \"IRate\": {\"text\": \"%1\", \"value\": 0.040000000000000001, "
                       "\"ok\": true, \"computed\": false},"),
        QStringLiteral("        \"Years\": {\"text\": \"%1\", \"value\": 5, \"ok\": true, "
                       "\"computed\": false},"),
        QStringLiteral("        \"Payment\": {\"text\": \"\", \"value\": null, \"ok\": false, "
                       "\"computed\": false},"),
        QStringLiteral("        \"FutureValue\": {\"text\": \"\", \"value\": null, \"ok\": false, "
                       "\"computed\": false}"),
        QStringLiteral("      },"),
        QStringLiteral("      \"perYear\": {\"text\": \"12\", \"stored\": 12},"),
        QStringLiteral("      \"computed\": []"),
        QStringLiteral("    }"),
        QStringLiteral("  ]"),
        QStringLiteral("}"),
    };
    // The texts fill the %1 places in order.
    qsizetype next = 0;
    for (QString &line : lines) {
        if (line.contains(QStringLiteral("%1")) && !line.contains(QStringLiteral("\"locale\"")))
            line = line.arg(texts.value(next++));
    }
    return lines;
}

const QStringList InvestmentsJsonTextsEnUs = {
    QStringLiteral("$1,000.00 "),  QStringLiteral("12.00% "),    QStringLiteral("2.0 "),
    QStringLiteral("$100.00 "),    QStringLiteral("$3,935.46 "), QStringLiteral("$5,000.00 "),
    QStringLiteral("5.00% "),      QStringLiteral("10.0 "),      QStringLiteral("$231.35 "),
    QStringLiteral("$20,000.00 "), QStringLiteral("$2,000.00 "), QStringLiteral("6.00% "),
    QStringLiteral("3.0 "),        QStringLiteral("$0.00 "),     QStringLiteral("$2,382.03 "),
    QStringLiteral("4.00% "),      QStringLiteral("5.0 "),
};

const QStringList InvestmentsJsonTextsDeDe = {
    QStringLiteral("1.000,00\u00a0€ "),
    QStringLiteral("12,00% "),
    QStringLiteral("2,0 "),
    QStringLiteral("100,00\u00a0€ "),
    QStringLiteral("3.935,46\u00a0€ "),
    QStringLiteral("5.000,00\u00a0€ "),
    QStringLiteral("5,00% "),
    QStringLiteral("10,0 "),
    QStringLiteral("231,35\u00a0€ "),
    QStringLiteral("20.000,00\u00a0€ "),
    QStringLiteral("2.000,00\u00a0€ "),
    QStringLiteral("6,00% "),
    QStringLiteral("3,0 "),
    QStringLiteral("0,00\u00a0€ "),
    QStringLiteral("2.382,03\u00a0€ "),
    QStringLiteral("4,00% "),
    QStringLiteral("5,0 "),
};

} // namespace

class TestQuilletReport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listShowsEveryRecordAsTheGridDoes_data();
    void listShowsEveryRecordAsTheGridDoes();
    void germanAmountsHaveANoBreakSpaceBeforeTheEuroSign();
    void jsonListIsWellFormedAndNamesTheSolvedFields();
    void emptyListFileGivesOnlyTheHeadings();
    void investmentScheduleShowsEveryPeriod_data();
    void investmentScheduleShowsEveryPeriod();
    void loanScheduleAppliesTheFullPaymentInEveryPeriod_data();
    void loanScheduleAppliesTheFullPaymentInEveryPeriod();
    void scheduleCsvHasAHeadingRecordAndOneRecordPerPeriod_data();
    void scheduleCsvHasAHeadingRecordAndOneRecordPerPeriod();
    void scheduleJsonCarriesTheRawValuesWith17Digits();
    void scheduleJsonValuesAreTheSameInEveryLocale();
    void blankPaymentsPerYearGiveNoScheduleRows();
    void scheduleOfABlankScenarioHasNoPeriodCountAndNoRows();
    void scheduleOfMoreThan32767PeriodsFailsWithOneLine();
    void badCommandLineExitsWith2AndShowsTheUsage_data();
    void badCommandLineExitsWith2AndShowsTheUsage();
    void missingListFileExitsWith1NamingIt_data();
    void missingListFileExitsWith1NamingIt();
    void recordOutOfRangeExitsWith1_data();
    void recordOutOfRangeExitsWith1();
    void neverCreatesAFileInAnEmptyDirectory();
    void neverChangesTheListFiles();
    void dirOptionReadsTheListsOfThatDirectory();
    void defaultLocaleIsTheUsersAndLocaleOptionOverridesIt();
    void helpDocumentsEveryCommandOptionAndExitStatus();

    void hugeSparseListFileIsRefusedBeforeItIsRead();
    void listOfExactly32767RecordsIsRead();
    void symbolicLinkLoopIsNamed();
    void danglingSymbolicLinkIsNamed();
    void dirNamingAFileIsNamed();
    void dirThatDoesNotExistIsNamed();
    void directoryThatCannotBeEnteredSaysPermissionDenied();
    void directoryThatCanOnlyBeEnteredIsRead();
    void unreadableListFileSaysPermissionDenied();

private:
    QString path() const { return m_dir->path(); }

    QString m_previousDirectory;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestQuilletReport::init()
{
    m_previousDirectory = QDir::currentPath();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY2(m_dir->isValid(), qPrintable(m_dir->errorString()));
    QVERIFY(QDir::setCurrent(m_dir->path()));
    QVERIFY(writeFixture(QDir(m_dir->path())));
}

void TestQuilletReport::cleanup()
{
    QDir::setCurrent(m_previousDirectory);
    m_dir.reset();
}

void TestQuilletReport::listShowsEveryRecordAsTheGridDoes_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("expected");

    const QString crlf = QStringLiteral("\r\n");
    auto row = [](const char *name, const char *list, const char *format, const char *locale,
                  const QString &expected) {
        QTest::newRow(name) << QString::fromLatin1(list) << QString::fromLatin1(format)
                            << QString::fromLatin1(locale) << expected;
    };
    row("investments as text in en_US", "investments", "text", "en_US",
        joinLines(InvestmentsTextEnUs));
    row("loans as text in en_US", "loans", "text", "en_US", joinLines(LoansTextEnUs));
    row("investments as text in de_DE", "investments", "text", "de_DE",
        joinLines(InvestmentsTextDeDe));
    row("loans as text in de_DE", "loans", "text", "de_DE", joinLines(LoansTextDeDe));
    row("investments as csv in en_US", "investments", "csv", "en_US",
        joinLines(InvestmentsCsv, crlf));
    row("loans as csv in en_US", "loans", "csv", "en_US", joinLines(LoansCsv, crlf));
    row("investments as csv in de_DE", "investments", "csv", "de_DE",
        joinLines(InvestmentsCsv, crlf));
    row("loans as csv in de_DE", "loans", "csv", "de_DE", joinLines(LoansCsv, crlf));
    row("investments as json in en_US", "investments", "json", "en_US",
        joinLines(investmentsJson(QStringLiteral("en_US"), InvestmentsJsonTextsEnUs)));
    row("investments as json in de_DE", "investments", "json", "de_DE",
        joinLines(investmentsJson(QStringLiteral("de_DE"), InvestmentsJsonTextsDeDe)));
}

void TestQuilletReport::listShowsEveryRecordAsTheGridDoes()
{
    QFETCH(QString, list);
    QFETCH(QString, format);
    QFETCH(QString, locale);
    QFETCH(QString, expected);

    const Run run = runReport({QStringLiteral("list"), list, QStringLiteral("--format"), format,
                               QStringLiteral("--locale"), locale},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), expected);
    if (format == u"json")
        QVERIFY_VALID_REPORT_JSON(run.out);
}

void TestQuilletReport::germanAmountsHaveANoBreakSpaceBeforeTheEuroSign()
{
    const Run german = runReport(
        {QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--locale=de_DE")},
        path());
    QCOMPARE(german.exitCode, 0);
    QVERIFY(german.out.contains("20.000,00\xc2\xa0\xe2\x82\xac"));
    QVERIFY(!german.out.contains("20.000,00 \xe2\x82\xac"));

    const Run american = runReport({QStringLiteral("schedule"), QStringLiteral("loans"),
                                    QStringLiteral("2"), QStringLiteral("--locale=en_US")},
                                   path());
    QCOMPARE(american.exitCode, 0);
    QVERIFY(american.out.contains("($168.88)\n"));
}

void TestQuilletReport::jsonListIsWellFormedAndNamesTheSolvedFields()
{
    const Run run =
        runReport({QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--format"),
                   QStringLiteral("json"), QStringLiteral("--locale"), QStringLiteral("en_US")},
                  path());
    QCOMPARE(run.exitCode, 0);
    QVERIFY_VALID_REPORT_JSON(run.out);
    const QJsonObject report = parseObject(run.out);
    QVERIFY2(!report.isEmpty(), run.out.constData());
    QCOMPARE(report.value(u"list").toString(), QStringLiteral("loans"));
    const QJsonArray records = report.value(u"records").toArray();
    QCOMPARE(records.size(), 3);

    const QJsonObject carLoan = records.at(0).toObject();
    QCOMPARE(carLoan.value(u"description").toString(), QStringLiteral("Car loan"));
    const QJsonObject totalInterest =
        carLoan.value(u"fields").toObject().value(u"TotalInterest").toObject();
    QCOMPARE(totalInterest.value(u"text").toString(), QStringLiteral("$655.94 "));
    QCOMPARE(totalInterest.value(u"value").toDouble(), 655.94312969934822);
    QCOMPARE(totalInterest.value(u"computed").toBool(), true);
    QCOMPARE(carLoan.value(u"computed").toArray(),
             QJsonArray({QStringLiteral("Payment"), QStringLiteral("TotalInterest")}));
    QVERIFY(!carLoan.value(u"fields").toObject().contains(u"FutureValue"));
    QVERIFY(run.out.contains("\"value\": 1721.3285941416459,"));

    const QJsonObject unsolvable = records.at(2).toObject().value(u"fields").toObject();
    QVERIFY(unsolvable.value(u"Payment").toObject().value(u"value").isNull());
    QCOMPARE(unsolvable.value(u"Payment").toObject().value(u"ok").toBool(), false);
    QCOMPARE(unsolvable.value(u"Payment").toObject().value(u"text").toString(), QString());
}

void TestQuilletReport::emptyListFileGivesOnlyTheHeadings()
{
    QVERIFY(writeList(QDir(path()).filePath(InvestmentsFile), {}));

    const Run text = runReport({QStringLiteral("list"), QStringLiteral("investments"),
                                QStringLiteral("--locale"), QStringLiteral("en_US")},
                               path());
    QCOMPARE(text.exitCode, 0);
    QCOMPARE(text.outText(), QStringLiteral("Record  Description  Initial Amount  Yield  Years  "
                                            "Payment  # Per Year  Future Value  Computed\n"));

    const Run json = runReport({QStringLiteral("list"), QStringLiteral("investments"),
                                QStringLiteral("--format"), QStringLiteral("json")},
                               path());
    QCOMPARE(json.exitCode, 0);
    QCOMPARE(parseObject(json.out).value(u"records").toArray(), QJsonArray());
    QVERIFY_VALID_REPORT_JSON(json.out);
}

void TestQuilletReport::investmentScheduleShowsEveryPeriod_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QStringList>("header");
    QTest::addColumn<QString>("firstRow");
    QTest::addColumn<QString>("lastRow");

    QTest::newRow("en_US")
        << QStringLiteral("en_US")
        << QStringList{
               QStringLiteral("Investment Amortization, record 1 of In.dat"),
               QStringLiteral("Description:             Retirement fund"),
               QStringLiteral("Initial Amount:         $1,000.00"),
               QStringLiteral("Yield (Rate of Return): 12.00%"),
               QStringLiteral("Years:                  2.0"),
               QStringLiteral("Payment:                $100.00"),
               QStringLiteral("Payments per Year:      12"),
               QStringLiteral("Future Value:           $3,935.46 (computed)"),
               QStringLiteral("Periods:                24"),
               QString(),
               QStringLiteral("Period  Earnings  Cumulative Earnings  Total Earnings and Payments"),
           }
        << QStringLiteral("     1     $9.49                $9.49                    $1,109.49")
        << QStringLiteral("    24    $36.05              $535.46                    $3,935.46");

    QTest::newRow("de_DE")
        << QStringLiteral("de_DE")
        << QStringList{
               QStringLiteral("Investment Amortization, record 1 of In.dat"),
               QStringLiteral("Description:             Retirement fund"),
               QStringLiteral("Initial Amount:         1.000,00\u00a0€"),
               QStringLiteral("Yield (Rate of Return): 12,00%"),
               QStringLiteral("Years:                  2,0"),
               QStringLiteral("Payment:                100,00\u00a0€"),
               QStringLiteral("Payments per Year:      12"),
               QStringLiteral("Future Value:           3.935,46\u00a0€ (computed)"),
               QStringLiteral("Periods:                24"),
               QString(),
               QStringLiteral("Period  Earnings  Cumulative Earnings  Total Earnings and Payments"),
           }
        << QStringLiteral("     1    9,49\u00a0€               9,49\u00a0€                   "
                          "1.109,49\u00a0€")
        << QStringLiteral("    24   36,05\u00a0€             535,46\u00a0€                   "
                          "3.935,46\u00a0€");
}

void TestQuilletReport::investmentScheduleShowsEveryPeriod()
{
    QFETCH(QString, locale);
    QFETCH(QStringList, header);
    QFETCH(QString, firstRow);
    QFETCH(QString, lastRow);

    const Run run = runReport({QStringLiteral("schedule"), QStringLiteral("investments"),
                               QStringLiteral("1"), QStringLiteral("--locale"), locale},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.outText().endsWith(u'\n'));
    const QStringList lines = run.outText().chopped(1).split(u'\n');
    QCOMPARE(lines.mid(0, header.size()), header);
    const QStringList rows = lines.mid(header.size());
    QCOMPARE(rows.size(), 24);
    QCOMPARE(rows.first(), firstRow);
    QCOMPARE(rows.last(), lastRow);
}

void TestQuilletReport::loanScheduleAppliesTheFullPaymentInEveryPeriod_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("en_US") << QStringLiteral("en_US")
                           << QStringList{
                                  QStringLiteral("Loan Amortization, record 2 of Ln.dat"),
                                  QStringLiteral("Description:        Short loan, overpaid"),
                                  QStringLiteral("Initial Amount:    $1,000.00"),
                                  QStringLiteral("Interest Rate:     12.00%"),
                                  QStringLiteral("Years:             0.5"),
                                  QStringLiteral("Payment:           $200.00"),
                                  QStringLiteral("Payments per Year: 12"),
                                  QStringLiteral("Total Interest:    $31.12 (computed)"),
                                  QStringLiteral("Periods:           6"),
                                  QString(),
                                  QStringLiteral("Period / Payment  Principal Portion  Interest "
                                                 "Portion  Cumulative Principal  Cumulative "
                                                 "Interest  Remaining Balance"),
                                  QStringLiteral("               1            $190.00           "
                                                 " $10.00               $190.00               "
                                                 "$10.00            $810.00"),
                                  QStringLiteral("               2            $191.90           "
                                                 "  $8.10               $381.90               "
                                                 "$18.10            $618.10"),
                                  QStringLiteral("               3            $193.82           "
                                                 "  $6.18               $575.72               "
                                                 "$24.28            $424.28"),
                                  QStringLiteral("               4            $195.76           "
                                                 "  $4.24               $771.48               "
                                                 "$28.52            $228.52"),
                                  QStringLiteral("               5            $197.71           "
                                                 "  $2.29               $969.19               "
                                                 "$30.81             $30.81"),
                                  QStringLiteral("               6            $199.69           "
                                                 "  $0.31             $1,168.88               "
                                                 "$31.12          ($168.88)"),
                              };

    QTest::newRow("de_DE") << QStringLiteral("de_DE")
                           << QStringList{
                                  QStringLiteral("Loan Amortization, record 2 of Ln.dat"),
                                  QStringLiteral("Description:        Short loan, overpaid"),
                                  QStringLiteral("Initial Amount:    1.000,00\u00a0€"),
                                  QStringLiteral("Interest Rate:     12,00%"),
                                  QStringLiteral("Years:             0,5"),
                                  QStringLiteral("Payment:           200,00\u00a0€"),
                                  QStringLiteral("Payments per Year: 12"),
                                  QStringLiteral("Total Interest:    31,12\u00a0€ (computed)"),
                                  QStringLiteral("Periods:           6"),
                                  QString(),
                                  QStringLiteral("Period / Payment  Principal Portion  Interest "
                                                 "Portion  Cumulative Principal  Cumulative "
                                                 "Interest  Remaining Balance"),
                                  QStringLiteral("               1           190,00\u00a0€      "
                                                 "     10,00\u00a0€              190,00\u00a0€  "
                                                 "            10,00\u00a0€           "
                                                 "810,00\u00a0€"),
                                  QStringLiteral("               2           191,90\u00a0€      "
                                                 "      8,10\u00a0€              381,90\u00a0€  "
                                                 "            18,10\u00a0€           "
                                                 "618,10\u00a0€"),
                                  QStringLiteral("               3           193,82\u00a0€      "
                                                 "      6,18\u00a0€              575,72\u00a0€  "
                                                 "            24,28\u00a0€           "
                                                 "424,28\u00a0€"),
                                  QStringLiteral("               4           195,76\u00a0€      "
                                                 "      4,24\u00a0€              771,48\u00a0€  "
                                                 "            28,52\u00a0€           "
                                                 "228,52\u00a0€"),
                                  QStringLiteral("               5           197,71\u00a0€      "
                                                 "      2,29\u00a0€              969,19\u00a0€  "
                                                 "            30,81\u00a0€            "
                                                 "30,81\u00a0€"),
                                  QStringLiteral("               6           199,69\u00a0€      "
                                                 "      0,31\u00a0€            1.168,88\u00a0€  "
                                                 "            31,12\u00a0€          "
                                                 "-168,88\u00a0€"),
                              };
}

void TestQuilletReport::loanScheduleAppliesTheFullPaymentInEveryPeriod()
{
    QFETCH(QString, locale);
    QFETCH(QStringList, expected);

    const Run run = runReport({QStringLiteral("schedule"), QStringLiteral("loans"),
                               QStringLiteral("2"), QStringLiteral("--locale"), locale},
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), joinLines(expected));
}

void TestQuilletReport::scheduleCsvHasAHeadingRecordAndOneRecordPerPeriod_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("firstRow");
    QTest::addColumn<QString>("lastRow");

    // Twelve full payments leave a balance a hair below zero: plain zero.
    const QString first = QStringLiteral("1,1621.33,100.00,1621.33,100.00,18378.67");
    const QString last = QStringLiteral("12,1712.76,8.56,20000.00,655.94,0.00");
    QTest::newRow("en_US") << QStringLiteral("en_US") << first << last;
    QTest::newRow("de_DE") << QStringLiteral("de_DE") << first << last;
}

void TestQuilletReport::scheduleCsvHasAHeadingRecordAndOneRecordPerPeriod()
{
    QFETCH(QString, locale);
    QFETCH(QString, firstRow);
    QFETCH(QString, lastRow);

    const Run run = runReport({QStringLiteral("schedule"), QStringLiteral("loans"),
                               QStringLiteral("1"), QStringLiteral("--format"),
                               QStringLiteral("csv"), QStringLiteral("--locale"), locale},
                              path());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(run.outText().endsWith(QStringLiteral("\r\n")));
    const QStringList records = run.outText().chopped(2).split(QStringLiteral("\r\n"));
    QCOMPARE(records.size(), 13);
    QCOMPARE(records.first(), QStringLiteral("Period / Payment,Principal Portion,Interest "
                                             "Portion,Cumulative Principal,Cumulative "
                                             "Interest,Remaining Balance"));
    QCOMPARE(records.at(1), firstRow);
    QCOMPARE(records.last(), lastRow);
}

void TestQuilletReport::scheduleJsonCarriesTheRawValuesWith17Digits()
{
    const Run run =
        runReport({QStringLiteral("schedule"), QStringLiteral("loans"), QStringLiteral("1"),
                   QStringLiteral("--format"), QStringLiteral("json"), QStringLiteral("--locale"),
                   QStringLiteral("en_US")},
                  path());
    QCOMPARE(run.exitCode, 0);
    QVERIFY_VALID_REPORT_JSON(run.out);
    const QJsonObject report = parseObject(run.out);
    QVERIFY2(!report.isEmpty(), run.out.constData());
    QCOMPARE(report.value(u"record").toInt(), 1);
    QCOMPARE(report.value(u"periodCount").toInt(), 12);
    const QJsonObject header = report.value(u"header").toObject();
    QCOMPARE(header.value(u"description").toString(), QStringLiteral(" Car loan"));
    QCOMPARE(header.value(u"perYear").toObject().value(u"text").toString(), QStringLiteral("12"));
    QCOMPARE(header.value(u"perYear").toObject().value(u"stored").toInt(), 12);
    QCOMPARE(
        header.value(u"fields").toObject().value(u"Payment").toObject().value(u"text").toString(),
        QStringLiteral("$1,721.33 "));

    const QJsonArray rows = report.value(u"rows").toArray();
    QCOMPARE(rows.size(), 12);
    const QJsonObject first = rows.first().toObject();
    QCOMPARE(first.value(u"period").toInt(), 1);
    QCOMPARE(first.value(u"periodText").toString(), QStringLiteral("   1"));
    QCOMPARE(first.value(u"interest").toObject().value(u"value").toDouble(), 100.0);

    QVERIFY(run.out.contains(
        "      \"principal\": {\"text\": \"$1,621.33\", \"value\": 1621.3285941416459},\n"));
    QVERIFY(run.out.contains(
        "      \"balance\": {\"text\": \"$18,378.67\", \"value\": 18378.671405858353}\n"));
    // Twelve full payments leave a balance a hair below zero.
    QVERIFY(run.out.contains("      \"cumulativePrincipal\": {\"text\": \"$20,000.00\", "
                             "\"value\": 20000.0000000004},\n"));
    QVERIFY(run.out.contains(
        "      \"balance\": {\"text\": \"($0.00)\", \"value\": -4.0085978980641812e-10}\n"));
}

void TestQuilletReport::scheduleJsonValuesAreTheSameInEveryLocale()
{
    auto numbers = [this](const QString &locale) {
        const Run run = runReport({QStringLiteral("schedule"), QStringLiteral("loans"),
                                   QStringLiteral("1"), QStringLiteral("--format"),
                                   QStringLiteral("json"), QStringLiteral("--locale"), locale},
                                  path());
        QList<double> values;
        collectNumbers(parseObject(run.out), values);
        return values;
    };
    const QList<double> american = numbers(QStringLiteral("en_US"));
    QVERIFY(american.size() > 12 * 5);
    QCOMPARE(numbers(QStringLiteral("de_DE")), american);
}

void TestQuilletReport::blankPaymentsPerYearGiveNoScheduleRows()
{
    const Run text =
        runReport({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("3"),
                   QStringLiteral("--locale"), QStringLiteral("en_US")},
                  path());
    QCOMPARE(text.exitCode, 0);
    const QStringList lines = text.outText().chopped(1).split(u'\n');
    QVERIFY(lines.contains(QStringLiteral("Payments per Year:      -1")));
    QVERIFY(lines.contains(QStringLiteral("Periods:                -3")));
    QCOMPARE(lines.last(),
             QStringLiteral("Period  Earnings  Cumulative Earnings  Total Earnings and Payments"));

    const Run json =
        runReport({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("3"),
                   QStringLiteral("--format"), QStringLiteral("json")},
                  path());
    QCOMPARE(json.exitCode, 0);
    QVERIFY_VALID_REPORT_JSON(json.out);
    const QJsonObject report = parseObject(json.out);
    QCOMPARE(report.value(u"periodCount").toInt(), -3);
    QCOMPARE(report.value(u"rows").toArray(), QJsonArray());
}

void TestQuilletReport::scheduleOfABlankScenarioHasNoPeriodCountAndNoRows()
{
    ScenarioRecord blank;
    blank.makeBlank();
    QVERIFY(writeList(QDir(path()).filePath(InvestmentsFile), {blank}));

    const Run json =
        runReport({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("1"),
                   QStringLiteral("--format"), QStringLiteral("json")},
                  path());
    QCOMPARE(json.exitCode, 0);
    QVERIFY_VALID_REPORT_JSON(json.out);
    const QJsonObject report = parseObject(json.out);
    QVERIFY(report.contains(u"periodCount"));
    QVERIFY(report.value(u"periodCount").isNull());
    QCOMPARE(report.value(u"rows").toArray(), QJsonArray());
    QCOMPARE(report.value(u"header").toObject().value(u"description").toString(), QString());

    const Run csv =
        runReport({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("1"),
                   QStringLiteral("--format"), QStringLiteral("csv")},
                  path());
    QCOMPARE(csv.exitCode, 0);
    QCOMPARE(csv.outText(), QStringLiteral("Period,Earnings,Cumulative Earnings,Total Earnings "
                                           "and Payments\r\n"));
}

void TestQuilletReport::scheduleOfMoreThan32767PeriodsFailsWithOneLine()
{
    // 2,731 years of monthly payments: 32,772 periods.
    QVERIFY(writeList(QDir(path()).filePath(LoansFile),
                      {scenario(QStringLiteral("Too long"), 1000, 0.05, 2731, 5, 12, Blank)}));

    const Run run =
        runReport({QStringLiteral("schedule"), QStringLiteral("loans"), QStringLiteral("1"),
                   QStringLiteral("--locale"), QStringLiteral("en_US")},
                  path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: record 1 of Ln.dat has more than 32767 periods\n"));
}

void TestQuilletReport::badCommandLineExitsWith2AndShowsTheUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    auto row = [](const char *name, std::initializer_list<const char *> arguments,
                  const char *message) {
        QStringList list;
        for (const char *argument : arguments)
            list.append(QString::fromLatin1(argument));
        QTest::newRow(name) << list << QString::fromLatin1(message);
    };
    row("no arguments", {}, "no command given");
    row("unknown command", {"show", "loans"}, "unknown command 'show'");
    row("no list", {"list"}, "list: which list, investments or loans?");
    row("unknown list", {"list", "savings"}, "unknown list 'savings': use investments or loans");
    row("no record number", {"schedule", "loans"}, "schedule: which record number?");
    row("record number not a number", {"schedule", "loans", "two"},
        "record number 'two' is not a whole number: N must be a record number from 1 to the "
        "list's count");
    row("record number with a fraction", {"schedule", "loans", "1.5"},
        "record number '1.5' is not a whole number: N must be a record number from 1 to the "
        "list's count");
    row("extra argument to list", {"list", "loans", "1"}, "unexpected argument '1'");
    row("extra argument to schedule", {"schedule", "loans", "1", "2"}, "unexpected argument '2'");
    row("unknown option", {"list", "loans", "--sort"}, "Unknown option 'sort'.");
    // The formats offered follow; a new one must not break this.
    row("unknown format", {"list", "loans", "--format", "xml"},
        "unknown format 'xml': use text, csv");
    row("unknown locale", {"list", "loans", "--locale", "xx_YY"}, "unknown locale 'xx_YY'");
    row("option without its value", {"list", "loans", "--dir"}, "Missing value after '--dir'.");
    row("option given twice", {"list", "loans", "--format", "csv", "--format", "json"},
        "--format given more than once");
}

void TestQuilletReport::badCommandLineExitsWith2AndShowsTheUsage()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const Run run = runReport(arguments, path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QByteArray());
    const QStringList lines = run.errText().split(u'\n');
    QVERIFY2(lines.first().startsWith(QStringLiteral("quillet-report: ") + message),
             qPrintable(lines.first()));
    QVERIFY(lines.at(1).startsWith(QStringLiteral("Usage: quillet-report list investments|loans")));
    QVERIFY(lines.at(2).contains(QStringLiteral("quillet-report schedule investments|loans N")));
}

void TestQuilletReport::missingListFileExitsWith1NamingIt_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("fileName");

    QTest::newRow("investments list")
        << QStringList{QStringLiteral("list"), QStringLiteral("investments")} << InvestmentsFile;
    QTest::newRow("loans list") << QStringList{QStringLiteral("list"), QStringLiteral("loans")}
                                << LoansFile;
    QTest::newRow("investment schedule")
        << QStringList{QStringLiteral("schedule"), QStringLiteral("investments"),
                       QStringLiteral("1")}
        << InvestmentsFile;
    QTest::newRow("loan schedule as json")
        << QStringList{QStringLiteral("schedule"), QStringLiteral("loans"), QStringLiteral("1"),
                       QStringLiteral("--format"), QStringLiteral("json")}
        << LoansFile;
}

void TestQuilletReport::missingListFileExitsWith1NamingIt()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, fileName);

    QTemporaryDir empty;
    QVERIFY2(empty.isValid(), qPrintable(empty.errorString()));
    const Run run = runReport(arguments, empty.path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: %1 not found in %2\n")
                                .arg(fileName, QDir::toNativeSeparators(empty.path())));
    QCOMPARE(snapshot(empty.path()), Snapshot());
}

void TestQuilletReport::recordOutOfRangeExitsWith1_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("record");
    QTest::addColumn<QString>("message");

    QTest::newRow("record 0") << QStringLiteral("loans") << QStringLiteral("0")
                              << QStringLiteral("Ln.dat holds 3 records; there is no record 0: N "
                                                "must be a record number from 1 to 3");
    QTest::newRow("negative record number")
        << QStringLiteral("loans") << QStringLiteral("-1")
        << QStringLiteral(
               "Ln.dat holds 3 records; there is no record -1: N must be a record number from 1 "
               "to 3");
    QTest::newRow("one past the last loan")
        << QStringLiteral("loans") << QStringLiteral("4")
        << QStringLiteral(
               "Ln.dat holds 3 records; there is no record 4: N must be a record number from 1 to "
               "3");
    QTest::newRow("one past the last investment")
        << QStringLiteral("investments") << QStringLiteral("5")
        << QStringLiteral(
               "In.dat holds 4 records; there is no record 5: N must be a record number from 1 to "
               "4");
    QTest::newRow("far beyond the list")
        << QStringLiteral("investments") << QStringLiteral("40000")
        << QStringLiteral("In.dat holds 4 records; there is no record 40000: N must be a record "
                          "number from 1 to 4");
}

void TestQuilletReport::recordOutOfRangeExitsWith1()
{
    QFETCH(QString, list);
    QFETCH(QString, record);
    QFETCH(QString, message);

    const Run run = runReport({QStringLiteral("schedule"), list, record}, path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: ") + message + u'\n');
}

void TestQuilletReport::neverCreatesAFileInAnEmptyDirectory()
{
    QTemporaryDir empty;
    QVERIFY2(empty.isValid(), qPrintable(empty.errorString()));
    const QList<QStringList> commands = {
        {QStringLiteral("list"), QStringLiteral("investments")},
        {QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--format=csv")},
        {QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--format=json")},
        {QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("1")},
        {QStringLiteral("schedule"), QStringLiteral("loans"), QStringLiteral("1")},
        {QStringLiteral("--help")},
        {QStringLiteral("nonsense")},
    };
    for (const QStringList &arguments : commands) {
        const Run run = runReport(arguments, empty.path());
        QVERIFY2(run.exitCode >= 0, qPrintable(arguments.join(u' ')));
        QVERIFY2(snapshot(empty.path()).isEmpty(), qPrintable(arguments.join(u' ')));
    }
}

void TestQuilletReport::neverChangesTheListFiles()
{
    const Snapshot before = snapshot(path());
    QCOMPARE(before.keys(), QStringList({InvestmentsFile, LoansFile}));

    for (const QString &list : {QStringLiteral("investments"), QStringLiteral("loans")}) {
        for (const QString &format :
             {QStringLiteral("text"), QStringLiteral("csv"), QStringLiteral("json")}) {
            for (const QString &locale : {QStringLiteral("en_US"), QStringLiteral("de_DE")}) {
                const QStringList options = {QStringLiteral("--format"), format,
                                             QStringLiteral("--locale"), locale};
                QCOMPARE(
                    runReport(QStringList{QStringLiteral("list"), list} + options, path()).exitCode,
                    0);
                for (const QString &record : {QStringLiteral("1"), QStringLiteral("3")}) {
                    QCOMPARE(
                        runReport(QStringList{QStringLiteral("schedule"), list, record} + options,
                                  path())
                            .exitCode,
                        0);
                }
                QCOMPARE(
                    runReport(QStringList{QStringLiteral("schedule"), list, QStringLiteral("9")} +
                                  options,
                              path())
                        .exitCode,
                    1);
            }
        }
    }
    QCOMPARE(snapshot(path()), before);
}

void TestQuilletReport::dirOptionReadsTheListsOfThatDirectory()
{
    QTemporaryDir elsewhere;
    QVERIFY2(elsewhere.isValid(), qPrintable(elsewhere.errorString()));
    const QStringList arguments = {QStringLiteral("list"), QStringLiteral("loans"),
                                   QStringLiteral("--locale"), QStringLiteral("en_US")};

    const Run run =
        runReport(arguments + QStringList{QStringLiteral("--dir"), path()}, elsewhere.path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), joinLines(LoansTextEnUs));
    QCOMPARE(snapshot(elsewhere.path()), Snapshot());

    const Run missing =
        runReport(arguments + QStringList{QStringLiteral("--dir"), elsewhere.path()}, path());
    QCOMPARE(missing.exitCode, 1);
}

void TestQuilletReport::defaultLocaleIsTheUsersAndLocaleOptionOverridesIt()
{
    QProcessEnvironment german = QProcessEnvironment::systemEnvironment();
    german.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    german.insert(QStringLiteral("LANG"), QStringLiteral("de_DE.UTF-8"));
    const QStringList list = {QStringLiteral("list"), QStringLiteral("loans")};

    const Run users = runReport(list, path(), german);
    QCOMPARE(users.exitCode, 0);
    QCOMPARE(users.outText(), joinLines(LoansTextDeDe));

    const Run chosen = runReport(
        list + QStringList{QStringLiteral("--locale"), QStringLiteral("en_US")}, path(), german);
    QCOMPARE(chosen.exitCode, 0);
    QCOMPARE(chosen.outText(), joinLines(LoansTextEnUs));
}

void TestQuilletReport::helpDocumentsEveryCommandOptionAndExitStatus()
{
    const Run run = runReport({QStringLiteral("--help")}, path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.err, QByteArray());
    const QString help = run.outText();
    for (const QString &expected : {QStringLiteral("quillet-report list investments|loans"),
                                    QStringLiteral("quillet-report schedule investments|loans N"),
                                    QStringLiteral("--dir DIR"),
                                    QStringLiteral("In.dat"),
                                    QStringLiteral("Ln.dat"),
                                    QStringLiteral("--format FORMAT"),
                                    QStringLiteral("text:"),
                                    QStringLiteral("csv:"),
                                    QStringLiteral("json:"),
                                    QStringLiteral("--locale NAME"),
                                    QStringLiteral("--help"),
                                    QStringLiteral("--version"),
                                    QStringLiteral("Exit status"),
                                    QStringLiteral("never creates"),
                                    QStringLiteral("quillet-report solve investment|loan"),
                                    QStringLiteral("--total-interest T"),
                                    QStringLiteral("--per-year N"),
                                    QStringLiteral("quillet-report chart investments|loans N"),
                                    QStringLiteral("--output FILE"),
                                    QStringLiteral("--size WxH"),
                                    QStringLiteral("CSV numbers do not follow --locale"),
                                    QStringLiteral("Rate (%)"),
                                    QStringLiteral("docs/quillet-report.schema.json"),
                                    QStringLiteral("permission denied"),
                                    QStringLiteral("symbolic link loop"),
                                    QStringLiteral("from 1 to the")}) {
        QVERIFY2(help.contains(expected), qPrintable(expected));
    }
}

void TestQuilletReport::hugeSparseListFileIsRefusedBeforeItIsRead()
{
    // 100 GB that take no room on disk: reading them whole would run out
    // of memory long before the count was checked.
    const qint64 size = qint64(100) * 1024 * 1024 * 1024;
    {
        QFile huge(QDir(path()).filePath(InvestmentsFile));
        QVERIFY(huge.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QVERIFY(huge.resize(size));
    }
    for (const QStringList &arguments :
         {QStringList{QStringLiteral("list"), QStringLiteral("investments")},
          QStringList{QStringLiteral("schedule"), QStringLiteral("investments"),
                      QStringLiteral("1")},
          QStringList{QStringLiteral("list"), QStringLiteral("investments"),
                      QStringLiteral("--format=json")}}) {
        const Run run = runReport(arguments, path());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(run.errText(), QStringLiteral("quillet-report: In.dat holds 725501232 records, "
                                               "more than the 32767 a list can hold\n"));
    }
    QCOMPARE(QFileInfo(QDir(path()).filePath(InvestmentsFile)).size(), size);
}

void TestQuilletReport::listOfExactly32767RecordsIsRead()
{
    {
        QFile full(QDir(path()).filePath(LoansFile));
        QVERIFY(full.open(QIODevice::WriteOnly | QIODevice::Truncate));
        QVERIFY(full.resize(qint64(32767) * 148));
    }
    const Run run = runReport({QStringLiteral("list"), QStringLiteral("loans"),
                               QStringLiteral("--format"), QStringLiteral("csv")},
                              path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out.count("\r\n"), 1 + 32767);
    QVERIFY(
        run.out.sliced(run.out.lastIndexOf("\r\n", run.out.size() - 3) + 2).startsWith("32767,"));
}

void TestQuilletReport::symbolicLinkLoopIsNamed()
{
    const QString link = QDir(path()).filePath(InvestmentsFile);
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(link, link));
    const Run run = runReport({QStringLiteral("list"), QStringLiteral("investments")}, path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: %1: symbolic link loop (the link leads back to "
                            "itself)\n")
                 .arg(link));

    // A loop in the directory's own path is named as the directory's.
    const QString loopDir = QDir(path()).filePath(QStringLiteral("loop"));
    QVERIFY(QFile::link(loopDir, loopDir));
    const Run dir = runReport(
        {QStringLiteral("list"), QStringLiteral("loans"), QStringLiteral("--dir"), loopDir},
        path());
    QCOMPARE(dir.exitCode, 1);
    QCOMPARE(dir.errText(),
             QStringLiteral("quillet-report: directory %1: symbolic link loop\n").arg(loopDir));
}

void TestQuilletReport::danglingSymbolicLinkIsNamed()
{
    const QString link = QDir(path()).filePath(LoansFile);
    const QString target = QDir(path()).filePath(QStringLiteral("gone.dat"));
    QVERIFY(QFile::remove(link));
    QVERIFY(QFile::link(target, link));
    const Run run = runReport({QStringLiteral("list"), QStringLiteral("loans")}, path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: %1 is a symbolic link to %2, which does not exist\n")
                 .arg(link, target));
    QVERIFY(!QFileInfo::exists(target));
}

void TestQuilletReport::dirNamingAFileIsNamed()
{
    const QString file = QDir(path()).filePath(InvestmentsFile);
    const Run run = runReport(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), file},
        path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: %1 is not a directory\n").arg(file));
}

void TestQuilletReport::dirThatDoesNotExistIsNamed()
{
    const QString missing = QDir(path()).filePath(QStringLiteral("nowhere"));
    const Run run = runReport(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), missing},
        path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: directory %1 not found\n").arg(missing));
    QVERIFY(!QFileInfo::exists(missing));
}

void TestQuilletReport::directoryThatCannotBeEnteredSaysPermissionDenied()
{
    // The test directory must be reachable by the unprivileged user.
    QVERIFY(QFile::setPermissions(path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                              QFileDevice::ExeOther));
    const QString locked = QDir(path()).filePath(QStringLiteral("locked"));
    QVERIFY(QDir(path()).mkdir(QStringLiteral("locked")));
    QVERIFY(writeList(QDir(locked).filePath(InvestmentsFile),
                      {scenario(QStringLiteral("Hidden"), 1, 0.01, 1, 1, 1, Blank)}));
    // Neither listed nor entered: no read, no execute permission.
    QVERIFY(QFile::setPermissions(locked, QFileDevice::Permissions()));

    for (const QStringList &arguments :
         {QStringList{QStringLiteral("list"), QStringLiteral("investments"),
                      QStringLiteral("--dir"), locked},
          QStringList{QStringLiteral("schedule"), QStringLiteral("investments"),
                      QStringLiteral("1"), QStringLiteral("--dir"), locked}}) {
        const Run run = runReportUnprivileged(arguments, path());
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QByteArray());
        QCOMPARE(run.errText(), QStringLiteral("quillet-report: permission denied: directory %1 "
                                               "cannot be entered to read In.dat\n")
                                    .arg(locked));
    }
    QVERIFY(QFile::setPermissions(locked, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ExeOwner));
}

void TestQuilletReport::directoryThatCanOnlyBeEnteredIsRead()
{
    QVERIFY(QFile::setPermissions(path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                              QFileDevice::ExeOther));
    const QString entered = QDir(path()).filePath(QStringLiteral("entered"));
    QVERIFY(QDir(path()).mkdir(QStringLiteral("entered")));
    QVERIFY(QFile::copy(QDir(path()).filePath(LoansFile), QDir(entered).filePath(LoansFile)));
    // Its names cannot be listed, but a file whose name is known can be read.
    QVERIFY(QFile::setPermissions(entered, QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                               QFileDevice::ExeOwner | QFileDevice::ExeOther));
    const Run run = runReportUnprivileged({QStringLiteral("list"), QStringLiteral("loans"),
                                           QStringLiteral("--dir"), entered,
                                           QStringLiteral("--locale"), QStringLiteral("en_US")},
                                          path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), joinLines(LoansTextEnUs));
}

void TestQuilletReport::unreadableListFileSaysPermissionDenied()
{
    QVERIFY(QFile::setPermissions(path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                              QFileDevice::ExeOther));
    const QString file = QDir(path()).filePath(LoansFile);
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    const Run run =
        runReportUnprivileged({QStringLiteral("list"), QStringLiteral("loans")}, path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: permission denied: cannot read %1\n").arg(file));
}

QTEST_GUILESS_MAIN(TestQuilletReport)
#include "tst_quilletreport.moc"
