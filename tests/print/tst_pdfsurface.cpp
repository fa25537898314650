#include "fonts.h"
#include "pdfsurface.h"
#include "pdftext.h"
#include "printtestsupport.h"
#include "scheduleprintout.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QPrinter>
#include <QRegularExpression>
#include <QTest>

#include <bit>

using namespace quillet;
using namespace quillet::test;

namespace {

// A word as pdftotext -bbox places it, in points from the page's top left.
struct PlacedWord
{
    QString text;
    double xMin = 0;
    double xMax = 0;
};

QList<PlacedWord> placedWords(const QString &path)
{
    static const QRegularExpression word(QStringLiteral(
        R"re(<word xMin="([-0-9.]+)" yMin="[-0-9.]+" xMax="([-0-9.]+)" yMax="[-0-9.]+">([^<]*)</word>)re"));
    QList<PlacedWord> words;
    auto matches = word.globalMatch(pdfText(path, {QStringLiteral("-bbox")}));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        words.append(
            {match.captured(3), match.captured(1).toDouble(), match.captured(2).toDouble()});
    }
    return words;
}

// The bytes of the strings in a text-showing array: "[(ab)-12(c)] TJ".
int stringBytes(QByteArrayView array)
{
    int bytes = 0;
    bool inString = false;
    for (qsizetype n = 0; n < array.size(); ++n) {
        const char c = array[n];
        if (!inString) {
            inString = c == '(';
            continue;
        }
        if (c == ')') {
            inString = false;
            continue;
        }
        if (c == '\\')
            ++n; // an escaped byte is one byte
        ++bytes;
    }
    return bytes;
}

// The glyphs a PDF file draws, visible or not: two bytes each in the
// strings its pages show.
int drawnGlyphs(const QString &path)
{
    int glyphs = 0;
    for (const QByteArray &contents : compressedStreams(path)) {
        for (qsizetype shown = contents.indexOf(" Tm ["); shown >= 0;
             shown = contents.indexOf(" Tm [", shown + 1)) {
            const qsizetype close = contents.indexOf("] TJ\n", shown);
            glyphs += stringBytes(QByteArrayView(contents).sliced(shown, close - shown)) / 2;
        }
    }
    return glyphs;
}

// Within three thousandths of a point, a twentieth of a 1,200 dpi dot. The
// places expected were read off an earlier PDF writer, which rounded every
// glyph's place to a sixty-fourth of a dot and declared the glyphs' widths
// a little short of their advances; this one keeps both exact.
bool samePoint(double a, double b)
{
    return qAbs(a - b) < 0.003;
}

} // namespace

class TestPdfSurface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void pdfLeftUnfinishedLeavesTheOldFileAsItWas();
    void pdfWhoseFolderIsMovedAwayFailsAtTheEndNamingTheFile();
    void charactersTheFontLacksAreStillPrinted();
    void printerWritingToAFilePrintsEveryLine();
    void printerThatCannotStartSaysSoAtTheEnd();
    void textRunningOffTheLeftEdgeDrawsOnlyItsTailWhereTheWholeTextPutsIt();
    void textRunningOffTheRightEdgeDrawsOnlyItsHead();
    void scheduleOfHugeAmountsShowsEachFiguresTailAtItsColumn();
};

void TestPdfSurface::pdfLeftUnfinishedLeavesTheOldFileAsItWas()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("kept.pdf"));
    QVERIFY(writeBytes(path, "the old printout"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Kept"));
        QVERIFY(pdf.isOpen());
        pdf.printLine(QStringLiteral("never written"));
    }
    QCOMPARE(fileBytes(path), QByteArray("the old printout"));
    QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files),
             QStringList{QStringLiteral("kept.pdf")});
}

void TestPdfSurface::pdfWhoseFolderIsMovedAwayFailsAtTheEndNamingTheFile()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QDir().mkdir(QStringLiteral("out")));
    const QString path = dir.filePath(QStringLiteral("out/list.pdf"));
    PdfFileSurface pdf(path, QStringLiteral("Moved"));
    QVERIFY(pdf.isOpen());
    pdf.printLine(QStringLiteral("a line"));
    QVERIFY(QDir().rename(QStringLiteral("out"), QStringLiteral("elsewhere")));

    QVERIFY(!pdf.endDoc());
    QCOMPARE(pdf.errorText(), QDir::toNativeSeparators(path) +
                                  QStringLiteral(" cannot be written: No such file or directory"));
    QVERIFY(!QFileInfo::exists(path));
    QCOMPARE(QDir(QStringLiteral("elsewhere")).entryList(QDir::Files), QStringList());
}

void TestPdfSurface::charactersTheFontLacksAreStillPrinted()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("marks.pdf"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Marks"));
        QVERIFY(pdf.isOpen());
        // A check mark is in no Arial; it comes from another font.
        pdf.printLine(QStringLiteral("Paid \u2713"));
        pdf.printLine(QStringLiteral("Plain"));
        QVERIFY2(pdf.endDoc(), qPrintable(pdf.errorText()));
    }
    QCOMPARE(contentLines(pdfText(path)),
             (QStringList{QStringLiteral("Paid \u2713"), QStringLiteral("Plain")}));
}

void TestPdfSurface::printerWritingToAFilePrintsEveryLine()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("printed.pdf"));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    {
        PrinterSurface surface(printer, QStringLiteral("Printed"));
        QVERIFY(surface.isOpen());
        surface.printLine(QStringLiteral("First"));
        // Below the foot of any page: the line goes to the top of the next.
        surface.setCurrentY(100000);
        surface.printLine(QStringLiteral("Second"));
        QVERIFY2(surface.endDoc(), qPrintable(surface.errorText()));
        QCOMPARE(surface.errorText(), QString());
    }
    QCOMPARE(printer.docName(), QStringLiteral("Printed"));
    QCOMPARE(pdfPageCount(path), 2);
    QCOMPARE(contentLines(pdfText(path)),
             (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
}

void TestPdfSurface::printerThatCannotStartSaysSoAtTheEnd()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("missing/printed.pdf"));
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);

    PrinterSurface surface(printer, QStringLiteral("Nowhere"));
    QVERIFY(!surface.isOpen());
    QCOMPARE(surface.errorText(), QStringLiteral("The printer cannot be used."));
    QVERIFY(!surface.endDoc());
    QCOMPARE(surface.errorText(), QStringLiteral("The printer cannot be used."));
    QVERIFY(!QFileInfo::exists(path));
}

void TestPdfSurface::textRunningOffTheLeftEdgeDrawsOnlyItsTailWhereTheWholeTextPutsIt()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("tail.pdf"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Tail"));
        QVERIFY(pdf.isOpen());
        pdf.setCurrentX(-20000);
        pdf.printLine(QString(200, u'9') + QStringLiteral(".00"));
        QVERIFY2(pdf.endDoc(), qPrintable(pdf.errorText()));
    }
    const QList<PlacedWord> words = placedWords(path);
    QCOMPARE(words.size(), 1);
    QCOMPARE(words[0].text, QStringLiteral("999999999999999999999999.00"));
    QVERIFY2(samePoint(words[0].xMin, -5.259372),
             qPrintable(QString::number(words[0].xMin, 'f', 6)));
    QVERIFY2(samePoint(words[0].xMax, 142.406748),
             qPrintable(QString::number(words[0].xMax, 'f', 6)));
    // The 27 characters on the page and the one within an em of its edge;
    // the 175 before them are never drawn.
    QCOMPARE(drawnGlyphs(path), 28);
}

void TestPdfSurface::textRunningOffTheRightEdgeDrawsOnlyItsHead()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("head.pdf"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Head"));
        QVERIFY(pdf.isOpen());
        pdf.setCurrentX(10000);
        pdf.printLine(QStringLiteral("$") + QString(200, u'1'));
        QVERIFY2(pdf.endDoc(), qPrintable(pdf.errorText()));
    }
    const QList<PlacedWord> words = placedWords(path);
    QCOMPARE(words.size(), 1);
    QCOMPARE(words[0].text, QStringLiteral("$11111111111111111"));
    QVERIFY2(samePoint(words[0].xMin, 513.979687),
             qPrintable(QString::number(words[0].xMin, 'f', 6)));
    // The 18 characters on the page and the two within an em of its edge.
    QCOMPARE(drawnGlyphs(path), 20);
}

void TestPdfSurface::scheduleOfHugeAmountsShowsEachFiguresTailAtItsColumn()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // 1e303 borrowed at 10 % for a year, -4e303 paid monthly: every figure
    // of the schedule is a currency text of some 300 digits, flush right in
    // its column, its head far beyond the page's left edge.
    ScenarioRecord record = blankRecord(QStringLiteral("Huge"));
    record.InitialAmount = std::bit_cast<double>(quint64{0x7ed754e31cd072da});
    record.IRate = std::bit_cast<double>(quint64{0x3fb999999999999a});
    record.Years = 1;
    record.Payment = std::bit_cast<double>(quint64{0xfef754e31cd072da});
    record.PerYear = 12;
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("huge.pdf"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Loan Amortization"));
        QVERIFY(pdf.isOpen());
        QVERIFY(PrintAmort(pdf, scheduleWindowMeasure(96), schedulePrintJob(record, false, 12))
                    .printed());
    }
    const QList<PlacedWord> words = placedWords(path);
    qsizetype first = -1;
    for (qsizetype n = 0; n < words.size() && first < 0; ++n) {
        if (words[n].text == QStringLiteral("1"))
            first = n;
    }
    QVERIFY2(first >= 0 && first + 5 < words.size(), "no first period");
    // The first period's line: its number, then what shows of each figure.
    const QList<PlacedWord> expected{
        {QStringLiteral("1"), 27.330000, 32.901120},
        {QStringLiteral(",117,778,299,759,631,786,234,471,251,968.00)"), -1.679061, 210.594474},
        {QStringLiteral(",703,907,152,166,255,063,944,071,427,706,022,145,294,336.00"), -2.079375,
         284.859870},
        {QStringLiteral(
             "6,317,868,805,029,432,557,155,987,117,778,299,759,631,786,234,471,251,968.00)"),
         -3.259683, 370.594789},
        {QStringLiteral("6,855,956,772,015,818,858,654,247,100,703,907,152,166,255,063,944,071,"
                        "427,706,022,145,294,336.00"),
         -3.160313, 464.859870},
        {QStringLiteral("70,041,060,948,628,985,416,913,456,145,662,341,107,876,981,900,278,836,"
                        "952,672,273,303,761,407,848,793,981,845,504.00"),
         -0.685313, 570.412057},
    };
    for (qsizetype n = 0; n < expected.size(); ++n) {
        const PlacedWord &word = words[first + n];
        QCOMPARE(word.text, expected[n].text);
        QVERIFY2(samePoint(word.xMin, expected[n].xMin) && samePoint(word.xMax, expected[n].xMax),
                 qPrintable(QStringLiteral("%1 at %2 to %3")
                                .arg(word.text)
                                .arg(word.xMin, 0, 'f', 6)
                                .arg(word.xMax, 0, 'f', 6)));
    }
}

QTEST_MAIN(TestPdfSurface)
#include "tst_pdfsurface.moc"
