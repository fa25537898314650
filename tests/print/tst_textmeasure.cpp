#include "fonts.h"
#include "textmeasure.h"
#include "twips.h"

#include <QTest>

#include <cmath>
#include <optional>

using namespace quillet;

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

QTEST_MAIN(TestTextMeasure)
#include "tst_textmeasure.moc"
