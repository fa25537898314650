#include "fonts.h"
#include "pdfsurface.h"
#include "pdftext.h"
#include "recordingsurface.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

class TestPrintSurface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void printingMovesToTheStartOfTheNextLine();
    void lineHeightFollowsTheFontSize();
    void boxAndLineMoveThePositionToTheirEnd();
    void lineCrossingTheBottomStartsANewPageAtItsTop();
    void columnsOfOneLineStayOnTheirPage();
    void firstLineBelowAFreshPageIsNotPrecededByABlankPage();
    void pdfHoldsEveryPageAndItsTexts();
    void abortedPdfLeavesTheOldFileAsItWas();
    void pdfInAMissingDirectoryFailsWithItsName();
};

void TestPrintSurface::printingMovesToTheStartOfTheNextLine()
{
    RecordingSurface surface;
    surface.setCurrentX(600);
    surface.setCurrentY(1000);
    surface.printLine(QStringLiteral("text"));
    QCOMPARE(surface.currentX(), 0.0);
    QCOMPARE(surface.currentY(), 1230.0);
    QCOMPARE(surface.marks().at(0).x, 600.0);
    QCOMPARE(surface.marks().at(0).y, 1000.0);
}

void TestPrintSurface::lineHeightFollowsTheFontSize()
{
    RecordingSurface surface;
    QCOMPARE(surface.lineHeight(), 230.0);
    surface.setFontSize(9);
    QCOMPARE(surface.lineHeight(), 207.0);
    surface.setFontSize(20);
    surface.setFontBold(true);
    surface.printLine(QStringLiteral("Heading"));
    QCOMPARE(surface.currentY(), 460.0);
    QCOMPARE(surface.marks().at(0).fontSize, 20.0);
    QVERIFY(surface.marks().at(0).bold);
}

void TestPrintSurface::boxAndLineMoveThePositionToTheirEnd()
{
    RecordingSurface surface;
    surface.fillBox(100, 505, 11600, 520);
    QCOMPARE(surface.currentX(), 11600.0);
    QCOMPARE(surface.currentY(), 520.0);
    surface.drawLine(100, 700, 8000, 700, 20);
    QCOMPARE(surface.currentX(), 8000.0);
    QCOMPARE(surface.currentY(), 700.0);
    QCOMPARE(surface.marks().at(1).thickness, 20.0);
}

void TestPrintSurface::lineCrossingTheBottomStartsANewPageAtItsTop()
{
    RecordingSurface surface(1000);
    surface.setCurrentY(770);
    surface.printLine(QStringLiteral("fits")); // 770 + 230 = 1000: ends on the bottom
    surface.printLine(QStringLiteral("next"));
    surface.printLine(QStringLiteral("after"));
    const auto &marks = surface.marks();
    QCOMPARE(marks.at(0).page, 1);
    QCOMPARE(marks.at(0).y, 770.0);
    QCOMPARE(marks.at(1).page, 2);
    QCOMPARE(marks.at(1).y, 0.0);
    QCOMPARE(marks.at(2).page, 2);
    QCOMPARE(marks.at(2).y, 230.0);
    QCOMPARE(surface.pageCount(), 2);
    // Positions run on through the document.
    QCOMPARE(surface.currentY(), 770.0 + 3 * 230);
}

void TestPrintSurface::columnsOfOneLineStayOnTheirPage()
{
    RecordingSurface surface(1000);
    surface.setCurrentY(760);
    surface.printLine(QStringLiteral("first column")); // ends at 990
    // The next columns of the line, a few twips lower each, end past the
    // bottom; they belong to the line and stay with it.
    surface.setCurrentY(772);
    surface.printLine(QStringLiteral("second column"));
    surface.setCurrentY(784);
    surface.printLine(QStringLiteral("last column"));
    const auto &marks = surface.marks();
    QCOMPARE(marks.at(1).page, 1);
    QCOMPARE(marks.at(1).y, 772.0);
    QCOMPARE(marks.at(2).page, 1);
    QCOMPARE(marks.at(2).y, 784.0);
    // The next line, a whole line lower, starts the new page.
    surface.printLine(QStringLiteral("next line"));
    QCOMPARE(marks.at(3).page, 2);
    QCOMPARE(marks.at(3).y, 0.0);
}

void TestPrintSurface::firstLineBelowAFreshPageIsNotPrecededByABlankPage()
{
    RecordingSurface surface(1000);
    surface.setCurrentY(5000);
    surface.printLine(QStringLiteral("far down"));
    QCOMPARE(surface.pageCount(), 1);
    QCOMPARE(surface.marks().at(0).y, 0.0);
}

void TestPrintSurface::pdfHoldsEveryPageAndItsTexts()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("lines.pdf"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Lines"));
        QVERIFY(pdf.isOpen());
        pdf.setFontSize(9);
        // A 9-point line is about 207 twips: 73 fit in the 15,264 twips of a
        // Letter page within its margins.
        for (int n = 1; n <= 200; ++n) {
            pdf.setCurrentX(100);
            pdf.printLine(QStringLiteral("Line %1").arg(n));
        }
        QVERIFY2(pdf.endDoc(), qPrintable(pdf.errorText()));
        QCOMPARE(pdf.pageCount(), 3);
    }
    QCOMPARE(pdfPageCount(path), 3);
    const QStringList lines = contentLines(pdfText(path));
    QCOMPARE(lines.size(), 200);
    QCOMPARE(lines.first(), QStringLiteral("Line 1"));
    QCOMPARE(lines.last(), QStringLiteral("Line 200"));
}

void TestPrintSurface::abortedPdfLeavesTheOldFileAsItWas()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("kept.pdf"));
    QVERIFY(writeBytes(path, "the old printout"));
    {
        PdfFileSurface pdf(path, QStringLiteral("Kept"));
        pdf.printLine(QStringLiteral("never written"));
        pdf.abortDoc();
    }
    QCOMPARE(fileBytes(path), QByteArray("the old printout"));
    QCOMPARE(QDir(QFileInfo(path).path()).entryList(QDir::Files),
             QStringList{QStringLiteral("kept.pdf")});
}

void TestPrintSurface::pdfInAMissingDirectoryFailsWithItsName()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("missing/out.pdf"));
    PdfFileSurface pdf(path, QStringLiteral("Missing"));
    QVERIFY(!pdf.isOpen());
    QVERIFY(!pdf.endDoc());
    QVERIFY2(pdf.errorText().startsWith(QDir::toNativeSeparators(path) +
                                        QStringLiteral(" cannot be written: ")),
             qPrintable(pdf.errorText()));
    QVERIFY(!QFile::exists(path));
}

QTEST_MAIN(TestPrintSurface)
#include "tst_printsurface.moc"
