#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QTest>

#include <cerrno>

using namespace quillet;
using namespace quillet::test;

namespace {

// Record n of a list file as it is on disk now.
ScenarioRecord recordOnDisk(const QString &fileName, int n)
{
    return decodeRecord(QByteArrayView(fileBytes(fileName)).sliced((n - 1) * 148, 148));
}

int recordsOnDisk(const QString &fileName)
{
    return static_cast<int>(QFileInfo(fileName).size() / 148);
}

const QString InDat = QStringLiteral("In.dat");
const QString LnDat = QStringLiteral("Ln.dat");

// The help box while no cell is edited.
const QString GeneralHelpShown =
    QStringLiteral("Click in the fields of the variables that are known to enter values and "
                   "see more specific help about each field.  The program will calculate and "
                   "display in bold the value that is left blank.\n\nAlso, you may click on "
                   "the row number to the left of an item you wish to copy, delete, move or "
                   "see an amortization schedule.");

// The real file calls, except that one write into a list file fails.
class OneFailingWrite final : public FileCalls
{
public:
    explicit OneFailingWrite(int failing) : m_failing(failing) {}

    ssize_t pwrite(int fd, const char *data, size_t size, off_t offset) override
    {
        if (++m_writes == m_failing) {
            errno = EIO;
            return -1;
        }
        return FileCalls::pwrite(fd, data, size, offset);
    }

private:
    int m_failing;
    int m_writes = 0;
};

} // namespace

class TestEditing : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void initTestCase();
    void cleanup();

    void typicalEditEndToEnd();
    void clickingACellGivesItTheEditLookAndItsHelp();
    void amountsAreEditedAsShown();
    void emptiedCellStoresTheBlankAndIsSolvedInBold();
    void clickingABlankRateShowsPercentAndLeavingStoresTheBlankAgain();
    void escapeDropsWhatWasTypedAndPushesNoUndo();
    void rateIsTypedInPercentWithOrWithoutTheSign_data();
    void rateIsTypedInPercentWithOrWithoutTheSign();
    void amountsAcceptCurrencyTextsAndNegatives_data();
    void amountsAcceptCurrencyTextsAndNegatives();
    void textThatIsNoNumberIsRefusedWithoutWriting();
    void perYearOutsideOneTo365IsRefusedAfterTheUndoEntry_data();
    void perYearOutsideOneTo365IsRefusedAfterTheUndoEntry();
    void perYearFractionsAreRoundedHalfToEven_data();
    void perYearFractionsAreRoundedHalfToEven();
    void descriptionIsTrimmedAndCutToFiftyCharacters();
    void leavingAnUntouchedCellWritesNothing();
    void totalInterestOfALoanCannotBeTypedInto();
    void clickingACellEndsARowSelection();
    void cellsOfEmptyRowsCannotBeEdited();
    void closingTheWindowSavesTheCellBeingEdited();
    void exitSavesTheCellBeingEdited();
    void tabIntoACellStartsAnEditAsAClickDoes();
    void tabIntoACellOfAnEmptyRowStartsNothing();
    void blankYearsLeftAloneStaysBlankAndSolved();
    void blankYearsTypedIntoIsStored();
    void blankPerYearLeftAloneStaysBlank();
    void blankPerYearTypedIntoIsStored();
    void textThatIsNoNumberInPerYearIsRefusedWithoutWriting();

    void addNewOnAnEmptyListGivesOneBlankRow();
    void addingTheFifteenthRecordShowsNoScrollBarUntilTheListIsShownAgain();
    void addingPast32767RecordsIsRefused();
    void copyRightAfterSelectingAppendsThatRecordAndKeepsTheSelection();
    void copyDuplicatesTheWorkingRecordAsItStands();
    void deletingTheOnlyRecordLeavesAnEmptyFileAndUndoRestoresIt();
    void deletingRecord3Of5MovesTheLaterRowsUp();
    void deletingInAScrolledListClearsRowsWithoutRecords();
    void moveUpSwapsWithThePreviousRecordAndFollowsTheSelection();
    void moveDownSwapsWithTheNextRecordAndStopsAtTheLast();
    void moveWhoseSecondWriteFailsPutsTheFirstBack_data();
    void moveWhoseSecondWriteFailsPutsTheFirstBack();

    void undoOfAChangedFieldWritesTheOldRecordBack();
    void undoOfADeletedRecordPutsItBackWithTheSelection();
    void changesOfOneListAreNotUndoneInTheOther();
    void tenChangesAreUndoneNewestFirst();
    void eleventhChangeDropsTheOldest();
};

void TestEditing::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestEditing::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

namespace {

// Clicks a cell, replaces its text by typing, and leaves it with Enter.
void typeInto(GridCell *cell, const QString &text)
{
    QTest::mouseClick(cell, Qt::LeftButton);
    QTest::keyClick(cell, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(cell, Qt::Key_Delete);
    else
        QTest::keyClicks(cell, text);
    QTest::keyClick(cell, Qt::Key_Return);
}

} // namespace

void TestEditing::typicalEditEndToEnd()
{
    MainWindowFixture fixture;
    std::vector<ScenarioRecord> records = numberedRecords(3);
    records[2].FutureValue = 40000;
    records[2].Payment = BlankValue;
    QVERIFY(fixture.start(records));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 3);
    QVERIFY(payment->isBold());
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());

    QTest::mouseClick(payment, Qt::LeftButton);
    QVERIFY(payment->hasEditLook());
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(),
             QStringLiteral("This is the amount you add to (or withdraw from) your investment "
                            "each period.  If you do it monthly, then you must set the "
                            "Payments Per Year (PPY) to 12.  If you do it just once a year "
                            "then set the PPY to 1.  (If you don't fill in the PPY the program "
                            "will assume it is 1.)  If you leave the Payment blank, then after "
                            "you fill in the other values, the program will calculate the "
                            "amount you must add to your investment each period (or that you "
                            "can withdraw from your investment each period) to achieve the "
                            "Future Value in the number of years given.  If you also leave "
                            "another value blank in addition to this one, then the program "
                            "will assume that there are no contributions to the Initial Amount "
                            "and will calculate the other value that was left blank."));
    QCOMPARE(payment->text(), QString());
    QTest::keyClicks(payment, QStringLiteral("150"));
    QTest::keyClick(payment, Qt::Key_Return);

    // On disk at once, the old record on the undo history, the row solved
    // again with the future value now the computed field.
    const ScenarioRecord written = recordOnDisk(InDat, 3);
    QVERIFY(written.Payment == 150.0);
    QVERIFY(written.FutureValue == 40000.0);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QCOMPARE(encodeRecord(fixture.session().current().undo.newest().record),
             encodeRecord(records[2]));
    QCOMPARE(payment->text(), QStringLiteral("$150.00 "));
    QVERIFY(!payment->isBold());
    QVERIFY(!payment->hasEditLook());
    QCOMPARE(fixture.cell(QStringLiteral("FutureValue"), 3)->text(), QStringLiteral("$40,000.00 "));
    QVERIFY(!fixture.cell(QStringLiteral("FutureValue"), 3)->isBold());
    QVERIFY(fixture.command(QStringLiteral("Undo"))->isEnabled());
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(), GeneralHelpShown);
    QCOMPARE(recordOnDisk(InDat, 1), records[0]);
    QVERIFY(fixture.boxes().texts().isEmpty());
}

void TestEditing::clickingACellGivesItTheEditLookAndItsHelp()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    GridCell *years = fixture.cell(QStringLiteral("Years"), 1);
    QTest::mouseClick(years, Qt::LeftButton);
    QVERIFY(years->hasEditLook());
    QVERIFY(years->hasFrame());
    QCOMPARE(years->palette().color(QPalette::Base), QColor(192, 192, 255));
    QCOMPARE(years->text(), QStringLiteral("30"));
    QVERIFY(!years->DataChanged());
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(),
             QStringLiteral("This is the number of years in the loan.  If you leave this "
                            "blank, then after you fill in the other values, the program will "
                            "calculate the amount of time required to pay off the loan."));
    QVERIFY(fixture.session().StateFlags & 2);

    QTest::keyClick(years, Qt::Key_Return);
    QVERIFY(!years->hasEditLook());
    QVERIFY(!years->hasFrame());
    QCOMPARE(years->palette().color(QPalette::Base), QApplication::palette().color(QPalette::Base));
    QVERIFY(!(fixture.session().StateFlags & 2));
}

void TestEditing::amountsAreEditedAsShown()
{
    ScenarioRecord record = retirement();
    record.InitialAmount = 1234.5678;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    GridCell *amount = fixture.cell(QStringLiteral("InitialAmount"), 1);
    QCOMPARE(amount->text(), QStringLiteral("$1,234.57 "));
    QTest::mouseClick(amount, Qt::LeftButton);
    QCOMPARE(amount->text(), QStringLiteral("1234.57"));
    // Left alone, the full stored precision stays.
    QTest::keyClick(amount, Qt::Key_Return);
    QVERIFY(recordOnDisk(InDat, 1).InitialAmount == 1234.5678);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
}

void TestEditing::emptiedCellStoresTheBlankAndIsSolvedInBold()
{
    ScenarioRecord record = retirement();
    record.FutureValue = 30000;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 1);
    QVERIFY(!payment->isBold());
    typeInto(payment, QString());
    QVERIFY(recordOnDisk(InDat, 1).Payment == BlankValue);
    QVERIFY(payment->isBold());
    QVERIFY(!payment->text().isEmpty());
    QCOMPARE(payment->accessibleName(), QStringLiteral("Payment, row 1, calculated"));
}

void TestEditing::clickingABlankRateShowsPercentAndLeavingStoresTheBlankAgain()
{
    ScenarioRecord record = retirement();
    record.IRate = BlankValue;
    record.FutureValue = 30000;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    GridCell *rate = fixture.cell(QStringLiteral("Yield"), 1);
    QVERIFY(rate->isBold());
    QTest::mouseClick(rate, Qt::LeftButton);
    QCOMPARE(rate->text(), QStringLiteral("%"));
    QTest::keyClick(rate, Qt::Key_Return);

    // Loading "%" changed the text, so leaving stores the blank again, as a change.
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 1)), encodeRecord(record));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QVERIFY(rate->isBold());
}

void TestEditing::escapeDropsWhatWasTypedAndPushesNoUndo()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    GridCell *years = fixture.cell(QStringLiteral("Years"), 1);
    QTest::mouseClick(years, Qt::LeftButton);
    QTest::keyClicks(years, QStringLiteral("5"));
    QCOMPARE(years->text(), QStringLiteral("105"));
    QTest::keyClick(years, Qt::Key_Escape);
    QCOMPARE(years->text(), QStringLiteral("10.0 "));
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestEditing::rateIsTypedInPercentWithOrWithoutTheSign_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("with the sign") << QStringLiteral("12%") << 0.12 << QStringLiteral("12.00% ");
    QTest::newRow("without the sign") << QStringLiteral("12") << 0.12 << QStringLiteral("12.00% ");
    QTest::newRow("fraction") << QStringLiteral("8.5%") << 0.085 << QStringLiteral("8.50% ");
    QTest::newRow("text after the sign is dropped")
        << QStringLiteral("7%5") << 0.07 << QStringLiteral("7.00% ");
}

void TestEditing::rateIsTypedInPercentWithOrWithoutTheSign()
{
    QFETCH(QString, typed);
    QFETCH(double, stored);
    QFETCH(QString, shown);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    GridCell *rate = fixture.cell(QStringLiteral("Yield"), 1);
    QTest::mouseClick(rate, Qt::LeftButton);
    QCOMPARE(rate->text(), QStringLiteral("6%"));
    typeInto(rate, typed);
    QVERIFY2(recordOnDisk(LnDat, 1).IRate == stored,
             qPrintable(QString::number(recordOnDisk(LnDat, 1).IRate, 'g', 17)));
    QCOMPARE(rate->text(), shown);
    QVERIFY(!rate->isBold());
}

void TestEditing::amountsAcceptCurrencyTextsAndNegatives_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("stored");
    QTest::newRow("plain") << QStringLiteral("2500") << 2500.0;
    QTest::newRow("currency with grouping") << QStringLiteral("$2,500.75 ") << 2500.75;
    QTest::newRow("negative in parentheses") << QStringLiteral("($1,234.57)") << -1234.57;
    QTest::newRow("negative with a minus") << QStringLiteral("-75.5") << -75.5;
}

void TestEditing::amountsAcceptCurrencyTextsAndNegatives()
{
    QFETCH(QString, typed);
    QFETCH(double, stored);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    typeInto(fixture.cell(QStringLiteral("Payment"), 1), typed);
    QVERIFY(recordOnDisk(InDat, 1).Payment == stored);
    QVERIFY(fixture.boxes().texts().isEmpty());
}

void TestEditing::textThatIsNoNumberIsRefusedWithoutWriting()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    fixture.boxes().expect();
    typeInto(fixture.cell(QStringLiteral("Years"), 1), QStringLiteral("ten"));
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("Error, \"ten\" is not a number")});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QCOMPARE(fixture.cell(QStringLiteral("Years"), 1)->text(), QStringLiteral("10.0 "));
}

void TestEditing::perYearOutsideOneTo365IsRefusedAfterTheUndoEntry_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("zero") << QStringLiteral("0");
    QTest::newRow("366") << QStringLiteral("366");
    QTest::newRow("365.4") << QStringLiteral("365.4");
    QTest::newRow("negative") << QStringLiteral("-12");
}

void TestEditing::perYearOutsideOneTo365IsRefusedAfterTheUndoEntry()
{
    QFETCH(QString, typed);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    fixture.boxes().expect();
    typeInto(fixture.cell(QStringLiteral("PerYear"), 1), typed);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral(
                 "Error, the number of payments per year must an integer from 1 to 365")});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QVERIFY(fixture.command(QStringLiteral("Undo"))->isEnabled());
    QCOMPARE(fixture.cell(QStringLiteral("PerYear"), 1)->text(), QStringLiteral("12"));
}

void TestEditing::perYearFractionsAreRoundedHalfToEven_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("stored");
    QTest::newRow("0.4 passes and is stored as 0") << QStringLiteral("0.4") << 0;
    QTest::newRow("0.5 is stored as 0") << QStringLiteral("0.5") << 0;
    QTest::newRow("2.5 is stored as 2") << QStringLiteral("2.5") << 2;
    QTest::newRow("3.5 is stored as 4") << QStringLiteral("3.5") << 4;
    QTest::newRow("365 is the largest") << QStringLiteral("365") << 365;
    QTest::newRow("empty is blank") << QString() << -1;
}

void TestEditing::perYearFractionsAreRoundedHalfToEven()
{
    QFETCH(QString, typed);
    QFETCH(int, stored);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    typeInto(fixture.cell(QStringLiteral("PerYear"), 1), typed);
    QCOMPARE(int(recordOnDisk(InDat, 1).PerYear), stored);
    QVERIFY(fixture.boxes().texts().isEmpty());
    QCOMPARE(fixture.cell(QStringLiteral("PerYear"), 1)->text(),
             stored == -1 ? QString() : QString::number(stored));
}

void TestEditing::descriptionIsTrimmedAndCutToFiftyCharacters()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    GridCell *desc = fixture.cell(QStringLiteral("Desc"), 1);
    QTest::mouseClick(desc, Qt::LeftButton);
    QCOMPARE(desc->text(), QStringLiteral("Retirement"));
    typeInto(desc, QStringLiteral("  Boat  "));
    QCOMPARE(recordOnDisk(InDat, 1).Desc, [] {
        ScenarioRecord boat;
        setDescText(boat, u"Boat");
        return boat.Desc;
    }());
    QCOMPARE(desc->text(), QStringLiteral("Boat"));

    typeInto(desc, QString(60, u'x'));
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 1)), QString(50, u'x'));
    typeInto(desc, QString());
    QCOMPARE(recordOnDisk(InDat, 1).Desc, ScenarioRecord::blankDesc());
    QCOMPARE(desc->text(), QString());
}

void TestEditing::leavingAnUntouchedCellWritesNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(), mortgage()}));
    for (const QString &column :
         {QStringLiteral("Desc"), QStringLiteral("InitialAmount"), QStringLiteral("Yield"),
          QStringLiteral("Years"), QStringLiteral("Payment"), QStringLiteral("PerYear")}) {
        GridCell *cell = fixture.cell(column, 1);
        QTest::mouseClick(cell, Qt::LeftButton);
        QTest::keyClick(cell, Qt::Key_Return);
    }
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestEditing::totalInterestOfALoanCannotBeTypedInto()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    const QByteArray before = fixture.fileBytes(LnDat);
    GridCell *interest = fixture.cell(QStringLiteral("FutureValue"), 1);
    const QString shown = interest->text();
    QTest::mouseClick(interest, Qt::LeftButton);
    QTest::keyClicks(interest, QStringLiteral("999"));
    QTest::keyClick(interest, Qt::Key_Backspace);
    QTest::keyClick(interest, Qt::Key_Delete);
    QTest::keyClick(interest, Qt::Key_Return);
    QCOMPARE(interest->text(), shown);
    QCOMPARE(fixture.fileBytes(LnDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(), GeneralHelpShown);
}

void TestEditing::clickingACellEndsARowSelection()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->palette().color(QPalette::Base),
             QApplication::palette().color(QPalette::Highlight));
    QTest::mouseClick(fixture.cell(QStringLiteral("Years"), 3), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(0));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->palette().color(QPalette::Base),
             QApplication::palette().color(QPalette::Base));
    QVERIFY(!fixture.command(QStringLiteral("Delete"))->isEnabled());
}

void TestEditing::cellsOfEmptyRowsCannotBeEdited()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(2)));
    const QByteArray before = fixture.fileBytes(InDat);
    GridCell *empty = fixture.cell(QStringLiteral("Years"), 5);
    QTest::mouseClick(empty, Qt::LeftButton);
    QTest::keyClicks(empty, QStringLiteral("12"));
    QTest::keyClick(empty, Qt::Key_Return);
    QCOMPARE(empty->text(), QString());
    QCOMPARE(fixture.fileBytes(InDat), before);
}

void TestEditing::closingTheWindowSavesTheCellBeingEdited()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    GridCell *years = fixture.cell(QStringLiteral("Years"), 1);
    QTest::mouseClick(years, Qt::LeftButton);
    QTest::keyClick(years, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(years, QStringLiteral("15"));
    QVERIFY(fixture.window().close());
    QVERIFY(recordOnDisk(InDat, 1).Years == 15.0);
}

void TestEditing::exitSavesTheCellBeingEdited()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 1);
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("125"));
    QTest::mouseClick(fixture.command(QStringLiteral("cmdExit")), Qt::LeftButton);
    QVERIFY(!fixture.window().isVisible());
    QVERIFY(recordOnDisk(InDat, 1).Payment == 125.0);
}

void TestEditing::tabIntoACellStartsAnEditAsAClickDoes()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(), retirement(QStringLiteral("Second"))}));
    auto *help = fixture.find<QLabel>(QStringLiteral("HelpBox"));
    GridCell *first = fixture.cell(QStringLiteral("Years"), 1);
    GridCell *second = fixture.cell(QStringLiteral("Years"), 2);
    QTest::mouseClick(first, Qt::LeftButton);
    QTest::keyClick(first, Qt::Key_Tab);

    QCOMPARE(QApplication::focusWidget(), second);
    QVERIFY(second->hasEditLook());
    QCOMPARE(second->text(), QStringLiteral("10"));
    QVERIFY(!second->DataChanged());
    QCOMPARE(help->text(),
             QStringLiteral("This is the number of years for the investment to grow.  "
                            "If you leave it blank, then after you fill in the other "
                            "values, the program will calculate the amount of time "
                            "required to reach the given Future Value.  To calculate "
                            "this value, it is not necessary to have both an Initial "
                            "Amount and a Payment.  You may leave one or the other "
                            "blank.  However, many scenarios will involve both a "
                            "starting amount and periodic contributions."));
    QVERIFY(!first->hasEditLook());
    QCOMPARE(first->text(), QStringLiteral("10.0 "));

    QTest::keyClick(second, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(second, QStringLiteral("20"));
    QTest::keyClick(second, Qt::Key_Return);
    QVERIFY(recordOnDisk(InDat, 2).Years == 20.0);
    QVERIFY(recordOnDisk(InDat, 1).Years == 10.0);
    QCOMPARE(second->text(), QStringLiteral("20.0 "));
    QCOMPARE(help->text(), GeneralHelpShown);

    // Back with Shift+Tab: the same.
    QTest::mouseClick(second, Qt::LeftButton);
    QTest::keyClick(second, Qt::Key_Backtab, Qt::ShiftModifier);
    QCOMPARE(QApplication::focusWidget(), first);
    QVERIFY(first->hasEditLook());
    QVERIFY(!second->hasEditLook());
    QCOMPARE(first->text(), QStringLiteral("10"));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
}

void TestEditing::tabIntoACellOfAnEmptyRowStartsNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    GridCell *last = fixture.cell(QStringLiteral("Payment"), 1);
    GridCell *empty = fixture.cell(QStringLiteral("Payment"), 2);
    QTest::mouseClick(last, Qt::LeftButton);
    QTest::keyClick(last, Qt::Key_Tab);
    QVERIFY(!empty->hasEditLook());
    QCOMPARE(empty->text(), QString());
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(), GeneralHelpShown);
    QTest::keyClicks(empty, QStringLiteral("5"));
    QCOMPARE(empty->text(), QString());
    QCOMPARE(recordsOnDisk(InDat), 1);
}

void TestEditing::blankYearsLeftAloneStaysBlankAndSolved()
{
    ScenarioRecord record = retirement();
    record.Years = BlankValue;
    record.FutureValue = 30000;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    const QByteArray before = fixture.fileBytes(InDat);
    GridCell *years = fixture.cell(QStringLiteral("Years"), 1);
    const QString solved = years->text();
    QCOMPARE(solved, QStringLiteral("11.1 "));
    QVERIFY(years->isBold());
    QTest::mouseClick(years, Qt::LeftButton);
    QCOMPARE(years->text(), QString());
    QTest::keyClick(years, Qt::Key_Return);

    // The emptied text counts as a change: the blank is stored again.
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QCOMPARE(years->text(), solved);
    QVERIFY(years->isBold());
}

void TestEditing::blankYearsTypedIntoIsStored()
{
    ScenarioRecord record = retirement();
    record.Years = BlankValue;
    record.FutureValue = 30000;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    GridCell *years = fixture.cell(QStringLiteral("Years"), 1);
    typeInto(years, QStringLiteral("7.5"));
    ScenarioRecord expected = record;
    expected.Years = 7.5;
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 1)), encodeRecord(expected));
    QCOMPARE(years->text(), QStringLiteral("7.5 "));
    QVERIFY(!years->isBold());
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QCOMPARE(encodeRecord(fixture.session().current().undo.newest().record), encodeRecord(record));
}

void TestEditing::blankPerYearLeftAloneStaysBlank()
{
    ScenarioRecord record = retirement();
    record.PerYear = BlankPerYear;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    const QByteArray before = fixture.fileBytes(InDat);
    GridCell *perYear = fixture.cell(QStringLiteral("PerYear"), 1);
    QTest::mouseClick(perYear, Qt::LeftButton);
    QVERIFY(perYear->hasEditLook());
    QCOMPARE(perYear->text(), QString());
    QTest::keyClick(perYear, Qt::Key_Return);
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(perYear->text(), QString());
    QVERIFY(!perYear->isBold());
    QVERIFY(!perYear->hasEditLook());
}

void TestEditing::blankPerYearTypedIntoIsStored()
{
    ScenarioRecord record = retirement();
    record.PerYear = BlankPerYear;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    typeInto(fixture.cell(QStringLiteral("PerYear"), 1), QStringLiteral("4"));
    ScenarioRecord expected = record;
    expected.PerYear = 4;
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 1)), encodeRecord(expected));
    QCOMPARE(fixture.cell(QStringLiteral("PerYear"), 1)->text(), QStringLiteral("4"));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 1);
    QCOMPARE(encodeRecord(fixture.session().current().undo.newest().record), encodeRecord(record));
}

void TestEditing::textThatIsNoNumberInPerYearIsRefusedWithoutWriting()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    fixture.boxes().expect();
    typeInto(fixture.cell(QStringLiteral("PerYear"), 1), QStringLiteral("monthly"));
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("Error, \"monthly\" is not a number")});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
    QCOMPARE(fixture.cell(QStringLiteral("PerYear"), 1)->text(), QStringLiteral("12"));
}

void TestEditing::addNewOnAnEmptyListGivesOneBlankRow()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    QTest::mouseClick(fixture.command(QStringLiteral("AddNew")), Qt::LeftButton);
    QCOMPARE(fixture.session().current().NumRecs(), 1);
    ScenarioRecord blank;
    blank.makeBlank();
    QCOMPARE(fixture.fileBytes(InDat), encodeRecord(blank));
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("1"));
    QVERIFY(!fixture.sel(1)->isHidden());
    // Every cell is empty. Bold marks the fields the engine tried to solve
    // and could not: the rate, the years and the future value; the initial
    // amount and the payment are not even tried without a future value.
    const QStringList solved = {QStringLiteral("Yield"), QStringLiteral("Years"),
                                QStringLiteral("FutureValue")};
    for (const QString &column : gridColumns()) {
        QCOMPARE(fixture.cell(column, 1)->text(), QString());
        QCOMPARE(fixture.cell(column, 1)->isBold(), solved.contains(column));
        QCOMPARE(fixture.cell(column, 1)->palette().color(QPalette::Base),
                 QApplication::palette().color(QPalette::Base));
    }
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
}

void TestEditing::addingTheFifteenthRecordShowsNoScrollBarUntilTheListIsShownAgain()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(14), {mortgage()}));
    QVERIFY(fixture.scrollBar()->isHidden());
    QTest::mouseClick(fixture.command(QStringLiteral("AddNew")), Qt::LeftButton);
    QCOMPARE(recordsOnDisk(InDat), 15);
    QVERIFY(fixture.scrollBar()->isHidden());
    QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    QTest::mouseClick(fixture.find(QStringLiteral("Investments")), Qt::LeftButton);
    QVERIFY(!fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.scrollBar()->maximum(), 2);
}

void TestEditing::addingPast32767RecordsIsRefused()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    {
        QFile full(InDat);
        QVERIFY(full.open(QIODevice::WriteOnly));
        QVERIFY(full.resize(qint64(32767) * 148));
    }
    MessageBoxWatcher boxes;
    Session session;
    MainWindow window(session);
    window.Form_Load();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    boxes.expect(2);
    QTest::mouseClick(window.findChild<QWidget *>(QStringLiteral("AddNew")), Qt::LeftButton);
    QTest::mouseClick(window.findChild<QWidget *>(QStringLiteral("Sel(1)")), Qt::LeftButton);
    QTest::mouseClick(window.findChild<QWidget *>(QStringLiteral("Copy")), Qt::LeftButton);
    const QString full = QStringLiteral("This list already holds 32,767 scenarios, as many as a "
                                        "list can hold. Delete one before you add another.");
    QCOMPARE(boxes.texts(), (QStringList{full, full}));
    QCOMPARE(boxes.titles(), (QStringList{QStringLiteral("Quillet"), QStringLiteral("Quillet")}));
    QCOMPARE(QFileInfo(InDat).size(), qint64(32767) * 148);
    QCOMPARE(session.current().NumRecs(), 32767);
}

void TestEditing::copyRightAfterSelectingAppendsThatRecordAndKeepsTheSelection()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = numberedRecords(5);
    QVERIFY(fixture.start(records));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Copy")), Qt::LeftButton);
    QCOMPARE(recordsOnDisk(InDat), 6);
    QCOMPARE(fixture.fileBytes(InDat).mid(5 * 148), encodeRecord(records[1]));
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 6)->text(), QStringLiteral("Plan 2"));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
}

void TestEditing::copyDuplicatesTheWorkingRecordAsItStands()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = numberedRecords(5);
    QVERIFY(fixture.start(records));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    // A redraw leaves the last record drawn in the working record.
    QTest::mouseClick(fixture.command(QStringLiteral("AddNew")), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Copy")), Qt::LeftButton);
    QCOMPARE(recordsOnDisk(InDat), 7);
    ScenarioRecord blank;
    blank.makeBlank();
    QCOMPARE(encodeRecord(recordOnDisk(InDat, 7)), encodeRecord(blank));
}

void TestEditing::deletingTheOnlyRecordLeavesAnEmptyFileAndUndoRestoresIt()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    QCOMPARE(QFileInfo(InDat).size(), 0);
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    QVERIFY(fixture.sel(1)->isHidden());
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QString());
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->palette().color(QPalette::Base),
             QApplication::palette().color(QPalette::Button));
    for (const char *name : {"Copy", "Delete", "MoveUp", "MoveDown", "Amort"})
        QVERIFY2(!fixture.command(QString::fromLatin1(name))->isEnabled(), name);
    QVERIFY(fixture.command(QStringLiteral("Undo"))->isEnabled());

    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Retirement"));
    QCOMPARE(fixture.session().current().SelRow, qint16(1));
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
    QVERIFY(fixture.command(QStringLiteral("Delete"))->isEnabled());
}

void TestEditing::deletingRecord3Of5MovesTheLaterRowsUp()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = numberedRecords(5);
    QVERIFY(fixture.start(records));
    QTest::mouseClick(fixture.sel(3), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat),
             recordsBytes({records[0], records[1], records[3], records[4]}));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 3)->text(), QStringLiteral("Plan 4"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 4)->text(), QStringLiteral("Plan 5"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 5)->text(), QString());
    QVERIFY(fixture.sel(5)->isHidden());
    QCOMPARE(fixture.session().current().SelRow, qint16(0));
}

void TestEditing::deletingInAScrolledListClearsRowsWithoutRecords()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    fixture.scrollBar()->setValue(7);
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    QCOMPARE(recordsOnDisk(InDat), 19);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 13)->text(), QStringLiteral("Plan 20"));
    QVERIFY(fixture.sel(14)->isHidden());
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 14)->text(), QString());
    fixture.sel(14)->click();
    QVERIFY(fixture.boxes().texts().isEmpty());
}

void TestEditing::moveUpSwapsWithThePreviousRecordAndFollowsTheSelection()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = numberedRecords(3);
    QVERIFY(fixture.start(records));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("MoveUp")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({records[1], records[0], records[2]}));
    QCOMPARE(fixture.session().current().SelRow, qint16(1));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Plan 2"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Plan 1"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->palette().color(QPalette::Base),
             QApplication::palette().color(QPalette::Highlight));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->palette().color(QPalette::Base),
             QApplication::palette().color(QPalette::Base));

    QTest::mouseClick(fixture.command(QStringLiteral("MoveUp")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({records[1], records[0], records[2]}));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
}

void TestEditing::moveDownSwapsWithTheNextRecordAndStopsAtTheLast()
{
    MainWindowFixture fixture;
    const std::vector<ScenarioRecord> records = numberedRecords(3);
    QVERIFY(fixture.start(records));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("MoveDown")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({records[0], records[2], records[1]}));
    QCOMPARE(fixture.session().current().SelRow, qint16(3));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Plan 3"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 3)->text(), QStringLiteral("Plan 2"));
    QTest::mouseClick(fixture.command(QStringLiteral("MoveDown")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), recordsBytes({records[0], records[2], records[1]}));
}

void TestEditing::moveWhoseSecondWriteFailsPutsTheFirstBack_data()
{
    QTest::addColumn<QString>("command");
    QTest::newRow("move up") << QStringLiteral("MoveUp");
    QTest::newRow("move down") << QStringLiteral("MoveDown");
}

void TestEditing::moveWhoseSecondWriteFailsPutsTheFirstBack()
{
    QFETCH(QString, command);
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    const QByteArray before = fixture.fileBytes(InDat);
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);

    // The neighbour is written first, then the selected record: that fails.
    OneFailingWrite calls(2);
    fixture.session().current().file.setCalls(&calls);
    fixture.boxes().expect();
    QTest::mouseClick(fixture.command(command), Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("Could not write record 2 of In.dat: Input/output error")});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
    for (int row = 1; row <= 3; ++row)
        QCOMPARE(fixture.cell(QStringLiteral("Desc"), row)->text(),
                 QStringLiteral("Plan %1").arg(row));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);

    // The same move works once the trouble is gone.
    fixture.session().current().file.setCalls(nullptr);
    QTest::mouseClick(fixture.command(command), Qt::LeftButton);
    const std::vector<ScenarioRecord> records = numberedRecords(3);
    QCOMPARE(fixture.fileBytes(InDat), command == QStringLiteral("MoveUp")
                                           ? recordsBytes({records[1], records[0], records[2]})
                                           : recordsBytes({records[0], records[2], records[1]}));
}

void TestEditing::undoOfAChangedFieldWritesTheOldRecordBack()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    typeInto(fixture.cell(QStringLiteral("Years"), 1), QStringLiteral("25"));
    QVERIFY(recordOnDisk(InDat, 1).Years == 25.0);
    QCOMPARE(fixture.cell(QStringLiteral("Years"), 1)->text(), QStringLiteral("25.0 "));

    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.cell(QStringLiteral("Years"), 1)->text(), QStringLiteral("10.0 "));
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestEditing::undoOfADeletedRecordPutsItBackWithTheSelection()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    const QByteArray before = fixture.fileBytes(InDat);
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QTest::mouseClick(fixture.command(QStringLiteral("Delete")), Qt::LeftButton);
    QCOMPARE(recordsOnDisk(InDat), 2);
    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Plan 2"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 3)->text(), QStringLiteral("Plan 3"));
    QVERIFY(fixture.command(QStringLiteral("Delete"))->isEnabled());
}

void TestEditing::changesOfOneListAreNotUndoneInTheOther()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    typeInto(fixture.cell(QStringLiteral("Years"), 1), QStringLiteral("20"));
    const QByteArray changed = fixture.fileBytes(InDat);
    QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    QCOMPARE(fixture.fileBytes(InDat), changed);

    QTest::mouseClick(fixture.find(QStringLiteral("Investments")), Qt::LeftButton);
    QVERIFY(fixture.command(QStringLiteral("Undo"))->isEnabled());
    QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    QVERIFY(recordOnDisk(InDat, 1).Years == 10.0);
}

void TestEditing::tenChangesAreUndoneNewestFirst()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    for (int years = 11; years <= 20; ++years)
        typeInto(fixture.cell(QStringLiteral("Years"), 1), QString::number(years));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 10);
    for (int expected = 19; expected >= 10; --expected) {
        QVERIFY(fixture.command(QStringLiteral("Undo"))->isEnabled());
        QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
        QVERIFY(recordOnDisk(InDat, 1).Years == expected);
        QCOMPARE(fixture.cell(QStringLiteral("Years"), 1)->text(),
                 QStringLiteral("%1.0 ").arg(expected));
    }
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
}

void TestEditing::eleventhChangeDropsTheOldest()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    for (int years = 11; years <= 21; ++years)
        typeInto(fixture.cell(QStringLiteral("Years"), 1), QString::number(years));
    QCOMPARE(fixture.session().current().undo.UndoCount(), 10);
    for (int undo = 1; undo <= 10; ++undo)
        QTest::mouseClick(fixture.command(QStringLiteral("Undo")), Qt::LeftButton);
    // The first change (from 10 years) was dropped: the oldest kept is 11.
    QVERIFY(recordOnDisk(InDat, 1).Years == 11.0);
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
    QVERIFY(fixture.boxes().texts().isEmpty());
}

QTEST_MAIN(TestEditing)
#include "tst_editing.moc"
