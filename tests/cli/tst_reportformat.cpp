#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <limits>

#include "chart.h"
#include "jsonvalue.h"
#include "reportcommand.h"
#include "texttable.h"

using namespace quillet::report;

class TestReportFormat : public QObject
{
    Q_OBJECT

private slots:
    void csvFieldIsQuotedOnlyWhenItMust_data();
    void csvFieldIsQuotedOnlyWhenItMust();
    void csvHasAHeadingRecordAndCrlfLineEnds();
    void textTableAlignsColumnsAndEndsLinesWithoutBlanks();
    void textTableCompletesShortRows();
    void jsonNumbersReadBackExactly_data();
    void jsonNumbersReadBackExactly();
    void jsonNumbersThatAreNotFiniteAreNull();
    void jsonStringsEscapeQuotesBackslashesAndControls();
    void jsonContainersOfPlainValuesStayOnOneLine();
    void jsonArrayWrittenRowByRowReadsAsTheWholeArray_data();
    void jsonArrayWrittenRowByRowReadsAsTheWholeArray();
    void csvQuotesEveryControlCharacter_data();
    void csvQuotesEveryControlCharacter();
    void textTableShowsControlCharactersAsQuestionMarks();
    void helpAndUsageErrorsCanBeRunInProcess();
    void chartWithoutAGraphicalApplicationFailsWithALine();
};

void TestReportFormat::csvFieldIsQuotedOnlyWhenItMust_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");

    QTest::newRow("plain text") << QStringLiteral("Car loan") << QStringLiteral("Car loan");
    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("blanks kept unquoted")
        << QStringLiteral(" 12.00% ") << QStringLiteral(" 12.00% ");
    QTest::newRow("comma") << QStringLiteral("$1,000.00 ") << QStringLiteral("\"$1,000.00 \"");
    QTest::newRow("quote doubled")
        << QStringLiteral("the \"best\" plan") << QStringLiteral("\"the \"\"best\"\" plan\"");
    QTest::newRow("line feed") << QStringLiteral("a\nb") << QStringLiteral("\"a\nb\"");
    QTest::newRow("carriage return") << QStringLiteral("a\rb") << QStringLiteral("\"a\rb\"");
}

void TestReportFormat::csvFieldIsQuotedOnlyWhenItMust()
{
    QFETCH(QString, field);
    QFETCH(QString, expected);
    QCOMPARE(csvField(field), expected);
}

void TestReportFormat::csvHasAHeadingRecordAndCrlfLineEnds()
{
    TextTable table({{QStringLiteral("Name"), TextTable::Align::Left},
                     {QStringLiteral("Amount"), TextTable::Align::Right}});
    table.addRow({QStringLiteral("Car, new"), QStringLiteral("$1,000.00")});
    table.addRow({QStringLiteral("Boat"), QStringLiteral("$5.00")});
    QCOMPARE(table.toCsv(), QStringLiteral("Name,Amount\r\n"
                                           "\"Car, new\",\"$1,000.00\"\r\n"
                                           "Boat,$5.00\r\n"));
}

void TestReportFormat::textTableAlignsColumnsAndEndsLinesWithoutBlanks()
{
    TextTable table({{QStringLiteral("No"), TextTable::Align::Right},
                     {QStringLiteral("Name"), TextTable::Align::Left},
                     {QStringLiteral("Amount"), TextTable::Align::Right},
                     {QStringLiteral("Note"), TextTable::Align::Left}});
    table.addRow({QStringLiteral("1"), QStringLiteral("Car"), QStringLiteral("$1,000.00 "),
                  QStringLiteral("")});
    table.addRow({QStringLiteral("12"), QStringLiteral("Long name"), QStringLiteral("$5.00 "),
                  QStringLiteral("x")});
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.toText(), QStringLiteral("No  Name           Amount  Note\n"
                                            " 1  Car        $1,000.00\n"
                                            "12  Long name      $5.00   x\n"));
}

void TestReportFormat::textTableCompletesShortRows()
{
    TextTable table({{QStringLiteral("A"), TextTable::Align::Left},
                     {QStringLiteral("B"), TextTable::Align::Left}});
    table.addRow({QStringLiteral("only")});
    QCOMPARE(table.toCsv(), QStringLiteral("A,B\r\nonly,\r\n"));
}

void TestReportFormat::jsonNumbersReadBackExactly_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("whole number") << 1000.0 << QStringLiteral("1000");
    QTest::newRow("tenth") << 0.1 << QStringLiteral("0.10000000000000001");
    QTest::newRow("rate") << 0.12 << QStringLiteral("0.12");
    QTest::newRow("negative") << -168.88286141899997 << QStringLiteral("-168.88286141899997");
    QTest::newRow("tiny") << -4.0085978980641812e-10 << QStringLiteral("-4.0085978980641812e-10");
    QTest::newRow("huge") << 1e21 << QStringLiteral("1e+21");
}

void TestReportFormat::jsonNumbersReadBackExactly()
{
    QFETCH(double, value);
    QFETCH(QString, expected);
    const QString json = JsonValue::number(value).toJson();
    QCOMPARE(json, expected);
    QCOMPARE(json.toDouble(), value);
}

void TestReportFormat::jsonNumbersThatAreNotFiniteAreNull()
{
    QCOMPARE(JsonValue::number(std::numeric_limits<double>::infinity()).toJson(),
             QStringLiteral("null"));
    QCOMPARE(JsonValue::number(-std::numeric_limits<double>::infinity()).toJson(),
             QStringLiteral("null"));
    QCOMPARE(JsonValue::number(std::numeric_limits<double>::quiet_NaN()).toJson(),
             QStringLiteral("null"));
}

void TestReportFormat::jsonStringsEscapeQuotesBackslashesAndControls()
{
    QCOMPARE(JsonValue::string(QStringLiteral("say \"hi\" \\ now")).toJson(),
             QStringLiteral("\"say \\\"hi\\\" \\\\ now\""));
    QCOMPARE(JsonValue::string(QStringLiteral("a\nb\tc\r")).toJson(),
             QStringLiteral("\"a\\nb\\tc\\r\""));
    QCOMPARE(JsonValue::string(QString(QChar(0x01))).toJson(), QStringLiteral("\"\\u0001\""));
    QCOMPARE(JsonValue::string(QStringLiteral("1.000,00\u00a0€ études")).toJson(),
             QStringLiteral("\"1.000,00\u00a0€ études\""));
}

void TestReportFormat::jsonArrayWrittenRowByRowReadsAsTheWholeArray_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<bool>("objects");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no rows") << 0 << true << QStringLiteral("{\n  \"rows\": []\n}");
    QTest::newRow("one object") << 1 << true
                                << QStringLiteral("{\n  \"rows\": [\n    {\"n\": 0}\n  ]\n}");
    QTest::newRow("two objects")
        << 2 << true << QStringLiteral("{\n  \"rows\": [\n    {\"n\": 0},\n    {\"n\": 1}\n  ]\n}");
    QTest::newRow("plain values") << 3 << false << QStringLiteral("{\n  \"rows\": [0, 1, 2]\n}");
}

void TestReportFormat::jsonArrayWrittenRowByRowReadsAsTheWholeArray()
{
    QFETCH(int, count);
    QFETCH(bool, objects);
    QFETCH(QString, expected);

    JsonArrayWriter writer(1);
    JsonValue::Array whole;
    for (int n = 0; n < count; ++n) {
        const JsonValue element =
            objects ? JsonValue::object({{QStringLiteral("n"), JsonValue::integer(n)}})
                    : JsonValue::integer(n);
        writer.append(element);
        whole.push_back(element);
    }
    const QString written = JsonValue::object({{QStringLiteral("rows"), writer.take()}}).toJson();
    QCOMPARE(written, expected);
    QCOMPARE(JsonValue::object({{QStringLiteral("rows"), JsonValue::array(whole)}}).toJson(),
             expected);
}

void TestReportFormat::csvQuotesEveryControlCharacter_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");

    QTest::newRow("tab") << QStringLiteral("a\tb") << QStringLiteral("\"a\tb\"");
    QTest::newRow("start of heading")
        << QStringLiteral("a\u0001b") << QStringLiteral("\"a\u0001b\"");
    QTest::newRow("delete") << QStringLiteral("a\u007fb") << QStringLiteral("\"a\u007fb\"");
    QTest::newRow("C1 control") << QStringLiteral("a\u0081b") << QStringLiteral("\"a\u0081b\"");
    QTest::newRow("no-break space is no control")
        << QStringLiteral("a\u00a0b") << QStringLiteral("a\u00a0b");
}

void TestReportFormat::csvQuotesEveryControlCharacter()
{
    QFETCH(QString, field);
    QFETCH(QString, expected);
    QCOMPARE(csvField(field), expected);
}

void TestReportFormat::textTableShowsControlCharactersAsQuestionMarks()
{
    TextTable table({{QStringLiteral("Name"), TextTable::Align::Left},
                     {QStringLiteral("N"), TextTable::Align::Right}});
    table.addRow({QStringLiteral("two\nlines"), QStringLiteral("1")});
    table.addRow({QStringLiteral("tab\there\r\u0001\u0085"), QStringLiteral("2")});
    QCOMPARE(table.toText(), QStringLiteral("Name         N\n"
                                            "two?lines    1\n"
                                            "tab?here???  2\n"));
}

void TestReportFormat::jsonContainersOfPlainValuesStayOnOneLine()
{
    const JsonValue value = JsonValue::object({
        {QStringLiteral("name"), JsonValue::string(QStringLiteral("x"))},
        {QStringLiteral("none"), JsonValue::array({})},
        {QStringLiteral("flags"),
         JsonValue::object({{QStringLiteral("ok"), JsonValue::boolean(true)},
                            {QStringLiteral("value"), JsonValue::null()}})},
        {QStringLiteral("list"), JsonValue::array({JsonValue::integer(1), JsonValue::integer(-2)})},
    });
    QCOMPARE(value.toJson(), QStringLiteral("{\n"
                                            "  \"name\": \"x\",\n"
                                            "  \"none\": [],\n"
                                            "  \"flags\": {\"ok\": true, \"value\": null},\n"
                                            "  \"list\": [1, -2]\n"
                                            "}"));
}

void TestReportFormat::helpAndUsageErrorsCanBeRunInProcess()
{
    QString out;
    QString err;
    QTextStream outStream(&out);
    QTextStream errStream(&err);

    QCOMPARE(runReport({ProgramName, QStringLiteral("--help")}, outStream, errStream),
             int(ExitSuccess));
    QCOMPARE(out, helpText());
    QVERIFY(helpText().startsWith(usageText()));
    QCOMPARE(err, QString());

    out.clear();
    QCOMPARE(runReport({ProgramName, QStringLiteral("list")}, outStream, errStream),
             int(ExitUsage));
    QCOMPARE(out, QString());
    QVERIFY(err.endsWith(usageText() + QStringLiteral("Run 'quillet-report --help' for more.\n")));
}

void TestReportFormat::chartWithoutAGraphicalApplicationFailsWithALine()
{
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), qPrintable(dir.errorString()));
    quillet::ScenarioRecord record;
    record.makeBlank();
    record.InitialAmount = 1000;
    record.IRate = 0.05;
    record.Years = 1;
    record.PerYear = 12;
    const QString output = QDir(dir.path()).filePath(QStringLiteral("chart.svg"));
    const quillet::Status status = writeScheduleChart(
        quillet::ListKind::Loans, record, 1, QStringLiteral("Ln.dat"), output, DefaultChartSize);
    QVERIFY(!status.ok());
    QCOMPARE(status.message(), QStringLiteral("a chart can only be drawn in a QApplication"));
    QVERIFY(!QFileInfo::exists(output));
}

QTEST_GUILESS_MAIN(TestReportFormat)
#include "tst_reportformat.moc"
