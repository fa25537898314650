#include "fonts.h"
#include "helptexts.h"
#include "mainwindowfixture.h"
#include "recordingfilecalls.h"

#include <QApplication>
#include <QFileInfo>
#include <QTest>
#include <QWheelEvent>

#include <cerrno>

using namespace quillet;
using namespace quillet::test;

namespace {

const QString InDat = QStringLiteral("In.dat");
const QString LnDat = QStringLiteral("Ln.dat");

ScenarioRecord recordOnDisk(const QString &fileName, int n)
{
    return decodeRecord(QByteArrayView(fileBytes(fileName)).sliced((n - 1) * 148, 148));
}

// One notch of the wheel (negative turns the list down) over a widget.
void turnWheel(QWidget *over, int notches)
{
    const QPoint local = over->rect().center();
    QWheelEvent wheel(local, over->mapToGlobal(local), QPoint(), QPoint(0, 120 * notches),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(over, &wheel);
}

// Clicks a cell, replaces its text by typing, and leaves it with Enter.
void typeInto(GridCell *cell, const QString &text)
{
    QTest::mouseClick(cell, Qt::LeftButton);
    QTest::keyClick(cell, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(cell, text);
    QTest::keyClick(cell, Qt::Key_Return);
}

std::vector<ScenarioRecord> plans(int count, ScenarioRecord (*make)(const QString &))
{
    std::vector<ScenarioRecord> records;
    for (int n = 1; n <= count; ++n)
        records.push_back(make(QStringLiteral("Plan %1").arg(n)));
    return records;
}

} // namespace

class TestSafety : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();

    void wheelOverTheScrollBarWhileEditingSavesTheTextToItsOwnRecordOnce();
    void clickOnTheScrollBarWhileEditingSavesTheTextToItsOwnRecordOnce();
    void wheelOverTheGridScrollsTheList();
    void wheelOverTheCellBeingEditedEndsTheEditFirst();
    void undoAfterAMoveRestoresTheScenarioWhereItNowIs_data();
    void undoAfterAMoveRestoresTheScenarioWhereItNowIs();
    void switchingListsKeepsEachListsTopRow();
    void deleteInAScrolledListKeepsTheRowsInStepWithTheFile();
    void failedActionIsExplainedAndTheNextOneWorks_data();
    void failedActionIsExplainedAndTheNextOneWorks();
    void listThatCannotBeWrittenIsShownAndRefusesEveryChange();
    void listThatCannotBeUsedIsEmptyAndTheOtherWorks();
    void computedCellIsBoldAlsoWithoutAValue();
    void digitsTypedIntoARateLandBeforeItsPercentSign();
    void textWiderThanItsCellIsElidedAndGivenWhole();
};

void TestSafety::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestSafety::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestSafety::wheelOverTheScrollBarWhileEditingSavesTheTextToItsOwnRecordOnce()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = plans(20, retirement);
    QVERIFY(fixture.start(records));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 3);
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("250"));

    turnWheel(fixture.scrollBar(), -1);

    // Record 3 has the payment typed for it; its solved future value stays
    // blank on disk, and no other record changed.
    ScenarioRecord expected = records[2];
    expected.Payment = 250;
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 3)), encodeRecord(expected));
    for (int n : {1, 2, 4, 5, 6, 7, 20})
        QCOMPARE(encodeRecord(recordOnDisk(InDat, n)), encodeRecord(records[n - 1]));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QCOMPARE(fixture.session().current().undo.newest().RecNo, qint16(3));
    QCOMPARE(fixture.session().current().TopRow, qint16(4));
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("4"));
    QCOMPARE(payment->text(), QStringLiteral("$100.00 "));
    QVERIFY(!payment->hasEditLook());

    // Leaving the cell later writes nothing more.
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 6)), encodeRecord(records[5]));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
}

void TestSafety::clickOnTheScrollBarWhileEditingSavesTheTextToItsOwnRecordOnce()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = plans(20, retirement);
    QVERIFY(fixture.start(records));
    GridCell *desc = fixture.cell(QStringLiteral("Desc"), 3);
    typeInto(desc, QStringLiteral("Typed"));
    QTest::mouseClick(desc, Qt::LeftButton);
    QTest::keyClick(desc, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(desc, QStringLiteral("Boat"));

    QScrollBar *bar = fixture.scrollBar();
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() / 2, bar->height() - 20));

    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 3)), QStringLiteral("Boat"));
    QCOMPARE(fixture.session().current().TopRow, qint16(7));
    for (int n = 4; n <= 20; ++n)
        QCOMPARE(encodeRecord(recordOnDisk(InDat, n)), encodeRecord(records[n - 1]));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 2);
}

void TestSafety::wheelOverTheGridScrollsTheList()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(plans(20, retirement)));
    turnWheel(fixture.cell(QStringLiteral("Years"), 5), -1);
    QCOMPARE(fixture.session().current().TopRow, qint16(4));
    QCOMPARE(fixture.scrollBar()->value(), 4);
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("4"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Plan 4"));
    turnWheel(fixture.sel(2), 1);
    QCOMPARE(fixture.session().current().TopRow, qint16(1));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Plan 1"));
}

void TestSafety::wheelOverTheCellBeingEditedEndsTheEditFirst()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = plans(20, retirement);
    QVERIFY(fixture.start(records));
    GridCell *years = fixture.cell(QStringLiteral("Years"), 2);
    QTest::mouseClick(years, Qt::LeftButton);
    QTest::keyClick(years, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(years, QStringLiteral("15"));
    turnWheel(years, -2);

    QVERIFY(recordOnDisk(InDat, 2).Years == 15.0);
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 8)), encodeRecord(records[7]));
    QCOMPARE(fixture.session().current().TopRow, qint16(7));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
}

void TestSafety::undoAfterAMoveRestoresTheScenarioWhereItNowIs_data()
{
    QTest::addColumn<bool>("loans");
    QTest::newRow("investments") << false;
    QTest::newRow("loans") << true;
}

void TestSafety::undoAfterAMoveRestoresTheScenarioWhereItNowIs()
{
    QFETCH(bool, loans);
    MainWindowFixture fixture;
    const ScenarioRecord first =
        loans ? mortgage(QStringLiteral("Retirement")) : retirement(QStringLiteral("Retirement"));
    QVERIFY(loans ? fixture.start({}, {first}) : fixture.start({first}));
    const QString file = loans ? LnDat : InDat;

    QTest::mouseClick(fixture.command(QStringLiteral("AddNew")), Qt::LeftButton);
    typeInto(fixture.cell(QStringLiteral("Desc"), 2), QStringLiteral("Beta"));
    typeInto(fixture.cell(QStringLiteral("Desc"), 1), QStringLiteral("Alpha"));
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("MoveDown")), Qt::LeftButton);
    QCOMPARE(trimmedDesc(recordOnDisk(file, 1)), QStringLiteral("Beta"));
    QCOMPARE(trimmedDesc(recordOnDisk(file, 2)), QStringLiteral("Alpha"));

    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    ScenarioRecord blankBeta;
    blankBeta.makeBlank();
    setDescText(blankBeta, QStringLiteral("Beta"));
    QCOMPARE(encodeRecord(recordOnDisk(file, 1)), encodeRecord(blankBeta));
    QCOMPARE(encodeRecord(recordOnDisk(file, 2)), encodeRecord(first));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Beta"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Retirement"));

    // The older change, Beta typed into the new row, follows it too.
    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    ScenarioRecord blank;
    blank.makeBlank();
    QCOMPARE(encodeRecord(recordOnDisk(file, 1)), encodeRecord(blank));
    QCOMPARE(encodeRecord(recordOnDisk(file, 2)), encodeRecord(first));
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestSafety::switchingListsKeepsEachListsTopRow()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(plans(30, retirement), plans(20, mortgage)));
    fixture.scrollBar()->setValue(17);
    QCOMPARE(fixture.session().list(ListKind::Investments).TopRow, qint16(17));

    QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Loans")), Qt::LeftButton);
    QCOMPARE(fixture.session().list(ListKind::Loans).TopRow, qint16(1));
    QCOMPARE(fixture.session().list(ListKind::Investments).TopRow, qint16(17));
    QCOMPARE(fixture.scrollBar()->maximum(), 7);
    QCOMPARE(fixture.scrollBar()->value(), 1);
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("1"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Plan 1"));

    QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Investments")), Qt::LeftButton);
    QCOMPARE(fixture.session().list(ListKind::Investments).TopRow, qint16(17));
    QCOMPARE(fixture.session().list(ListKind::Loans).TopRow, qint16(1));
    QCOMPARE(fixture.scrollBar()->value(), 17);
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("17"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Plan 17"));
}

void TestSafety::deleteInAScrolledListKeepsTheRowsInStepWithTheFile()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(plans(16, retirement)));
    fixture.scrollBar()->setValue(3);
    QTest::mouseClick(fixture.sel(14), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(16));
    QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    QCOMPARE(QFileInfo(InDat).size(), 15 * 148);

    for (const int top : {2, 3, 1, 3}) {
        fixture.scrollBar()->setValue(top);
        for (int row = 1; row <= 14; ++row) {
            const int record = top + row - 1;
            if (record <= 15) {
                QVERIFY(fixture.sel(row)->isVisible());
                QCOMPARE(fixture.sel(row)->text(), QString::number(record));
                QCOMPARE(fixture.cell(QStringLiteral("Desc"), row)->text(),
                         QStringLiteral("Plan %1").arg(record));
            } else {
                QVERIFY(!fixture.sel(row)->isVisible());
                QCOMPARE(fixture.sel(row)->text(), QString());
                QCOMPARE(fixture.cell(QStringLiteral("Desc"), row)->text(), QString());
            }
        }
    }
}

void TestSafety::failedActionIsExplainedAndTheNextOneWorks_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QByteArray>("after");
    const auto bytes = [](std::initializer_list<int> plans) {
        QByteArray all;
        for (const int n : plans)
            all += encodeRecord(retirement(QStringLiteral("Plan %1").arg(n)));
        return all;
    };
    QByteArray edited = bytes({1, 2, 3});
    {
        ScenarioRecord record = retirement(QStringLiteral("Plan 2"));
        record.Payment = 75;
        edited = bytes({1}) + encodeRecord(record) + bytes({3});
    }
    ScenarioRecord blank;
    blank.makeBlank();
    QTest::newRow("edit") << QStringLiteral("edit") << QStringLiteral("fdatasync In.dat")
                          << QStringLiteral(
                                 "Could not write record 2 of In.dat: Input/output error")
                          << edited;
    QTest::newRow("add") << QStringLiteral("AddNew") << QStringLiteral("pwrite In.dat")
                         << QStringLiteral("Could not write record 4 of In.dat: Input/output error")
                         << bytes({1, 2, 3}) + encodeRecord(blank);
    // The second copy is of the working record as it stands: the last row drawn.
    QTest::newRow("copy") << QStringLiteral("Copy") << QStringLiteral("pwrite In.dat")
                          << QStringLiteral(
                                 "Could not write record 4 of In.dat: Input/output error")
                          << bytes({1, 2, 3, 3});
    QTest::newRow("delete") << QStringLiteral("Delete") << QStringLiteral("rename tmpil.dat In.dat")
                            << QStringLiteral("Could not replace In.dat: Input/output error")
                            << bytes({1, 3});
    QTest::newRow("move up") << QStringLiteral("MoveUp") << QStringLiteral("fdatasync In.dat")
                             << QStringLiteral(
                                    "Could not write record 1 of In.dat: Input/output error")
                             << bytes({2, 1, 3});
    QTest::newRow("move down") << QStringLiteral("MoveDown") << QStringLiteral("fdatasync In.dat")
                               << QStringLiteral(
                                      "Could not write record 3 of In.dat: Input/output error")
                               << bytes({1, 3, 2});
    QTest::newRow("undo") << QStringLiteral("Undo") << QStringLiteral("rename tmpil.dat In.dat")
                          << QStringLiteral("Could not replace In.dat: Input/output error")
                          << bytes({1, 2, 3});
}

void TestSafety::failedActionIsExplainedAndTheNextOneWorks()
{
    QFETCH(QString, action);
    QFETCH(QString, failing);
    QFETCH(QString, message);
    QFETCH(QByteArray, after);
    RecordingFileCalls calls;
    MainWindowFixture fixture;
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    QVERIFY(fixture.start(plans(3, retirement)));
    if (action == QStringLiteral("Undo")) {
        // Something to undo: the delete of record 2.
        QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
        QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    }
    const QByteArray before = fixture.fileBytes(InDat);
    const int undoBefore = fixture.session().current().undo.UndoCount();

    const auto act = [&] {
        if (action == QStringLiteral("edit")) {
            typeInto(fixture.cell(QStringLiteral("Payment"), 2), QStringLiteral("75"));
            return;
        }
        if (action != QStringLiteral("AddNew") && action != QStringLiteral("Undo") &&
            fixture.session().current().SelRow != 2)
            QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
        QTest::mouseClick(fixture.command(action), Qt::LeftButton);
    };
    calls.failing = QStringList{failing};
    fixture.boxes().expect();
    act();
    QCOMPARE(fixture.boxes().texts(), QStringList{message});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.fileBytes(InDat), before);
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    QCOMPARE(fixture.session().current().undo.UndoCount(), undoBefore);
    QVERIFY(fixture.session().current().file.isOpen());

    // Once the cause is gone the same action works, without a restart.
    calls.failing.clear();
    QVERIFY(QTest::qWaitForWindowActive(&fixture.window()));
    act();
    QCOMPARE(fixture.boxes().texts(), QStringList{message});
    QCOMPARE(fixture.fileBytes(InDat), after);
    // The other list was never touched.
    QCOMPARE(fixture.fileBytes(LnDat), QByteArray());
}

void TestSafety::listThatCannotBeWrittenIsShownAndRefusesEveryChange()
{
    RecordingFileCalls calls;
    MainWindowFixture fixture;
    calls.failing = QStringList{QStringLiteral("open In.dat")};
    calls.failError = EACCES;
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    fixture.boxes().expect();
    QVERIFY(fixture.start(plans(2, retirement), {mortgage()}));
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral(
                 "In.dat can be read but not written (Permission denied). Its scenarios are "
                 "shown, but changes to them cannot be saved.")});
    const QByteArray before = fixture.fileBytes(InDat);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Plan 2"));
    fixture.boxes().clear();

    const QString refused =
        QStringLiteral("Could not %1 In.dat: the file can only be read (Permission denied).");
    fixture.boxes().expect(5);
    typeInto(fixture.cell(QStringLiteral("Payment"), 1), QStringLiteral("75"));
    QTest::mouseClick(fixture.command(QStringLiteral("AddNew")), Qt::LeftButton);
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Copy")), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("MoveDown")), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(),
             (QStringList{refused.arg(QStringLiteral("write record 1 of")),
                          refused.arg(QStringLiteral("write record 3 of")),
                          refused.arg(QStringLiteral("write record 3 of")),
                          refused.arg(QStringLiteral("write record 2 of")),
                          refused.arg(QStringLiteral("delete record 1 of"))}));
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
    QCOMPARE(fixture.cell(QStringLiteral("Payment"), 1)->text(), QStringLiteral("$100.00 "));

    // The loans list works as ever.
    QVERIFY(QTest::qWaitForWindowActive(&fixture.window()));
    QTest::mouseClick(fixture.find<QPushButton>(QStringLiteral("Loans")), Qt::LeftButton);
    typeInto(fixture.cell(QStringLiteral("Years"), 1), QStringLiteral("15"));
    QVERIFY(recordOnDisk(LnDat, 1).Years == 15.0);
    QVERIFY(fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestSafety::listThatCannotBeUsedIsEmptyAndTheOtherWorks()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    {
        QFile big(InDat);
        QVERIFY(big.open(QIODevice::WriteOnly));
        QVERIFY(big.resize(qint64(32768) * 148));
    }
    QVERIFY(writeBytes(LnDat, recordsBytes({mortgage()})));
    Session session;
    MessageBoxWatcher boxes;
    boxes.expect();
    MainWindow window(session);
    window.Form_Load();
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(boxes.texts(),
             QStringList{QStringLiteral(
                 "In.dat cannot be used: it holds 32768 records, more than the 32767 a list can "
                 "hold. Quillet shows it as an empty list and leaves the file as it is.")});
    // It opens on the loans, the list that has scenarios.
    QVERIFY(!session.InvMode);
    QCOMPARE(window.findChild<QPushButton *>(QStringLiteral("Sel(1)"))->text(),
             QStringLiteral("1"));

    QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("Investments")),
                      Qt::LeftButton);
    QVERIFY(!window.findChild<QPushButton *>(QStringLiteral("Sel(1)"))->isVisible());
    boxes.expect();
    QTest::mouseClick(window.findChild<QToolButton *>(QStringLiteral("AddNew")), Qt::LeftButton);
    QCOMPARE(boxes.texts().last(),
             QStringLiteral("Could not write record 1 of In.dat: the file cannot be used (it "
                            "holds 32768 records, more than the 32767 a list can hold)."));
    QCOMPARE(QFileInfo(InDat).size(), qint64(32768) * 148);
    QVERIFY(boxes.unexpected().isEmpty());
}

void TestSafety::computedCellIsBoldAlsoWithoutAValue()
{
    MainWindowFixture fixture;
    ScenarioRecord record = retirement();
    record.Years = 0; // no future value can be solved
    QVERIFY(fixture.start({record}));
    GridCell *future = fixture.cell(QStringLiteral("FutureValue"), 1);
    QCOMPARE(future->text(), QString());
    QVERIFY(future->isBold());
    QCOMPARE(future->accessibleName(), QStringLiteral("Future Value, row 1, calculated, no value"));
    QVERIFY(!fixture.cell(QStringLiteral("Years"), 1)->isBold());
    QCOMPARE(fixture.cell(QStringLiteral("Years"), 1)->accessibleName(),
             QStringLiteral("Years, row 1"));

    // What is typed into it is bold until the row is drawn again.
    QTest::mouseClick(future, Qt::LeftButton);
    QTest::keyClicks(future, QStringLiteral("5000"));
    QVERIFY(future->isBold());
    QTest::keyClick(future, Qt::Key_Return);
    QVERIFY(!future->isBold());
    QCOMPARE(future->text(), QStringLiteral("$5,000.00 "));
    QCOMPARE(future->accessibleName(), QStringLiteral("Future Value, row 1"));
}

void TestSafety::digitsTypedIntoARateLandBeforeItsPercentSign()
{
    MainWindowFixture fixture;
    ScenarioRecord blankRate = retirement();
    blankRate.IRate = BlankValue;
    blankRate.FutureValue = 50000;
    QVERIFY(fixture.start({blankRate, retirement()}));

    GridCell *rate = fixture.cell(QStringLiteral("Yield"), 1);
    QTest::mouseClick(rate, Qt::LeftButton);
    QCOMPARE(rate->text(), QStringLiteral("%"));
    QCOMPARE(rate->cursorPosition(), 0);
    QTest::keyClicks(rate, QStringLiteral("5"));
    QCOMPARE(rate->text(), QStringLiteral("5%"));
    QTest::keyClick(rate, Qt::Key_Return);
    QVERIFY(recordOnDisk(InDat, 1).IRate == 0.05);

    GridCell *setRate = fixture.cell(QStringLiteral("Yield"), 2);
    QTest::mouseClick(setRate, Qt::LeftButton);
    QCOMPARE(setRate->text(), QStringLiteral("12%"));
    QCOMPARE(setRate->cursorPosition(), 2);
    QTest::keyClicks(setRate, QStringLiteral(".5"));
    QTest::keyClick(setRate, Qt::Key_Return);
    QVERIFY(recordOnDisk(InDat, 2).IRate == 0.125);
}

void TestSafety::textWiderThanItsCellIsElidedAndGivenWhole()
{
    MainWindowFixture fixture;
    ScenarioRecord huge = retirement();
    huge.InitialAmount = 1e300;
    huge.Years = 1e9;
    QVERIFY(fixture.start({huge, retirement()}));

    GridCell *amount = fixture.cell(QStringLiteral("InitialAmount"), 1);
    const QString whole = amount->text();
    QCOMPARE(whole,
             QStringLiteral("$1,000,000,000,000,000,052,504,760,255,204,420,248,704,468,581,108,"
                            "159,154,915,854,115,511,802,457,988,908,195,786,371,375,080,447,864,"
                            "043,704,443,832,883,878,176,942,523,235,360,430,575,644,792,184,786,"
                            "706,982,848,387,200,926,575,803,737,830,233,794,788,090,059,368,953,"
                            "234,970,799,945,081,119,038,967,640,880,074,652,742,780,142,494,579,"
                            "258,788,820,056,842,838,115,669,472,196,386,865,459,400,540,160.00 "));
    QVERIFY(!amount->textFits());
    QVERIFY(amount->shownText().startsWith(QStringLiteral("\u2026")));
    QVERIFY(whole.endsWith(amount->shownText().mid(1)));
    QCOMPARE(amount->accessibleDescription(), whole);
    QCOMPARE(amount->toolTip(),
             QStringLiteral("The amount of money you are starting with.\n") + whole);

    GridCell *years = fixture.cell(QStringLiteral("Years"), 1);
    QCOMPARE(years->text(), QStringLiteral("1,000,000,000.0 "));
    QVERIFY(!years->textFits());
    QVERIFY(years->shownText().startsWith(QStringLiteral("\u2026")));
    QCOMPARE(years->accessibleDescription(), QStringLiteral("1,000,000,000.0 "));

    // A text that fits is shown whole, with the column's tip alone.
    GridCell *plain = fixture.cell(QStringLiteral("InitialAmount"), 2);
    QVERIFY(plain->textFits());
    QCOMPARE(plain->shownText(), QStringLiteral("$1,000.00 "));
    QCOMPARE(plain->accessibleDescription(), QString());
    QCOMPARE(plain->toolTip(), QStringLiteral("The amount of money you are starting with."));

    // Edited, the whole text is there to work on.
    QTest::mouseClick(years, Qt::LeftButton);
    QCOMPARE(years->shownText(), years->text());
}

QTEST_MAIN(TestSafety)
#include "tst_safety.moc"
