#include "fonts.h"
#include "paintersurface.h"
#include "pdftext.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPrinter>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

class TestPainterSurface : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void pdfLeftUnfinishedLeavesTheOldFileAsItWas();
    void pdfWhoseFolderIsMovedAwayFailsAtTheEndNamingTheFile();
    void charactersTheFontLacksAreStillPrinted();
    void printerWritingToAFilePrintsEveryLine();
    void printerThatCannotStartSaysSoAtTheEnd();
};

void TestPainterSurface::pdfLeftUnfinishedLeavesTheOldFileAsItWas()
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

void TestPainterSurface::pdfWhoseFolderIsMovedAwayFailsAtTheEndNamingTheFile()
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

void TestPainterSurface::charactersTheFontLacksAreStillPrinted()
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

void TestPainterSurface::printerWritingToAFilePrintsEveryLine()
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

void TestPainterSurface::printerThatCannotStartSaysSoAtTheEnd()
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

QTEST_MAIN(TestPainterSurface)
#include "tst_paintersurface.moc"
