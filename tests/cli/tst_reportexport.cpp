#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <cmath>
#include <initializer_list>
#include <memory>

#include "reporttestsupport.h"
#include "scenariorecord.h"

using namespace quillet;
using namespace quillet::test;

namespace {

// Descriptions made of the bytes that break tables and CSV: a line break, a
// quote and a comma, a tab with C0 and C1 control characters, a carriage
// return. The values give solved fields of every kind, a huge amount, a
// negative one, a blank payments per year and a field that cannot be solved.
bool writeFixture(const QDir &dir)
{
    return writeList(dir.filePath(InvestmentsFile),
                     {scenario(QStringLiteral("Line\nbreak"), 1000, 0.05, 10, 100, 12, Blank),
                      scenario(QStringLiteral("Say \"hi\", ok"), 5000, 0.04, Blank, -50, 4, 3000),
                      scenario(QStringLiteral("Tab\there\u0001\u007f\u0081"), Blank, 0.06, 5, 0, 1,
                               10000),
                      scenario(QString(), 1e12, 0.12, 30, 0, 365, Blank),
                      scenario(QStringLiteral("Negative"), -1234.567, 0.025, 3, Blank, 12, 0),
                      scenario(QStringLiteral("Unsolvable"), Blank, 0.04, 5, Blank, 12, Blank)}) &&
           writeList(
               dir.filePath(LoansFile),
               {scenario(QStringLiteral("Mortgage, 30 years"), 200000, 0.065, 30, Blank, 12, Blank),
                scenario(QStringLiteral("CR\rLF\nend"), 10000, Blank, 2, 450, 12, Blank),
                scenario(QStringLiteral("Blank per year"), 5000, 0.1, 1, Blank, BlankPerYear,
                         Blank),
                scenario(QStringLiteral("Huge"), 1e303, 0.1, 1, -4e303, 12, Blank)});
}

// Python's csv module reads the CSV back: an independent RFC 4180 reader.
QList<QStringList> readCsv(const QByteArray &csv)
{
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import csv, io, json, sys\n"
                                 "text = sys.stdin.buffer.read().decode('utf-8')\n"
                                 "rows = list(csv.reader(io.StringIO(text, newline=''), "
                                 "strict=True))\n"
                                 "sys.stdout.write(json.dumps(rows))\n")});
    python.write(csv);
    python.closeWriteChannel();
    if (!python.waitForFinished(60000) || python.exitCode() != 0)
        return {};
    QList<QStringList> rows;
    for (const QJsonValue row : QJsonDocument::fromJson(python.readAllStandardOutput()).array()) {
        QStringList cells;
        for (const QJsonValue cell : row.toArray())
            cells.append(cell.toString());
        rows.append(cells);
    }
    return rows;
}

// A CSV figure: plain digits, '.' and at most a leading minus.
bool isPlainFigure(const QString &cell, int decimals)
{
    static const QRegularExpression figure(QStringLiteral("^-?[0-9]+\\.([0-9]+)$"));
    const QRegularExpressionMatch match = figure.match(cell);
    return match.hasMatch() && match.captured(1).size() == decimals;
}

// The CSV cell holds the JSON value at the shown rounding, or is empty
// where the JSON has no value.
QString figureMismatch(const QString &cell, const QJsonValue &value, double scale, int decimals)
{
    if (value.isNull())
        return cell.isEmpty() ? QString()
                              : QStringLiteral("'%1' where there is no value").arg(cell);
    if (!isPlainFigure(cell, decimals))
        return QStringLiteral("'%1' is no plain figure with %2 decimals").arg(cell).arg(decimals);
    const double expected = value.toDouble() * scale;
    const double half = 0.5 * std::pow(10.0, -decimals);
    if (std::abs(cell.toDouble() - expected) > half * (1 + 1e-9) + std::abs(expected) * 1e-15)
        return QStringLiteral("'%1' is not %2 rounded").arg(cell).arg(expected, 0, 'g', 17);
    return {};
}

QStringList computedFromFlags(const QJsonObject &fields, const QStringList &order)
{
    QStringList names;
    for (const QString &name : order) {
        if (fields.value(name).toObject().value(u"computed").toBool())
            names.append(name);
    }
    return names;
}

QStringList names(const QJsonArray &array)
{
    QStringList list;
    for (const QJsonValue value : array)
        list.append(value.toString());
    return list;
}

QStringList fieldOrder(bool investments)
{
    return {QStringLiteral("InitialAmount"), QStringLiteral("IRate"), QStringLiteral("Years"),
            QStringLiteral("Payment"),
            investments ? QStringLiteral("FutureValue") : QStringLiteral("TotalInterest")};
}

QByteArray fileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList args(std::initializer_list<const char *> arguments)
{
    QStringList list;
    for (const char *argument : arguments)
        list.append(QString::fromUtf8(argument));
    return list;
}

// The share of pixels in the rectangle that are neither white nor grey: the
// coloured lines of the series.
double colouredShare(const QImage &image, const QRect &area)
{
    qint64 coloured = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QColor colour = image.pixelColor(x, y);
            if (colour.hsvSaturation() > 60 && colour.value() > 40)
                ++coloured;
        }
    }
    return double(coloured) / (qint64(area.width()) * area.height());
}

} // namespace

class TestReportExport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void listCsvNumbersReadBackAsTheJsonValues_data();
    void listCsvNumbersReadBackAsTheJsonValues();
    void scheduleCsvNumbersReadBackAsTheJsonValues_data();
    void scheduleCsvNumbersReadBackAsTheJsonValues();
    void csvNumbersDoNotFollowTheLocale();
    void descriptionsWithControlCharactersStayInTheirCsvField();
    void textShowsControlCharactersAsQuestionMarks();
    void everyJsonOutputMatchesTheSchema_data();
    void everyJsonOutputMatchesTheSchema();
    void computedListsAgreeWithTheFieldFlags();
    void amountsBeyondADoubleShowNoText();
    void loansCallTheirFifthQuantityTotalInterest();

    void solveGivesThePublishedMortgagePayment();
    void solveGivesTheFutureValueOfTheMonthlyInvestment();
    void solveTakesRatesWithOrWithoutThePercentSign();
    void solveInJsonNamesTheSolvedFields();
    void solveTakesNegativeValuesAfterTheirOption_data();
    void solveTakesNegativeValuesAfterTheirOption();
    void solveLeavesAQuantityItCannotSolveEmpty();
    void solveRefusesBadInputWithOneLine_data();
    void solveRefusesBadInputWithOneLine();

    void chartSvgIsWellFormedAndHoldsTitleAndAxisTexts();
    void chartOfALongScheduleCountsYears();
    void chartPngHasTheAskedSizeAndAPlotThatIsNotBlank();
    void chartTitleFallsBackToTheListAndNumber();
    void chartOfAmountsNearTheLargestDoubleNamesItsUnit();
    void chartOfAmountsBeyondADoubleIsDrawnWithoutThem();
    void chartOfARecordWithoutPeriodsExits1();
    void chartRefusesBadOptions_data();
    void chartRefusesBadOptions();

private:
    QString path() const { return m_dir->path(); }
    QString file(const QString &name) const { return QDir(path()).filePath(name); }
    Run json(const QStringList &arguments);

    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestReportExport::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY2(m_dir->isValid(), qPrintable(m_dir->errorString()));
    QVERIFY(writeFixture(QDir(path())));
}

void TestReportExport::cleanup()
{
    m_dir.reset();
}

Run TestReportExport::json(const QStringList &arguments)
{
    return runReport(arguments + args({"--format", "json", "--locale", "en_US"}), path());
}

void TestReportExport::listCsvNumbersReadBackAsTheJsonValues_data()
{
    QTest::addColumn<QString>("list");
    QTest::newRow("investments") << QStringLiteral("investments");
    QTest::newRow("loans") << QStringLiteral("loans");
}

void TestReportExport::listCsvNumbersReadBackAsTheJsonValues()
{
    QFETCH(QString, list);
    const bool investments = list == u"investments";

    const Run csv =
        runReport({QStringLiteral("list"), list, QStringLiteral("--format=csv")}, path());
    QCOMPARE(csv.exitCode, 0);
    const Run report = json({QStringLiteral("list"), list});
    QCOMPARE(report.exitCode, 0);
    const QJsonArray records = parseObject(report.out).value(u"records").toArray();
    QCOMPARE(records.size(), investments ? 6 : 4);

    const QList<QStringList> rows = readCsv(csv.out);
    QCOMPARE(rows.size(), records.size() + 1);
    QCOMPARE(rows.first(),
             QStringList(
                 {QStringLiteral("Record"), QStringLiteral("Description"),
                  QStringLiteral("Initial Amount"), QStringLiteral("Rate (%)"),
                  QStringLiteral("Years"), QStringLiteral("Payment"), QStringLiteral("# Per Year"),
                  investments ? QStringLiteral("Future Value") : QStringLiteral("Total Interest"),
                  QStringLiteral("Computed")}));

    // Scale and decimals of each numeric column, in the CSV's column order.
    const struct
    {
        QString field;
        double scale;
        int column;
        int decimals;
    } columns[] = {{QStringLiteral("InitialAmount"), 1, 2, 2},
                   {QStringLiteral("IRate"), 100, 3, 2},
                   {QStringLiteral("Years"), 1, 4, 1},
                   {QStringLiteral("Payment"), 1, 5, 2},
                   {fieldOrder(investments).last(), 1, 7, 2}};
    for (qsizetype k = 0; k < records.size(); ++k) {
        const QJsonObject record = records.at(k).toObject();
        const QStringList &row = rows.at(k + 1);
        QCOMPARE(row.size(), 9);
        QCOMPARE(row.at(0), QString::number(k + 1));
        QCOMPARE(row.at(1), record.value(u"description").toString());
        for (const auto &column : columns) {
            const QString mismatch = figureMismatch(
                row.at(column.column),
                record.value(u"fields").toObject().value(column.field).toObject().value(u"value"),
                column.scale, column.decimals);
            QVERIFY2(
                mismatch.isEmpty(),
                qPrintable(
                    QStringLiteral("record %1 %2: %3").arg(k + 1).arg(column.field, mismatch)));
        }
        QCOMPARE(row.at(6), record.value(u"perYear").toObject().value(u"text").toString());
        QCOMPARE(row.at(8), names(record.value(u"computed").toArray()).join(u' '));
    }
    // Spot checks typed out: the huge amount whole, a negative one, a blank.
    QCOMPARE(investments ? rows.at(4).at(2) : rows.at(1).at(5),
             investments ? QStringLiteral("1000000000000.00") : QStringLiteral("1264.14"));
    if (investments) {
        QCOMPARE(rows.at(5).at(2), QStringLiteral("-1234.57"));
        QCOMPARE(rows.at(6).at(7), QString());
    } else {
        // A huge amount is written whole, every digit of the double.
        QCOMPARE(rows.at(4).at(2),
                 QStringLiteral("1000000000000000000161765076786456438212668646231659438295495017"
                                "1011174992257387478652602430342139152537797735681803374160274458"
                                "2056777919964339154160602606861115074612228497617725665004420052"
                                "7276807327067690462112661427500197051226489898260678763391449376"
                                "088547292320814127957486330655468919122263277568.00"));
    }
}

void TestReportExport::scheduleCsvNumbersReadBackAsTheJsonValues_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QString>("record");
    QTest::addColumn<int>("periods");
    QTest::addColumn<QStringList>("keys");

    const QStringList investmentKeys = {QStringLiteral("earnings"),
                                        QStringLiteral("cumulativeEarnings"),
                                        QStringLiteral("balance")};
    const QStringList loanKeys = {QStringLiteral("principal"), QStringLiteral("interest"),
                                  QStringLiteral("cumulativePrincipal"),
                                  QStringLiteral("cumulativeInterest"), QStringLiteral("balance")};
    QTest::newRow("monthly investment")
        << QStringLiteral("investments") << QStringLiteral("1") << 120 << investmentKeys;
    QTest::newRow("negative investment")
        << QStringLiteral("investments") << QStringLiteral("5") << 36 << investmentKeys;
    QTest::newRow("30-year mortgage")
        << QStringLiteral("loans") << QStringLiteral("1") << 360 << loanKeys;
    QTest::newRow("amounts of 300 digits")
        << QStringLiteral("loans") << QStringLiteral("4") << 12 << loanKeys;
}

void TestReportExport::scheduleCsvNumbersReadBackAsTheJsonValues()
{
    QFETCH(QString, list);
    QFETCH(QString, record);
    QFETCH(int, periods);
    QFETCH(QStringList, keys);

    const Run csv = runReport({QStringLiteral("schedule"), list, record, QStringLiteral("--format"),
                               QStringLiteral("csv")},
                              path());
    QCOMPARE(csv.exitCode, 0);
    const Run report = json({QStringLiteral("schedule"), list, record});
    QCOMPARE(report.exitCode, 0);
    const QJsonArray jsonRows = parseObject(report.out).value(u"rows").toArray();
    QCOMPARE(jsonRows.size(), periods);

    const QList<QStringList> rows = readCsv(csv.out);
    QCOMPARE(rows.size(), periods + 1);
    for (int k = 0; k < periods; ++k) {
        const QJsonObject jsonRow = jsonRows.at(k).toObject();
        const QStringList &row = rows.at(k + 1);
        QCOMPARE(row.size(), keys.size() + 1);
        QCOMPARE(row.at(0), QString::number(k + 1));
        for (qsizetype c = 0; c < keys.size(); ++c) {
            const QString mismatch = figureMismatch(
                row.at(c + 1), jsonRow.value(keys.at(c)).toObject().value(u"value"), 1, 2);
            QVERIFY2(mismatch.isEmpty(),
                     qPrintable(
                         QStringLiteral("period %1 %2: %3").arg(k + 1).arg(keys.at(c), mismatch)));
        }
    }
}

void TestReportExport::csvNumbersDoNotFollowTheLocale()
{
    for (const char *command : {"list loans", "schedule loans 1", "schedule investments 2"}) {
        const QStringList arguments = QString::fromLatin1(command).split(u' ');
        const Run american =
            runReport(arguments + args({"--format", "csv", "--locale", "en_US"}), path());
        const Run german =
            runReport(arguments + args({"--format", "csv", "--locale", "de_DE"}), path());
        QCOMPARE(american.exitCode, 0);
        QVERIFY(!american.out.isEmpty());
        QCOMPARE(german.out, american.out);
        QVERIFY2(!american.out.contains('$'), command);
    }
}

void TestReportExport::descriptionsWithControlCharactersStayInTheirCsvField()
{
    const Run investments = runReport(args({"list", "investments", "--format", "csv"}), path());
    QCOMPARE(investments.exitCode, 0);
    const QStringList records = investments.outText().split(QStringLiteral("\r\n"));
    QVERIFY(records.at(1).startsWith(QStringLiteral("1,\"Line\nbreak\",")));
    QVERIFY(records.at(2).startsWith(QStringLiteral("2,\"Say \"\"hi\"\", ok\",")));
    QVERIFY(records.at(3).startsWith(QStringLiteral("3,\"Tab\there\u0001\u007f\u0081\",")));
    QVERIFY(records.at(4).startsWith(QStringLiteral("4,,1000000000000.00,")));

    const QList<QStringList> rows = readCsv(investments.out);
    QCOMPARE(rows.size(), 7);
    QCOMPARE(rows.at(1).at(1), QStringLiteral("Line\nbreak"));
    QCOMPARE(rows.at(2).at(1), QStringLiteral("Say \"hi\", ok"));
    QCOMPARE(rows.at(3).at(1), QStringLiteral("Tab\there\u0001\u007f\u0081"));

    const Run loans = runReport(args({"list", "loans", "--format", "csv"}), path());
    const QList<QStringList> loanRows = readCsv(loans.out);
    QCOMPARE(loanRows.size(), 5);
    QCOMPARE(loanRows.at(1).at(1), QStringLiteral("Mortgage, 30 years"));
    QCOMPARE(loanRows.at(2).at(1), QStringLiteral("CR\rLF\nend"));
}

void TestReportExport::textShowsControlCharactersAsQuestionMarks()
{
    const Run run = runReport(args({"list", "investments", "--locale", "en_US"}), path());
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.outText().chopped(1).split(u'\n');
    QCOMPARE(lines.size(), 7);
    QVERIFY(lines.at(1).startsWith(QStringLiteral("     1  Line?break     ")));
    QVERIFY(lines.at(2).startsWith(QStringLiteral("     2  Say \"hi\", ok   ")));
    QVERIFY(lines.at(3).startsWith(QStringLiteral("     3  Tab?here???    ")));
    for (const QString &line : lines)
        QVERIFY2(!line.contains(u'\r') && !line.contains(u'\t'), qPrintable(line));

    const Run schedule = runReport(args({"schedule", "loans", "2", "--locale", "en_US"}), path());
    QCOMPARE(schedule.exitCode, 0);
    const QStringList scheduleLines = schedule.outText().split(u'\n');
    QCOMPARE(scheduleLines.at(1), QStringLiteral("Description:        CR?LF?end"));
    QVERIFY(!schedule.out.contains('\r'));
}

void TestReportExport::everyJsonOutputMatchesTheSchema_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("investments list") << args({"list", "investments"});
    QTest::newRow("loans list") << args({"list", "loans"});
    for (const char *record : {"1", "2", "3", "4", "5", "6"})
        QTest::addRow("investment schedule %s", record)
            << args({"schedule", "investments", record});
    for (const char *record : {"1", "2", "3", "4"})
        QTest::addRow("loan schedule %s", record) << args({"schedule", "loans", record});
    QTest::newRow("solved investment")
        << args({"solve", "investment", "--initial", "1000", "--rate", "12", "--years", "10",
                 "--payment", "100", "--per-year", "12"});
    QTest::newRow("solved loan") << args({"solve", "loan", "--initial", "200000", "--rate", "6.5%",
                                          "--years", "30", "--per-year", "12"});
    QTest::newRow("unsolvable loan") << args({"solve", "loan", "--rate", "5"});
    QTest::newRow("loan with every quantity")
        << args({"solve", "loan", "--initial", "1000", "--rate", "5", "--years", "1", "--payment",
                 "100", "--per-year", "12", "--total-interest", "9"});
}

void TestReportExport::everyJsonOutputMatchesTheSchema()
{
    QFETCH(QStringList, arguments);
    const Run run = json(arguments);
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    const QString errors = schemaErrors(run.out);
    QVERIFY2(errors.isEmpty(), qPrintable(errors));
}

void TestReportExport::computedListsAgreeWithTheFieldFlags()
{
    for (const QString &list : {QStringLiteral("investments"), QStringLiteral("loans")}) {
        const bool investments = list == u"investments";
        const QJsonObject report = parseObject(json({QStringLiteral("list"), list}).out);
        const QJsonArray records = report.value(u"records").toArray();
        QVERIFY(!records.isEmpty());
        for (const QJsonValue value : records) {
            const QJsonObject record = value.toObject();
            QCOMPARE(
                names(record.value(u"computed").toArray()),
                computedFromFlags(record.value(u"fields").toObject(), fieldOrder(investments)));
        }
        for (int n = 1; n <= records.size(); ++n) {
            const QJsonObject header =
                parseObject(json({QStringLiteral("schedule"), list, QString::number(n)}).out)
                    .value(u"header")
                    .toObject();
            QCOMPARE(
                names(header.value(u"computed").toArray()),
                computedFromFlags(header.value(u"fields").toObject(), fieldOrder(investments)));
        }
    }
    // An unsolvable blank field is neither computed nor named.
    const QJsonObject unsolvable = parseObject(json(args({"list", "investments"})).out)
                                       .value(u"records")
                                       .toArray()
                                       .at(5)
                                       .toObject();
    QCOMPARE(unsolvable.value(u"computed").toArray(), QJsonArray());
    QCOMPARE(
        unsolvable.value(u"fields").toObject().value(u"FutureValue").toObject().value(u"computed"),
        QJsonValue(false));
}

void TestReportExport::amountsBeyondADoubleShowNoText()
{
    // 1e308 earning 500 % a year overflows in the first period.
    QVERIFY(writeList(file(InvestmentsFile),
                      {scenario(QStringLiteral("Overflow"), 1e308, 5, 2, 0, 1, Blank)}));
    const Run text = runReport(args({"schedule", "investments", "1", "--locale", "en_US"}), path());
    QCOMPARE(text.exitCode, 0);
    const QStringList lines = text.outText().chopped(1).split(u'\n');
    QCOMPARE(lines.mid(lines.size() - 3),
             QStringList({QStringLiteral("Period  Earnings  Cumulative Earnings  Total Earnings "
                                         "and Payments"),
                          QStringLiteral("     1"), QStringLiteral("     2")}));
    QVERIFY(!text.out.contains("inf"));

    const Run json = this->json(args({"schedule", "investments", "1"}));
    QCOMPARE(json.exitCode, 0);
    QVERIFY(!json.out.contains("inf"));
    const QJsonObject first = parseObject(json.out).value(u"rows").toArray().first().toObject();
    QCOMPARE(first.value(u"balance").toObject().value(u"text").toString(), QString());
    QVERIFY(first.value(u"balance").toObject().value(u"value").isNull());
    QVERIFY2(schemaErrors(json.out).isEmpty(), qPrintable(schemaErrors(json.out)));

    const Run csv = runReport(args({"schedule", "investments", "1", "--format", "csv"}), path());
    QCOMPARE(csv.outText(), QStringLiteral("Period,Earnings,Cumulative Earnings,Total Earnings "
                                           "and Payments\r\n1,,,\r\n2,,,\r\n"));
}

void TestReportExport::loansCallTheirFifthQuantityTotalInterest()
{
    const Run text = runReport(args({"list", "loans", "--locale", "en_US"}), path());
    QVERIFY(text.outText().contains(QStringLiteral("Payment TotalInterest\n")));
    QVERIFY(!text.out.contains("FutureValue"));
    const Run csv = runReport(args({"list", "loans", "--format", "csv"}), path());
    QVERIFY(!csv.out.contains("FutureValue"));
    for (const QStringList &arguments :
         {args({"list", "loans"}), args({"schedule", "loans", "1"}),
          args({"solve", "loan", "--initial", "1000", "--rate", "5", "--years", "1"})}) {
        const Run run = json(arguments);
        QCOMPARE(run.exitCode, 0);
        QVERIFY2(run.out.contains("\"TotalInterest\""), qPrintable(arguments.join(u' ')));
        QVERIFY2(!run.out.contains("FutureValue"), qPrintable(arguments.join(u' ')));
    }
}

void TestReportExport::solveGivesThePublishedMortgagePayment()
{
    const Run run = runReport(args({"solve", "loan", "--initial", "200000", "--rate", "6.5",
                                    "--years", "30", "--per-year", "12", "--locale", "en_US"}),
                              path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), joinLines({
                                QStringLiteral("Loan"),
                                QStringLiteral("Initial Amount:    $200,000.00"),
                                QStringLiteral("Interest Rate:     6.50%"),
                                QStringLiteral("Years:             30.0"),
                                QStringLiteral("Payment:           $1,264.14 (computed)"),
                                QStringLiteral("Payments per Year: 12"),
                                QStringLiteral("Total Interest:    $255,088.98 (computed)"),
                            }));
}

void TestReportExport::solveGivesTheFutureValueOfTheMonthlyInvestment()
{
    // 1,000 at 12 % a year for 10 years with 100 paid in each month, at the
    // effective monthly rate 1.12^(1/12) - 1.
    const Run run =
        runReport(args({"solve", "investment", "--initial", "1000", "--rate", "12", "--years", "10",
                        "--payment", "100", "--per-year", "12", "--locale", "en_US"}),
                  path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), joinLines({
                                QStringLiteral("Investment"),
                                QStringLiteral("Initial Amount:         $1,000.00"),
                                QStringLiteral("Yield (Rate of Return): 12.00%"),
                                QStringLiteral("Years:                  10.0"),
                                QStringLiteral("Payment:                $100.00"),
                                QStringLiteral("Payments per Year:      12"),
                                QStringLiteral("Future Value:           $25,298.85 (computed)"),
                            }));

    // Solving back for the years from that future value gives the 10 years.
    const Run back = runReport(
        args({"solve", "investment", "--initial", "1000", "--rate", "12", "--payment", "100",
              "--per-year", "12", "--future", "25298.852343456292", "--locale", "en_US"}),
        path());
    QCOMPARE(back.exitCode, 0);
    QVERIFY2(back.outText().contains(QStringLiteral("Years:                  10.0 (computed)\n")),
             back.out.constData());
}

void TestReportExport::solveTakesRatesWithOrWithoutThePercentSign()
{
    const QStringList common = args({"solve", "loan", "--initial", "200000", "--years", "30",
                                     "--per-year", "12", "--format", "json"});
    const Run plain = runReport(common + args({"--rate", "6.5"}), path());
    const Run percent = runReport(common + args({"--rate", "6.5%"}), path());
    QCOMPARE(plain.exitCode, 0);
    QCOMPARE(percent.out, plain.out);
    const QJsonObject rate =
        parseObject(plain.out).value(u"fields").toObject().value(u"IRate").toObject();
    QCOMPARE(rate.value(u"value").toDouble(), 0.065);
}

void TestReportExport::solveInJsonNamesTheSolvedFields()
{
    const Run run = json(args({"solve", "loan", "--initial", "200000", "--rate", "6.5", "--years",
                               "30", "--per-year", "12"}));
    QCOMPARE(run.exitCode, 0);
    const QJsonObject report = parseObject(run.out);
    QCOMPARE(report.value(u"report").toString(), QStringLiteral("solve"));
    QCOMPARE(report.value(u"list").toString(), QStringLiteral("loans"));
    QCOMPARE(names(report.value(u"computed").toArray()),
             QStringList({QStringLiteral("Payment"), QStringLiteral("TotalInterest")}));
    const QJsonObject payment = report.value(u"fields").toObject().value(u"Payment").toObject();
    QCOMPARE(payment.value(u"text").toString(), QStringLiteral("$1,264.14 "));
    QVERIFY(std::abs(payment.value(u"value").toDouble() - 1264.1360469859305) < 1e-9);
    QCOMPARE(report.value(u"perYear").toObject().value(u"stored").toInt(), 12);
}

void TestReportExport::solveTakesNegativeValuesAfterTheirOption_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("value as the next argument")
        << args({"solve", "investment", "--initial", "10000", "--rate", "5", "--years", "10",
                 "--payment", "-50", "--per-year", "12", "--locale", "en_US"});
    QTest::newRow("value after an equals sign")
        << args({"solve", "investment", "--initial=10000", "--rate=5", "--years=10",
                 "--payment=-50", "--per-year=12", "--locale=en_US"});
}

void TestReportExport::solveTakesNegativeValuesAfterTheirOption()
{
    QFETCH(QStringList, arguments);
    // 10,000 at 5 % for 10 years, 50 withdrawn each month.
    const Run run = runReport(arguments, path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    const QStringList lines = run.outText().split(u'\n');
    QCOMPARE(lines.at(4), QStringLiteral("Payment:                ($50.00)"));
    QCOMPARE(lines.at(6), QStringLiteral("Future Value:           $8,570.79 (computed)"));
}

void TestReportExport::solveLeavesAQuantityItCannotSolveEmpty()
{
    const Run run = runReport(args({"solve", "loan", "--rate", "5", "--locale", "en_US"}), path());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), joinLines({
                                QStringLiteral("Loan"),
                                QStringLiteral("Initial Amount:    (cannot be calculated)"),
                                QStringLiteral("Interest Rate:     5.00%"),
                                QStringLiteral("Years:             (cannot be calculated)"),
                                QStringLiteral("Payment:           (cannot be calculated)"),
                                QStringLiteral("Payments per Year:"),
                                QStringLiteral("Total Interest:    (cannot be calculated)"),
                            }));
}

void TestReportExport::solveRefusesBadInputWithOneLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("not a number") << args({"solve", "loan", "--initial", "lots"})
                                  << "--initial 'lots' is not a number (write it like 1234.5)";
    QTest::newRow("grouped number") << args({"solve", "loan", "--initial", "200,000"})
                                    << "--initial '200,000' is not a number (write it like "
                                       "1234.5)";
    QTest::newRow("rate not a number") << args({"solve", "loan", "--rate", "six"})
                                       << "--rate 'six' is not a number (write it like 1234.5 or "
                                          "6.5%)";
    QTest::newRow("two values for one quantity")
        << args({"solve", "loan", "--years", "10", "--years", "20"})
        << "--years given more than once";
    QTest::newRow("per year zero") << args({"solve", "loan", "--per-year", "0"})
                                   << "--per-year must be a whole number from 1 to 365, not '0'";
    QTest::newRow("per year 366") << args({"solve", "loan", "--per-year", "366"})
                                  << "--per-year must be a whole number from 1 to 365, not '366'";
    QTest::newRow("per year fraction")
        << args({"solve", "investment", "--per-year", "12.5"})
        << "--per-year must be a whole number from 1 to 365, not '12.5'";
    QTest::newRow("future value of a loan")
        << args({"solve", "loan", "--future", "100"})
        << "--future is for an investment; a loan has --total-interest";
    QTest::newRow("total interest of an investment")
        << args({"solve", "investment", "--total-interest", "100"})
        << "--total-interest is for a loan; an investment has --future";
    QTest::newRow("blank marker as an amount")
        << args({"solve", "investment", "--payment", "-987456321"})
        << "--payment '-987456321': this exact number marks an empty field and cannot be given; "
           "leave the option out to have the quantity calculated";
    QTest::newRow("blank marker as a rate")
        << args({"solve", "loan", "--rate=-98745632100%"})
        << "--rate '-98745632100%': this exact number marks an empty field and cannot be given; "
           "leave the option out to have the quantity calculated";
    QTest::newRow("unknown kind") << args({"solve", "mortgage"})
                                  << "unknown kind 'mortgage': use investment or loan";
    QTest::newRow("no kind") << args({"solve"}) << "solve: which kind, investment or loan?";
    QTest::newRow("csv") << args({"solve", "loan", "--format", "csv"})
                         << "unknown format 'csv' for solve: use text or json";
    QTest::newRow("a list's option")
        << args({"solve", "loan", "--dir", "."}) << "solve reads no list: --dir has no use";
    QTest::newRow("solve option to list")
        << args({"list", "loans", "--rate", "5"}) << "--rate is only for solve";
}

void TestReportExport::solveRefusesBadInputWithOneLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const Run run = runReport(arguments, path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText().split(u'\n').first(), QStringLiteral("quillet-report: ") + message);
}

void TestReportExport::chartSvgIsWellFormedAndHoldsTitleAndAxisTexts()
{
    const QString svg = file(QStringLiteral("loan.svg"));
    const Run run = runReport(
        args({"chart", "loans", "2", "--locale", "en_US", "--output"}) + QStringList{svg}, path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QByteArray());

    QFile chart(svg);
    QVERIFY(chart.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&chart);
    QStringList texts;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::Characters && !xml.isWhitespace())
            texts.append(xml.text().toString().trimmed());
    }
    QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    for (const QString &expected :
         {QStringLiteral("Period"), QStringLiteral("Amount"), QStringLiteral("Remaining Balance"),
          QStringLiteral("Cumulative Principal"), QStringLiteral("Cumulative Interest"),
          QStringLiteral("$0"), QStringLiteral("$10,000"), QStringLiteral("20")}) {
        QVERIFY2(texts.contains(expected), qPrintable(expected + u'\n' + texts.join(u'|')));
    }
    // The description's control characters show as '?', never raw in the XML.
    QVERIFY2(texts.contains(QStringLiteral("CR?LF?end")), qPrintable(texts.join(u'|')));
}

void TestReportExport::chartOfALongScheduleCountsYears()
{
    const QString svg = file(QStringLiteral("mortgage.svg"));
    const Run run = runReport(
        args({"chart", "loans", "1", "--locale", "en_US", "--output"}) + QStringList{svg}, path());
    QCOMPARE(run.exitCode, 0);
    const QByteArray bytes = fileBytes(svg);
    QVERIFY(bytes.contains(">Years<") || bytes.contains(">Years <"));
    QVERIFY(!bytes.contains(">Period<"));
    QVERIFY(bytes.contains("Mortgage, 30 years"));
    QVERIFY(bytes.contains("$200,000"));
}

void TestReportExport::chartPngHasTheAskedSizeAndAPlotThatIsNotBlank()
{
    const QString png = file(QStringLiteral("mortgage.png"));
    const Run run = runReport(
        args({"chart", "loans", "1", "--size", "640x400", "--output"}) + QStringList{png}, path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    const QImage image(png);
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), QSize(640, 400));
    // The middle of the plot holds the coloured lines; the corners do not.
    QVERIFY(colouredShare(image, QRect(160, 100, 320, 200)) > 0.002);
    QCOMPARE(colouredShare(image, QRect(0, 0, 40, 40)), 0.0);
}

void TestReportExport::chartTitleFallsBackToTheListAndNumber()
{
    const QString svg = file(QStringLiteral("untitled.svg"));
    const Run run =
        runReport(args({"chart", "investments", "4", "--output"}) + QStringList{svg}, path());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(fileBytes(svg).contains(">Investment 4<"));
}

void TestReportExport::chartOfAmountsNearTheLargestDoubleNamesItsUnit()
{
    // Loan 4 borrows 1e303 and its balance reaches some 5e304: drawn in
    // units of 10^301, which the amount axis names.
    const QString svg = file(QStringLiteral("huge.svg"));
    const Run run = runReport(
        args({"chart", "loans", "4", "--locale", "en_US", "--output"}) + QStringList{svg}, path());
    QCOMPARE(run.exitCode, 0);
    const QByteArray bytes = fileBytes(svg);
    QVERIFY(bytes.contains(QStringLiteral(">Amount (\u00d71E+301)<").toUtf8()));
    QVERIFY(bytes.contains(">$0<"));

    const QString png = file(QStringLiteral("huge.png"));
    QCOMPARE(
        runReport(args({"chart", "loans", "4", "--output"}) + QStringList{png}, path()).exitCode,
        0);
    const QImage image(png);
    QCOMPARE(image.size(), QSize(800, 500));
    QVERIFY(colouredShare(image, QRect(200, 125, 400, 250)) > 0.002);
}

void TestReportExport::chartOfAmountsBeyondADoubleIsDrawnWithoutThem()
{
    // 1e308 earning 500 % a year: every amount after the start overflows.
    QVERIFY(writeList(file(InvestmentsFile),
                      {scenario(QStringLiteral("Overflow"), 1e308, 5, 3, 0, 1, Blank)}));
    const QString png = file(QStringLiteral("overflow.png"));
    const Run run =
        runReport(args({"chart", "investments", "1", "--output"}) + QStringList{png}, path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QImage(png).size(), QSize(800, 500));
}

void TestReportExport::chartOfARecordWithoutPeriodsExits1()
{
    const QString svg = file(QStringLiteral("none.svg"));
    // Blank payments a year: -1 per year, so 1 year gives -1 periods.
    const Run run = runReport(args({"chart", "loans", "3", "--output"}) + QStringList{svg}, path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: record 3 of Ln.dat has no periods to "
                                           "chart: its years times its payments per year give "
                                           "-1\n"));
    QVERIFY(!QFileInfo::exists(svg));
}

void TestReportExport::chartRefusesBadOptions_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    QTest::newRow("no output") << args({"chart", "loans", "1"})
                               << "chart: --output FILE.svg or FILE.png is needed";
    QTest::newRow("other extension") << args({"chart", "loans", "1", "--output", "chart.pdf"})
                                     << "--output 'chart.pdf' must end in .svg or .png";
    QTest::newRow("size without height")
        << args({"chart", "loans", "1", "--output", "c.png", "--size", "800"})
        << "--size '800' must be WIDTHxHEIGHT in pixels, each from 200 to 8000";
    QTest::newRow("size too large")
        << args({"chart", "loans", "1", "--output", "c.png", "--size", "9000x500"})
        << "--size '9000x500' must be WIDTHxHEIGHT in pixels, each from 200 to 8000";
    QTest::newRow("format") << args({"chart", "loans", "1", "--output", "c.png", "--format", "csv"})
                            << "chart takes no --format: the --output name's extension decides";
    QTest::newRow("output for a list")
        << args({"list", "loans", "--output", "c.png"}) << "--output is only for chart";
}

void TestReportExport::chartRefusesBadOptions()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const Run run = runReport(arguments, path());
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.errText().split(u'\n').first(), QStringLiteral("quillet-report: ") + message);
    QCOMPARE(QDir(path()).entryList(QDir::Files), QStringList({InvestmentsFile, LoansFile}));
}

QTEST_GUILESS_MAIN(TestReportExport)
#include "tst_reportexport.moc"
