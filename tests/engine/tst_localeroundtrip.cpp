#include <QList>
#include <QLocale>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <optional>

#include "displaytext.h"
#include "solver.h"
#include "testsupport.h"

using namespace quillet;
using namespace quillet::test;

namespace {

// Negatives, zero, fractions that round, huge and tiny values.
const double SpreadOfValues[] = {1234.567, -1234.567, 0.0, -0.004, 0.5, 987654321.123, 1e15, -1e300,
                                 1e-300, 1e308, -9.87654321e250, 123456789012345.67, -5e-324,
                                 // The largest double, whose 15 digits round past it.
                                 1.7976931348623157e308, -1.7976931348623157e308};

// Every text the program shows or puts in a cell for editing, as the cell
// editor reads it back (a rate up to its percent sign), with the value that
// text stands for.
struct ShownText
{
    const char *kind;
    QString text;
    double shown;
};

QString beforePercent(const QString &text)
{
    return text.left(text.indexOf(u'%'));
}

QList<ShownText> shownTextsOf(double value)
{
    QList<ShownText> texts = {
        {"amount", FormatValue(Field::InitialAmount, value, true), std::round(value * 100) / 100},
        {"years", FormatValue(Field::Years, value, true), std::round(value * 10) / 10},
        {"edited amount", plainNumber(value), value},
    };
    // A rate whose percentage is beyond a double has no text to read back.
    if (std::isfinite(value * 100)) {
        texts.append({"rate", beforePercent(FormatValue(Field::IRate, value, true)),
                      std::round(value * 100 * 100) / 100});
        texts.append({"edited rate", beforePercent(plainNumber(value * 100) + u'%'), value * 100});
    }
    return texts;
}

// Read back to the rounding the text was written with: the exact double for
// a short figure, fifteen significant digits at most for the edited forms.
bool readsBackAs(const std::optional<double> &parsed, double shown)
{
    if (!parsed)
        return false;
    return std::abs(*parsed - shown) <= std::abs(shown) * 1e-14;
}

QString visible(const QString &text)
{
    QString result;
    for (const QChar c : text) {
        if (c.unicode() >= 0x20 && c.unicode() < 0x7f)
            result += c;
        else
            result += QStringLiteral("<U+%1>").arg(c.unicode(), 4, 16, QLatin1Char('0'));
    }
    return result;
}

} // namespace

class TestLocaleRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();

    void everyShownTextReadsBackInEveryLocale_data();
    void everyShownTextReadsBackInEveryLocale();
    void rightToLeftAndUnusualFormsReadBack_data();
    void rightToLeftAndUnusualFormsReadBack();
    void directionMarksAloneAreNoNumber();
};

void TestLocaleRoundTrip::cleanup()
{
    QLocale::setDefault(unitedStates());
}

void TestLocaleRoundTrip::everyShownTextReadsBackInEveryLocale_data()
{
    QTest::addColumn<QLocale>("locale");

    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    QVERIFY(locales.size() > 300);
    QSet<QString> names;
    for (const QLocale &locale : locales) {
        QString name = locale.bcp47Name() + u' ' + locale.name();
        while (names.contains(name))
            name += u'+';
        names.insert(name);
        QTest::newRow(qPrintable(name)) << locale;
    }
}

void TestLocaleRoundTrip::everyShownTextReadsBackInEveryLocale()
{
    QFETCH(QLocale, locale);
    QLocale::setDefault(locale);

    QStringList failures;
    for (const double value : SpreadOfValues) {
        for (const ShownText &shown : shownTextsOf(value)) {
            const std::optional<double> parsed = parseNumber(shown.text);
            if (shown.text.isEmpty() || !readsBackAs(parsed, shown.shown)) {
                failures.append(
                    QStringLiteral("%1 of %2: \"%3\" read as %4")
                        .arg(QString::fromLatin1(shown.kind))
                        .arg(value, 0, 'g', 17)
                        .arg(visible(shown.text), parsed ? QString::number(*parsed, 'g', 17)
                                                         : QStringLiteral("no number")));
            }
        }
    }
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

void TestLocaleRoundTrip::rightToLeftAndUnusualFormsReadBack_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");

    QTest::newRow("he_IL negative amount with a mark before the minus")
        << QStringLiteral("he_IL") << QStringLiteral("\u200e-1,234.57\u00a0\u20aa ") << -1234.57;
    QTest::newRow("fa_IR amount in Persian digits after the rial sign")
        << QStringLiteral("fa_IR")
        << QStringLiteral("\u200e\u0631\u06cc\u0627\u0644\u00a0\u06f1\u066c\u06f2\u06f3\u06f4"
                          "\u066b\u06f5\u06f7 ")
        << 1234.57;
    QTest::newRow("fa_AF negative amount in parentheses after a mark")
        << QStringLiteral("fa_AF")
        << QStringLiteral("\u200e(\u060b\u00a0\u06f1\u066c\u06f2\u06f3\u06f4\u066b\u06f5\u06f7)")
        << -1234.57;
    QTest::newRow("ar_EG negative amount in Arabic-Indic digits")
        << QStringLiteral("ar_EG")
        << QStringLiteral("\u061c-\u0661\u066c\u0662\u0663\u0664\u066b\u0665\u0667\u00a0"
                          "\u062c.\u0645.\u200f ")
        << -1234.57;
    QTest::newRow("ar_EG exponent")
        << QStringLiteral("ar_EG") << QStringLiteral("\u0661\u0627\u0633\u061c+\u0661\u0665")
        << 1e15;
    QTest::newRow("ar_EG negative exponent")
        << QStringLiteral("ar_EG") << QStringLiteral("\u0661\u0627\u0633\u061c-\u0663\u0660\u0660")
        << 1e-300;
    QTest::newRow("ar_DZ exponent after a mark")
        << QStringLiteral("ar_DZ") << QStringLiteral("1E\u200e+15") << 1e15;
    QTest::newRow("sv_SE exponent written as times ten to the")
        << QStringLiteral("sv_SE") << QStringLiteral("1\u00d710^+15") << 1e15;
    QTest::newRow("sv_SE minus sign")
        << QStringLiteral("sv_SE") << QStringLiteral("\u22121\u00a0234,57\u00a0kr ") << -1234.57;
    QTest::newRow("en_SZ currency symbol that is also the exponent letter")
        << QStringLiteral("en_SZ") << QStringLiteral("E1,234.57 ") << 1234.57;
    QTest::newRow("en_SZ exponent") << QStringLiteral("en_SZ") << QStringLiteral("1E+15") << 1e15;
    QTest::newRow("aa_ET currency code where the locale has no symbol")
        << QStringLiteral("aa_ET") << QStringLiteral("ETB\u00a0-1,234.57 ") << -1234.57;
    QTest::newRow("de_CH apostrophe grouping after the currency code")
        << QStringLiteral("de_CH") << QStringLiteral("CHF\u00a01\u2019234.57 ") << 1234.57;
    QTest::newRow("en_IN grouping in twos")
        << QStringLiteral("en_IN") << QStringLiteral("\u20b912,34,567.00 ") << 1234567.0;
}

void TestLocaleRoundTrip::rightToLeftAndUnusualFormsReadBack()
{
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QFETCH(double, expected);

    QLocale::setDefault(QLocale(locale));
    const std::optional<double> parsed = parseNumber(text);
    QVERIFY2(parsed.has_value(), qPrintable(visible(text)));
    QUILLET_COMPARE_EXACT(*parsed, expected);
}

void TestLocaleRoundTrip::directionMarksAloneAreNoNumber()
{
    QLocale::setDefault(QLocale(QStringLiteral("he_IL")));
    QVERIFY(!parseNumber(QStringLiteral("\u200e")).has_value());
    QVERIFY(!parseNumber(QStringLiteral("\u200e-\u200e")).has_value());
    QVERIFY(!parseNumber(QStringLiteral("\u200f\u20aa")).has_value());
    QVERIFY(!parseNumber(QStringLiteral("(\u200e)")).has_value());
}

QTEST_GUILESS_MAIN(TestLocaleRoundTrip)
#include "tst_localeroundtrip.moc"
