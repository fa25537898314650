#include "fonts.h"
#include "pdfdocument.h"
#include "pdftext.h"
#include "testfiles.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPainterPath>
#include <QProcess>
#include <QRawFont>
#include <QRegularExpression>
#include <QTest>

#include <optional>

using namespace quillet;
using namespace quillet::test;

namespace {

// Letter paper, drawing at 1,200 dots an inch from the sheet's corner.
const PdfPageGeometry Sheet{QSizeF(612, 792), 1200, QPoint(0, 0)};
// The same with the printable area an inch in from the left and top.
const PdfPageGeometry InsetSheet{QSizeF(612, 792), 1200, QPoint(1200, 1200)};

QRawFont arial(double pixelSize)
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(static_cast<int>(pixelSize));
    return QRawFont::fromFont(font);
}

struct Word
{
    QString text;
    double xMin = 0;
    double yMax = 0;
};

QList<Word> words(const QString &path)
{
    static const QRegularExpression word(QStringLiteral(
        R"re(<word xMin="([-0-9.]+)" yMin="[-0-9.]+" xMax="[-0-9.]+" yMax="([-0-9.]+)">([^<]*)</word>)re"));
    QList<Word> found;
    auto matches = word.globalMatch(pdfText(path, {QStringLiteral("-bbox")}));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        found.append(
            {match.captured(3), match.captured(1).toDouble(), match.captured(2).toDouble()});
    }
    return found;
}

// A PDF document written into a file of a scratch folder.
class ScratchPdf
{
public:
    ScratchPdf(const PdfPageGeometry &geometry, const QString &title)
        : m_path(m_dir.filePath(QStringLiteral("out.pdf"))), m_file(m_path)
    {
        if (m_dir.isValid() && m_file.open(QIODevice::WriteOnly))
            m_document.emplace(m_file, geometry, title);
    }

    bool isOpen() const { return m_document.has_value(); }
    PdfDocument &document() { return *m_document; }
    const QString &path() const { return m_path; }
    // Finishes the document and closes its file; false when it failed.
    bool finish()
    {
        const bool written = m_document->finish();
        m_file.close();
        return written;
    }

private:
    ScratchDirectory m_dir;
    QString m_path;
    QFile m_file;
    std::optional<PdfDocument> m_document;
};

// Draws a text's glyphs side by side by the font's own advances, one
// character a glyph.
void drawPlain(PdfDocument &document, const QRawFont &font, const QPointF &baseline,
               const QString &text)
{
    const QList<quint32> glyphs = font.glyphIndexesForString(text);
    const QList<QPointF> advances =
        font.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics);
    QList<QPointF> positions;
    QPointF pen;
    for (const QPointF &advance : advances) {
        positions.append(pen);
        pen += advance;
    }
    document.drawGlyphs(font, baseline, glyphs.constData(), positions.constData(), glyphs.size(),
                        text);
}

// A page rendered in grey at 72 dots an inch: a pixel a point.
QImage rendered(const QString &path)
{
    QProcess process;
    process.start(QStringLiteral("pdftoppm"),
                  {QStringLiteral("-r"), QStringLiteral("72"), QStringLiteral("-gray"),
                   QStringLiteral("-singlefile"), QStringLiteral("-png"), path,
                   path + QStringLiteral(".render")});
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return {};
    return QImage(path + QStringLiteral(".render.png"));
}

bool isBlack(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y)) < 64;
}

bool isWhite(const QImage &image, int x, int y)
{
    return qGray(image.pixel(x, y)) > 192;
}

// A device that takes the first `room` bytes and refuses the rest.
class FullDevice final : public QIODevice
{
public:
    explicit FullDevice(qint64 room) : m_room(room) { open(QIODevice::WriteOnly); }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 length) override
    {
        if (length > m_room)
            return -1;
        m_room -= length;
        return length;
    }

private:
    qint64 m_room;
};

} // namespace

class TestPdfDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void everyPageBegunIsInTheFileOnItsPaper();
    void documentWithNothingDrawnStillHasAPage();
    void glyphsLandWhereTheyArePlacedFromThePrintableCorner();
    void glyphsPlacedAwayFromTheirAdvancesKeepTheirPlaces();
    void glyphIndexesThatLookLikeStringSyntaxReadBackAsTheirCharacters();
    void titleIsTheDocumentsTitle();
    void embeddedFontKeepsTheOutlinesOfTheGlyphsDrawn();
    void boxesAndLinesAreFilledBlack();
    void pathsAreFilledBlack();
    void deviceThatRefusesAWriteFailsTheDocument();
};

void TestPdfDocument::everyPageBegunIsInTheFileOnItsPaper()
{
    ScratchPdf pdf({QSizeF(595, 842), 600, QPoint(0, 0)}, QStringLiteral("Pages"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    const QRawFont font = arial(100);
    for (int page = 1; page <= 3; ++page) {
        document.beginPage();
        drawPlain(document, font, QPointF(600, 600), QStringLiteral("Page %1").arg(page));
    }
    QVERIFY(pdf.finish());
    QCOMPARE(pdfPageCount(path), 3);
    QCOMPARE(pdfText(path), QStringLiteral("Page 1\n\n\fPage 2\n\n\fPage 3\n\n\f"));
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), {path});
    QVERIFY(info.waitForFinished(60000));
    QVERIFY(QString::fromUtf8(info.readAllStandardOutput())
                .contains(QStringLiteral("Page size:       595 x 842 pts (A4)")));
}

void TestPdfDocument::documentWithNothingDrawnStillHasAPage()
{
    ScratchPdf pdf(Sheet, QStringLiteral("Empty"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    const QString &path = pdf.path();
    QVERIFY(pdf.finish());
    QCOMPARE(pdfPageCount(path), 1);
}

void TestPdfDocument::glyphsLandWhereTheyArePlacedFromThePrintableCorner()
{
    ScratchPdf pdf(InsetSheet, QStringLiteral("Placed"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    // Half an inch right and two inches down from the printable corner,
    // which is an inch in: 108 points from the left, 216 from the top.
    drawPlain(document, arial(200), QPointF(600, 2400), QStringLiteral("Placed"));
    QVERIFY(pdf.finish());
    const QList<Word> found = words(path);
    QCOMPARE(found.size(), 1);
    QCOMPARE(found[0].text, QStringLiteral("Placed"));
    QVERIFY2(qAbs(found[0].xMin - 108) < 0.001, qPrintable(QString::number(found[0].xMin)));
    // pdftotext puts a word's foot at the font's descent below the baseline.
    const double descent = arial(200).descent() * 72 / 1200;
    QVERIFY2(qAbs(found[0].yMax - (216 + descent)) < 0.01,
             qPrintable(QString::number(found[0].yMax)));
}

void TestPdfDocument::glyphsPlacedAwayFromTheirAdvancesKeepTheirPlaces()
{
    ScratchPdf pdf(Sheet, QStringLiteral("Spaced"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    const QRawFont font = arial(200);
    const QList<quint32> glyphs = font.glyphIndexesForString(QStringLiteral("123"));
    // An inch apart, then a tenth of a dot on from where the advance ends.
    const double advance =
        font.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics).at(1).x();
    const QList<QPointF> positions{QPointF(0, 0), QPointF(1200, 0),
                                   QPointF(1200 + advance + 0.1, 0)};
    document.drawGlyphs(font, QPointF(1200, 1200), glyphs.constData(), positions.constData(), 3,
                        u"123");
    QVERIFY(pdf.finish());
    const QList<Word> found = words(path);
    QCOMPARE(found.size(), 2);
    QCOMPARE(found[0].text, QStringLiteral("1"));
    QVERIFY2(qAbs(found[0].xMin - 72) < 0.001, qPrintable(QString::number(found[0].xMin)));
    QCOMPARE(found[1].text, QStringLiteral("23"));
    QVERIFY2(qAbs(found[1].xMin - 144) < 0.001, qPrintable(QString::number(found[1].xMin)));
}

void TestPdfDocument::glyphIndexesThatLookLikeStringSyntaxReadBackAsTheirCharacters()
{
    // Glyph numbers whose low byte is a parenthesis, a backslash or a
    // carriage return must be escaped in the page's strings.
    const QRawFont font = arial(200);
    QString text;
    for (const int syntax : {'(', ')', '\\', '\r'}) {
        for (char16_t c = 0x21; c < 0x7F; ++c) {
            const QList<quint32> glyph = font.glyphIndexesForString(QString(QChar(c)));
            if (glyph.size() == 1 && (glyph[0] & 0xFF) == static_cast<quint32>(syntax)) {
                text.append(QChar(c));
                break;
            }
        }
    }
    QVERIFY2(text.size() == 4, qPrintable(QStringLiteral("only %1 found").arg(text)));
    ScratchPdf pdf(Sheet, QStringLiteral("Escaped"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    drawPlain(document, font, QPointF(1200, 1200), text + text);
    QVERIFY(pdf.finish());
    QCOMPARE(pdfText(path).trimmed(), text + text);
    // A bare carriage return in a string would be read as a line feed.
    QList<QByteArray> pages = compressedStreams(path);
    pages.removeIf([](const QByteArray &stream) { return !stream.contains(" TJ\n"); });
    QCOMPARE(pages.size(), 1);
    QVERIFY(!pages[0].contains('\r'));
    QVERIFY(pages[0].contains("\\r"));
}

void TestPdfDocument::embeddedFontKeepsTheOutlinesOfTheGlyphsDrawn()
{
    ScratchPdf pdf(Sheet, QStringLiteral("Outlines"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    // An em an inch high: at 72 dots an inch a glyph is 72 pixels tall.
    const QRawFont font = arial(1200);
    const QPointF baseline(1200, 2400);
    drawPlain(document, font, baseline, QStringLiteral("I\u00C9"));
    QVERIFY(pdf.finish());
    // Only what was drawn is embedded, not the whole face.
    QVERIFY2(QFileInfo(path).size() < font.fontTable("glyf").size() / 4,
             qPrintable(QString::number(QFileInfo(path).size())));

    const QImage page = rendered(path);
    QVERIFY(!page.isNull());
    const QList<quint32> glyphs = font.glyphIndexesForString(QStringLiteral("I\u00C9"));
    const QList<QPointF> advances =
        font.advancesForGlyphIndexes(glyphs, QRawFont::UseDesignMetrics);
    // A point inside each glyph near its top: the I's stem, the accent of
    // the E acute, which the font builds from an E and an accent.
    QPointF pen = baseline;
    for (qsizetype n = 0; n < glyphs.size(); ++n) {
        const QPainterPath outline = font.pathForGlyph(glyphs[n]).translated(pen);
        const QRectF box = outline.boundingRect();
        const double y = box.top() + box.height() * 0.04;
        std::optional<QPointF> inside;
        for (double x = box.left(); x < box.right() && !inside; x += 1)
            if (outline.contains(QPointF(x, y)))
                inside = QPointF(x, y);
        QVERIFY(inside.has_value());
        const QPoint pixel = (*inside * 72 / 1200).toPoint();
        QVERIFY2(
            qGray(page.pixel(pixel)) < 128,
            qPrintable(
                QStringLiteral("glyph %1 missing at %2, %3").arg(n).arg(pixel.x()).arg(pixel.y())));
        pen += advances[n];
    }
}

void TestPdfDocument::titleIsTheDocumentsTitle()
{
    ScratchPdf pdf(Sheet, QStringLiteral("Loan \u00DCbersicht (2)"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    const QString &path = pdf.path();
    QVERIFY(pdf.finish());
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), {path});
    QVERIFY(info.waitForFinished(60000));
    const QString out = QString::fromUtf8(info.readAllStandardOutput());
    QVERIFY2(out.contains(QStringLiteral("Title:           Loan \u00DCbersicht (2)\n")),
             qPrintable(out));
    QVERIFY2(out.contains(QStringLiteral("Creator:         Quillet\n")), qPrintable(out));
}

void TestPdfDocument::boxesAndLinesAreFilledBlack()
{
    ScratchPdf pdf(InsetSheet, QStringLiteral("Marks"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    // A box from 1 to 2 inches in each direction of the printable area,
    // so 144 to 216 points on the sheet; a line 10 points thick across at
    // 4 inches down, from 1 to 5 inches: 360 points down on the sheet, from
    // 144 to 432 across.
    document.fillRect(QRectF(1200, 1200, 1200, 1200));
    document.strokeLine(QPointF(1200, 4800), QPointF(6000, 4800), 10 * 1200 / 72.0);
    QVERIFY(pdf.finish());
    const QImage page = rendered(path);
    QVERIFY(!page.isNull());
    QCOMPARE(page.size(), QSize(612, 792));
    QVERIFY(isBlack(page, 180, 180));
    QVERIFY(isWhite(page, 140, 180));
    QVERIFY(isWhite(page, 220, 180));
    QVERIFY(isWhite(page, 180, 140));
    QVERIFY(isBlack(page, 300, 358));
    QVERIFY(isBlack(page, 300, 362));
    QVERIFY(isWhite(page, 300, 368));
    QVERIFY(isWhite(page, 300, 352));
    // Square-cut ends: nothing beyond the line's end points.
    QVERIFY(isBlack(page, 146, 360));
    QVERIFY(isBlack(page, 430, 360));
    QVERIFY(isWhite(page, 140, 360));
    QVERIFY(isWhite(page, 436, 360));
}

void TestPdfDocument::pathsAreFilledBlack()
{
    ScratchPdf pdf(Sheet, QStringLiteral("Path"));
    QVERIFY2(pdf.isOpen(), "no scratch file");
    PdfDocument &document = pdf.document();
    const QString &path = pdf.path();
    // A triangle, and a circle made of curves, each an inch across.
    QPainterPath triangle;
    triangle.moveTo(1200, 1200);
    triangle.lineTo(2400, 1200);
    triangle.lineTo(1200, 2400);
    triangle.closeSubpath();
    document.fillPath(triangle);
    QPainterPath circle;
    circle.addEllipse(QRectF(3600, 1200, 1200, 1200));
    document.fillPath(circle);
    QVERIFY(pdf.finish());
    const QImage page = rendered(path);
    QVERIFY(!page.isNull());
    QVERIFY(isBlack(page, 80, 80));
    QVERIFY(isWhite(page, 140, 140));
    QVERIFY(isBlack(page, 252, 108));
    QVERIFY(isBlack(page, 218, 108));
    QVERIFY(isWhite(page, 220, 76));
}

void TestPdfDocument::deviceThatRefusesAWriteFailsTheDocument()
{
    for (const qint64 room : {0, 100, 2000}) {
        FullDevice device(room);
        PdfDocument document(device, Sheet, QStringLiteral("Full"));
        for (int page = 0; page < 3; ++page) {
            document.beginPage();
            drawPlain(document, arial(200), QPointF(1200, 1200), QStringLiteral("Some text"));
        }
        QVERIFY2(!document.finish(), qPrintable(QString::number(room)));
    }
}

QTEST_MAIN(TestPdfDocument)
#include "tst_pdfdocument.moc"
