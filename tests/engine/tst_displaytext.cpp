#include <QLocale>
#include <QObject>
#include <QString>
#include <QTest>

#include <cmath>
#include <limits>
#include <optional>

#include "displaytext.h"
#include "scenariorecord.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

namespace {

// German amounts put a no-break space between the figure and the euro sign.
const QString EuroSuffix = QStringLiteral("\u00a0\u20ac");

} // namespace

class TestDisplayText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void formatValueWritesAmountsInTheLocaleCurrency_data();
    void formatValueWritesAmountsInTheLocaleCurrency();
    void formatValueWritesRatesAsPercentages_data();
    void formatValueWritesRatesAsPercentages();
    void formatValueWritesYearsWithOneDecimal_data();
    void formatValueWritesYearsWithOneDecimal();
    void formatValueOfFieldsWithoutANumberIsEmpty_data();
    void formatValueOfFieldsWithoutANumberIsEmpty();
    void formatValueWithoutAValueIsEmpty_data();
    void formatValueWithoutAValueIsEmpty();

    void fieldTextShowsStoredValuesPlainAndTheSolvedOneBold_data();
    void fieldTextShowsStoredValuesPlainAndTheSolvedOneBold();
    void fieldTextFollowsTheDefaultLocale();

    void padNumCountsDigitsNotSeparators_data();
    void padNumCountsDigitsNotSeparators();

    void minOfTakesTheSecondWhenEqual();

    void removeTextDropsTheFirstOccurrenceOnly_data();
    void removeTextDropsTheFirstOccurrenceOnly();

    void parseNumberReadsWhatFormatValueWrites_data();
    void parseNumberReadsWhatFormatValueWrites();
    void parseNumberAcceptsTypedForms_data();
    void parseNumberAcceptsTypedForms();
    void parseNumberRejectsNonNumbers_data();
    void parseNumberRejectsNonNumbers();

    void plainNumberShowsFifteenSignificantDigits_data();
    void plainNumberShowsFifteenSignificantDigits();
};

void TestDisplayText::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestDisplayText::cleanup()
{
    QLocale::setDefault(unitedStates());
}

void TestDisplayText::formatValueWritesAmountsInTheLocaleCurrency_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<Field>("field");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");

    const QLocale us = unitedStates();
    QTest::newRow("en_US initial amount rounds to cents")
        << us << Field::InitialAmount << 1234.567 << QStringLiteral("$1,234.57 ");
    QTest::newRow("en_US negative payment in parentheses")
        << us << Field::Payment << -1234.567 << QStringLiteral("($1,234.57) ");
    QTest::newRow("en_US zero future value")
        << us << Field::FutureValue << 0.0 << QStringLiteral("$0.00 ");
    QTest::newRow("en_US large amount keeps its grouping")
        << us << Field::InitialAmount << 1e15 << QStringLiteral("$1,000,000,000,000,000.00 ");
    QTest::newRow("en_US small amount has a leading zero")
        << us << Field::Payment << 0.5 << QStringLiteral("$0.50 ");

    const QLocale de = germany();
    QTest::newRow("de_DE initial amount")
        << de << Field::InitialAmount << 1234.567 << QStringLiteral("1.234,57") + EuroSuffix + u' ';
    QTest::newRow("de_DE negative payment")
        << de << Field::Payment << -1234.567 << QStringLiteral("-1.234,57") + EuroSuffix + u' ';
}

void TestDisplayText::formatValueWritesAmountsInTheLocaleCurrency()
{
    QFETCH(QLocale, locale);
    QFETCH(Field, field);
    QFETCH(double, value);
    QFETCH(QString, expected);

    const DefaultLocale pinned(locale);
    QCOMPARE(FormatValue(field, value, true), expected);
}

void TestDisplayText::formatValueWritesRatesAsPercentages_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QString>("expected");

    QTest::newRow("en_US 8.5 %") << unitedStates() << 0.085 << QStringLiteral("8.50% ");
    QTest::newRow("en_US 12 %") << unitedStates() << 0.12 << QStringLiteral("12.00% ");
    QTest::newRow("en_US one hundredth") << unitedStates() << 0.01 << QStringLiteral("1.00% ");
    QTest::newRow("en_US negative rate") << unitedStates() << -0.05 << QStringLiteral("-5.00% ");
    QTest::newRow("de_DE 8.5 %") << germany() << 0.085 << QStringLiteral("8,50% ");
}

void TestDisplayText::formatValueWritesRatesAsPercentages()
{
    QFETCH(QLocale, locale);
    QFETCH(double, rate);
    QFETCH(QString, expected);

    const DefaultLocale pinned(locale);
    QCOMPARE(FormatValue(Field::IRate, rate, true), expected);
}

void TestDisplayText::formatValueWritesYearsWithOneDecimal_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<double>("years");
    QTest::addColumn<QString>("expected");

    QTest::newRow("en_US 30 years") << unitedStates() << 30.0 << QStringLiteral("30.0 ");
    QTest::newRow("en_US 12.34 years") << unitedStates() << 12.34 << QStringLiteral("12.3 ");
    QTest::newRow("en_US 2600 years") << unitedStates() << 2600.0 << QStringLiteral("2,600.0 ");
    QTest::newRow("de_DE 30 years") << germany() << 30.0 << QStringLiteral("30,0 ");
}

void TestDisplayText::formatValueWritesYearsWithOneDecimal()
{
    QFETCH(QLocale, locale);
    QFETCH(double, years);
    QFETCH(QString, expected);

    const DefaultLocale pinned(locale);
    QCOMPARE(FormatValue(Field::Years, years, true), expected);
}

void TestDisplayText::formatValueOfFieldsWithoutANumberIsEmpty_data()
{
    QTest::addColumn<Field>("field");

    QTest::newRow("payments a year") << Field::PerYear;
    QTest::newRow("description") << Field::Desc;
}

void TestDisplayText::formatValueOfFieldsWithoutANumberIsEmpty()
{
    QFETCH(Field, field);
    const QString text = FormatValue(field, 12, true);
    QVERIFY(text.isEmpty());
}

void TestDisplayText::formatValueWithoutAValueIsEmpty_data()
{
    QTest::addColumn<Field>("field");

    QTest::newRow("initial amount") << Field::InitialAmount;
    QTest::newRow("rate") << Field::IRate;
    QTest::newRow("years") << Field::Years;
    QTest::newRow("payment") << Field::Payment;
    QTest::newRow("future value") << Field::FutureValue;
    QTest::newRow("payments a year") << Field::PerYear;
    QTest::newRow("description") << Field::Desc;
}

void TestDisplayText::formatValueWithoutAValueIsEmpty()
{
    QFETCH(Field, field);
    QCOMPARE(FormatValue(field, 1234.5, false), QString());
    QCOMPARE(FormatValue(field, 0, false), QString());
    // Values only a damaged file can hold have no text either.
    QCOMPARE(FormatValue(field, std::numeric_limits<double>::quiet_NaN(), true), QString());
    QCOMPARE(FormatValue(field, std::numeric_limits<double>::infinity(), true), QString());
    QCOMPARE(FormatValue(field, -std::numeric_limits<double>::infinity(), true), QString());
}

void TestDisplayText::fieldTextShowsStoredValuesPlainAndTheSolvedOneBold_data()
{
    QTest::addColumn<Field>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("computed");

    QTest::newRow("stored initial amount")
        << Field::InitialAmount << QStringLiteral("$1,000.00 ") << false;
    QTest::newRow("stored rate") << Field::IRate << QStringLiteral("12.00% ") << false;
    QTest::newRow("stored years") << Field::Years << QStringLiteral("10.0 ") << false;
    QTest::newRow("stored payment") << Field::Payment << QStringLiteral("$100.00 ") << false;
    QTest::newRow("solved future value")
        << Field::FutureValue << QStringLiteral("$25,298.85 ") << true;
    QTest::newRow("payments a year have no cell text") << Field::PerYear << QString() << false;
}

void TestDisplayText::fieldTextShowsStoredValuesPlainAndTheSolvedOneBold()
{
    QFETCH(Field, field);
    QFETCH(QString, text);
    QFETCH(bool, computed);

    const ScenarioRecord record = scenario(1000, 0.12, 10, 100, 12, Blank);
    const FieldDisplay shown = FieldText(record, field, true);
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.computed, computed);

    const SolveResult solved = Solve(record, field, true);
    QCOMPARE(shown.text, FormatValue(field, solved.value, solved.ok));
}

void TestDisplayText::fieldTextFollowsTheDefaultLocale()
{
    const DefaultLocale pinned(germany());
    const ScenarioRecord record = scenario(1000, 0.12, 10, 100, 12, Blank);
    QCOMPARE(FieldText(record, Field::InitialAmount, true).text,
             QStringLiteral("1.000,00") + EuroSuffix + u' ');
    QCOMPARE(FieldText(record, Field::IRate, true).text, QStringLiteral("12,00% "));
    QCOMPARE(FieldText(record, Field::FutureValue, true).text,
             QStringLiteral("25.298,85") + EuroSuffix + u' ');
}

void TestDisplayText::padNumCountsDigitsNotSeparators_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("width");
    QTest::addColumn<QString>("expected");

    const QLocale us = unitedStates();
    QTest::newRow("width 3: 5 gets two blanks") << us << 5.0 << 3 << QStringLiteral("  5");
    QTest::newRow("width 3: 50 gets one blank") << us << 50.0 << 3 << QStringLiteral(" 50");
    QTest::newRow("width 3: 500 gets none") << us << 500.0 << 3 << QStringLiteral("500");
    QTest::newRow("width 3: 5000 gets none and a separator")
        << us << 5000.0 << 3 << QStringLiteral("5,000");
    QTest::newRow("width 4: 7 gets three blanks") << us << 7.0 << 4 << QStringLiteral("   7");
    QTest::newRow("width 4: 10 gets two blanks") << us << 10.0 << 4 << QStringLiteral("  10");
    QTest::newRow("width 4: 100 gets one blank") << us << 100.0 << 4 << QStringLiteral(" 100");
    QTest::newRow("width 4: 999 gets one blank") << us << 999.0 << 4 << QStringLiteral(" 999");
    QTest::newRow("width 4: 1000 is grouped") << us << 1000.0 << 4 << QStringLiteral("1,000");
    QTest::newRow("width 5: 1234 gets one blank") << us << 1234.0 << 5 << QStringLiteral(" 1,234");
    QTest::newRow("width 4: zero gets three blanks") << us << 0.0 << 4 << QStringLiteral("   0");
    QTest::newRow("width 4: negative gets three blanks")
        << us << -5.0 << 4 << QStringLiteral("   -5");
    QTest::newRow("width 4: large negative gets three blanks")
        << us << -5000.0 << 4 << QStringLiteral("   -5,000");
    QTest::newRow("width 4: a fraction rounds in the text only")
        << us << 12.6 << 4 << QStringLiteral("  13");
    QTest::newRow("width 1: never a blank") << us << 5.0 << 1 << QStringLiteral("5");
    QTest::newRow("de_DE width 3: 5000 with a dot")
        << germany() << 5000.0 << 3 << QStringLiteral("5.000");
    QTest::newRow("de_DE width 5: 1234 gets one blank")
        << germany() << 1234.0 << 5 << QStringLiteral(" 1.234");
}

void TestDisplayText::padNumCountsDigitsNotSeparators()
{
    QFETCH(QLocale, locale);
    QFETCH(double, value);
    QFETCH(int, width);
    QFETCH(QString, expected);

    const DefaultLocale pinned(locale);
    QCOMPARE(PadNum(value, width), expected);
}

void TestDisplayText::minOfTakesTheSecondWhenEqual()
{
    QCOMPARE(MinOf(1, 2), 1);
    QCOMPARE(MinOf(2, 1), 1);
    QCOMPARE(MinOf(12, 12), 12);
    QUILLET_COMPARE_EXACT(MinOf(1.5, 2.5), 1.5);
    QUILLET_COMPARE_EXACT(MinOf(2.5, 1.5), 1.5);
    // Zeros of either sign are equal, so the second is the one returned.
    QUILLET_COMPARE_EXACT(MinOf(0.0, -0.0), -0.0);
    QUILLET_COMPARE_EXACT(MinOf(-0.0, 0.0), 0.0);
}

void TestDisplayText::removeTextDropsTheFirstOccurrenceOnly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("removed");
    QTest::addColumn<QString>("expected");

    QTest::newRow("percent sign at the end")
        << QStringLiteral("12.5%") << QStringLiteral("%") << QStringLiteral("12.5");
    QTest::newRow("first of two percent signs")
        << QStringLiteral("1%2%") << QStringLiteral("%") << QStringLiteral("12%");
    QTest::newRow("text without percent sign is unchanged")
        << QStringLiteral("12.5") << QStringLiteral("%") << QStringLiteral("12.5");
    QTest::newRow("empty text is unchanged") << QString() << QStringLiteral("%") << QString();
    QTest::newRow("only a percent sign") << QStringLiteral("%") << QStringLiteral("%") << QString();
    QTest::newRow("percent sign first")
        << QStringLiteral("%7") << QStringLiteral("%") << QStringLiteral("7");
    QTest::newRow("displayed rate keeps its blank")
        << QStringLiteral("8.50% ") << QStringLiteral("%") << QStringLiteral("8.50 ");
    QTest::newRow("longer text") << QStringLiteral("abcabc") << QStringLiteral("bc")
                                 << QStringLiteral("aabc");
    QTest::newRow("comparison is case-sensitive")
        << QStringLiteral("12 PCT") << QStringLiteral("pct") << QStringLiteral("12 PCT");
}

void TestDisplayText::removeTextDropsTheFirstOccurrenceOnly()
{
    QFETCH(QString, text);
    QFETCH(QString, removed);
    QFETCH(QString, expected);
    QCOMPARE(RemoveText(text, removed), expected);
}

void TestDisplayText::parseNumberReadsWhatFormatValueWrites_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<Field>("field");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");

    const struct
    {
        const char *name;
        QLocale locale;
    } locales[] = {{"en_US", unitedStates()}, {"de_DE", germany()}};
    const struct
    {
        const char *name;
        double value;
    } values[] = {{"positive", 1234.567},    {"negative", -1234.567},   {"zero", 0.0},
                  {"large", 1e15},           {"large negative", -1e12}, {"half", 0.5},
                  {"small negative", -0.004}};

    for (const auto &locale : locales) {
        for (const auto &value : values) {
            // Amounts keep cents, years one decimal, rates hundredths of a percent.
            QTest::addRow("%s %s amount", locale.name, value.name)
                << locale.locale << Field::InitialAmount << value.value
                << std::round(value.value * 100) / 100;
            QTest::addRow("%s %s years", locale.name, value.name)
                << locale.locale << Field::Years << value.value
                << std::round(value.value * 10) / 10;
            QTest::addRow("%s %s rate", locale.name, value.name)
                << locale.locale << Field::IRate << value.value
                << std::round(value.value * 100 * 100) / 100;
        }
    }
}

void TestDisplayText::parseNumberReadsWhatFormatValueWrites()
{
    QFETCH(QLocale, locale);
    QFETCH(Field, field);
    QFETCH(double, value);
    QFETCH(double, expected);

    const DefaultLocale pinned(locale);
    QString text = FormatValue(field, value, true);
    // A rate is read as the cell editor reads it: cut at the percent sign.
    if (field == Field::IRate)
        text = RemoveText(text, QStringLiteral("%"));
    const std::optional<double> parsed = parseNumber(text);
    QVERIFY2(parsed.has_value(), qPrintable(text));
    QUILLET_COMPARE_NEAR(*parsed, expected, 1e-9 * std::max(1.0, std::abs(expected)));
}

void TestDisplayText::parseNumberAcceptsTypedForms_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");

    const QLocale us = unitedStates();
    QTest::newRow("en_US plain decimal") << us << QStringLiteral("1234.5") << 1234.5;
    QTest::newRow("en_US grouped") << us << QStringLiteral("1,234.5") << 1234.5;
    QTest::newRow("en_US minus sign") << us << QStringLiteral("-5") << -5.0;
    QTest::newRow("en_US plus sign") << us << QStringLiteral("+5") << 5.0;
    QTest::newRow("en_US surrounding blanks") << us << QStringLiteral(" 42 ") << 42.0;
    QTest::newRow("en_US parentheses") << us << QStringLiteral("(5)") << -5.0;
    QTest::newRow("en_US dollar sign") << us << QStringLiteral("$5") << 5.0;
    QTest::newRow("en_US currency in parentheses")
        << us << QStringLiteral("($1,234.57)") << -1234.57;
    QTest::newRow("en_US minus before dollar") << us << QStringLiteral("-$1,234.57") << -1234.57;
    QTest::newRow("en_US exponent") << us << QStringLiteral("1e5") << 100000.0;
    QTest::newRow("en_US largest double") << us << QStringLiteral("1e308") << 1e308;

    const QLocale de = germany();
    QTest::newRow("de_DE decimal comma") << de << QStringLiteral("1234,5") << 1234.5;
    QTest::newRow("de_DE grouped") << de << QStringLiteral("1.234,5") << 1234.5;
    QTest::newRow("de_DE currency with blank")
        << de << QStringLiteral("-1.234,57 \u20ac") << -1234.57;
}

void TestDisplayText::parseNumberAcceptsTypedForms()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, text);
    QFETCH(double, expected);

    const DefaultLocale pinned(locale);
    const std::optional<double> parsed = parseNumber(text);
    QVERIFY(parsed.has_value());
    QUILLET_COMPARE_EXACT(*parsed, expected);
}

void TestDisplayText::parseNumberRejectsNonNumbers_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");

    const struct
    {
        const char *name;
        QLocale locale;
    } locales[] = {{"en_US", unitedStates()}, {"de_DE", germany()}};
    const char *const texts[] = {"abc", "1e999", "-1e999", "inf", "-inf", "nan",
                                 "",    "   ",   "(-5)",   "()",  "12abc"};
    for (const auto &locale : locales) {
        for (const char *text : texts)
            QTest::addRow("%s \"%s\"", locale.name, text)
                << locale.locale << QString::fromLatin1(text);
    }
    QTest::newRow("en_US currency symbol alone") << unitedStates() << QStringLiteral("$");
    QTest::newRow("de_DE currency symbol alone") << germany() << QStringLiteral("\u20ac");
}

void TestDisplayText::parseNumberRejectsNonNumbers()
{
    QFETCH(QLocale, locale);
    QFETCH(QString, text);

    const DefaultLocale pinned(locale);
    const std::optional<double> parsed = parseNumber(text);
    QVERIFY2(!parsed.has_value(), parsed ? describe(*parsed).constData() : "");
}

void TestDisplayText::plainNumberShowsFifteenSignificantDigits_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");

    const QLocale us = unitedStates();
    QTest::newRow("en_US no grouping") << us << 1234.5 << QStringLiteral("1234.5");
    QTest::newRow("en_US negative") << us << -0.001 << QStringLiteral("-0.001");
    QTest::newRow("en_US whole number") << us << 100.0 << QStringLiteral("100");
    QTest::newRow("en_US zero") << us << 0.0 << QStringLiteral("0");
    QTest::newRow("en_US percentage of a stored rate") << us << 0.07 * 100 << QStringLiteral("7");
    QTest::newRow("en_US sum with a long expansion") << us << 0.1 + 0.2 << QStringLiteral("0.3");
    QTest::newRow("en_US solved payment")
        << us << 599.55052515275239 << QStringLiteral("599.550525152752");
    QTest::newRow("en_US very large") << us << 1e20 << QStringLiteral("1E+20");
    QTest::newRow("de_DE decimal comma") << germany() << 1234.5 << QStringLiteral("1234,5");
    QTest::newRow("de_DE grouping left out")
        << germany() << 1234567.25 << QStringLiteral("1234567,25");
}

void TestDisplayText::plainNumberShowsFifteenSignificantDigits()
{
    QFETCH(QLocale, locale);
    QFETCH(double, value);
    QFETCH(QString, expected);

    const DefaultLocale pinned(locale);
    const QString text = plainNumber(value);
    QCOMPARE(text, expected);

    // Read back, it is the value to fifteen digits.
    const std::optional<double> parsed = parseNumber(text);
    QVERIFY2(parsed.has_value(), qPrintable(text));
    QUILLET_COMPARE_NEAR(*parsed, value, 1e-14 * std::abs(value));
}

QTEST_GUILESS_MAIN(TestDisplayText)
#include "tst_displaytext.moc"
