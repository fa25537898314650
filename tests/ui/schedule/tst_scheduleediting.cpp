#include "fonts.h"
#include "messageboxwatcher.h"
#include "recordingfilecalls.h"
#include "schedulefixture.h"

#include <QApplication>
#include <QPrinter>
#include <QWheelEvent>

using namespace quillet;
using namespace quillet::test;
using namespace Qt::StringLiterals;

namespace {

// 1,000 at 12 % a year with 100 paid in monthly for 10 years.
ScenarioRecord plan()
{
    return scenario(QStringLiteral("Plan"), 1000, 0.12, 10, 100, 12);
}

ScenarioRecord mortgage()
{
    return scenario(QStringLiteral("House"), 100000, 0.06, 30, BlankValue, 12);
}

// Turns the mouse wheel one notch towards the user over a widget.
void wheelDown(QWidget *widget)
{
    const QPointF position = QRectF(widget->rect()).center();
    QWheelEvent event(position, widget->mapToGlobal(position), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

} // namespace

class TestScheduleEditing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void clickingAFieldShowsItsEditForm_data();
    void clickingAFieldShowsItsEditForm();
    void editedFieldIsWrittenAtOnceAndTheScheduleRedrawn_data();
    void editedFieldIsWrittenAtOnceAndTheScheduleRedrawn();
    void loanFieldsAreWrittenToTheLoanFile();
    void enabledTotalInterestStoresIntoTheFutureValueSlot();
    void descriptionIsTrimmedCutToFiftyAndShownAfterABlank();
    void rateCaretStandsBeforeThePercentSign();
    void rateLosesOnlyItsFirstPercentSign();
    void blankRateIsEditedAsItsSignAlone();
    void leavingAnUntouchedFieldWritesNothing();
    void fieldFocusedWithoutAClickWritesNothingWhenLeft();
    void escapeDropsWhatWasTyped();
    void emptiedNumericFieldShowsItsValueAgainAndWritesNothing();
    void textThatIsNoNumberIsRefusedWithTheGridMessage();
    void blankMarkerIsRefusedWithTheGridMessage();
    void perYearBeyond16BitsIsRefused();
    void perYearIsRoundedHalfToEvenWithoutRangeCheck();
    void periodCountBeyond32767IsRefused();
    void failedWriteIsExplainedAndTheWindowStaysUsable();
    void fullDiskIsExplainedAndTheNextEditIsWritten();
    void readOnlyListRefusesEveryEdit();
    void enterWithoutScrollBarKeepsTheFocusInTheField();
    void enterWithScrollBarMovesTheFocusToIt();
    void editingAfterScrollingShowsPeriodOneAndKeepsTheScrollValue();
    void wheelWhileEditingSavesTheEditFirst();
    void clickingTheScrollBarWhileEditingSavesTheEditFirst();
    void closingTheWindowSavesTheFieldBeingEdited();
    void closingEveryWindowFromElsewhereSavesTheFieldBeingEdited();
    void editsAreNotUndoable();

private:
    MessageBoxWatcher m_boxes;
};

void TestScheduleEditing::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestScheduleEditing::init()
{
    m_boxes.clear();
}

void TestScheduleEditing::cleanup()
{
    QApplication::closeAllWindows();
    QVERIFY2(m_boxes.unexpected().isEmpty(),
             qPrintable(QStringLiteral("unexpected message: ") + m_boxes.unexpected().join(u'|')));
}

void TestScheduleEditing::clickingAFieldShowsItsEditForm_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("editing");

    QTest::newRow("description keeps its leading blank") << u"Desc"_s << u" Plan"_s;
    QTest::newRow("amount as plain number") << u"InitialAmount"_s << u"1234.57"_s;
    QTest::newRow("rate from the record") << u"Yield"_s << u"12.345%"_s;
    QTest::newRow("years as shown") << u"Years"_s << u"10"_s;
    QTest::newRow("payment") << u"Payment"_s << u"100"_s;
    QTest::newRow("payments a year") << u"PerYear"_s << u"12"_s;
    QTest::newRow("solved future value as shown") << u"FutureValue"_s << u"26553.2"_s;
}

void TestScheduleEditing::clickingAFieldShowsItsEditForm()
{
    QFETCH(QString, name);
    QFETCH(QString, editing);
    ScenarioRecord record = plan();
    record.InitialAmount = 1234.5678;
    record.IRate = 0.12345;
    ScheduleFixture fixture;
    QVERIFY(fixture.start({record}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *field = fixture.field(name);
    QVERIFY(!field->hasFrame());
    QTest::mouseClick(field, Qt::LeftButton);
    QCOMPARE(field->text(), editing);
    QVERIFY(field->hasEditLook());
    QVERIFY(field->hasFrame());
    QVERIFY(field->hasFocus());
    QVERIFY(!field->DataChanged());
    QVERIFY(fixture.session().StateFlags & 2);
    QTest::keyClick(field, Qt::Key_Return);
    QVERIFY(!field->hasEditLook());
    QVERIFY(!field->hasFrame());
    QVERIFY(!(fixture.session().StateFlags & 2));
    // Only looked at: the amount keeps its full precision.
    QCOMPARE(fileBytes(InDat), recordsBytes({record}));
}

void TestScheduleEditing::editedFieldIsWrittenAtOnceAndTheScheduleRedrawn_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("firstEarnings");
    QTest::addColumn<QString>("lastPeriod");
    QTest::addColumn<int>("lastRow");

    QTest::newRow("initial amount")
        << u"InitialAmount"_s << u"2000"_s << u"$18.98"_s << u" 120"_s << 11;
    QTest::newRow("yield in percent") << u"Yield"_s << u"0"_s << u"$0.00"_s << u" 120"_s << 11;
    QTest::newRow("years") << u"Years"_s << u"2"_s << u"$9.49"_s << u"  24"_s << 11;
    QTest::newRow("payment") << u"Payment"_s << u"-50"_s << u"$9.49"_s << u" 120"_s << 11;
    QTest::newRow("payments a year") << u"PerYear"_s << u"1"_s << u"$120.00"_s << u"  10"_s << 9;
}

void TestScheduleEditing::editedFieldIsWrittenAtOnceAndTheScheduleRedrawn()
{
    QFETCH(QString, name);
    QFETCH(QString, typed);
    QFETCH(QString, firstEarnings);
    QFETCH(QString, lastPeriod);
    QFETCH(int, lastRow);
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan(), mortgage()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    typeInto(fixture.field(name), typed);

    ScenarioRecord expected = plan();
    if (name == u"InitialAmount")
        expected.InitialAmount = 2000;
    else if (name == u"Yield")
        expected.IRate = 0;
    else if (name == u"Years")
        expected.Years = 2;
    else if (name == u"Payment")
        expected.Payment = -50;
    else
        expected.PerYear = 1;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected, mortgage()}));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), firstEarnings);
    QScrollBar *bar = fixture.scrollBar();
    if (bar->isVisible()) {
        bar->setFocus();
        QTest::keyClick(bar, Qt::Key_End);
    }
    QCOMPARE(fixture.text(QStringLiteral("Period"), lastRow), lastPeriod);
    for (int row = lastRow + 1; row < 12; ++row)
        QCOMPARE(fixture.text(QStringLiteral("Period"), row), QString());
}

void TestScheduleEditing::loanFieldsAreWrittenToTheLoanFile()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}, {mortgage(), mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 2));
    typeInto(fixture.field(QStringLiteral("IRate")), QStringLiteral("12"));
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("1500"));
    ScenarioRecord expected = mortgage();
    expected.IRate = 0.12;
    expected.Payment = 1500;
    QCOMPARE(fileBytes(LnDat), recordsBytes({mortgage(), expected}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$1,000.00"));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 0), QStringLiteral("$500.00"));
    // The payment is typed now; the total interest is what is solved.
    QVERIFY(!fixture.field(QStringLiteral("Payment"))->isBold());
    QVERIFY(fixture.field(QStringLiteral("TotalInterest"))->isBold());
}

void TestScheduleEditing::enabledTotalInterestStoresIntoTheFutureValueSlot()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    HeaderField *total = fixture.field(QStringLiteral("TotalInterest"));
    total->setEnabled(true);
    QTest::mouseClick(total, Qt::LeftButton);
    QCOMPARE(total->text(), QStringLiteral("115838.19"));
    QTest::keyClick(total, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(total, QStringLiteral("50000"));
    QTest::keyClick(total, Qt::Key_Return);
    ScenarioRecord expected = mortgage();
    expected.FutureValue = 50000;
    QCOMPARE(fileBytes(LnDat), recordsBytes({expected}));
}

void TestScheduleEditing::descriptionIsTrimmedCutToFiftyAndShownAfterABlank()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *desc = fixture.field(QStringLiteral("Desc"));
    const QString longText = QStringLiteral("  ") + QString(60, u'x');
    typeInto(desc, longText);
    ScenarioRecord expected = plan();
    setDescText(expected, QString(50, u'x'));
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QCOMPARE(desc->text(), QStringLiteral(" ") + QString(50, u'x'));

    typeInto(desc, QString());
    setDescText(expected, QString());
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QCOMPARE(desc->text(), QString());
    QTest::mouseClick(desc, Qt::LeftButton);
    QCOMPARE(desc->text(), QString());
    QTest::keyClick(desc, Qt::Key_Escape);
}

void TestScheduleEditing::rateCaretStandsBeforeThePercentSign()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *yield = fixture.field(QStringLiteral("Yield"));
    QTest::mouseClick(yield, Qt::LeftButton);
    QCOMPARE(yield->text(), QStringLiteral("12%"));
    QCOMPARE(yield->cursorPosition(), 2);
    QTest::keyClick(yield, Qt::Key_Backspace);
    QTest::keyClick(yield, Qt::Key_Backspace);
    QTest::keyClicks(yield, QStringLiteral("7.5"));
    QCOMPARE(yield->text(), QStringLiteral("7.5%"));
    QTest::keyClick(yield, Qt::Key_Return);
    ScenarioRecord expected = plan();
    expected.IRate = 0.075;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QCOMPARE(yield->text(), QStringLiteral("7.50% "));
}

void TestScheduleEditing::rateLosesOnlyItsFirstPercentSign()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    typeInto(fixture.field(QStringLiteral("Yield")), QStringLiteral("%9"));
    ScenarioRecord expected = plan();
    expected.IRate = 0.09;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
}

void TestScheduleEditing::blankRateIsEditedAsItsSignAlone()
{
    ScenarioRecord record = plan();
    record.IRate = BlankValue;
    record.FutureValue = 30000;
    ScheduleFixture fixture;
    QVERIFY(fixture.start({record}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *yield = fixture.field(QStringLiteral("Yield"));
    QVERIFY(yield->isBold());
    QTest::mouseClick(yield, Qt::LeftButton);
    QCOMPARE(yield->text(), QStringLiteral("%"));
    QCOMPARE(yield->cursorPosition(), 0);
    QTest::keyClicks(yield, QStringLiteral("5"));
    QTest::keyClick(yield, Qt::Key_Return);
    ScenarioRecord expected = record;
    expected.IRate = 0.05;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QVERIFY(!yield->isBold());
}

void TestScheduleEditing::leavingAnUntouchedFieldWritesNothing()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    for (const QString &name :
         {QStringLiteral("Desc"), QStringLiteral("InitialAmount"), QStringLiteral("Yield"),
          QStringLiteral("Years"), QStringLiteral("Payment"), QStringLiteral("PerYear"),
          QStringLiteral("FutureValue")}) {
        QTest::mouseClick(fixture.field(name), Qt::LeftButton);
        QTest::keyClick(fixture.field(name), Qt::Key_Return);
    }
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("InitialAmount"))->text(), QStringLiteral("$1,000.00 "));
}

void TestScheduleEditing::fieldFocusedWithoutAClickWritesNothingWhenLeft()
{
    ScenarioRecord record = plan();
    record.InitialAmount = 1234.5678;
    ScheduleFixture fixture;
    QVERIFY(fixture.start({record}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    // Print only takes the focus here: no printer, and the offer of a PDF,
    // closed with OK, is declined.
    PrintSeams noPrinter;
    noPrinter.defaultPrinter = [] {
        return std::unique_ptr<QPrinter>();
    };
    window->setPrintSeams(noPrinter);
    m_boxes.allow({noPrinterQuestion()});
    HeaderField *amount = fixture.field(QStringLiteral("InitialAmount"));
    amount->setFocus(Qt::OtherFocusReason);
    QVERIFY(amount->hasFocus());
    QTest::mouseClick(fixture.button(QStringLiteral("Print")), Qt::LeftButton);
    QVERIFY(!amount->hasFocus());
    // The shown text, rounded to cents, is not written over the amount.
    QCOMPARE(fileBytes(InDat), recordsBytes({record}));
}

void TestScheduleEditing::escapeDropsWhatWasTyped()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *payment = fixture.field(QStringLiteral("Payment"));
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClicks(payment, QStringLiteral("999"));
    QTest::keyClick(payment, Qt::Key_Escape);
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(payment->text(), QStringLiteral("$100.00 "));
    QVERIFY(!payment->hasEditLook());
    QVERIFY(fixture.scrollBar()->window()->isVisible());
}

void TestScheduleEditing::emptiedNumericFieldShowsItsValueAgainAndWritesNothing()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    for (const QString &name :
         {QStringLiteral("InitialAmount"), QStringLiteral("Yield"), QStringLiteral("Years"),
          QStringLiteral("Payment"), QStringLiteral("PerYear"), QStringLiteral("FutureValue")}) {
        const QString shown = fixture.field(name)->text();
        typeInto(fixture.field(name), QString());
        QCOMPARE(fixture.field(name)->text(), shown);
    }
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
}

void TestScheduleEditing::textThatIsNoNumberIsRefusedWithTheGridMessage()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    m_boxes.expect();
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("abc"));
    QCOMPARE(m_boxes.texts(), QStringList({QStringLiteral("Error, \"abc\" is not a number")}));
    QCOMPARE(m_boxes.titles(), QStringList({QStringLiteral("Quillet")}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QStringLiteral("$100.00 "));
}

void TestScheduleEditing::blankMarkerIsRefusedWithTheGridMessage()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    m_boxes.expect(2);
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("-987456321"));
    typeInto(fixture.field(QStringLiteral("Yield")), QStringLiteral("-98745632100%"));
    const QString refused = QStringLiteral(
        "Error, \"%1\" cannot be stored: this exact number marks an empty field. Nothing was "
        "changed; leave the cell empty to have the value calculated.");
    QCOMPARE(m_boxes.texts(), (QStringList{refused.arg(QStringLiteral("-987456321")),
                                           refused.arg(QStringLiteral("-98745632100%"))}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QStringLiteral("$100.00 "));
}

void TestScheduleEditing::perYearBeyond16BitsIsRefused()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    m_boxes.expect();
    typeInto(fixture.field(QStringLiteral("PerYear")), QStringLiteral("40000"));
    QCOMPARE(m_boxes.texts(),
             QStringList({QStringLiteral("Error, \"40000\" payments per year cannot be stored: the "
                                         "number must lie between -32,768 and 32,767. Nothing was "
                                         "changed.")}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("PerYear"))->text(), QStringLiteral("12"));
}

void TestScheduleEditing::perYearIsRoundedHalfToEvenWithoutRangeCheck()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    typeInto(fixture.field(QStringLiteral("PerYear")), QStringLiteral("2.5"));
    ScenarioRecord expected = plan();
    expected.PerYear = 2;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    // 400 a year is more than the main window allows, and stored here.
    typeInto(fixture.field(QStringLiteral("PerYear")), QStringLiteral("400"));
    expected.PerYear = 400;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QCOMPARE(fixture.session().PeriodCount, qint16(4000));
}

void TestScheduleEditing::periodCountBeyond32767IsRefused()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    m_boxes.expect();
    typeInto(fixture.field(QStringLiteral("Years")), QStringLiteral("3000"));
    QCOMPARE(m_boxes.texts(),
             QStringList({QStringLiteral("Error, this change would give the schedule 36,000 "
                                         "periods, more than the 32,767 a schedule can show. "
                                         "Nothing was changed.")}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("Years"))->text(), QStringLiteral("10.0 "));
    QCOMPARE(fixture.session().PeriodCount, qint16(120));
}

void TestScheduleEditing::failedWriteIsExplainedAndTheWindowStaysUsable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    // The list file is closed under the window: the write fails.
    fixture.session().list(ListKind::Investments).file.close();
    m_boxes.expect();
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("250"));
    QCOMPARE(m_boxes.texts().size(), 1);
    QVERIFY2(m_boxes.texts().first().contains(QStringLiteral("In.dat")),
             qPrintable(m_boxes.texts().first()));
    QCOMPARE(m_boxes.titles(), QStringList({QStringLiteral("Quillet")}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QStringLiteral("$100.00 "));

    // Once the file is there again the next edit is written.
    QVERIFY(fixture.session().list(ListKind::Investments).file.OpenDataFile(InDat).ok());
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("250"));
    ScenarioRecord expected = plan();
    expected.Payment = 250;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
}

void TestScheduleEditing::fullDiskIsExplainedAndTheNextEditIsWritten()
{
    // The calls outlive the list file that uses them.
    RecordingFileCalls calls;
    ScheduleFixture fixture;
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    calls.failing << QStringLiteral("pwrite In.dat");
    calls.failError = ENOSPC;
    m_boxes.expect();
    typeInto(fixture.field(QStringLiteral("Years")), QStringLiteral("20"));
    QCOMPARE(m_boxes.texts(), QStringList({QStringLiteral(
                                  "Could not write record 1 of In.dat: No space left on device")}));
    QCOMPARE(m_boxes.titles(), QStringList({QStringLiteral("Quillet")}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("Years"))->text(), QStringLiteral("10.0 "));
    QCOMPARE(fixture.session().PeriodCount, qint16(120));

    calls.failing.clear();
    typeInto(fixture.field(QStringLiteral("Years")), QStringLiteral("20"));
    ScenarioRecord expected = plan();
    expected.Years = 20;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QCOMPARE(fixture.session().PeriodCount, qint16(240));
}

void TestScheduleEditing::readOnlyListRefusesEveryEdit()
{
    RecordingFileCalls calls;
    ScheduleFixture fixture;
    calls.failing << QStringLiteral("open In.dat");
    calls.failError = EACCES;
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    QVERIFY(!fixture.start({plan()}));
    QCOMPARE(fixture.session().list(ListKind::Investments).NumRecs(), 1);
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QCOMPARE(fixture.field(QStringLiteral("Desc"))->text(), QStringLiteral(" Plan"));
    m_boxes.expect(2);
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("250"));
    typeInto(fixture.field(QStringLiteral("Desc")), QStringLiteral("Other"));
    const QString refusal = QStringLiteral(
        "Could not write record 1 of In.dat: the file can only be read (Permission denied).");
    QCOMPARE(m_boxes.texts(), QStringList({refusal, refusal}));
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QStringLiteral("$100.00 "));
    QCOMPARE(fixture.field(QStringLiteral("Desc"))->text(), QStringLiteral(" Plan"));
}

void TestScheduleEditing::enterWithoutScrollBarKeepsTheFocusInTheField()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Short"), 1000, 0.05, 1, 10, 4)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QVERIFY(fixture.scrollBar()->isHidden());
    HeaderField *amount = fixture.field(QStringLiteral("InitialAmount"));
    typeInto(amount, QStringLiteral("500"));
    QVERIFY(amount->hasFocus());
    QVERIFY(!amount->hasEditLook());
    QVERIFY(recordOnDisk(InDat, 1).InitialAmount == 500.0);
    QCOMPARE(amount->text(), QStringLiteral("$500.00 "));
}

void TestScheduleEditing::enterWithScrollBarMovesTheFocusToIt()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *amount = fixture.field(QStringLiteral("InitialAmount"));
    typeInto(amount, QStringLiteral("500"));
    QVERIFY(fixture.scrollBar()->hasFocus());
    QVERIFY(recordOnDisk(InDat, 1).InitialAmount == 500.0);
}

void TestScheduleEditing::editingAfterScrollingShowsPeriodOneAndKeepsTheScrollValue()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QScrollBar *bar = fixture.scrollBar();
    QTest::keyClick(bar, Qt::Key_PageDown);
    QTest::keyClick(bar, Qt::Key_PageDown);
    QCOMPARE(bar->value(), 25);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("  25"));

    typeInto(fixture.field(QStringLiteral("InitialAmount")), QStringLiteral("50000"));
    ScenarioRecord expected = mortgage();
    expected.InitialAmount = 50000;
    QCOMPARE(fileBytes(LnDat), recordsBytes({expected}));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$250.00"));
    QCOMPARE(bar->value(), 25);
    QCOMPARE(fixture.session().FirstPeriod, qint16(1));
    // The next step goes on from the kept value.
    QTest::keyClick(bar, Qt::Key_Down);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("  26"));
}

void TestScheduleEditing::wheelWhileEditingSavesTheEditFirst()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *payment = fixture.field(QStringLiteral("Payment"));
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("250"));
    wheelDown(fixture.cell(QStringLiteral("Earnings"), 4));
    ScenarioRecord expected = plan();
    expected.Payment = 250;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QVERIFY(!payment->hasEditLook());
    QCOMPARE(payment->text(), QStringLiteral("$250.00 "));
    QVERIFY(fixture.scrollBar()->value() > 1);

    // Over the scroll bar itself as well.
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("300"));
    wheelDown(fixture.scrollBar());
    expected.Payment = 300;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QVERIFY(!payment->hasEditLook());
}

void TestScheduleEditing::clickingTheScrollBarWhileEditingSavesTheEditFirst()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    HeaderField *years = fixture.field(QStringLiteral("Years"));
    QTest::mouseClick(years, Qt::LeftButton);
    QTest::keyClick(years, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(years, QStringLiteral("20"));
    QScrollBar *bar = fixture.scrollBar();
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier,
                      QPoint(bar->width() / 2, bar->height() - 5));
    ScenarioRecord expected = plan();
    expected.Years = 20;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
    QCOMPARE(bar->maximum(), 229);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   %1").arg(bar->value()));
}

void TestScheduleEditing::closingTheWindowSavesTheFieldBeingEdited()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    HeaderField *payment = fixture.field(QStringLiteral("Payment"));
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("75"));
    window->close();
    QVERIFY(window->isHidden());
    ScenarioRecord expected = plan();
    expected.Payment = 75;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
}

void TestScheduleEditing::closingEveryWindowFromElsewhereSavesTheFieldBeingEdited()
{
    // As at logout: the user has gone to another window, and every window
    // is closed.
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    HeaderField *payment = fixture.field(QStringLiteral("Payment"));
    QTest::mouseClick(payment, Qt::LeftButton);
    QTest::keyClick(payment, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(payment, QStringLiteral("80"));
    QWidget elsewhere;
    elsewhere.show();
    elsewhere.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&elsewhere));
    QVERIFY(!window->isActiveWindow());
    QVERIFY(payment->hasEditLook());
    QCOMPARE(fileBytes(InDat), recordsBytes({plan()}));

    QApplication::closeAllWindows();
    QVERIFY(window->isHidden());
    ScenarioRecord expected = plan();
    expected.Payment = 80;
    QCOMPARE(fileBytes(InDat), recordsBytes({expected}));
}

void TestScheduleEditing::editsAreNotUndoable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({plan()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    typeInto(fixture.field(QStringLiteral("Payment")), QStringLiteral("75"));
    typeInto(fixture.field(QStringLiteral("Desc")), QStringLiteral("Changed"));
    QCOMPARE(fixture.session().list(ListKind::Investments).undo.UndoCount(), 0);
}

QTEST_MAIN(TestScheduleEditing)
#include "tst_scheduleediting.moc"
