#include "displaytext.h"
#include "fonts.h"
#include "paintedtext.h"
#include "pdffont.h"
#include "printertext.h"
#include "shapingwarnings.h"

#include <QGuiApplication>
#include <QLocale>
#include <QTest>

#include <cmath>

using namespace quillet;
using namespace quillet::test;

namespace {

struct PlacedGlyph
{
    QByteArray font;
    quint32 glyph = 0;
    QPointF at;
};

QList<PlacedGlyph> placed(const QList<PaintedRun> &runs)
{
    QList<PlacedGlyph> glyphs;
    for (const PaintedRun &run : runs) {
        const QList<quint32> indexes = run.glyphs.glyphIndexes();
        const QList<QPointF> positions = run.glyphs.positions();
        for (qsizetype n = 0; n < indexes.size(); ++n)
            glyphs.append({fontIdentity(run.glyphs.rawFont()), indexes[n], positions[n]});
    }
    std::sort(glyphs.begin(), glyphs.end(), [](const PlacedGlyph &a, const PlacedGlyph &b) {
        return a.at.x() < b.at.x() || (a.at.x() == b.at.x() && a.glyph < b.glyph);
    });
    return glyphs;
}

// Where two layouts of a text differ, or nothing when each glyph of one is
// the same glyph of the same font at the same place in the other.
QString difference(const QList<PaintedRun> &ours, const QList<PaintedRun> &painters)
{
    const QList<PlacedGlyph> a = placed(ours);
    const QList<PlacedGlyph> b = placed(painters);
    if (a.size() != b.size())
        return QStringLiteral("%1 glyphs, the painter's %2").arg(a.size()).arg(b.size());
    for (qsizetype n = 0; n < a.size(); ++n) {
        if (a[n].font != b[n].font || a[n].glyph != b[n].glyph || a[n].at != b[n].at)
            return QStringLiteral("glyph %1: %2%3 at %4, the painter's %5 at %6")
                .arg(n)
                .arg(a[n].font == b[n].font ? QString() : QStringLiteral("another font's "))
                .arg(a[n].glyph)
                .arg(a[n].at.x())
                .arg(b[n].glyph)
                .arg(b[n].at.x());
    }
    return {};
}

QFont printerFont(bool bold = false)
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(10);
    font.setBold(bold);
    return font;
}

} // namespace

class TestPrinterText : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void cleanup() { QLocale::setDefault(QLocale::c()); }
    void textsAreSetAsThePainterSetsThem_data();
    void textsAreSetAsThePainterSetsThem();
    void everyLocalesFiguresAreSetAsThePainterSetsThem();
    void onlyGlyphsWithinReachAreKeptWhereTheWholeTextPutsThem();
    void charactersOfPlainTextsAreKnown();
};

void TestPrinterText::textsAreSetAsThePainterSetsThem_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("bold");
    QTest::newRow("figure") << QStringLiteral("($1,234,567.00) ") << false;
    QTest::newRow("kerned pairs") << QStringLiteral("AVAWAY To Ty 1111") << true;
    QTest::newRow("words with ligatures") << QStringLiteral("office affluent fifty") << false;
    QTest::newRow("latin-1 description")
        << QStringLiteral("\u00C9t\u00E9 \u00E0 Z\u00FCrich \u00A7 \u00BD") << false;
    QTest::newRow("a sign the font lacks") << QStringLiteral("\u20B9 12,34,567.00 ") << false;
    QTest::newRow("signs the font lacks at both ends")
        << QStringLiteral("\u20BD\u20BA 100 \u2713\u2713") << true;
    QTest::newRow("right to left") << QStringLiteral("\u05D0\u05D1 12 \u20AA ") << false;
    QTest::newRow("marks") << QStringLiteral("\u200F-1,234.00 \u20AA ") << false;
    QTest::newRow("soft hyphen") << QStringLiteral("Ta\u00ADTo") << false;
}

void TestPrinterText::textsAreSetAsThePainterSetsThem()
{
    QFETCH(QString, text);
    QFETCH(bool, bold);
    PrinterText printer(printerFont(bold), 1200);
    // Twice: the second time from what the first learnt.
    for (int round = 0; round < 2; ++round) {
        const QString differs =
            difference(printer.glyphRuns(text), paintedGlyphRuns(text, printerFont(bold), 1200));
        QVERIFY2(differs.isEmpty(), qPrintable(differs));
    }
}

void TestPrinterText::everyLocalesFiguresAreSetAsThePainterSetsThem()
{
    const ShapingWarningsSilenced silenced;
    PrinterText printer(printerFont(), 1200);
    QStringList differing;
    const QList<QLocale> locales =
        QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory);
    for (const QLocale &locale : locales) {
        QLocale::setDefault(locale);
        for (const double value : {-1234567.891, 0.0, 0.07, 4e15}) {
            for (const QString &text :
                 {FormatValue(Field::InitialAmount, value, true),
                  FormatValue(Field::IRate, value, true), FormatValue(Field::Years, value, true)}) {
                const QString differs = difference(printer.glyphRuns(text),
                                                   paintedGlyphRuns(text, printerFont(), 1200));
                if (!differs.isEmpty())
                    differing << locale.name() + u": " + text + u": " + differs;
            }
        }
    }
    QVERIFY2(differing.isEmpty(), qPrintable(differing.mid(0, 5).join(u'\n')));
}

void TestPrinterText::onlyGlyphsWithinReachAreKeptWhereTheWholeTextPutsThem()
{
    PrinterText printer(printerFont(), 1200);
    const QString digits(300, u'9');
    const QStringList texts{QStringLiteral("$%1.00").arg(digits),
                            QStringLiteral("\u20B9%1").arg(digits),
                            QStringLiteral("\u200F%1 \u20AA").arg(digits)};
    for (const QString &text : texts) {
        const QList<PlacedGlyph> whole = placed(printer.glyphRuns(text));
        const double left = whole[100].at.x() + 1;
        const double right = whole[200].at.x() - 1;
        const QList<PlacedGlyph> reached = placed(printer.glyphRuns(text, left, right));
        // Glyphs 100 to 199 reach in: the first ends past the left, the last
        // begins before the right.
        QCOMPARE(reached.size(), 100);
        for (qsizetype n = 0; n < reached.size(); ++n) {
            QCOMPARE(reached[n].glyph, whole[100 + n].glyph);
            QCOMPARE(reached[n].at, whole[100 + n].at);
        }
    }
}

void TestPrinterText::charactersOfPlainTextsAreKnown()
{
    PrinterText printer(printerFont(), 1200);
    const QList<PaintedRun> runs = printer.glyphRuns(QStringLiteral("Paid \u2713 $5"));
    QCOMPARE(runs.size(), 3);
    QCOMPARE(runs[0].characters, QStringLiteral("Paid "));
    QCOMPARE(runs[1].characters, QStringLiteral("\u2713"));
    QCOMPARE(runs[2].characters, QStringLiteral(" $5"));
}

QTEST_MAIN(TestPrinterText)
#include "tst_printertext.moc"
