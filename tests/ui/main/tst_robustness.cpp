#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

// Records of random bytes: NaNs, infinities, huge and tiny values, payments a
// year of any sign, descriptions of any byte.
QByteArray randomList(QRandomGenerator &random, int records)
{
    QByteArray bytes(records * 148, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(random.bounded(256));
    return bytes;
}

} // namespace

class TestRobustness : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void initTestCase();
    void cleanup();
    void randomListFilesCanBeBrowsedAndEdited();
};

void TestRobustness::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestRobustness::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestRobustness::randomListFilesCanBeBrowsedAndEdited()
{
    QRandomGenerator random(1121);
    MainWindowFixture fixture;
    QVERIFY(writeBytes(QStringLiteral("In.dat"), randomList(random, 20)));
    QVERIFY(writeBytes(QStringLiteral("Ln.dat"), randomList(random, 16) + "tail"));
    QVERIFY(fixture.startWithFiles());
    // Refusals of what is typed below, and nothing else.
    fixture.boxes().allow(
        {QStringLiteral("Error, \"abc\" is not a number"),
         QStringLiteral("Error, \"%\" is not a number"),
         QStringLiteral("Error, the number of payments per year must an integer from 1 to 365")});

    const QStringList typed = {QString(),
                               QStringLiteral("abc"),
                               QStringLiteral("12"),
                               QStringLiteral("-5"),
                               QStringLiteral("1e308"),
                               QStringLiteral("%"),
                               QStringLiteral("99999999999999999999999"),
                               QStringLiteral("0.5")};
    for (const char *list : {"Investments", "Loans"}) {
        QTest::mouseClick(fixture.find(QString::fromLatin1(list)), Qt::LeftButton);
        QScrollBar *scrollBar = fixture.scrollBar();
        for (int top = scrollBar->minimum(); top <= scrollBar->maximum(); top += 3) {
            scrollBar->setValue(top);
            for (int row = 1; row <= 14; ++row)
                QTest::mouseClick(fixture.sel(row), Qt::LeftButton);
        }
        for (int row = 1; row <= 14; row += 4) {
            for (const QString &column : gridColumns()) {
                GridCell *cell = fixture.cell(column, row);
                QTest::mouseClick(cell, Qt::LeftButton);
                QTest::keyClick(cell, Qt::Key_A, Qt::ControlModifier);
                QTest::keyClicks(cell, typed[random.bounded(typed.size())]);
                QTest::keyClick(cell, Qt::Key_Return);
            }
        }
        for (const char *command : {"Copy", "MoveUp", "MoveDown", "Delete", "Undo", "AddNew"}) {
            QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
            QTest::mouseClick(fixture.command(QString::fromLatin1(command)), Qt::LeftButton);
        }
    }
    QVERIFY(fixture.window().isVisible());
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    // The files still hold exactly the records the window counts.
    QCOMPARE(ScenarioFile::countForSize(QFileInfo(QStringLiteral("In.dat")).size()),
             qint64(fixture.session().list(ListKind::Investments).NumRecs()));
    QCOMPARE(ScenarioFile::countForSize(QFileInfo(QStringLiteral("Ln.dat")).size()),
             qint64(fixture.session().list(ListKind::Loans).NumRecs()));
    QVERIFY(fixture.session().list(ListKind::Investments).NumRecs() >= 20);
}

QTEST_MAIN(TestRobustness)
#include "tst_robustness.moc"
