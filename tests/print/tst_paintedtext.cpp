#include "displaytext.h"
#include "fonts.h"
#include "paintedtext.h"
#include "pdffont.h"
#include "shapingwarnings.h"

#include <QGuiApplication>
#include <QImage>
#include <QLocale>
#include <QPainter>
#include <QRawFont>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

// The texts a printout shows in a locale: amounts, rates and years as the
// list shows them, negatives and huge ones among them.
QStringList figureTexts(const QLocale &locale)
{
    QLocale::setDefault(locale);
    QStringList texts;
    for (const double value : {250000.0, -1234567.5, 0.0, 1e21}) {
        texts << FormatValue(Field::InitialAmount, value, true)
              << FormatValue(Field::IRate, value / 1e7, true)
              << FormatValue(Field::Years, value / 1e4, true);
    }
    return texts;
}

// A strip of paper 1,500 pixels wide at 96 dots an inch.
QImage blankStrip()
{
    QImage image(1500, 40, QImage::Format_ARGB32);
    image.fill(Qt::white);
    image.setDotsPerMeterX(3780);
    image.setDotsPerMeterY(3780);
    return image;
}

QImage paintedByPainter(const QString &text, const QFont &font)
{
    QImage image = blankStrip();
    QPainter painter(&image);
    painter.setFont(font);
    painter.drawText(QPointF(10, 28), text);
    return image;
}

QImage paintedFromRuns(const QString &text, const QFont &font)
{
    QImage image = blankStrip();
    QPainter painter(&image);
    for (const PaintedRun &run : paintedGlyphRuns(text, font, 96))
        painter.drawGlyphRun(QPointF(10, 28), run.glyphs);
    return image;
}

} // namespace

class TestPaintedText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void cleanup() { QLocale::setDefault(QLocale::c()); }
    void runsLandWhereThePainterPutsTheText_data();
    void runsLandWhereThePainterPutsTheText();
    void runsLandWhereThePainterPutsTheTextInARightToLeftApplication_data()
    {
        runsLandWhereThePainterPutsTheText_data();
    }
    void runsLandWhereThePainterPutsTheTextInARightToLeftApplication();
    void everyLocalesFiguresLandWhereThePainterPutsThem();
    void charactersAreKnownWhereEachGlyphIsOneCharacter();
    void fontAtResolutionIsSizedForThatResolution();
};

void TestPaintedText::runsLandWhereThePainterPutsTheText_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain words") << QStringLiteral("Retirement savings");
    QTest::newRow("a character from another font") << QStringLiteral("Paid \u2713 in full");
    QTest::newRow("hebrew after a blank") << QStringLiteral(" \u05D0\u05D1");
    QTest::newRow("hebrew with figures and a trailing blank")
        << QStringLiteral("\u05D0\u05D1 12 \u05D2 ");
    QTest::newRow("arabic amount ending in a mark and a blank")
        << QStringLiteral("\u0662\u0665\u0660\u066C\u0660\u0660\u0660\u066B\u0660\u0660\u00A0"
                          "\u062C.\u0645.\u200F ");
    QTest::newRow("urdu negative with its marks")
        << QStringLiteral("\u061C-\u0661\u066C\u0662\u0663\u0664\u066B\u0665\u0660 Rs");
    QTest::newRow("ligatures") << QStringLiteral("office affluent");
    QTest::newRow("words with blanks at both ends") << QStringLiteral(" Paid in full ");
}

void TestPaintedText::runsLandWhereThePainterPutsTheText()
{
    QFETCH(QString, text);
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(10);
    const QImage expected = paintedByPainter(text, font);
    QVERIFY(expected != blankStrip());
    QVERIFY(paintedFromRuns(text, font) == expected);
}

void TestPaintedText::runsLandWhereThePainterPutsTheTextInARightToLeftApplication()
{
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    runsLandWhereThePainterPutsTheText();
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
}

void TestPaintedText::everyLocalesFiguresLandWhereThePainterPutsThem()
{
    const ShapingWarningsSilenced silenced;
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(10);
    QStringList differing;
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    for (const QLocale &locale : locales) {
        for (const QString &text : figureTexts(locale)) {
            if (paintedFromRuns(text, font) != paintedByPainter(text, font))
                differing << locale.name() + u": " + text;
        }
    }
    QVERIFY2(differing.isEmpty(), qPrintable(differing.mid(0, 10).join(u'\n')));
}

void TestPaintedText::charactersAreKnownWhereEachGlyphIsOneCharacter()
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(10);
    const QList<PaintedRun> mixed = paintedGlyphRuns(QStringLiteral("Paid \u2713"), font, 96);
    QCOMPARE(mixed.size(), 2);
    QCOMPARE(mixed[0].characters, QStringLiteral("Paid "));
    QCOMPARE(mixed[1].characters, QStringLiteral("\u2713"));
    QVERIFY(fontIdentity(mixed[0].glyphs.rawFont()) != fontIdentity(mixed[1].glyphs.rawFont()));
    // "ffi" is one glyph: which glyph stands for which letter is not known.
    const QList<PaintedRun> ligature = paintedGlyphRuns(QStringLiteral("office"), font, 96);
    QCOMPARE(ligature.size(), 1);
    if (ligature[0].glyphs.glyphIndexes().size() < 6)
        QCOMPARE(ligature[0].characters, QString());
    else
        QCOMPARE(ligature[0].characters, QStringLiteral("office"));
}

void TestPaintedText::fontAtResolutionIsSizedForThatResolution()
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(10);
    // 10 points at 1,200 dots an inch: 166.67 pixels, rounded by the font.
    QCOMPARE(QRawFont::fromFont(fontAtResolution(font, 1200)).pixelSize(), 167.0);
    QCOMPARE(QRawFont::fromFont(fontAtResolution(font, 72)).pixelSize(), 10.0);
}

QTEST_MAIN(TestPaintedText)
#include "tst_paintedtext.moc"
