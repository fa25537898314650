#include <QLocale>
#include <QObject>
#include <QString>
#include <QTest>

#include <cmath>
#include <limits>
#include <vector>

#include "displaytext.h"
#include "figuretext.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

namespace {

// Figures of every whole-part length from 16 digits (2^53) to 309 (the
// largest double), both signs, each written by the locale itself and by the
// fast path. The long ones cost QLocale a tenth of a millisecond each.
std::vector<double> hugeFigures()
{
    std::vector<double> figures = {9007199254740992.0,
                                   12345678901234567.0,
                                   1e17,
                                   123456789012345678.0,
                                   1.5e19,
                                   98765432109876543210.0,
                                   1e21,
                                   4.4e22,
                                   1e23,
                                   6.02214076e23,
                                   1.1e24,
                                   1e25,
                                   3e26,
                                   1e27,
                                   1e40,
                                   1e100,
                                   1e303,
                                   6.7773030404222347e306,
                                   std::numeric_limits<double>::max()};
    const std::size_t count = figures.size();
    for (std::size_t k = 0; k < count; ++k)
        figures.push_back(-figures[k]);
    return figures;
}

QByteArray differs(const QLocale &locale, double value, const QString &fast, const QString &qt)
{
    return locale.name().toLatin1() + " " + describe(value) + ": \"" + fast.toUtf8() +
           "\" instead of \"" + qt.toUtf8() + "\"";
}

} // namespace

class TestFigureText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void hugeAmountsReadAsTyped_data();
    void hugeAmountsReadAsTyped();
    void everyLocaleGetsItsOwnCurrencyTextOfHugeAmounts();
    void everyLocaleGetsItsOwnNumberTextOfHugeFigures();
    void everydayFiguresAreTheLocalesOwn();

    void rateWhosePercentageOverflowsShowsNoText_data();
    void rateWhosePercentageOverflowsShowsNoText();
    void hugeAmountFieldsShowEveryDigit();
};

void TestFigureText::initTestCase()
{
    QLocale::setDefault(unitedStates());
}

void TestFigureText::cleanup()
{
    QLocale::setDefault(unitedStates());
}

void TestFigureText::hugeAmountsReadAsTyped_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("en_US 1e22") << unitedStates() << 1e22
                                << QStringLiteral("$10,000,000,000,000,000,000,000.00");
    QTest::newRow("en_US -2^60") << unitedStates() << -1152921504606846976.0
                                 << QStringLiteral("($1,152,921,504,606,846,976.00)");
    QTest::newRow("de_DE 2^60") << germany() << 1152921504606846976.0
                                << QStringLiteral("1.152.921.504.606.846.976,00\u00a0\u20ac");
    QTest::newRow("en_IN 2^60") << QLocale(QLocale::English, QLocale::India)
                                << 1152921504606846976.0
                                << QStringLiteral("\u20b911,52,92,15,04,60,68,46,976.00");
    // Spanish groups no lone top digit: 1 000 is 1000, so its top group is four.
    QTest::newRow("es_ES 1e18") << QLocale(QLocale::Spanish, QLocale::Spain) << 1e18
                                << QStringLiteral("1000.000.000.000.000.000,00\u00a0\u20ac");
    QTest::newRow("es_ES 1e19") << QLocale(QLocale::Spanish, QLocale::Spain) << 1e19
                                << QStringLiteral("10.000.000.000.000.000.000,00\u00a0\u20ac");
}

void TestFigureText::hugeAmountsReadAsTyped()
{
    QFETCH(QLocale, locale);
    QFETCH(double, value);
    QFETCH(QString, expected);

    QCOMPARE(currencyText(value, locale), expected);
}

void TestFigureText::everyLocaleGetsItsOwnCurrencyTextOfHugeAmounts()
{
    const std::vector<double> figures = hugeFigures();
    int compared = 0;
    for (const QLocale &locale : QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                                          QLocale::AnyTerritory)) {
        for (const double value : figures) {
            const QString qt = locale.toCurrencyString(value, QString(), 2);
            const QString fast = currencyText(value, locale);
            QVERIFY2(fast == qt, differs(locale, value, fast, qt).constData());
            ++compared;
        }
    }
    QVERIFY(compared > 10000);
}

void TestFigureText::everyLocaleGetsItsOwnNumberTextOfHugeFigures()
{
    const std::vector<double> figures = hugeFigures();
    for (const QLocale &locale : QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript,
                                                          QLocale::AnyTerritory)) {
        for (const double value : figures) {
            for (const int decimals : {0, 1, 2}) {
                const QString qt = locale.toString(value, 'f', decimals);
                const QString fast = numberText(value, decimals, locale);
                QVERIFY2(fast == qt, differs(locale, value, fast, qt).constData());
            }
        }
    }
}

void TestFigureText::everydayFiguresAreTheLocalesOwn()
{
    const double values[] = {0.0,      -0.0,      0.125, -0.125, 0.005,
                             1234.565, -1e-9,     1e15,  -1e15,  9007199254740991.0,
                             2.675,    999999.995};
    for (const QLocale &locale :
         {unitedStates(), germany(), QLocale(QLocale::English, QLocale::India),
          QLocale(QLocale::Persian, QLocale::Iran), QLocale(QLocale::Arabic, QLocale::Egypt)}) {
        for (const double value : values) {
            QCOMPARE(currencyText(value, locale), locale.toCurrencyString(value, QString(), 2));
            QCOMPARE(numberText(value, 1, locale), locale.toString(value, 'f', 1));
        }
    }
}

void TestFigureText::rateWhosePercentageOverflowsShowsNoText_data()
{
    QTest::addColumn<double>("rate");

    QTest::newRow("1e307") << 1e307;
    QTest::newRow("-1e307") << -1e307;
    QTest::newRow("largest double") << std::numeric_limits<double>::max();
}

void TestFigureText::rateWhosePercentageOverflowsShowsNoText()
{
    QFETCH(double, rate);

    QCOMPARE(FormatValue(Field::IRate, rate, true), QString());
    QVERIFY(FieldText(scenario(1000, rate, 10, 100, 12, Blank), Field::IRate, true).text.isEmpty());
}

void TestFigureText::hugeAmountFieldsShowEveryDigit()
{
    // 1e305 as a rate is still a figure: 9.99...e306 %, 307 digits.
    const QString rate = FormatValue(Field::IRate, 1e305, true);
    QCOMPARE(rate.size(), 307 + 102 + 3 + 2);
    QVERIFY(rate.startsWith(u"9,999,999,999,999,999,860,310,597,602,564,577,717,002,"));
    QVERIFY(rate.endsWith(u".00% "));

    const QString amount = FormatValue(Field::Payment, -4e303, true);
    QVERIFY(amount.startsWith(u"($4,000,000,000,000,000,000,647,060,307,145,825,752,"));
    QVERIFY(amount.endsWith(u",272.00) "));
    QCOMPARE(amount.size(), 1 + 1 + 304 + 101 + 3 + 1 + 1);
    QCOMPARE(FormatValue(Field::Years, 1e300, true).size(), 301 + 100 + 2 + 1);
}

QTEST_GUILESS_MAIN(TestFigureText)
#include "tst_figuretext.moc"
