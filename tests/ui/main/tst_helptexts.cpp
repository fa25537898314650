#include "fonts.h"
#include "helptexts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

Q_DECLARE_METATYPE(quillet::ListKind)
Q_DECLARE_METATYPE(quillet::GridColumn)

namespace {

// The help box breaks the line at each carriage return of a text.
QString asShown(QString text)
{
    return text.replace(u'\r', u'\n');
}

QString columnName(GridColumn column)
{
    static const QStringList names = {QStringLiteral("Desc"),       QStringLiteral("InitialAmount"),
                                      QStringLiteral("Yield"),      QStringLiteral("Years"),
                                      QStringLiteral("Payment"),    QStringLiteral("PerYear"),
                                      QStringLiteral("FutureValue")};
    return names.at(static_cast<int>(column));
}

// The text shown while no cell is edited: two carriage returns between its
// paragraphs.
const QString GeneralHelpText =
    QStringLiteral("Click in the fields of the variables that are known to enter values and "
                   "see more specific help about each field.  The program will calculate and "
                   "display in bold the value that is left blank.\r\rAlso, you may click on "
                   "the row number to the left of an item you wish to copy, delete, move or "
                   "see an amortization schedule.");

} // namespace

class TestHelpTexts : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void initTestCase();
    void cleanup();

    void generalHelpHasTwoCarriageReturnsBetweenItsParagraphs();
    void helpBoxShowsTheGeneralHelpAtStartAndAfterEveryEdit();
    void eachFieldHasItsLongHelpInEachList_data();
    void eachFieldHasItsLongHelpInEachList();
    void everyCellOfAColumnCarriesTheShortTextOfTheListShown_data();
    void everyCellOfAColumnCarriesTheShortTextOfTheListShown();
};

void TestHelpTexts::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestHelpTexts::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestHelpTexts::generalHelpHasTwoCarriageReturnsBetweenItsParagraphs()
{
    QCOMPARE(GeneralHelp(), GeneralHelpText);
}

void TestHelpTexts::helpBoxShowsTheGeneralHelpAtStartAndAfterEveryEdit()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    auto *help = fixture.find<QLabel>(QStringLiteral("HelpBox"));
    QCOMPARE(help->text(), asShown(GeneralHelpText));
    for (const QString &column : gridColumns()) {
        GridCell *cell = fixture.cell(column, 1);
        QTest::mouseClick(cell, Qt::LeftButton);
        QVERIFY(help->text() != asShown(GeneralHelpText));
        QTest::keyClick(cell, Qt::Key_Return);
        QCOMPARE(help->text(), asShown(GeneralHelpText));
    }
}

void TestHelpTexts::eachFieldHasItsLongHelpInEachList_data()
{
    QTest::addColumn<ListKind>("list");
    QTest::addColumn<GridColumn>("column");
    QTest::addColumn<QString>("text");
    QTest::newRow("investments Desc")
        << ListKind::Investments << GridColumn::Desc
        << QStringLiteral("Type in a description of the investment scenario in this field, "
                          "but you can also just leave it blank.");
    QTest::newRow("loans Desc")
        << ListKind::Loans << GridColumn::Desc
        << QStringLiteral("Type in a description of the loan scenario in this field, but you "
                          "can also just leave it blank.");
    QTest::newRow("investments InitialAmount")
        << ListKind::Investments << GridColumn::InitialAmount
        << QStringLiteral("This value represents the amount of money you are starting with.  "
                          "If you leave it blank, then after you fill in the other values, the "
                          "program will calculate the amount you would have to invest at the "
                          "beginning to achieve those results.  If you leave another value "
                          "blank in addition to the Initial Amount, then the program will "
                          "assume there is no initial deposit for the investment.  In other "
                          "words, you can have an investment scenario where you start with "
                          "nothing, but make periodic payments for a number of years that grow "
                          "at some rate.");
    QTest::newRow("loans InitialAmount")
        << ListKind::Loans << GridColumn::InitialAmount
        << QStringLiteral("This value represents the amount of money that you are borrowing.  "
                          "If you leave it blank, then after you fill in the other values, the "
                          "program will calculate the amount you would be able to borrow, "
                          "given the interest rate, years, and payment amount you specified.");
    QTest::newRow("investments Yield")
        << ListKind::Investments << GridColumn::Yield
        << QStringLiteral("This is the yearly rate of return that your investment earns.  If "
                          "you leave it blank, then after you fill in the other values, the "
                          "program will calculate the rate of return your investment must earn "
                          "to achieve the given Future Value in the number of years "
                          "specified.\rNOTE: If you see different results from other financial "
                          "calculators or spreadsheet programs the reason is this: Many other "
                          "programs use an incorrect periodic rate which they get by simply "
                          "dividing the yearly rate by the number of payments or deposits in a "
                          "year.  Under this method, 12% annually with monthly deposits = 1% "
                          "per month.  But this is wrong because a 1% yield per month results "
                          "in a total annual yield of 12.6825%.  This difference can make "
                          "quite an impact over time.");
    QTest::newRow("loans Yield")
        << ListKind::Loans << GridColumn::Yield
        << QStringLiteral("This is the interest rate of the loan.  If you leave it blank, "
                          "then after you fill in the other values, the program will calculate "
                          "the actual rate of the loan, given the loan amount, the years, and "
                          "the payment values you provided.");
    QTest::newRow("investments Years")
        << ListKind::Investments << GridColumn::Years
        << QStringLiteral("This is the number of years for the investment to grow.  If you "
                          "leave it blank, then after you fill in the other values, the "
                          "program will calculate the amount of time required to reach the "
                          "given Future Value.  To calculate this value, it is not necessary "
                          "to have both an Initial Amount and a Payment.  You may leave one or "
                          "the other blank.  However, many scenarios will involve both a "
                          "starting amount and periodic contributions.");
    QTest::newRow("loans Years")
        << ListKind::Loans << GridColumn::Years
        << QStringLiteral("This is the number of years in the loan.  If you leave this blank, "
                          "then after you fill in the other values, the program will calculate "
                          "the amount of time required to pay off the loan.");
    QTest::newRow("investments Payment")
        << ListKind::Investments << GridColumn::Payment
        << QStringLiteral("This is the amount you add to (or withdraw from) your investment "
                          "each period.  If you do it monthly, then you must set the Payments "
                          "Per Year (PPY) to 12.  If you do it just once a year then set the "
                          "PPY to 1.  (If you don't fill in the PPY the program will assume it "
                          "is 1.)  If you leave the Payment blank, then after you fill in the "
                          "other values, the program will calculate the amount you must add to "
                          "your investment each period (or that you can withdraw from your "
                          "investment each period) to achieve the Future Value in the number "
                          "of years given.  If you also leave another value blank in addition "
                          "to this one, then the program will assume that there are no "
                          "contributions to the Initial Amount and will calculate the other "
                          "value that was left blank.");
    QTest::newRow("loans Payment")
        << ListKind::Loans << GridColumn::Payment
        << QStringLiteral("This is the loan payment amount.  If it is a monthly payment, then "
                          "you must set the Payments Per Year (PPY) to 12.  If it is biweekly, "
                          "then set the PPY to 26.  If you leave it blank, then after you fill "
                          "in the other values, the program will calculate the amount required "
                          "each time period to pay off the loan.");
    QTest::newRow("investments PerYear")
        << ListKind::Investments << GridColumn::PerYear
        << QStringLiteral("This is the number of payments or contributions in a year.  12 = "
                          "monthly, 1 = yearly, etc.  Any number from 1 to 365 is valid.  You "
                          "should not leave this blank unless there are no payments being "
                          "made.  In other words, if you have a payment, whether you type it "
                          "in or the program calcuates it for you, then you should indicate "
                          "how many payments there are in a year.  If you do not specify this, "
                          "the program will assume there to be 1 payment per year.");
    QTest::newRow("loans PerYear")
        << ListKind::Loans << GridColumn::PerYear
        << QStringLiteral("This is the number of payments in a year.  12 = monthly, 26 = "
                          "biweekly, etc.  Any number from 1 to 365 is valid.  If you have a "
                          "payment amount then you should fill in this value, other wise the "
                          "program will assume it is 1, meaning 1 payment per year.");
    QTest::newRow("investments FutureValue")
        << ListKind::Investments << GridColumn::FutureValue
        << QStringLiteral("This is the amount the investment will grow to in the number of "
                          "years given.  Hopefully it is large.  If you leave this value "
                          "blank, then after you fill in the other values, the program will "
                          "calculate how much your investment will be worth given the number "
                          "of years and rate of return, and how much you put into it.");
    QTest::newRow("loans FutureValue")
        << ListKind::Loans << GridColumn::FutureValue
        << QStringLiteral("This is the total amount of interest that is paid during the life "
                          "of the loan.  You cannot edit this value, the program just "
                          "calculates it for you.  It is useful information to see the power "
                          "of compounding interest.  In this case it is working against the "
                          "borrower.  Much better to have it working for you.");
}

void TestHelpTexts::eachFieldHasItsLongHelpInEachList()
{
    QFETCH(ListKind, list);
    QFETCH(GridColumn, column);
    QFETCH(QString, text);
    QCOMPARE(FieldHelp(column, list), text);

    // Clicking a cell of the field shows it, the total interest of a loan too.
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    if (list == ListKind::Loans)
        QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    QTest::mouseClick(fixture.cell(columnName(column), 1), Qt::LeftButton);
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(), asShown(text));
}

void TestHelpTexts::everyCellOfAColumnCarriesTheShortTextOfTheListShown_data()
{
    QTest::addColumn<ListKind>("list");
    QTest::addColumn<GridColumn>("column");
    QTest::addColumn<QString>("tip");
    QTest::newRow("investments Desc")
        << ListKind::Investments << GridColumn::Desc
        << QStringLiteral("A description of the investment scenario; you can leave it blank.");
    QTest::newRow("loans Desc")
        << ListKind::Loans << GridColumn::Desc
        << QStringLiteral("A description of the loan scenario; you can leave it blank.");
    QTest::newRow("investments InitialAmount")
        << ListKind::Investments << GridColumn::InitialAmount
        << QStringLiteral("The amount of money you are starting with.");
    QTest::newRow("loans InitialAmount")
        << ListKind::Loans << GridColumn::InitialAmount
        << QStringLiteral("The amount of money that you are borrowing.");
    QTest::newRow("investments Yield")
        << ListKind::Investments << GridColumn::Yield
        << QStringLiteral("The yearly rate of return that your investment earns.");
    QTest::newRow("loans Yield") << ListKind::Loans << GridColumn::Yield
                                 << QStringLiteral("The interest rate of the loan.");
    QTest::newRow("investments Years")
        << ListKind::Investments << GridColumn::Years
        << QStringLiteral("The number of years for the investment to grow.");
    QTest::newRow("loans Years") << ListKind::Loans << GridColumn::Years
                                 << QStringLiteral("The number of years in the loan.");
    QTest::newRow("investments Payment")
        << ListKind::Investments << GridColumn::Payment
        << QStringLiteral("The amount you add to (or withdraw from) your investment each "
                          "period.");
    QTest::newRow("loans Payment")
        << ListKind::Loans << GridColumn::Payment << QStringLiteral("The loan payment amount.");
    QTest::newRow("investments PerYear")
        << ListKind::Investments << GridColumn::PerYear
        << QStringLiteral("The number of payments or contributions in a year.  12 = monthly, "
                          "1 = yearly, etc.  Any number from 1 to 365.");
    QTest::newRow("loans PerYear")
        << ListKind::Loans << GridColumn::PerYear
        << QStringLiteral("The number of payments in a year.  12 = monthly, 26 = biweekly, "
                          "etc.  Any number from 1 to 365.");
    QTest::newRow("investments FutureValue")
        << ListKind::Investments << GridColumn::FutureValue
        << QStringLiteral("The amount the investment will grow to in the number of years "
                          "given.");
    QTest::newRow("loans FutureValue")
        << ListKind::Loans << GridColumn::FutureValue
        << QStringLiteral("The total amount of interest that is paid during the life of the "
                          "loan.");
}

void TestHelpTexts::everyCellOfAColumnCarriesTheShortTextOfTheListShown()
{
    QFETCH(ListKind, list);
    QFETCH(GridColumn, column);
    QFETCH(QString, tip);
    QCOMPARE(FieldTip(column, list), tip);

    // Shown after a switch away and back, on the header and all 14 rows.
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    const QString other =
        list == ListKind::Loans ? QStringLiteral("Investments") : QStringLiteral("Loans");
    const QString shown =
        list == ListKind::Loans ? QStringLiteral("Loans") : QStringLiteral("Investments");
    QTest::mouseClick(fixture.find(other), Qt::LeftButton);
    QTest::mouseClick(fixture.find(shown), Qt::LeftButton);
    for (int row = 0; row <= 14; ++row)
        QCOMPARE(fixture.cell(columnName(column), row)->toolTip(), tip);
}

QTEST_MAIN(TestHelpTexts)
#include "tst_helptexts.moc"
