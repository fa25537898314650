#include "fonts.h"
#include "messageboxwatcher.h"
#include "schedulefixture.h"

#include <QApplication>
#include <QPrinter>

using namespace quillet;
using namespace quillet::test;

namespace {

ScenarioRecord mortgage()
{
    return scenario(QStringLiteral("House"), 100000, 0.06, 30, BlankValue, 12);
}

// A key pressed where the keyboard focus is now, as a person would.
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget *focus = QApplication::focusWidget();
    QVERIFY(focus);
    QTest::keyClick(focus, key, modifiers);
}

PrintSeams noPrinter()
{
    PrintSeams seams;
    seams.defaultPrinter = [] {
        return std::unique_ptr<QPrinter>();
    };
    seams.choosePdfFile = [](QWidget *, const QString &) {
        return QString();
    };
    return seams;
}

} // namespace

class TestScheduleKeys : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void ctrlPPrintsAsThePrintButtonDoes();
    void escapeOutsideAnEditClosesAsExitDoes();
    void escapeInAFieldBeingEditedOnlyDropsTheText();
    void pageKeysHomeAndEndMoveThroughTheTable();
    void pageDownWhileEditingSavesTheFieldFirst();

private:
    MessageBoxWatcher m_boxes;
};

void TestScheduleKeys::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestScheduleKeys::init()
{
    m_boxes.clear();
}

void TestScheduleKeys::cleanup()
{
    QApplication::closeAllWindows();
    QVERIFY2(m_boxes.unexpected().isEmpty(),
             qPrintable(QStringLiteral("unexpected message: ") + m_boxes.unexpected().join(u'|')));
}

void TestScheduleKeys::ctrlPPrintsAsThePrintButtonDoes()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    window->setPrintSeams(noPrinter());
    m_boxes.expect();
    press(Qt::Key_P, Qt::ControlModifier);
    // Without a printer Print offers a PDF; declined, nothing is written.
    QCOMPARE(m_boxes.texts(),
             QStringList{QStringLiteral("There is no printer to print on: no printer is "
                                        "installed, or the default printer is not available.\n\n"
                                        "Save the printout as a PDF file instead?")});
    QCOMPARE(window->focusWidget(), fixture.scrollBar());
    QCOMPARE(fixture.button(QStringLiteral("Print"))->toolTip(),
             QStringLiteral("Click here to print out the amortization schedule for this loan "
                            "scenario. (Ctrl+P)"));
}

void TestScheduleKeys::escapeOutsideAnEditClosesAsExitDoes()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    QCOMPARE(QApplication::focusWidget(), fixture.scrollBar());
    press(Qt::Key_Escape);
    QVERIFY(window->isHidden());
    QCOMPARE(fileBytes(LnDat), recordsBytes({mortgage()}));
    QCOMPARE(fixture.button(QStringLiteral("Exit"))->toolTip(),
             QStringLiteral("Click here to exit the amortization schedule. (Esc)"));
}

void TestScheduleKeys::escapeInAFieldBeingEditedOnlyDropsTheText()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    HeaderField *years = fixture.field(QStringLiteral("Years"));
    QTest::mouseClick(years, Qt::LeftButton);
    QTest::keyClick(years, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(years, QStringLiteral("15"));
    press(Qt::Key_Escape);
    QVERIFY(window->isVisible());
    QCOMPARE(years->text(), QStringLiteral("30.0 "));
    QCOMPARE(fileBytes(LnDat), recordsBytes({mortgage()}));
    // Now outside an edit, the next Escape closes the window.
    press(Qt::Key_Escape);
    QVERIFY(window->isHidden());
}

void TestScheduleKeys::pageKeysHomeAndEndMoveThroughTheTable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QScrollBar *bar = fixture.scrollBar();
    press(Qt::Key_PageDown);
    QCOMPARE(bar->value(), 13);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("  13"));
    press(Qt::Key_End);
    QCOMPARE(bar->value(), 349);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral(" 360"));
    press(Qt::Key_PageUp);
    QCOMPARE(bar->value(), 337);
    press(Qt::Key_Home);
    QCOMPARE(bar->value(), 1);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));

    // In a field, Home and End move the cursor in its text.
    HeaderField *payment = fixture.field(QStringLiteral("Payment"));
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_End);
    QCOMPARE(payment->cursorPosition(), payment->text().size());
    QTest::keyClick(payment, Qt::Key_Home);
    QCOMPARE(payment->cursorPosition(), 0);
    QCOMPARE(bar->value(), 1);
}

void TestScheduleKeys::pageDownWhileEditingSavesTheFieldFirst()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    HeaderField *amount = fixture.field(QStringLiteral("InitialAmount"));
    QTest::mouseClick(amount, Qt::LeftButton);
    QTest::keyClick(amount, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(amount, QStringLiteral("120000"));
    press(Qt::Key_PageDown);
    QVERIFY(recordOnDisk(LnDat, 1).InitialAmount == 120000.0);
    QVERIFY(!amount->hasEditLook());
}

QTEST_MAIN(TestScheduleKeys)
#include "tst_schedulekeys.moc"
