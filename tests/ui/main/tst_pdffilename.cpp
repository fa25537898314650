#include "printjob.h"

#include <QTest>

using namespace quillet;

// The name offered for a PDF printout, made of a scenario's description.
class TestPdfFileName : public QObject
{
    Q_OBJECT

private slots:
    void nameIsTheTrimmedTextWithUnusableCharactersReplaced_data();
    void nameIsTheTrimmedTextWithUnusableCharactersReplaced();
};

void TestPdfFileName::nameIsTheTrimmedTextWithUnusableCharactersReplaced_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("name");
    QTest::newRow("plain words") << QStringLiteral("House in town")
                                 << QStringLiteral("House in town.pdf");
    QTest::newRow("blanks around") << QStringLiteral("  Car  ") << QStringLiteral("Car.pdf");
    QTest::newRow("every unusable character")
        << QStringLiteral("a/b\\c:d*e?f\"g<h>i|j") << QStringLiteral("a_b_c_d_e_f_g_h_i_j.pdf");
    QTest::newRow("control characters")
        << QStringLiteral("tab\there\x01") << QStringLiteral("tab_here_.pdf");
    QTest::newRow("empty") << QString() << QStringLiteral("Loan Amortization.pdf");
    QTest::newRow("only blanks") << QStringLiteral("   ")
                                 << QStringLiteral("Loan Amortization.pdf");
    // A name starting with a dot would be a hidden file.
    QTest::newRow("leading dot") << QStringLiteral(".hidden")
                                 << QStringLiteral("Loan Amortization.pdf");
    QTest::newRow("dots only") << QStringLiteral("..") << QStringLiteral("Loan Amortization.pdf");
    QTest::newRow("dot inside") << QStringLiteral("v1.2") << QStringLiteral("v1.2.pdf");
}

void TestPdfFileName::nameIsTheTrimmedTextWithUnusableCharactersReplaced()
{
    QFETCH(QString, text);
    QFETCH(QString, name);
    QCOMPARE(pdfFileName(text, QStringLiteral("Loan Amortization")), name);
}

QTEST_GUILESS_MAIN(TestPdfFileName)
#include "tst_pdffilename.moc"
