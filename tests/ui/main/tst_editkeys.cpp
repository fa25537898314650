#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QTest>
#include <QWheelEvent>

using namespace quillet;
using namespace quillet::test;

namespace {

const QString InDat = QStringLiteral("In.dat");

ScenarioRecord recordOnDisk(int n)
{
    return decodeRecord(QByteArrayView(fileBytes(InDat)).sliced((n - 1) * 148, 148));
}

} // namespace

// Keys that look like the grid's moves but are not: with Shift, Up and Down
// stay in the cell being edited; without Ctrl, Left and Right move the caret;
// in a list that fits the grid, the page keys and the wheel turn nothing.
class TestEditKeys : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void shiftedUpAndDownStayInTheCellBeingEdited();
    void plainLeftAndRightMoveTheCaretAndStayInTheCell();
    void pageKeysAndTheWheelOverAListThatFitsLeaveTheEditAsItIs();
};

void TestEditKeys::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestEditKeys::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestEditKeys::shiftedUpAndDownStayInTheCellBeingEdited()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(5)));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 3);
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("250"));

    QTest::keyClick(payment, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(payment, Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(QApplication::focusWidget(), payment);
    QVERIFY(payment->hasEditLook());
    QCOMPARE(payment->text(), QStringLiteral("250"));
    // Nothing is saved until the cell is left.
    QVERIFY(recordOnDisk(3).Payment == 100.0);

    QTest::keyClick(payment, Qt::Key_Return);
    QVERIFY(recordOnDisk(3).Payment == 250.0);
    QVERIFY(recordOnDisk(4).Payment == 100.0);
    QVERIFY(recordOnDisk(2).Payment == 100.0);
}

void TestEditKeys::plainLeftAndRightMoveTheCaretAndStayInTheCell()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(2)));
    GridCell *desc = fixture.cell(QStringLiteral("Desc"), 2);
    QTest::mouseClick(desc, Qt::LeftButton);
    QTest::keyClick(desc, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(desc, QStringLiteral("Boat"));

    QTest::keyClick(desc, Qt::Key_Left);
    QTest::keyClick(desc, Qt::Key_Left);
    QCOMPARE(QApplication::focusWidget(), desc);
    QCOMPARE(desc->cursorPosition(), 2);
    QTest::keyClicks(desc, QStringLiteral("-"));
    QTest::keyClick(desc, Qt::Key_Right);
    QCOMPARE(QApplication::focusWidget(), desc);
    QCOMPARE(desc->cursorPosition(), 4);

    QTest::keyClick(desc, Qt::Key_Return);
    QCOMPARE(trimmedDesc(recordOnDisk(2)), QStringLiteral("Bo-at"));
    QCOMPARE(trimmedDesc(recordOnDisk(1)), QStringLiteral("Plan 1"));
}

void TestEditKeys::pageKeysAndTheWheelOverAListThatFitsLeaveTheEditAsItIs()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    QVERIFY(fixture.scrollBar()->isHidden());
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 2);
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("250"));

    QTest::keyClick(payment, Qt::Key_PageDown);
    QTest::keyClick(payment, Qt::Key_PageUp);
    GridCell *below = fixture.cell(QStringLiteral("Desc"), 3);
    const QPointF centre = QRectF(below->rect()).center();
    QWheelEvent wheel(centre, below->mapToGlobal(centre), QPoint(), QPoint(0, -120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(below, &wheel);

    QCOMPARE(fixture.session().current().TopRow, qint16(1));
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("1"));
    QCOMPARE(QApplication::focusWidget(), payment);
    QVERIFY(payment->hasEditLook());
    QCOMPARE(payment->text(), QStringLiteral("250"));
    QVERIFY(recordOnDisk(2).Payment == 100.0);

    QTest::keyClick(payment, Qt::Key_Return);
    QVERIFY(recordOnDisk(2).Payment == 250.0);
}

QTEST_MAIN(TestEditKeys)
#include "tst_editkeys.moc"
