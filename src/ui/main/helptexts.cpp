#include "helptexts.h"

#include <array>

namespace quillet {

namespace {

struct TextPair
{
    QStringView investments;
    QStringView loans;
};

// In the order of the grid's columns.
constexpr std::array<TextPair, GridColumnCount> LongTexts = {{
    // Desc
    {u"Type in a description of the investment scenario in this field, but you can also just leave "
     u"it blank.",
     u"Type in a description of the loan scenario in this field, but you can also just leave it "
     u"blank."},
    // InitialAmount
    {u"This value represents the amount of money you are starting with.  If you leave it blank, "
     u"then after you fill in the other values, the program will calculate the amount you would "
     u"have to invest at the beginning to achieve those results.  If you leave another value blank "
     u"in addition to the Initial Amount, then the program will assume there is no initial deposit "
     u"for the investment.  In other words, you can have an investment scenario where you start "
     u"with nothing, but make periodic payments for a number of years that grow at some rate.",
     u"This value represents the amount of money that you are borrowing.  If you leave it blank, "
     u"then after you fill in the other values, the program will calculate the amount you would be "
     u"able to borrow, given the interest rate, years, and payment amount you specified."},
    // Yield
    {u"This is the yearly rate of return that your investment earns.  If you leave it blank, then "
     u"after you fill in the other values, the program will calculate the rate of return your "
     u"investment must earn to achieve the given Future Value in the number of years "
     u"specified.\rNOTE: If you see different results from other financial calculators or "
     u"spreadsheet programs the reason is this: Many other programs use an incorrect periodic rate "
     u"which they get by simply dividing the yearly rate by the number of payments or deposits in "
     u"a year.  Under this method, 12% annually with monthly deposits = 1% per month.  But this is "
     u"wrong because a 1% yield per month results in a total annual yield of 12.6825%.  This "
     u"difference can make quite an impact over time.",
     u"This is the interest rate of the loan.  If you leave it blank, then after you fill in the "
     u"other values, the program will calculate the actual rate of the loan, given the loan "
     u"amount, the years, and the payment values you provided."},
    // Years
    {u"This is the number of years for the investment to grow.  If you leave it blank, then after "
     u"you fill in the other values, the program will calculate the amount of time required to "
     u"reach the given Future Value.  To calculate this value, it is not necessary to have both an "
     u"Initial Amount and a Payment.  You may leave one or the other blank.  However, many "
     u"scenarios will involve both a starting amount and periodic contributions.",
     u"This is the number of years in the loan.  If you leave this blank, then after you fill in "
     u"the other values, the program will calculate the amount of time required to pay off the "
     u"loan."},
    // Payment
    {u"This is the amount you add to (or withdraw from) your investment each period.  If you do it "
     u"monthly, then you must set the Payments Per Year (PPY) to 12.  If you do it just once a "
     u"year then set the PPY to 1.  (If you don't fill in the PPY the program will assume it is "
     u"1.)  If you leave the Payment blank, then after you fill in the other values, the program "
     u"will calculate the amount you must add to your investment each period (or that you can "
     u"withdraw from your investment each period) to achieve the Future Value in the number of "
     u"years given.  If you also leave another value blank in addition to this one, then the "
     u"program will assume that there are no contributions to the Initial Amount and will "
     u"calculate the other value that was left blank.",
     u"This is the loan payment amount.  If it is a monthly payment, then you must set the "
     u"Payments Per Year (PPY) to 12.  If it is biweekly, then set the PPY to 26.  If you leave it "
     u"blank, then after you fill in the other values, the program will calculate the amount "
     u"required each time period to pay off the loan."},
    // PerYear
    {u"This is the number of payments or contributions in a year.  12 = monthly, 1 = yearly, etc.  "
     u"Any number from 1 to 365 is valid.  You should not leave this blank unless there are no "
     u"payments being made.  In other words, if you have a payment, whether you type it in or the "
     u"program calcuates it for you, then you should indicate how many payments there are in a "
     u"year.  If you do not specify this, the program will assume there to be 1 payment per year.",
     u"This is the number of payments in a year.  12 = monthly, 26 = biweekly, etc.  Any number "
     u"from 1 to 365 is valid.  If you have a payment amount then you should fill in this value, "
     u"other wise the program will assume it is 1, meaning 1 payment per year."},
    // FutureValue
    {u"This is the amount the investment will grow to in the number of years given.  Hopefully it "
     u"is large.  If you leave this value blank, then after you fill in the other values, the "
     u"program will calculate how much your investment will be worth given the number of years and "
     u"rate of return, and how much you put into it.",
     u"This is the total amount of interest that is paid during the life of the loan.  You cannot "
     u"edit this value, the program just calculates it for you.  It is useful information to see "
     u"the power of compounding interest.  In this case it is working against the borrower.  Much "
     u"better to have it working for you."},
}};

constexpr std::array<TextPair, GridColumnCount> ShortTexts = {{
    // Desc
    {u"A description of the investment scenario; you can leave it blank.",
     u"A description of the loan scenario; you can leave it blank."},
    // InitialAmount
    {u"The amount of money you are starting with.", u"The amount of money that you are borrowing."},
    // Yield
    {u"The yearly rate of return that your investment earns.", u"The interest rate of the loan."},
    // Years
    {u"The number of years for the investment to grow.", u"The number of years in the loan."},
    // Payment
    {u"The amount you add to (or withdraw from) your investment each period.",
     u"The loan payment amount."},
    // PerYear
    {u"The number of payments or contributions in a year.  12 = monthly, 1 = yearly, etc.  Any "
     u"number from 1 to 365.",
     u"The number of payments in a year.  12 = monthly, 26 = biweekly, etc.  Any number from 1 to "
     u"365."},
    // FutureValue
    {u"The amount the investment will grow to in the number of years given.",
     u"The total amount of interest that is paid during the life of the loan."},
}};

QStringView pick(const TextPair &pair, ListKind list)
{
    return list == ListKind::Investments ? pair.investments : pair.loans;
}

} // namespace

QString GeneralHelp()
{
    return QStringLiteral(
        "Click in the fields of the variables that are known to enter values and see more "
        "specific help about each field.  The program will calculate and display in bold the "
        "value that is left blank.\r\rAlso, you may click on the row number to the left of an "
        "item you wish to copy, delete, move or see an amortization schedule.");
}

QString FieldHelp(GridColumn column, ListKind list)
{
    return pick(LongTexts.at(static_cast<std::size_t>(column)), list).toString();
}

QString FieldTip(GridColumn column, ListKind list)
{
    return pick(ShortTexts.at(static_cast<std::size_t>(column)), list).toString();
}

QString helpBoxText(const QString &text)
{
    // The texts separate paragraphs with bare carriage returns.
    QString shown = text;
    shown.replace(u'\r', u'\n');
    return shown;
}

} // namespace quillet
