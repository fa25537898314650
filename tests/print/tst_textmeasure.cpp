#include "displaytext.h"
#include "fonts.h"
#include "scheduleprintout.h"
#include "shapingwarnings.h"
#include "textmeasure.h"
#include "twips.h"

#include <QLocale>
#include <QRandomGenerator>
#include <QTest>

#include <cmath>
#include <optional>

using namespace quillet;
using namespace quillet::test;

namespace {

TextMeasure arialMeasure()
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(9);
    return TextMeasure(font, 96);
}

// A text whose width is a whole number of twips, so it can be the limit.
std::optional<QString> textOfWholeTwips(const TextMeasure &measure)
{
    for (const QChar letter : QStringLiteral("ilmnoWx1")) {
        for (int count = 1; count <= 40; ++count) {
            const QString text(count, letter);
            const float width = measure.width(text);
            if (width == std::floor(width))
                return text;
        }
    }
    return std::nullopt;
}

// What the font engine makes of a whole text, in twips as the measure gives
// widths.
float engineWidth(const QFont &font, const QString &text)
{
    return static_cast<float>(QFontMetricsF(font).horizontalAdvance(text) * 1440 / 96);
}

// Texts of every kind of character a width depends on: figures, letters that
// join into ligatures, kerned pairs, marks, invisible format characters,
// right-to-left letters and characters no Latin font has.
QString mixedText(QRandomGenerator &random, int length)
{
    static const QString pool =
        QStringLiteral("0123456789,.$()-%+E \u00A0\u20AC\u00A3\u00A5kr"
                       "ffiflAVWaToLYy11.,\u00AD\u0301\u200E\u200F\u061C\u05D0\u05D1\u0627\u0644"
                       "\u0661\u0662\u06F1\u0966\u4E00\u2713\u00E9\u00C5\u017F");
    QString text;
    for (int n = 0; n < length; ++n)
        text.append(pool.at(random.bounded(pool.size())));
    return text;
}

QList<QFont> measuredFonts()
{
    QList<QFont> fonts;
    for (const char *family : {"MS Sans Serif", "Arial", "Courier", "DejaVu Sans"}) {
        QFont font(QString::fromLatin1(family));
        font.setPointSizeF(9.75);
        fonts << font;
    }
    return fonts;
}

} // namespace

class TestTextMeasure : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void twipsBecomePixelsByTheLogicalDpi();
    void sharedTwipsEdgesStaySharedInPixels();
    void fittingTheEmptyTextGivesTheEmptyText();
    void textWhoseFirstCharacterIsTooWideFitsAsEmpty();
    void textExactlyAsWideAsTheLimitIsReturnedWhole();
    void textThatFitsIsReturnedUnchanged();
    void longTextIsCutToTheLongestBeginningThatFits();
    void widthsAreMeasuredInTheFontAsTwips();
    void everyTextMeasuresAsTheFontEngineMeasuresItWhole();
    void everyLocalesFiguresMeasureAsTheFontEngineMeasuresThem();
    void measuresThatAreCopiesShareWhatTheyLearnt();
};

void TestTextMeasure::twipsBecomePixelsByTheLogicalDpi()
{
    QCOMPARE(twipsToPixels(1440, 96), 96.0);
    QCOMPARE(twipsToPixels(15, 96), 1.0);
    QCOMPARE(twipsToPixels(1440, 120), 120.0);
    QCOMPARE(pixelsToTwips(1, 96), 15.0);
    QCOMPARE(twipsRect(7020, 2070, 1530, 285, 96), QRect(468, 138, 102, 19));
}

void TestTextMeasure::sharedTwipsEdgesStaySharedInPixels()
{
    // The description column ends exactly where the initial amount begins.
    for (const qreal dpi : {96.0, 120.0, 144.0}) {
        const QRect desc = twipsRect(340, 1530, 3200, 285, dpi);
        const QRect amount = twipsRect(3540, 1530, 1695, 285, dpi);
        QCOMPARE(desc.right() + 1, amount.left());
    }
}

void TestTextMeasure::fittingTheEmptyTextGivesTheEmptyText()
{
    QCOMPARE(Fit(QString(), 3200, arialMeasure()), QString());
}

void TestTextMeasure::textWhoseFirstCharacterIsTooWideFitsAsEmpty()
{
    const TextMeasure measure = arialMeasure();
    QVERIFY(measure.width(u"W") > 10);
    QCOMPARE(Fit(QStringLiteral("Wide"), 10, measure), QString());
}

void TestTextMeasure::textExactlyAsWideAsTheLimitIsReturnedWhole()
{
    const TextMeasure measure = arialMeasure();
    const std::optional<QString> text = textOfWholeTwips(measure);
    QVERIFY2(text.has_value(), "no text of a whole number of twips found");
    const int width = static_cast<int>(measure.width(*text));
    QCOMPARE(Fit(*text, width, measure), *text);
    QCOMPARE(Fit(*text, width - 1, measure), text->left(text->size() - 1));
}

void TestTextMeasure::textThatFitsIsReturnedUnchanged()
{
    QCOMPARE(Fit(QStringLiteral("Retirement savings"), 3200, arialMeasure()),
             QStringLiteral("Retirement savings"));
}

void TestTextMeasure::longTextIsCutToTheLongestBeginningThatFits()
{
    const TextMeasure measure = arialMeasure();
    const QString text = QStringLiteral("Savings for the new house with the garden and the barn!!");
    const QString fitted = Fit(text, 3200, measure);
    QVERIFY(fitted.size() < text.size());
    QVERIFY(text.startsWith(fitted));
    QVERIFY(measure.width(fitted) <= 3200.0f);
    QVERIFY(measure.width(text.left(fitted.size() + 1)) > 3200.0f);
}

void TestTextMeasure::widthsAreMeasuredInTheFontAsTwips()
{
    const TextMeasure measure = arialMeasure();
    const QFontMetricsF metrics(measure.font());
    QCOMPARE(measure.width(u"Sample"),
             static_cast<float>(metrics.horizontalAdvance(QStringLiteral("Sample")) * 15));
    QCOMPARE(measure.height(u"Sample"), static_cast<float>(metrics.height() * 15));
}

void TestTextMeasure::everyTextMeasuresAsTheFontEngineMeasuresItWhole()
{
    // Widths are summed from pairs of characters the measure has learnt;
    // they must be exactly the widths of the whole texts.
    const ShapingWarningsSilenced silenced;
    QRandomGenerator random(20261121);
    for (const QFont &font : measuredFonts()) {
        const TextMeasure measure(font, 96);
        for (int n = 0; n < 3000; ++n) {
            const QString text = mixedText(random, 1 + random.bounded(n % 10 == 0 ? 400 : 12));
            QVERIFY2(measure.width(text) == engineWidth(font, text),
                     qPrintable(font.family() + u": " + text));
        }
        for (const QString &text :
             {QStringLiteral("office"), QStringLiteral("affluent"), QStringLiteral("AVAVA"),
              QStringLiteral("1111"), QStringLiteral("Ta\u00ADTo")})
            QVERIFY2(measure.width(text) == engineWidth(font, text),
                     qPrintable(font.family() + u": " + text));
    }
}

void TestTextMeasure::everyLocalesFiguresMeasureAsTheFontEngineMeasuresThem()
{
    const ShapingWarningsSilenced silenced;
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    const TextMeasure measure = scheduleWindowMeasure(96);
    QStringList differing;
    for (const QLocale &locale : locales) {
        QLocale::setDefault(locale);
        for (const double value : {-1234567.891, 0.0, 0.07, 1e303, -4e303}) {
            for (const QString &text :
                 {FormatValue(Field::InitialAmount, value, true),
                  FormatValue(Field::IRate, value, true), FormatValue(Field::Years, value, true)}) {
                if (measure.width(text) != engineWidth(measure.font(), text))
                    differing << locale.name() + u": " + text;
            }
        }
    }
    QLocale::setDefault(QLocale::c());
    QVERIFY2(differing.isEmpty(), qPrintable(differing.mid(0, 5).join(u'\n')));
}

void TestTextMeasure::measuresThatAreCopiesShareWhatTheyLearnt()
{
    const TextMeasure measure = arialMeasure();
    const TextMeasure copy = measure;
    QCOMPARE(copy.width(u"1,234.50"), measure.width(u"1,234.50"));
    QCOMPARE(copy.width(u"1,234.50"), engineWidth(measure.font(), QStringLiteral("1,234.50")));
}

QTEST_MAIN(TestTextMeasure)
#include "tst_textmeasure.moc"
