#include "fonts.h"
#include "messageboxwatcher.h"
#include "recordingfilecalls.h"
#include "schedulefixture.h"

#include <QApplication>
#include <QWheelEvent>

using namespace quillet;
using namespace quillet::test;

namespace {

// 1,000 at 12 % a year with 100 paid in monthly for 10 years: 120 periods.
ScenarioRecord plan()
{
    return scenario(QStringLiteral("Plan"), 1000, 0.12, 10, 100, 12);
}

// Turns the mouse wheel one notch towards the user at a point of the window
// itself, where no control of it lies.
void wheelDownAt(QWidget *window, QPointF position)
{
    QWheelEvent event(position, window->mapToGlobal(position), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(window, &event);
}

} // namespace

// Schedule windows at their edges: a record that cannot be read, the wheel
// between the table's figures, Escape in a field that is not being edited.
class TestScheduleEdges : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void recordThatCannotBeReadIsExplainedAndShowsAnEmptySchedule();
    void wheelOverTheTableAreaPagesTheTableAndAboveItDoesNot();
    void escapeInAFieldOutsideAnEditClosesTheWindow();
    void pageKeysAndTheWheelLeaveTheEditOfAScheduleThatFits();

private:
    MessageBoxWatcher m_boxes;
};

void TestScheduleEdges::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestScheduleEdges::init()
{
    m_boxes.clear();
}

void TestScheduleEdges::cleanup()
{
    QApplication::closeAllWindows();
    QVERIFY2(m_boxes.unexpected().isEmpty(),
             qPrintable(QStringLiteral("unexpected message: ") + m_boxes.unexpected().join(u'|')));
}

void TestScheduleEdges::recordThatCannotBeReadIsExplainedAndShowsAnEmptySchedule()
{
    RecordingFileCalls calls;
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    calls.failing = QStringList{QStringLiteral("pread In.dat")};
    m_boxes.expect();

    QVERIFY(fixture.open(ListKind::Investments, 1));
    QCOMPARE(m_boxes.texts(),
             QStringList{QStringLiteral("Could not read record 1 of In.dat: Input/output error")});
    QCOMPARE(m_boxes.titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.field(QStringLiteral("Desc"))->text(), QString());
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QString());
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), QString());
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
}

void TestScheduleEdges::wheelOverTheTableAreaPagesTheTableAndAboveItDoesNot()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    const int first = fixture.scrollBar()->value();

    // Just above the table: nothing moves.
    wheelDownAt(window, QPointF(2, 220));
    QCOMPARE(fixture.scrollBar()->value(), first);

    // The left edge of the table, 2 pixels below its top line (3,330 twips,
    // 222 pixels, from the top).
    wheelDownAt(window, QPointF(2, 224));
    QVERIFY2(fixture.scrollBar()->value() > first,
             qPrintable(QString::number(fixture.scrollBar()->value())));
}

void TestScheduleEdges::escapeInAFieldOutsideAnEditClosesTheWindow()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    HeaderField *amount = fixture.field(QStringLiteral("InitialAmount"));
    amount->setFocus(Qt::OtherFocusReason);
    QVERIFY(amount->hasFocus());

    QTest::keyClick(amount, Qt::Key_Escape);
    QVERIFY(!window->isVisible());
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
}

void TestScheduleEdges::pageKeysAndTheWheelLeaveTheEditOfAScheduleThatFits()
{
    // Six periods: the table shows them all, without a scroll bar.
    ScenarioRecord shortPlan = plan();
    shortPlan.Years = 0.5;
    ScheduleFixture fixture;
    QVERIFY(fixture.start({shortPlan}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    QVERIFY(fixture.scrollBar()->isHidden());
    HeaderField *payment = fixture.field(QStringLiteral("Payment"));
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("250"));

    // There is nothing to page to: the edit goes on, nothing is saved.
    for (const Qt::Key key : {Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Home})
        QTest::keyClick(payment, key);
    wheelDownAt(fixture.cell(QStringLiteral("Earnings"), 3), QPointF(2, 2));
    QCOMPARE(QApplication::focusWidget(), payment);
    QVERIFY(payment->hasEditLook());
    QCOMPARE(payment->text(), QStringLiteral("250"));
    QCOMPARE(fileBytes(InDat), recordsBytes({shortPlan}));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));

    // Leaving the field saves it as ever.
    QTest::keyClick(payment, Qt::Key_Return);
    ScenarioRecord expected = shortPlan;
    expected.Payment = 250;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
}

QTEST_MAIN(TestScheduleEdges)
#include "tst_scheduleedges.moc"
