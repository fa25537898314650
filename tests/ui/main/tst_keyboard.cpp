#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QFileInfo>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

const QString InDat = QStringLiteral("In.dat");
const QString LnDat = QStringLiteral("Ln.dat");

ScenarioRecord recordOnDisk(const QString &fileName, int n)
{
    return decodeRecord(QByteArrayView(fileBytes(fileName)).sliced((n - 1) * 148, 148));
}

ScenarioRecord blankRecord()
{
    ScenarioRecord record;
    record.makeBlank();
    return record;
}

// A key pressed where the keyboard focus is now, as a person would.
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QWidget *focus = QApplication::focusWidget();
    QVERIFY(focus);
    QTest::keyClick(focus, key, modifiers);
}

// Starts editing a cell with the mouse and replaces its text.
void startTyping(GridCell *cell, const QString &text)
{
    QTest::mouseClick(cell, Qt::LeftButton);
    QTest::keyClick(cell, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(cell, text);
}

} // namespace

class TestKeyboard : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void toolTipsNameTheKeys_data();
    void toolTipsNameTheKeys();
    void ctrlNAddsABlankScenario();
    void ctrlDCopiesTheSelectedScenario();
    void deleteKeyDeletesTheSelectedScenarioButNeverText();
    void ctrlZUndoesTheLastChange();
    void altUpAndAltDownMoveTheSelectedScenario();
    void ctrl1AndCtrl2SwitchLists();
    void ctrlMShowsTheScheduleOfTheSelectedScenario();
    void ctrlPPrintsTheList();
    void ctrlQCloses();
    void keysOfDisabledCommandsDoNothing();
    void upAndDownSaveAndEditTheSameColumnInTheNextRow();
    void downFromTheBottomRowScrollsTheList();
    void upFromTheTopRowOfAScrolledListScrollsBack();
    void ctrlRightAndCtrlLeftSaveAndEditTheNextColumn();
    void pageDownAndPageUpTurnTheListByAPage();
};

void TestKeyboard::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestKeyboard::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestKeyboard::toolTipsNameTheKeys_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("AddNew")
        << QStringLiteral("AddNew")
        << QStringLiteral("Click here to add a new, blank, investment or loan scenario. (Ctrl+N)");
    QTest::newRow("Copy") << QStringLiteral("Copy")
                          << QStringLiteral("Click here to add a copy of the currently selected "
                                            "investment or loan scenario. (Ctrl+D)");
    QTest::newRow("Delete") << QStringLiteral("Delete")
                            << QStringLiteral("Click here to delete the currently selected "
                                              "investment or loan scenario. (Del)");
    QTest::newRow("Undo") << QStringLiteral("Undo")
                          << QStringLiteral("Click here to undo the last change.  (Last 10 "
                                            "changes kept during current session.) (Ctrl+Z)");
    QTest::newRow("MoveUp") << QStringLiteral("MoveUp")
                            << QStringLiteral("Click here to move the currently selected "
                                              "investment or loan scenario up one place in the "
                                              "list. (Alt+Up)");
    QTest::newRow("MoveDown") << QStringLiteral("MoveDown")
                              << QStringLiteral("Click here to move the currently selected "
                                                "investment or loan scenario down one place in "
                                                "the list. (Alt+Down)");
    QTest::newRow("Amort") << QStringLiteral("Amort")
                           << QStringLiteral("Click here to show a detailed amortization of the "
                                             "currently selected investment or loan scenario and "
                                             "to be able to print it. (Ctrl+M)");
    QTest::newRow("Print") << QStringLiteral("Print")
                           << QStringLiteral("Click here to print out the entire list of "
                                             "investment or loan scenarios. (Ctrl+P)");
    QTest::newRow("cmdExit") << QStringLiteral("cmdExit")
                             << QStringLiteral("Click here to exit.  You don't have to save.  All "
                                               "changes are saved as you make them. (Ctrl+Q)");
    QTest::newRow("Command2") << QStringLiteral("Command2")
                              << QStringLiteral("Click here to exit.  You don't have to save.  "
                                                "All changes are saved as you make them.");
    QTest::newRow("Investments") << QStringLiteral("Investments")
                                 << QStringLiteral(
                                        "Click here to look at \"Investment\" scenarios. (Ctrl+1)");
    QTest::newRow("Loans") << QStringLiteral("Loans")
                           << QStringLiteral("Click here to look at \"Loan\" scenarios. (Ctrl+2)");
}

void TestKeyboard::toolTipsNameTheKeys()
{
    QFETCH(QString, control);
    QFETCH(QString, toolTip);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    QCOMPARE(fixture.find(control)->toolTip(), toolTip);
}

void TestKeyboard::ctrlNAddsABlankScenario()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    press(Qt::Key_N, Qt::ControlModifier);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({retirement(), blankRecord()}));
    QCOMPARE(fixture.sel(2)->text(), QStringLiteral("2"));
}

void TestKeyboard::ctrlDCopiesTheSelectedScenario()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(QStringLiteral("One")), retirement(QStringLiteral("Two"))}));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    press(Qt::Key_D, Qt::ControlModifier);
    QCOMPARE(fixture.fileBytes(InDat),
             recordsBytes({retirement(QStringLiteral("One")), retirement(QStringLiteral("Two")),
                           retirement(QStringLiteral("Two"))}));
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
}

void TestKeyboard::deleteKeyDeletesTheSelectedScenarioButNeverText()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(QStringLiteral("One")), retirement(QStringLiteral("Two"))}));
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    press(Qt::Key_Delete);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({retirement(QStringLiteral("Two"))}));
    QVERIFY(!fixture.command(QStringLiteral("Delete"))->isEnabled());

    // In a cell the key deletes a character, and leaving saves that.
    GridCell *desc = fixture.cell(QStringLiteral("Desc"), 1);
    QTest::mouseClick(desc, Qt::LeftButton);
    QTest::keyClick(desc, Qt::Key_Home);
    press(Qt::Key_Delete);
    QCOMPARE(desc->text(), QStringLiteral("wo"));
    press(Qt::Key_Return);
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 1)), QStringLiteral("wo"));
    QCOMPARE(QFileInfo(InDat).size(), 148);
}

void TestKeyboard::ctrlZUndoesTheLastChange()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    startTyping(fixture.cell(QStringLiteral("Years"), 1), QStringLiteral("20"));
    press(Qt::Key_Return);
    QVERIFY(recordOnDisk(InDat, 1).Years == 20.0);
    press(Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({retirement()}));
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestKeyboard::altUpAndAltDownMoveTheSelectedScenario()
{
    MainWindowFixture fixture;
    const ScenarioRecord one = retirement(QStringLiteral("One"));
    const ScenarioRecord two = retirement(QStringLiteral("Two"));
    const ScenarioRecord three = retirement(QStringLiteral("Three"));
    QVERIFY(fixture.start({one, two, three}));
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    press(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({two, one, three}));
    press(Qt::Key_Down, Qt::AltModifier);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({two, three, one}));
    QCOMPARE(fixture.session().current().SelRow, qint16(3));
    press(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({two, one, three}));
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
}

void TestKeyboard::ctrl1AndCtrl2SwitchLists()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    press(Qt::Key_2, Qt::ControlModifier);
    QVERIFY(!fixture.session().InvMode);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("House"));
    QCOMPARE(fixture.cell(QStringLiteral("Yield"), 0)->text(), QStringLiteral("Rate"));
    press(Qt::Key_1, Qt::ControlModifier);
    QVERIFY(fixture.session().InvMode);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Retirement"));
}

void TestKeyboard::ctrlMShowsTheScheduleOfTheSelectedScenario()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(), retirement(QStringLiteral("Second"))}));
    QList<int> shown;
    fixture.window().setScheduleOpener([&shown](ListKind list, int record) {
        QCOMPARE(list, ListKind::Investments);
        shown << record;
    });
    press(Qt::Key_M, Qt::ControlModifier);
    QVERIFY(shown.isEmpty());
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    press(Qt::Key_M, Qt::ControlModifier);
    QCOMPARE(shown, QList<int>{2});
}

void TestKeyboard::ctrlPPrintsTheList()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    fixture.boxes().expect();
    press(Qt::Key_P, Qt::ControlModifier);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("There are no investment scenarios to print.")});
}

void TestKeyboard::ctrlQCloses()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    // What is being typed is saved on the way out.
    startTyping(fixture.cell(QStringLiteral("Payment"), 1), QStringLiteral("125"));
    press(Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(!fixture.window().isVisible());
    QVERIFY(recordOnDisk(InDat, 1).Payment == 125.0);
}

void TestKeyboard::keysOfDisabledCommandsDoNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(QStringLiteral("One")), retirement(QStringLiteral("Two"))}));
    QList<int> shown;
    fixture.window().setScheduleOpener([&shown](ListKind, int record) { shown << record; });
    const QByteArray before = fixture.fileBytes(InDat);
    for (const auto &[key, modifiers] :
         {std::pair(Qt::Key_D, Qt::ControlModifier), std::pair(Qt::Key_Delete, Qt::NoModifier),
          std::pair(Qt::Key_Z, Qt::ControlModifier), std::pair(Qt::Key_Up, Qt::AltModifier),
          std::pair(Qt::Key_Down, Qt::AltModifier), std::pair(Qt::Key_M, Qt::ControlModifier)})
        press(key, modifiers);
    QCOMPARE(fixture.fileBytes(InDat), before);
    QVERIFY(shown.isEmpty());
    QVERIFY(fixture.window().isVisible());
}

void TestKeyboard::upAndDownSaveAndEditTheSameColumnInTheNextRow()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(5)));
    startTyping(fixture.cell(QStringLiteral("Payment"), 3), QStringLiteral("250"));
    press(Qt::Key_Down);
    QVERIFY(recordOnDisk(InDat, 3).Payment == 250.0);
    GridCell *below = fixture.cell(QStringLiteral("Payment"), 4);
    QCOMPARE(QApplication::focusWidget(), below);
    QVERIFY(below->hasEditLook());
    QVERIFY(!fixture.cell(QStringLiteral("Payment"), 3)->hasEditLook());
    QCOMPARE(below->text(), QStringLiteral("100"));

    QTest::keyClick(below, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(below, QStringLiteral("75"));
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    QVERIFY(recordOnDisk(InDat, 4).Payment == 75.0);
    QCOMPARE(QApplication::focusWidget(), fixture.cell(QStringLiteral("Payment"), 2));
    QVERIFY(fixture.cell(QStringLiteral("Payment"), 2)->hasEditLook());
    // Passing through a row without typing changes nothing there.
    QVERIFY(recordOnDisk(InDat, 3).Payment == 250.0);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 2);

    // Up from the first record stays where it is.
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    QCOMPARE(QApplication::focusWidget(), fixture.cell(QStringLiteral("Payment"), 1));
    QVERIFY(fixture.cell(QStringLiteral("Payment"), 1)->hasEditLook());
}

void TestKeyboard::downFromTheBottomRowScrollsTheList()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    startTyping(fixture.cell(QStringLiteral("Desc"), 14), QStringLiteral("Fourteenth"));
    press(Qt::Key_Down);
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 14)), QStringLiteral("Fourteenth"));
    QCOMPARE(fixture.session().current().TopRow, qint16(2));
    QCOMPARE(fixture.scrollBar()->value(), 2);
    GridCell *bottom = fixture.cell(QStringLiteral("Desc"), 14);
    QCOMPARE(QApplication::focusWidget(), bottom);
    QVERIFY(bottom->hasEditLook());
    QCOMPARE(bottom->text(), QStringLiteral("Plan 15"));
    QTest::keyClick(bottom, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(bottom, QStringLiteral("Fifteenth"));
    press(Qt::Key_Return);
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 15)), QStringLiteral("Fifteenth"));
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 16)), QStringLiteral("Plan 16"));
}

void TestKeyboard::upFromTheTopRowOfAScrolledListScrollsBack()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    fixture.scrollBar()->setValue(5);
    startTyping(fixture.cell(QStringLiteral("Years"), 1), QStringLiteral("7"));
    press(Qt::Key_Up);
    QVERIFY(recordOnDisk(InDat, 5).Years == 7.0);
    QCOMPARE(fixture.session().current().TopRow, qint16(4));
    QCOMPARE(QApplication::focusWidget(), fixture.cell(QStringLiteral("Years"), 1));
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("4"));
    QVERIFY(fixture.cell(QStringLiteral("Years"), 1)->hasEditLook());
}

void TestKeyboard::ctrlRightAndCtrlLeftSaveAndEditTheNextColumn()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(2), {mortgage()}));
    startTyping(fixture.cell(QStringLiteral("Desc"), 2), QStringLiteral("Boat"));
    press(Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 2)), QStringLiteral("Boat"));
    GridCell *amount = fixture.cell(QStringLiteral("InitialAmount"), 2);
    QCOMPARE(QApplication::focusWidget(), amount);
    QVERIFY(amount->hasEditLook());
    press(Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), fixture.cell(QStringLiteral("Yield"), 2));
    press(Qt::Key_Left, Qt::ControlModifier);
    press(Qt::Key_Left, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), fixture.cell(QStringLiteral("Desc"), 2));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);

    // A loan's total interest is never edited: the move stops before it.
    QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Loans")), Qt::LeftButton);
    QTest::mouseClick(fixture.cell(QStringLiteral("PerYear"), 1), Qt::LeftButton);
    press(Qt::Key_Right, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget(), fixture.cell(QStringLiteral("PerYear"), 1));
    QVERIFY(fixture.cell(QStringLiteral("PerYear"), 1)->hasEditLook());
}

void TestKeyboard::pageDownAndPageUpTurnTheListByAPage()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(40)));
    startTyping(fixture.cell(QStringLiteral("Payment"), 2), QStringLiteral("55"));
    press(Qt::Key_PageDown);
    // The edit is saved to its own record before the list turns.
    QVERIFY(recordOnDisk(InDat, 2).Payment == 55.0);
    QVERIFY(recordOnDisk(InDat, 16).Payment == 100.0);
    QCOMPARE(fixture.session().current().TopRow, qint16(15));
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("15"));
    press(Qt::Key_PageDown);
    QCOMPARE(fixture.session().current().TopRow, qint16(27));
    press(Qt::Key_PageUp);
    QCOMPARE(fixture.session().current().TopRow, qint16(13));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
}

QTEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
