#include "fonts.h"
#include "messageboxwatcher.h"
#include "reports.h"
#include "schedulefixture.h"

#include <QApplication>
#include <QLabel>
#include <QTimer>
#include <QToolButton>
#include <QWheelEvent>

#include <map>

using namespace quillet;
using namespace quillet::test;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(quillet::ScenarioRecord)

namespace {

// 100,000 borrowed at 6 % over 30 years, paid monthly; the payment is solved.
ScenarioRecord mortgage()
{
    return scenario(QStringLiteral("House"), 100000, 0.06, 30, BlankValue, 12);
}

// 1,000 at 12 % a year with 100 paid in once a year for 13 years.
ScenarioRecord thirteenYears()
{
    return scenario(QStringLiteral("Thirteen"), 1000, 0.12, 13, 100, 1);
}

bool near(const QRect &actual, const QRect &expected)
{
    return qAbs(actual.x() - expected.x()) <= 1 && qAbs(actual.y() - expected.y()) <= 1 &&
           qAbs(actual.width() - expected.width()) <= 1 &&
           qAbs(actual.height() - expected.height()) <= 1;
}

QByteArray describe(const QRect &rect)
{
    return QStringLiteral("(%1, %2, %3 x %4)")
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height())
        .toUtf8();
}

// Turns the mouse wheel one notch towards the user over a widget.
void wheelDown(QWidget *widget)
{
    const QPointF position = QRectF(widget->rect()).center();
    QWheelEvent event(position, widget->mapToGlobal(position), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

QStringList focusChain(QWidget *first, int steps)
{
    QStringList names;
    first->setFocus(Qt::TabFocusReason);
    names << QApplication::focusWidget()->objectName();
    for (int k = 0; k < steps; ++k) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        names << QApplication::focusWidget()->objectName();
    }
    return names;
}

} // namespace

class TestScheduleWindows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void investmentWindowIsLaidOutInTwips_data();
    void investmentWindowIsLaidOutInTwips();
    void loanWindowIsLaidOutInTwips_data();
    void loanWindowIsLaidOutInTwips();
    void everyFieldLabelAndRowIsOnItsTwips_data();
    void everyFieldLabelAndRowIsOnItsTwips();
    void loanPrincipalFiguresStand45TwipsHigher();
    void lastRowEndsInsideTheWindow();
    void captionsHeadingsAndToolTips();
    void fontsAreCourierOnlyForTheInvestmentPeriods();
    void tabOrderGoesFromYearsDownToPerYearAndBackUp();
    void loanTabOrderSkipsTheDisabledTotalInterest();
    void totalInterestCannotTakeTheFocusOrBeTypedInto();
    void accessibleNamesNameTheFieldsAndTheRows();

    void headerShowsTheRecordWithTheSolvedFieldBold();
    void twelvePeriodsNeedNoScrollBarAndLaterRowsAreBlank();
    void thirteenPeriodsScrollFromOneToTwo();
    void thirtyYearLoanScrollsToPayments349To360();
    void zeroYieldEarnsNothingAndAddsThePayment();
    void monthlyYieldIsTheEffectiveRate();
    void withdrawalsRunTheBalanceNegative();
    void zeroRateLoanFallsByThePaymentAndGoesNegative();
    void paymentEqualToTheFirstInterestKeepsTheBalance();
    void paymentBelowTheFirstInterestGrowsTheBalance();
    void loanMonthlyRateIsThePlainDivision();
    void blankPerYearShowsMinusOneAndLeavesTheTable();
    void perYearZeroLeavesTheTable();
    void loanPerYearZeroDividesNothingAndLeavesTheTable();
    void emptyYearsTextKeepsThePreviousPeriodCount();
    void halfYearsRoundToEvenPeriods_data();
    void halfYearsRoundToEvenPeriods();
    void periodNumbersArePaddedToFourDigits();
    void fourDigitPeriodsAreDrawnWholeInTheNarrowCourierColumn();
    void mouseWheelOverTheTableScrollsIt();
    void tooManyPeriodsAreExplainedAndShowNoTable();
    void figuresTooWideForTheirCellAreShortenedVisibly();

    void countersAreSharedByBothWindows();
    void windowsShowTheTextsOfQuilletReport_data();
    void windowsShowTheTextsOfQuilletReport();

    void amortizeShowsTheSelectedScenarioAndRedrawsItsRow();
    void amortizeShowsTheLoanWindowForTheLoanList();
    void windowsAreMadeOnceAndOnlyHiddenByExit();
    void mainWindowIsActivatedAgainAfterTheSchedule();

private:
    MessageBoxWatcher m_boxes;
};

void TestScheduleWindows::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestScheduleWindows::init()
{
    m_boxes.clear();
}

void TestScheduleWindows::cleanup()
{
    QApplication::closeAllWindows();
    QVERIFY2(m_boxes.unexpected().isEmpty(),
             qPrintable(QStringLiteral("unexpected message: ") + m_boxes.unexpected().join(u'|')));
}

void TestScheduleWindows::investmentWindowIsLaidOutInTwips_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("pixels");

    // At 96 dots an inch a pixel is 15 twips.
    QTest::newRow("Desc") << u"Desc"_s << QRect(220, 3, 321, 22);
    QTest::newRow("InitialAmount") << u"InitialAmount"_s << QRect(220, 27, 321, 22);
    QTest::newRow("Yield") << u"Yield"_s << QRect(220, 51, 321, 22);
    QTest::newRow("Years") << u"Years"_s << QRect(220, 75, 321, 22);
    QTest::newRow("Payment") << u"Payment"_s << QRect(220, 99, 321, 22);
    QTest::newRow("PerYear") << u"PerYear"_s << QRect(220, 123, 321, 22);
    QTest::newRow("FutureValue") << u"FutureValue"_s << QRect(220, 147, 321, 22);
    QTest::newRow("lblDesc") << u"lblDesc"_s << QRect(8, 6, 205, 16);
    QTest::newRow("lblInitialAmount") << u"lblInitialAmount"_s << QRect(8, 27, 205, 19);
    QTest::newRow("lblYield") << u"lblYield"_s << QRect(8, 51, 205, 19);
    QTest::newRow("lblPayment") << u"lblPayment"_s << QRect(8, 99, 205, 19);
    QTest::newRow("lblPerYear") << u"lblPerYear"_s << QRect(8, 123, 205, 19);
    QTest::newRow("lblFutureValue") << u"lblFutureValue"_s << QRect(8, 147, 205, 19);
    QTest::newRow("Print") << u"Print"_s << QRect(556, 6, 109, 70);
    QTest::newRow("Exit") << u"Exit"_s << QRect(556, 96, 109, 70);
    QTest::newRow("Line1") << u"Line1"_s << QRect(8, 221, 660, 3);
    QTest::newRow("Label1") << u"Label1"_s << QRect(8, 201, 57, 19);
    QTest::newRow("Label2") << u"Label2"_s << QRect(140, 201, 61, 19);
    QTest::newRow("Label3") << u"Label3"_s << QRect(300, 201, 129, 19);
    QTest::newRow("Label4") << u"Label4"_s << QRect(492, 201, 177, 19);
    QTest::newRow("Period(0)") << u"Period(0)"_s << QRect(8, 228, 37, 22);
    QTest::newRow("Period(11)") << u"Period(11)"_s << QRect(8, 459, 37, 22);
    QTest::newRow("Earnings(0)") << u"Earnings(0)"_s << QRect(96, 228, 145, 22);
    QTest::newRow("CumEarnings(5)") << u"CumEarnings(5)"_s << QRect(276, 333, 173, 22);
    QTest::newRow("TotEarnings(11)") << u"TotEarnings(11)"_s << QRect(476, 459, 193, 22);
    QTest::newRow("VScroll1") << u"VScroll1"_s << QRect(676, 225, 21, 259);
}

void TestScheduleWindows::investmentWindowIsLaidOutInTwips()
{
    QFETCH(QString, name);
    QFETCH(QRect, pixels);
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(window);
    QCOMPARE(window->objectName(), QStringLiteral("InvAmort"));
    QCOMPARE(window->size(), QSize(701, 487));
    QWidget *widget = fixture.find(name);
    QVERIFY2(widget, qPrintable(name));
    QVERIFY2(near(widget->geometry(), pixels), describe(widget->geometry()).constData());
}

void TestScheduleWindows::loanWindowIsLaidOutInTwips_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("pixels");

    QTest::newRow("IRate") << u"IRate"_s << QRect(220, 51, 321, 22);
    QTest::newRow("PerYear above Payment") << u"PerYear"_s << QRect(220, 99, 321, 22);
    QTest::newRow("Payment") << u"Payment"_s << QRect(220, 123, 321, 22);
    QTest::newRow("TotalInterest") << u"TotalInterest"_s << QRect(220, 147, 321, 22);
    QTest::newRow("lblIRate") << u"lblIRate"_s << QRect(8, 51, 205, 19);
    QTest::newRow("lblTotalInterest") << u"lblTotalInterest"_s << QRect(8, 147, 205, 19);
    QTest::newRow("Label1") << u"Label1"_s << QRect(4, 189, 53, 31);
    QTest::newRow("Label2") << u"Label2"_s << QRect(88, 189, 61, 31);
    QTest::newRow("Label3") << u"Label3"_s << QRect(188, 189, 65, 31);
    QTest::newRow("Label4") << u"Label4"_s << QRect(304, 189, 69, 31);
    QTest::newRow("Label5") << u"Label5"_s << QRect(432, 189, 69, 31);
    QTest::newRow("Label6") << u"Label6"_s << QRect(560, 189, 69, 31);
    QTest::newRow("Period(0)") << u"Period(0)"_s << QRect(8, 228, 37, 22);
    QTest::newRow("Principal(0)") << u"Principal(0)"_s << QRect(68, 225, 93, 22);
    QTest::newRow("Interest(0)") << u"Interest(0)"_s << QRect(176, 228, 93, 22);
    QTest::newRow("CumPrincipal(0)") << u"CumPrincipal(0)"_s << QRect(284, 228, 120, 22);
    QTest::newRow("CumInterest(0)") << u"CumInterest(0)"_s << QRect(416, 228, 120, 22);
    QTest::newRow("ReBalance(11)") << u"ReBalance(11)"_s << QRect(548, 459, 120, 22);
    QTest::newRow("VScroll1") << u"VScroll1"_s << QRect(672, 225, 21, 259);
    QTest::newRow("Print") << u"Print"_s << QRect(556, 6, 109, 70);
}

void TestScheduleWindows::loanWindowIsLaidOutInTwips()
{
    QFETCH(QString, name);
    QFETCH(QRect, pixels);
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    ScheduleWindow *window = fixture.open(ListKind::Loans, 1);
    QVERIFY(window);
    QCOMPARE(window->objectName(), QStringLiteral("Loanamort"));
    QCOMPARE(window->size(), QSize(697, 488));
    QWidget *widget = fixture.find(name);
    QVERIFY2(widget, qPrintable(name));
    QVERIFY2(near(widget->geometry(), pixels), describe(widget->geometry()).constData());
}

void TestScheduleWindows::everyFieldLabelAndRowIsOnItsTwips_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QRect>("pixels");

    // Fields and their labels, top to bottom, 24 pixels (360 twips) apart.
    const QStringList investmentFields = {u"Desc"_s,       u"InitialAmount"_s, u"Yield"_s,
                                          u"Years"_s,      u"Payment"_s,       u"PerYear"_s,
                                          u"FutureValue"_s};
    const QStringList loanFields = {u"Desc"_s,    u"InitialAmount"_s, u"IRate"_s,        u"Years"_s,
                                    u"PerYear"_s, u"Payment"_s,       u"TotalInterest"_s};
    for (int k = 0; k < 7; ++k) {
        const QRect field(220, 3 + 24 * k, 321, 22);
        const QRect label = k == 0 ? QRect(8, 6, 205, 16) : QRect(8, 3 + 24 * k, 205, 19);
        for (const bool investments : {true, false}) {
            const QString name = (investments ? investmentFields : loanFields)[k];
            const char *window = investments ? "InvAmort " : "Loanamort ";
            QTest::addRow("%s%s", window, qPrintable(name)) << investments << name << field;
            QTest::addRow("%slbl%s", window, qPrintable(name))
                << investments << u"lbl"_s + name << label;
        }
    }
    // Every row of every column: 21 pixels (315 twips) apart, 22 high.
    const QList<std::pair<QString, QRect>> investmentColumns = {
        {u"Period"_s, QRect(8, 228, 37, 22)},
        {u"Earnings"_s, QRect(96, 228, 145, 22)},
        {u"CumEarnings"_s, QRect(276, 228, 173, 22)},
        {u"TotEarnings"_s, QRect(476, 228, 193, 22)}};
    const QList<std::pair<QString, QRect>> loanColumns = {
        {u"Period"_s, QRect(8, 228, 37, 22)},         {u"Principal"_s, QRect(68, 225, 93, 22)},
        {u"Interest"_s, QRect(176, 228, 93, 22)},     {u"CumPrincipal"_s, QRect(284, 228, 120, 22)},
        {u"CumInterest"_s, QRect(416, 228, 120, 22)}, {u"ReBalance"_s, QRect(548, 228, 120, 22)}};
    for (const bool investments : {true, false}) {
        for (const auto &[column, first] : investments ? investmentColumns : loanColumns) {
            for (int row = 0; row < 12; ++row) {
                const QString name = QStringLiteral("%1(%2)").arg(column).arg(row);
                QTest::addRow("%s%s", investments ? "InvAmort " : "Loanamort ", qPrintable(name))
                    << investments << name << first.translated(0, 21 * row);
            }
        }
    }
}

void TestScheduleWindows::everyFieldLabelAndRowIsOnItsTwips()
{
    QFETCH(bool, investments);
    QFETCH(QString, name);
    QFETCH(QRect, pixels);
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}, {mortgage()}));
    QVERIFY(fixture.open(investments ? ListKind::Investments : ListKind::Loans, 1));
    QWidget *widget = fixture.find(name);
    QVERIFY2(widget, qPrintable(name));
    QVERIFY2(near(widget->geometry(), pixels), describe(widget->geometry()).constData());
}

void TestScheduleWindows::loanPrincipalFiguresStand45TwipsHigher()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    for (int row = 0; row < 12; ++row) {
        // 45 twips are 3 pixels.
        QCOMPARE(fixture.cell(QStringLiteral("Principal"), row)->y() + 3,
                 fixture.cell(QStringLiteral("Interest"), row)->y());
        QCOMPARE(fixture.cell(QStringLiteral("Period"), row)->y(),
                 fixture.cell(QStringLiteral("Interest"), row)->y());
    }
}

void TestScheduleWindows::lastRowEndsInsideTheWindow()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}, {mortgage()}));
    ScheduleWindow *investments = fixture.open(ListKind::Investments, 1);
    // 7215 twips.
    QCOMPARE(fixture.cell(QStringLiteral("TotEarnings"), 11)->geometry().bottom() + 1, 481);
    QVERIFY(
        investments->rect().contains(fixture.cell(QStringLiteral("TotEarnings"), 11)->geometry()));
    investments->hide();
    ScheduleWindow *loans = fixture.open(ListKind::Loans, 1);
    // 7170 twips for Principal.
    QCOMPARE(fixture.cell(QStringLiteral("Principal"), 11)->geometry().bottom() + 1, 478);
    QCOMPARE(fixture.cell(QStringLiteral("ReBalance"), 11)->geometry().bottom() + 1, 481);
    QVERIFY(loans->rect().contains(fixture.cell(QStringLiteral("ReBalance"), 11)->geometry()));
}

void TestScheduleWindows::captionsHeadingsAndToolTips()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}, {mortgage()}));
    ScheduleWindow *investments = fixture.open(ListKind::Investments, 1);
    QCOMPARE(investments->windowTitle(), QStringLiteral("Investment Amortization"));
    const auto labelText = [&](const char *name) {
        return fixture.find<QLabel>(QString::fromLatin1(name))->text();
    };
    QCOMPARE(labelText("lblDesc"), QStringLiteral("Description:"));
    QCOMPARE(labelText("lblInitialAmount"), QStringLiteral("Intitial Amount:"));
    QCOMPARE(labelText("lblYield"), QStringLiteral("Yield (Rate of Return):"));
    QCOMPARE(labelText("lblYears"), QStringLiteral("Years:"));
    QCOMPARE(labelText("lblPayment"), QStringLiteral("Payment:"));
    QCOMPARE(labelText("lblPerYear"), QStringLiteral("Payments per Year:"));
    QCOMPARE(labelText("lblFutureValue"), QStringLiteral("Future Value:"));
    QCOMPARE(labelText("Label1"), QStringLiteral("Period"));
    QCOMPARE(labelText("Label2"), QStringLiteral("Earnings"));
    QCOMPARE(labelText("Label3"), QStringLiteral("Cumulative Earnings"));
    QCOMPARE(labelText("Label4"), QStringLiteral("Total Earnings and Payments"));
    QCOMPARE(fixture.button(QStringLiteral("Print"))->text(), QStringLiteral("Print"));
    QCOMPARE(fixture.button(QStringLiteral("Print"))->toolTip(),
             QStringLiteral("Click here to print out the amortization schedule for this "
                            "investment scenario. (Ctrl+P)"));
    QCOMPARE(fixture.button(QStringLiteral("Exit"))->text(), QStringLiteral("Exit"));
    QCOMPARE(fixture.button(QStringLiteral("Exit"))->toolTip(),
             QStringLiteral("Click here to exit the amortization schedule. (Esc)"));
    investments->hide();

    ScheduleWindow *loans = fixture.open(ListKind::Loans, 1);
    QCOMPARE(loans->windowTitle(), QStringLiteral("Loan Amortization"));
    QCOMPARE(labelText("lblInitialAmount"), QStringLiteral("Intitial Amount:"));
    QCOMPARE(labelText("lblIRate"), QStringLiteral("Interest Rate:"));
    QCOMPARE(labelText("lblTotalInterest"), QStringLiteral("Total Interest:"));
    QCOMPARE(labelText("Label1"), QStringLiteral("Period / Payment"));
    QCOMPARE(labelText("Label2"), QStringLiteral("Principal Portion"));
    QCOMPARE(labelText("Label3"), QStringLiteral("Interest Portion"));
    QCOMPARE(labelText("Label4"), QStringLiteral("Cumulative Principal"));
    QCOMPARE(labelText("Label5"), QStringLiteral("Cumulative Interest"));
    QCOMPARE(labelText("Label6"), QStringLiteral("Remaining Balance"));
    QVERIFY(fixture.find<QLabel>(QStringLiteral("Label6"))->wordWrap());
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("Label2"))->alignment() & Qt::AlignHorizontal_Mask,
             Qt::AlignHCenter);
    QCOMPARE(fixture.button(QStringLiteral("Print"))->toolTip(),
             QStringLiteral("Click here to print out the amortization schedule for this loan "
                            "scenario. (Ctrl+P)"));
    QCOMPARE(fixture.button(QStringLiteral("Exit"))->toolTip(),
             QStringLiteral("Click here to exit the amortization schedule. (Esc)"));
}

void TestScheduleWindows::fontsAreCourierOnlyForTheInvestmentPeriods()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}, {mortgage()}));
    ScheduleWindow *investments = fixture.open(ListKind::Investments, 1);
    const auto checkFont = [](QWidget *widget, const QString &family, qreal size) {
        QCOMPARE(widget->font().family(), family);
        QCOMPARE(widget->font().pointSizeF(), size);
        QVERIFY(!widget->font().bold());
    };
    for (int row = 0; row < 12; ++row) {
        checkFont(fixture.cell(QStringLiteral("Period"), row), QStringLiteral("Courier"), 9.75);
        checkFont(fixture.cell(QStringLiteral("Earnings"), row), QStringLiteral("MS Sans Serif"),
                  9.75);
    }
    checkFont(fixture.field(QStringLiteral("Yield")), QStringLiteral("MS Sans Serif"), 9.75);
    checkFont(fixture.find(QStringLiteral("lblYield")), QStringLiteral("MS Sans Serif"), 9.75);
    checkFont(fixture.find(QStringLiteral("Label4")), QStringLiteral("MS Sans Serif"), 9.75);
    checkFont(fixture.button(QStringLiteral("Print")), QStringLiteral("MS Sans Serif"), 24);
    checkFont(fixture.button(QStringLiteral("Exit")), QStringLiteral("MS Sans Serif"), 24);
    // Courier lines the padded period numbers up.
    const QFontMetrics courier(fixture.cell(QStringLiteral("Period"), 0)->font());
    QCOMPARE(courier.horizontalAdvance(QStringLiteral("   1")),
             courier.horizontalAdvance(QStringLiteral(" 100")));
    investments->hide();

    QVERIFY(fixture.open(ListKind::Loans, 1));
    for (int row = 0; row < 12; ++row) {
        checkFont(fixture.cell(QStringLiteral("Period"), row), QStringLiteral("MS Sans Serif"),
                  9.75);
        checkFont(fixture.cell(QStringLiteral("ReBalance"), row), QStringLiteral("MS Sans Serif"),
                  9.75);
    }
    checkFont(fixture.button(QStringLiteral("Exit")), QStringLiteral("MS Sans Serif"), 24);
}

void TestScheduleWindows::tabOrderGoesFromYearsDownToPerYearAndBackUp()
{
    ScheduleFixture fixture;
    const QByteArray before = recordsBytes({mortgage()});
    QVERIFY(fixture.start({scenario(QStringLiteral("Long"), 1000, 0.05, 30, 100, 12)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QCOMPARE(focusChain(fixture.field(QStringLiteral("Desc")), 10),
             QStringList({u"Desc"_s, u"InitialAmount"_s, u"Yield"_s, u"Years"_s, u"PerYear"_s,
                          u"Payment"_s, u"FutureValue"_s, u"Print"_s, u"VScroll1"_s, u"Exit"_s,
                          u"Desc"_s}));
    // Passing through the fields changes nothing.
    QCOMPARE(fileBytes(InDat),
             recordsBytes({scenario(QStringLiteral("Long"), 1000, 0.05, 30, 100, 12)}));
    Q_UNUSED(before);
}

void TestScheduleWindows::loanTabOrderSkipsTheDisabledTotalInterest()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QCOMPARE(focusChain(fixture.field(QStringLiteral("Desc")), 9),
             QStringList({u"Desc"_s, u"InitialAmount"_s, u"IRate"_s, u"Years"_s, u"PerYear"_s,
                          u"Payment"_s, u"Print"_s, u"VScroll1"_s, u"Exit"_s, u"Desc"_s}));
    QCOMPARE(fileBytes(LnDat), recordsBytes({mortgage()}));
}

void TestScheduleWindows::totalInterestCannotTakeTheFocusOrBeTypedInto()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    HeaderField *total = fixture.field(QStringLiteral("TotalInterest"));
    QVERIFY(!total->isEnabled());
    const QString shown = total->text();
    QCOMPARE(shown, QStringLiteral("$115,838.19 "));
    QVERIFY(total->isBold());
    QTest::mouseClick(total, Qt::LeftButton);
    QVERIFY(!total->hasFocus());
    QVERIFY(!total->hasEditLook());
    QTest::keyClicks(total, QStringLiteral("99"));
    QCOMPARE(total->text(), shown);
    QCOMPARE(fileBytes(LnDat), recordsBytes({mortgage()}));
}

void TestScheduleWindows::accessibleNamesNameTheFieldsAndTheRows()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}, {mortgage()}));
    ScheduleWindow *investments = fixture.open(ListKind::Investments, 1);
    QCOMPARE(fixture.field(QStringLiteral("InitialAmount"))->accessibleName(),
             QStringLiteral("Intitial Amount"));
    QCOMPARE(fixture.field(QStringLiteral("Yield"))->accessibleName(),
             QStringLiteral("Yield (Rate of Return)"));
    QCOMPARE(fixture.field(QStringLiteral("FutureValue"))->accessibleName(),
             QStringLiteral("Future Value, calculated"));
    QCOMPARE(fixture.cell(QStringLiteral("Earnings"), 2)->accessibleName(),
             QStringLiteral("Earnings, row 3"));
    QCOMPARE(fixture.cell(QStringLiteral("TotEarnings"), 11)->accessibleName(),
             QStringLiteral("Total Earnings and Payments, row 12"));
    investments->hide();
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->accessibleName(),
             QStringLiteral("Payment, calculated"));
    QCOMPARE(fixture.field(QStringLiteral("TotalInterest"))->accessibleName(),
             QStringLiteral("Total Interest, calculated"));
    QCOMPARE(fixture.cell(QStringLiteral("Period"), 0)->accessibleName(),
             QStringLiteral("Period / Payment, row 1"));
    QCOMPARE(fixture.cell(QStringLiteral("CumInterest"), 4)->accessibleName(),
             QStringLiteral("Cumulative Interest, row 5"));
}

void TestScheduleWindows::headerShowsTheRecordWithTheSolvedFieldBold()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start(
        {thirteenYears(), scenario(QStringLiteral("   Padded   "), 1234.5, 0.075, 2, 50, 4)}));
    QVERIFY(fixture.open(ListKind::Investments, 2));
    QCOMPARE(fixture.field(QStringLiteral("Desc"))->text(), QStringLiteral(" Padded"));
    QCOMPARE(fixture.field(QStringLiteral("InitialAmount"))->text(), QStringLiteral("$1,234.50 "));
    QCOMPARE(fixture.field(QStringLiteral("Yield"))->text(), QStringLiteral("7.50% "));
    QCOMPARE(fixture.field(QStringLiteral("Years"))->text(), QStringLiteral("2.0 "));
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QStringLiteral("$50.00 "));
    QCOMPARE(fixture.field(QStringLiteral("PerYear"))->text(), QStringLiteral("4"));
    QVERIFY(!fixture.field(QStringLiteral("InitialAmount"))->isBold());
    QVERIFY(!fixture.field(QStringLiteral("PerYear"))->isBold());
    QVERIFY(fixture.field(QStringLiteral("FutureValue"))->isBold());
    QVERIFY(!fixture.field(QStringLiteral("FutureValue"))->text().isEmpty());
    // Fields rest flat, without a frame.
    QVERIFY(!fixture.field(QStringLiteral("Years"))->hasFrame());
}

void TestScheduleWindows::twelvePeriodsNeedNoScrollBarAndLaterRowsAreBlank()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Twelve"), 1000, 0, 1, 100, 12),
                           scenario(QStringLiteral("Ten"), 1000, 0, 1, 100, 10)}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.session().PeriodCount, qint16(12));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral("  12"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 11), QStringLiteral("$2,200.00"));
    window->hide();

    QVERIFY(fixture.open(ListKind::Investments, 2));
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.text(QStringLiteral("Period"), 9), QStringLiteral("  10"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 9), QStringLiteral("$2,000.00"));
    for (const QString &column : {QStringLiteral("Period"), QStringLiteral("Earnings"),
                                  QStringLiteral("CumEarnings"), QStringLiteral("TotEarnings")}) {
        QCOMPARE(fixture.text(column, 10), QString());
        QCOMPARE(fixture.text(column, 11), QString());
    }
}

void TestScheduleWindows::thirteenPeriodsScrollFromOneToTwo()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QScrollBar *bar = fixture.scrollBar();
    QVERIFY(bar->isVisible());
    QVERIFY(bar->hasFocus());
    QCOMPARE(bar->minimum(), 1);
    QCOMPARE(bar->maximum(), 2);
    QCOMPARE(bar->pageStep(), 12);
    QCOMPARE(bar->singleStep(), 1);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), QStringLiteral("$120.00"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,220.00"));

    // The arrow at the bottom of the bar.
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier,
                      QPoint(bar->width() / 2, bar->height() - 5));
    QCOMPARE(bar->value(), 2);
    QCOMPARE(fixture.session().FirstPeriod, qint16(2));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   2"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), QStringLiteral("$146.40"));
    QCOMPARE(fixture.text(QStringLiteral("CumEarnings"), 0), QStringLiteral("$266.40"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,466.40"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral("  13"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 11), QStringLiteral("$757.11"));
    QCOMPARE(fixture.text(QStringLiteral("CumEarnings"), 11), QStringLiteral("$4,866.40"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 11), QStringLiteral("$7,166.40"));
}

void TestScheduleWindows::thirtyYearLoanScrollsToPayments349To360()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QScrollBar *bar = fixture.scrollBar();
    QCOMPARE(fixture.session().PeriodCount, qint16(360));
    QCOMPARE(bar->maximum(), 349);
    QCOMPARE(bar->pageStep(), 12);
    QCOMPARE(fixture.field(QStringLiteral("Payment"))->text(), QStringLiteral("$599.55 "));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 0), QStringLiteral("$99.55"));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$500.00"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$99,900.45"));

    QTest::keyClick(bar, Qt::Key_End);
    QCOMPARE(bar->value(), 349);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral(" 349"));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 0), QStringLiteral("$564.72"));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$34.83"));
    QCOMPARE(fixture.text(QStringLiteral("CumPrincipal"), 0), QStringLiteral("$93,598.58"));
    QCOMPARE(fixture.text(QStringLiteral("CumInterest"), 0), QStringLiteral("$115,644.55"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$6,401.42"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral(" 360"));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 11), QStringLiteral("$596.57"));
    QCOMPARE(fixture.text(QStringLiteral("CumPrincipal"), 11), QStringLiteral("$100,000.00"));
    QCOMPARE(fixture.text(QStringLiteral("CumInterest"), 11), QStringLiteral("$115,838.19"));

    // A page up from there.
    QTest::keyClick(bar, Qt::Key_PageUp);
    QCOMPARE(bar->value(), 337);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral(" 337"));
}

void TestScheduleWindows::zeroYieldEarnsNothingAndAddsThePayment()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Zero"), 1000, 0, 1, 100, 12)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    for (int row = 0; row < 12; ++row) {
        QCOMPARE(fixture.text(QStringLiteral("Earnings"), row), QStringLiteral("$0.00"));
        QCOMPARE(fixture.text(QStringLiteral("CumEarnings"), row), QStringLiteral("$0.00"));
    }
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,100.00"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 1), QStringLiteral("$1,200.00"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 11), QStringLiteral("$2,200.00"));
}

void TestScheduleWindows::monthlyYieldIsTheEffectiveRate()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Monthly"), 1000, 0.12, 1, 0, 12)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    // 1.12^(1/12) - 1 a month, not 1 %.
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), QStringLiteral("$9.49"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,009.49"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 1), QStringLiteral("$9.58"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 11), QStringLiteral("$1,120.00"));
}

void TestScheduleWindows::withdrawalsRunTheBalanceNegative()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Withdraw"), 1000, 0.05, 1, -300, 12)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), QStringLiteral("$4.07"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$704.07"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 3), QStringLiteral("($190.96)"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 4), QStringLiteral("($0.78)"));
    QCOMPARE(fixture.text(QStringLiteral("CumEarnings"), 7), QStringLiteral("($1.44)"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 11), QStringLiteral("($9.46)"));
    QCOMPARE(fixture.text(QStringLiteral("CumEarnings"), 11), QStringLiteral("($31.77)"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 11), QStringLiteral("($2,631.77)"));
}

void TestScheduleWindows::zeroRateLoanFallsByThePaymentAndGoesNegative()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {scenario(QStringLiteral("Friend"), 1000, 0, 1, 100, 12)}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    for (int row = 0; row < 12; ++row) {
        QCOMPARE(fixture.text(QStringLiteral("Interest"), row), QStringLiteral("$0.00"));
        QCOMPARE(fixture.text(QStringLiteral("Principal"), row), QStringLiteral("$100.00"));
    }
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$900.00"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 9), QStringLiteral("$0.00"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 10), QStringLiteral("($100.00)"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 11), QStringLiteral("($200.00)"));
    QCOMPARE(fixture.text(QStringLiteral("CumPrincipal"), 11), QStringLiteral("$1,200.00"));
}

void TestScheduleWindows::paymentEqualToTheFirstInterestKeepsTheBalance()
{
    ScheduleFixture fixture;
    QVERIFY(
        fixture.start({}, {scenario(QStringLiteral("Interest only"), 100000, 0.06, 1, 500, 12)}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    for (int row = 0; row < 12; ++row) {
        QCOMPARE(fixture.text(QStringLiteral("Principal"), row), QStringLiteral("$0.00"));
        QCOMPARE(fixture.text(QStringLiteral("Interest"), row), QStringLiteral("$500.00"));
        QCOMPARE(fixture.text(QStringLiteral("CumPrincipal"), row), QStringLiteral("$0.00"));
        QCOMPARE(fixture.text(QStringLiteral("ReBalance"), row), QStringLiteral("$100,000.00"));
    }
    QCOMPARE(fixture.text(QStringLiteral("CumInterest"), 11), QStringLiteral("$6,000.00"));
}

void TestScheduleWindows::paymentBelowTheFirstInterestGrowsTheBalance()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {scenario(QStringLiteral("Never"), 100000, 0.06, 1, 400, 12)}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 0), QStringLiteral("($100.00)"));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$500.00"));
    QCOMPARE(fixture.text(QStringLiteral("CumPrincipal"), 0), QStringLiteral("($100.00)"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$100,100.00"));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 1), QStringLiteral("($100.50)"));
    QCOMPARE(fixture.text(QStringLiteral("CumPrincipal"), 1), QStringLiteral("($200.50)"));
    QCOMPARE(fixture.text(QStringLiteral("CumInterest"), 1), QStringLiteral("$1,000.50"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 1), QStringLiteral("$100,200.50"));
}

void TestScheduleWindows::loanMonthlyRateIsThePlainDivision()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {scenario(QStringLiteral("One percent"), 1000, 0.12, 1, 100, 12)}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$10.00"));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 0), QStringLiteral("$90.00"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$910.00"));
}

void TestScheduleWindows::blankPerYearShowsMinusOneAndLeavesTheTable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start(
        {thirteenYears(), scenario(QStringLiteral("No count"), 5000, 0.05, 10, 100, -1)},
        {mortgage(), scenario(QStringLiteral("No count"), 5000, 0.05, 10, 100, -1)}));
    ScheduleWindow *window = fixture.open(ListKind::Investments, 1);
    window->hide();
    QVERIFY(fixture.open(ListKind::Investments, 2));
    QCOMPARE(fixture.field(QStringLiteral("PerYear"))->text(), QStringLiteral("-1"));
    QCOMPARE(fixture.session().PeriodCount, qint16(-10));
    QVERIFY(fixture.scrollBar()->isHidden());
    // The table is not drawn: it still shows the scenario before.
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,220.00"));

    ScheduleWindow *loans = fixture.open(ListKind::Loans, 1);
    loans->hide();
    QVERIFY(fixture.open(ListKind::Loans, 2));
    QCOMPARE(fixture.field(QStringLiteral("PerYear"))->text(), QStringLiteral("-1"));
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$99,900.45"));
}

void TestScheduleWindows::perYearZeroLeavesTheTable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start(
        {thirteenYears(), scenario(QStringLiteral("Zero a year"), 5000, 0.05, 10, 100, 0)}));
    fixture.open(ListKind::Investments, 1)->hide();
    QVERIFY(fixture.open(ListKind::Investments, 2));
    QCOMPARE(fixture.field(QStringLiteral("PerYear"))->text(), QStringLiteral("0"));
    QCOMPARE(fixture.session().PeriodCount, qint16(0));
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,220.00"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral("  12"));
}

void TestScheduleWindows::loanPerYearZeroDividesNothingAndLeavesTheTable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start(
        {}, {mortgage(), scenario(QStringLiteral("Zero a year"), 5000, 0.05, 10, 100, 0)}));
    fixture.open(ListKind::Loans, 1)->hide();
    QVERIFY(fixture.open(ListKind::Loans, 2));
    QCOMPARE(fixture.field(QStringLiteral("PerYear"))->text(), QStringLiteral("0"));
    QCOMPARE(fixture.session().PeriodCount, qint16(0));
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$99,900.45"));
}

void TestScheduleWindows::emptyYearsTextKeepsThePreviousPeriodCount()
{
    // Years blank, and nothing paid in and no yield never reach a larger
    // future value: the engine has no value, Years shows empty.
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears(), scenario(QStringLiteral("Unreachable"), 1000, 0,
                                                     BlankValue, 0, 1, 2000)}));
    fixture.open(ListKind::Investments, 1)->hide();
    QVERIFY(fixture.open(ListKind::Investments, 2));
    QCOMPARE(fixture.field(QStringLiteral("Years"))->text(), QString());
    QVERIFY(fixture.field(QStringLiteral("Years"))->isBold());
    QCOMPARE(fixture.field(QStringLiteral("Years"))->accessibleName(),
             QStringLiteral("Years, calculated, no value"));
    QCOMPARE(fixture.session().PeriodCount, qint16(13));
    QVERIFY(fixture.scrollBar()->isVisible());
    // This scenario's table, as long as the one before.
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));
    QCOMPARE(fixture.text(QStringLiteral("Earnings"), 0), QStringLiteral("$0.00"));
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QStringLiteral("$1,000.00"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral("  12"));
}

void TestScheduleWindows::halfYearsRoundToEvenPeriods_data()
{
    QTest::addColumn<double>("years");
    QTest::addColumn<int>("periods");
    QTest::newRow("2.5 years are 2 periods") << 2.5 << 2;
    QTest::newRow("3.5 years are 4 periods") << 3.5 << 4;
}

void TestScheduleWindows::halfYearsRoundToEvenPeriods()
{
    QFETCH(double, years);
    QFETCH(int, periods);
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Half"), 1000, 0, years, 100, 1)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QCOMPARE(int(fixture.session().PeriodCount), periods);
    QCOMPARE(fixture.text(QStringLiteral("Period"), periods - 1),
             QStringLiteral("   %1").arg(periods));
    QCOMPARE(fixture.text(QStringLiteral("Period"), periods), QString());
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), periods - 1),
             periods == 2 ? QStringLiteral("$1,200.00") : QStringLiteral("$1,400.00"));
}

void TestScheduleWindows::periodNumbersArePaddedToFourDigits()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start(
        {}, {scenario(QStringLiteral("Century"), 100000, 0.05, 100, BlankValue, 12)}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QScrollBar *bar = fixture.scrollBar();
    QCOMPARE(bar->maximum(), 1189);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   1"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 8), QStringLiteral("   9"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 9), QStringLiteral("  10"));
    bar->setFocus();
    for (int k = 0; k < 8; ++k)
        QTest::keyClick(bar, Qt::Key_PageDown);
    QCOMPARE(bar->value(), 97);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 2), QStringLiteral("  99"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 3), QStringLiteral(" 100"));
    QTest::keyClick(bar, Qt::Key_End);
    for (int k = 0; k < 16; ++k)
        QTest::keyClick(bar, Qt::Key_PageUp);
    QCOMPARE(bar->value(), 997);
    QCOMPARE(fixture.text(QStringLiteral("Period"), 2), QStringLiteral(" 999"));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 3), QStringLiteral("1,000"));
}

void TestScheduleWindows::fourDigitPeriodsAreDrawnWholeInTheNarrowCourierColumn()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Century"), 1000, 0.05, 100, 10, 12)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    QVERIFY(!fixture.cell(QStringLiteral("Period"), 0)->isSqueezed());
    QScrollBar *bar = fixture.scrollBar();
    QTest::keyClick(bar, Qt::Key_End);
    QCOMPARE(bar->value(), 1189);
    ScheduleCell *last = fixture.cell(QStringLiteral("Period"), 11);
    QCOMPARE(last->text(), QStringLiteral("1,200"));
    // Wider than the column in Courier, drawn a little narrower, whole.
    QVERIFY(last->fontMetrics().horizontalAdvance(last->text()) > last->contentsRect().width());
    QVERIFY(last->isSqueezed());
    QVERIFY(!last->isElided());
    QCOMPARE(last->toolTip(), QString());
}

void TestScheduleWindows::mouseWheelOverTheTableScrollsIt()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QScrollBar *bar = fixture.scrollBar();
    wheelDown(fixture.cell(QStringLiteral("Interest"), 5));
    QVERIFY(bar->value() > 1);
    const int afterOneNotch = bar->value();
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QStringLiteral("   %1").arg(afterOneNotch));
    wheelDown(bar);
    QCOMPARE(bar->value(), 2 * afterOneNotch - 1);
    // Not over the header.
    wheelDown(fixture.find(QStringLiteral("lblYears")));
    QCOMPARE(bar->value(), 2 * afterOneNotch - 1);
}

void TestScheduleWindows::tooManyPeriodsAreExplainedAndShowNoTable()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start(
        {thirteenYears(), scenario(QStringLiteral("Forever"), 1000, 0.05, 3000, 10, 12)}));
    fixture.open(ListKind::Investments, 1)->hide();
    m_boxes.expect();
    QVERIFY(fixture.open(ListKind::Investments, 2));
    QCOMPARE(m_boxes.texts(),
             QStringList({QStringLiteral("This scenario's schedule would have 36,000 periods, more "
                                         "than the 32,767 a schedule can show. Change its years "
                                         "or payments per year to see it.")}));
    QCOMPARE(m_boxes.titles(), QStringList({QStringLiteral("Quillet")}));
    QCOMPARE(fixture.field(QStringLiteral("Years"))->text(), QStringLiteral("3,000.0 "));
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.text(QStringLiteral("Period"), 0), QString());
    QCOMPARE(fixture.text(QStringLiteral("TotEarnings"), 0), QString());
    QCOMPARE(fileBytes(InDat), recordsBytes({thirteenYears(), scenario(QStringLiteral("Forever"),
                                                                       1000, 0.05, 3000, 10, 12)}));
}

void TestScheduleWindows::figuresTooWideForTheirCellAreShortenedVisibly()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({scenario(QStringLiteral("Huge"), 1e300, 0.05, 1, 0, 1)}));
    QVERIFY(fixture.open(ListKind::Investments, 1));
    ScheduleCell *balance = fixture.cell(QStringLiteral("TotEarnings"), 0);
    QVERIFY(balance->text().startsWith(QStringLiteral("$1,050,000,000,")));
    QVERIFY(balance->isElided());
    QVERIFY(!balance->isSqueezed());
    QCOMPARE(balance->toolTip(), balance->text());
    QCOMPARE(balance->accessibleDescription(), balance->text());
    QVERIFY(!fixture.cell(QStringLiteral("Period"), 0)->isElided());
    QCOMPARE(fixture.cell(QStringLiteral("Period"), 0)->toolTip(), QString());
}

void TestScheduleWindows::countersAreSharedByBothWindows()
{
    // A loan paid nothing is never repaid: its years cannot be solved and
    // its Years text is empty.
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}, {scenario(QStringLiteral("Never repaid"), 1200, 0.05,
                                                       BlankValue, 0, 12)}));
    fixture.open(ListKind::Investments, 1)->hide();
    QCOMPARE(fixture.session().PeriodCount, qint16(13));
    QVERIFY(fixture.open(ListKind::Loans, 1));
    QCOMPARE(fixture.field(QStringLiteral("Years"))->text(), QString());
    // The investment's 13 periods.
    QCOMPARE(fixture.session().PeriodCount, qint16(13));
    QCOMPARE(fixture.text(QStringLiteral("Period"), 11), QStringLiteral("  12"));
    QCOMPARE(fixture.text(QStringLiteral("Interest"), 0), QStringLiteral("$5.00"));
    QCOMPARE(fixture.text(QStringLiteral("Principal"), 0), QStringLiteral("($5.00)"));
    QCOMPARE(fixture.text(QStringLiteral("ReBalance"), 0), QStringLiteral("$1,205.00"));
}

void TestScheduleWindows::windowsShowTheTextsOfQuilletReport_data()
{
    QTest::addColumn<bool>("investments");
    QTest::addColumn<ScenarioRecord>("record");
    QTest::newRow("a 30-year loan") << false << mortgage();
    QTest::newRow("withdrawals past zero")
        << true << scenario(QStringLiteral("Withdraw"), 1000, 0.05, 100, -30, 12);
}

void TestScheduleWindows::windowsShowTheTextsOfQuilletReport()
{
    QFETCH(bool, investments);
    QFETCH(ScenarioRecord, record);
    const ListKind list = investments ? ListKind::Investments : ListKind::Loans;
    ScheduleFixture fixture;
    QVERIFY(investments ? fixture.start({record}) : fixture.start({}, {record}));
    QString report;
    QVERIFY(report::scheduleReport(list, record, 1, investments ? InDat : LnDat,
                                   report::Format::Text, report)
                .ok());
    // The report's table lines by their period number.
    std::map<QString, QStringList> lines;
    for (const QString &line : report.split(u'\n')) {
        const QStringList words = line.split(u' ', Qt::SkipEmptyParts);
        if (!words.isEmpty() && words.first().front().isDigit())
            lines[words.first()] = words;
    }
    const QStringList columns =
        investments ? QStringList({u"Period"_s, u"Earnings"_s, u"CumEarnings"_s, u"TotEarnings"_s})
                    : QStringList({u"Period"_s, u"Principal"_s, u"Interest"_s, u"CumPrincipal"_s,
                                   u"CumInterest"_s, u"ReBalance"_s});
    QVERIFY(fixture.open(list, 1));
    QScrollBar *bar = fixture.scrollBar();
    for (const int top : {1, 175, bar->maximum()}) {
        bar->setValue(top);
        for (int row = 0; row < 12; ++row) {
            QStringList shown;
            // The period without its padding, the amounts exactly.
            shown << fixture.text(columns.first(), row).trimmed();
            for (const QString &column : columns.mid(1))
                shown << fixture.text(column, row);
            QCOMPARE(lines[shown.first()], shown);
        }
    }
}

void TestScheduleWindows::amortizeShowsTheSelectedScenarioAndRedrawsItsRow()
{
    ScheduleFixture fixture;
    QVERIFY(
        fixture.start({thirteenYears(), scenario(QStringLiteral("Second"), 2000, 0.05, 2, 10, 1)}));
    QVERIFY(fixture.startMainWindow());
    MainWindow &main = fixture.mainWindow();
    auto *amort = main.findChild<QToolButton *>(QStringLiteral("Amort"));
    QVERIFY(!amort->isEnabled());
    QTest::mouseClick(main.findChild<QPushButton *>(QStringLiteral("Sel(2)")), Qt::LeftButton);
    QVERIFY(amort->isEnabled());

    bool ran = false;
    QTimer::singleShot(0, [&] {
        ScheduleWindow &window = fixture.windows().window(ListKind::Investments);
        QVERIFY(window.isVisible());
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QVERIFY(window.isModal());
        QCOMPARE(window.record(), 2);
        auto *desc = window.findChild<HeaderField *>(QStringLiteral("Desc"));
        QCOMPARE(desc->text(), QStringLiteral(" Second"));
        QCOMPARE(window.findChild<ScheduleCell *>(QStringLiteral("TotEarnings(1)"))->text(),
                 QStringLiteral("$2,225.50"));
        typeInto(desc, QStringLiteral("Renamed"));
        QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("Exit")), Qt::LeftButton);
        ran = true;
    });
    QTest::mouseClick(amort, Qt::LeftButton);
    QVERIFY(ran);
    QVERIFY(!fixture.windows().window(ListKind::Investments).isVisible());
    QCOMPARE(trimmedDesc(recordOnDisk(InDat, 2)), QStringLiteral("Renamed"));
    QCOMPARE(main.cells(GridColumn::Desc)[2]->text(), QStringLiteral("Renamed"));
    // No undo entry for edits made in the schedule.
    QCOMPARE(fixture.session().list(ListKind::Investments).undo.UndoCount(), 0);
}

void TestScheduleWindows::amortizeShowsTheLoanWindowForTheLoanList()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    QVERIFY(fixture.startMainWindow());
    MainWindow &main = fixture.mainWindow();
    QTest::mouseClick(main.findChild<QPushButton *>(QStringLiteral("Sel(1)")), Qt::LeftButton);
    bool ran = false;
    QTimer::singleShot(0, [&] {
        ScheduleWindow &window = fixture.windows().window(ListKind::Loans);
        QVERIFY(window.isVisible());
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(window.objectName(), QStringLiteral("Loanamort"));
        auto *years = window.findChild<HeaderField *>(QStringLiteral("Years"));
        typeInto(years, QStringLiteral("15"));
        QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("Exit")), Qt::LeftButton);
        ran = true;
    });
    QTest::mouseClick(main.findChild<QToolButton *>(QStringLiteral("Amort")), Qt::LeftButton);
    QVERIFY(ran);
    QVERIFY(recordOnDisk(LnDat, 1).Years == 15.0);
    // The row is drawn again: the solved payment of a 15-year loan.
    QCOMPARE(main.cells(GridColumn::Years)[1]->text(), QStringLiteral("15.0 "));
    QCOMPARE(main.cells(GridColumn::Payment)[1]->text(), QStringLiteral("$843.86 "));
}

void TestScheduleWindows::windowsAreMadeOnceAndOnlyHiddenByExit()
{
    ScheduleFixture fixture;
    QVERIFY(fixture.start({thirteenYears()}));
    ScheduleWindow *first = fixture.open(ListKind::Investments, 1);
    QTest::mouseClick(fixture.button(QStringLiteral("Exit")), Qt::LeftButton);
    QVERIFY(first->isHidden());
    QPointer<ScheduleWindow> alive(first);
    ScheduleWindow *second = fixture.open(ListKind::Investments, 1);
    QVERIFY(alive);
    QCOMPARE(second, first);
    QVERIFY(second->isVisible());
}

void TestScheduleWindows::mainWindowIsActivatedAgainAfterTheSchedule()
{
    std::vector<ScenarioRecord> records;
    for (int n = 1; n <= 20; ++n)
        records.push_back(thirteenYears());
    ScheduleFixture fixture;
    QVERIFY(fixture.start(records));
    QVERIFY(fixture.startMainWindow());
    MainWindow &main = fixture.mainWindow();
    auto *mainBar = main.findChild<QScrollBar *>(QStringLiteral("VScroll1"));
    QVERIFY(mainBar->isVisible());
    QTest::mouseClick(main.findChild<QPushButton *>(QStringLiteral("Sel(3)")), Qt::LeftButton);
    auto *amort = main.findChild<QToolButton *>(QStringLiteral("Amort"));
    amort->setFocus();
    QTimer::singleShot(0, [&] {
        ScheduleWindow &window = fixture.windows().window(ListKind::Investments);
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::mouseClick(window.findChild<QPushButton *>(QStringLiteral("Exit")), Qt::LeftButton);
    });
    QTest::mouseClick(amort, Qt::LeftButton);
    // The window system gives the main window back its activation.
    main.activateWindow();
    QTRY_COMPARE(QApplication::activeWindow(), static_cast<QWidget *>(&main));
    // Form_Activate ran on the way back: the focus is on the scroll bar.
    QVERIFY2(mainBar->hasFocus(),
             qPrintable(QApplication::focusWidget()
                            ? QApplication::focusWidget()->objectName() +
                                  QApplication::focusWidget()->window()->objectName()
                            : QStringLiteral("none")));
}

QTEST_MAIN(TestScheduleWindows)
#include "tst_schedulewindows.moc"
