#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

QColor background(QWidget *cell)
{
    return cell->palette().color(QPalette::Base);
}

QColor systemColour(QPalette::ColorRole role)
{
    return QApplication::palette().color(role);
}

const QStringList SelectionButtons = {QStringLiteral("Copy"), QStringLiteral("Delete"),
                                      QStringLiteral("MoveUp"), QStringLiteral("MoveDown"),
                                      QStringLiteral("Amort")};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void initTestCase();
    void cleanup();

    void windowHasItsCaptionAndClientSize();
    void controlsSitAtTheirTwips();
    void lastRowEndsAboveTheHelpBox();
    void headerCellsCarryTheirCaptionsAndColours();
    void cellsUseArialNineAndSelectorsTheirOwnFaces();
    void commandButtonsShowTheirCaptionsPicturesAndToolTips();
    void tabOrderFollowsTheLayout();
    void headerCellsCannotBeEdited();
    void exitRectangleAlwaysReachesCmdExit();
    void headerSelectorNeverReactsToClicks();

    void startingWithoutFilesCreatesThemAndShowsAnEmptyInvestmentList();
    void onlyLoansOpensOnTheLoanList();
    void investmentsAndLoansOpenOnInvestments();
    void rowsShowTheirRecordsWithTheSolvedValueBold();
    void solvedCellIsAnnouncedAsCalculated();
    void loanRowShowsItsSolvedPaymentAndTotalInterest();
    void blankPerYearShowsAnEmptyCell();
    void longDescriptionIsCutToItsCell();
    void boldMovesToTheFieldLeftBlank();

    void scrollBarAppearsOnlyAboveFourteenRecords_data();
    void scrollBarAppearsOnlyAboveFourteenRecords();
    void scrollingShowsLaterRecordsInTheSameRows();
    void eachListKeepsItsOwnTopRowAndSelection();

    void clickingASelectorSelectsTheRow();
    void clickingAnotherSelectorMovesTheSelection();
    void clickingTheSelectedRowAgainDeselectsIt();
    void clickingTheSelectorOfAnEmptyRowDoesNothing();
    void rowsAreColouredSelectedUnselectedOrEmpty();

    void switchingListsChangesHeadersColoursAndToolTips();
    void switchingToTheListShownChangesNothing();
    void helpBoxStartsWithTheGeneralHelp();
    void clickingTheTotalInterestOfALoanShowsItsHelp();
    void leavingACellShowsTheGeneralHelpAgain();
    void focusGoesToTheScrollBarOrTheListButton();
    void exitClosesTheWindow();
};

void TestMainWindow::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestMainWindow::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestMainWindow::windowHasItsCaptionAndClientSize()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    QCOMPARE(fixture.window().windowTitle(), QStringLiteral("Fennrow"));
    QCOMPARE(fixture.window().size(), QSize(753, 469));
    QVERIFY(!fixture.window().windowIcon().isNull());
}

void TestMainWindow::controlsSitAtTheirTwips()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    const struct
    {
        const char *name;
        QRect rect;
    } expected[] = {
        // Pixels at 96 DPI: each edge in twips over 15, rounded.
        {"Payment(3)", QRect(468, 138, 102, 19)},
        {"Desc(1)", QRect(23, 102, 213, 19)},
        {"FutureValue(14)", QRect(628, 336, 105, 19)},
        {"Yield(0)", QRect(348, 78, 81, 23)},
        {"Sel(14)", QRect(4, 336, 18, 19)},
        {"Sel(0)", QRect(4, 81, 17, 19)},
        {"VScroll1", QRect(732, 102, 17, 253)},
        {"HelpBox", QRect(4, 360, 745, 91)},
        {"cmdExit", QRect(684, 0, 69, 40)},
        {"Command2", QRect(684, 0, 69, 40)},
        {"MoveUp", QRect(276, 0, 69, 40)},
        {"Investments", QRect(23, 51, 113, 27)},
        {"Loans", QRect(139, 51, 113, 27)},
    };
    for (const auto &control : expected) {
        QWidget *widget = fixture.find(QString::fromLatin1(control.name));
        QVERIFY2(widget, control.name);
        QCOMPARE(widget->geometry(), control.rect);
    }
}

void TestMainWindow::lastRowEndsAboveTheHelpBox()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    const int helpTop = fixture.find(QStringLiteral("HelpBox"))->geometry().top();
    QCOMPARE(helpTop, 360); // 5400 twips
    for (const QString &column : gridColumns())
        QCOMPARE(fixture.cell(column, 14)->geometry().bottom() + 1, 355); // 5325 twips
    QCOMPARE(fixture.scrollBar()->geometry().bottom() + 1, 355);
}

void TestMainWindow::headerCellsCarryTheirCaptionsAndColours()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QStringList captions = {QStringLiteral("Description"), QStringLiteral("Initial Amount"),
                                  QStringLiteral("Yield"),       QStringLiteral("Years"),
                                  QStringLiteral("Payment"),     QStringLiteral("# Per Year"),
                                  QStringLiteral("Future Value")};
    for (int k = 0; k < gridColumns().size(); ++k) {
        GridCell *header = fixture.cell(gridColumns()[k], 0);
        QCOMPARE(header->text(), captions[k]);
        QVERIFY(header->isReadOnly());
        QCOMPARE(header->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
        // The investments list paints its headers light green.
        QCOMPARE(background(header), QColor(192, 255, 192));
    }
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->alignment() & Qt::AlignHorizontal_Mask,
             Qt::AlignLeft);
    QCOMPARE(fixture.cell(QStringLiteral("Payment"), 1)->alignment() & Qt::AlignHorizontal_Mask,
             Qt::AlignRight);
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->palette().color(QPalette::Window),
             QColor(255, 255, 192));
}

void TestMainWindow::cellsUseArialNineAndSelectorsTheirOwnFaces()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QFont cellFont = fixture.cell(QStringLiteral("Years"), 1)->font();
    QCOMPARE(cellFont.family(), QStringLiteral("Arial"));
    QCOMPARE(cellFont.pointSizeF(), 9.0);
    QCOMPARE(QFontInfo(cellFont).family(), QStringLiteral("Liberation Sans"));
    QCOMPARE(fixture.sel(1)->font().family(), QStringLiteral("MS Serif"));
    QCOMPARE(fixture.sel(1)->font().pointSizeF(), 8.25);
    QCOMPARE(fixture.sel(0)->font().family(), QStringLiteral("MS Sans Serif"));
    QCOMPARE(fixture.command(QStringLiteral("AddNew"))->font().pointSizeF(), 8.25);
    QCOMPARE(fixture.find(QStringLiteral("Investments"))->font().pointSizeF(), 9.0);
}

void TestMainWindow::commandButtonsShowTheirCaptionsPicturesAndToolTips()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    const struct
    {
        const char *name;
        const char *caption;
        QSize picture;
    } buttons[] = {
        {"AddNew", "Add New", {16, 15}}, {"Copy", "Copy", {16, 15}},
        {"Delete", "Delete", {14, 14}},  {"Undo", "Undo", {16, 15}},
        {"MoveUp", "Move Up", {70, 20}}, {"MoveDown", "Move Down", {70, 20}},
        {"Amort", "Amortize", {16, 15}}, {"Print", "Print", {16, 15}},
        {"cmdExit", "Exit", {16, 16}},   {"Command2", "Exit", {16, 16}},
    };
    for (const auto &expected : buttons) {
        QToolButton *button = fixture.command(QString::fromLatin1(expected.name));
        QVERIFY2(button, expected.name);
        QCOMPARE(button->text(), QString::fromLatin1(expected.caption));
        QCOMPARE(button->iconSize(), expected.picture);
        QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
        QVERIFY(!button->icon().isNull());
        QCOMPARE(button->accessibleName(), QString());
    }
    QCOMPARE(fixture.command(QStringLiteral("Undo"))->toolTip(),
             QStringLiteral("Click here to undo the last change.  (Last 10 changes kept during "
                            "current session.) (Ctrl+Z)"));
    QCOMPARE(fixture.command(QStringLiteral("cmdExit"))->toolTip(),
             QStringLiteral("Click here to exit.  You don't have to save.  All changes are saved "
                            "as you make them. (Ctrl+Q)"));
    QCOMPARE(fixture.find(QStringLiteral("Investments"))->toolTip(),
             QStringLiteral("Click here to look at \"Investment\" scenarios. (Ctrl+1)"));
    QCOMPARE(fixture.sel(1)->toolTip(),
             QStringLiteral("Click here to select a row to delete, copy, move or do an "
                            "amortization.  (Click again to de-select.)"));
    QCOMPARE(fixture.sel(2)->toolTip(), QStringLiteral("Click here to select a row to delete, "
                                                       "copy, move or do an amortization."));
    QCOMPARE(fixture.sel(0)->toolTip(), QString());

    // A disabled button shows its greyed picture, which differs from the picture.
    const QIcon copyIcon = fixture.command(QStringLiteral("Copy"))->icon();
    QVERIFY(copyIcon.pixmap(QSize(16, 15), QIcon::Disabled).toImage() !=
            copyIcon.pixmap(QSize(16, 15), QIcon::Normal).toImage());
}

void TestMainWindow::tabOrderFollowsTheLayout()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    const auto next = [&fixture](const QString &name) {
        QWidget *after = fixture.find(name)->nextInFocusChain();
        while (after && after->focusPolicy() == Qt::NoFocus)
            after = after->nextInFocusChain();
        return after ? after->objectName() : QString();
    };
    QCOMPARE(next(QStringLiteral("FutureValue(0)")), QStringLiteral("Desc(1)"));
    QCOMPARE(next(QStringLiteral("Desc(14)")), QStringLiteral("InitialAmount(1)"));
    QCOMPARE(next(QStringLiteral("InitialAmount(5)")), QStringLiteral("InitialAmount(7)"));
    QCOMPARE(next(QStringLiteral("InitialAmount(14)")), QStringLiteral("Yield(1)"));
    QCOMPARE(next(QStringLiteral("Yield(14)")), QStringLiteral("InitialAmount(6)"));
    QCOMPARE(next(QStringLiteral("InitialAmount(6)")), QStringLiteral("Years(1)"));
    QCOMPARE(next(QStringLiteral("FutureValue(14)")), QStringLiteral("VScroll1"));
    QCOMPARE(next(QStringLiteral("Sel(14)")), QStringLiteral("Investments"));
    QCOMPARE(next(QStringLiteral("Print")), QStringLiteral("MoveUp"));
    QCOMPARE(next(QStringLiteral("MoveUp")), QStringLiteral("Undo"));
    QCOMPARE(next(QStringLiteral("Undo")), QStringLiteral("Command2"));
    QCOMPARE(next(QStringLiteral("Command2")), QStringLiteral("cmdExit"));
}

void TestMainWindow::headerCellsCannotBeEdited()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    GridCell *header = fixture.cell(QStringLiteral("Yield"), 0);
    QTest::mouseClick(header, Qt::LeftButton);
    QTest::keyClicks(header, QStringLiteral("abc"));
    QTest::keyClick(header, Qt::Key_Backspace);
    QCOMPARE(header->text(), QStringLiteral("Yield"));
    QVERIFY(fixture.boxes().unexpected().isEmpty());
}

void TestMainWindow::exitRectangleAlwaysReachesCmdExit()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    QWidget *exitButton = fixture.command(QStringLiteral("cmdExit"));
    for (const QPoint &point : {QPoint(1, 1), exitButton->rect().center(),
                                exitButton->rect().bottomRight() - QPoint(1, 1)}) {
        QWidget *hit = fixture.window().childAt(exitButton->mapTo(&fixture.window(), point));
        while (hit && hit->parentWidget() != &fixture.window())
            hit = hit->parentWidget();
        QCOMPARE(hit, exitButton);
    }
}

void TestMainWindow::headerSelectorNeverReactsToClicks()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    QPushButton *header = fixture.sel(0);
    QVERIFY(!header->isEnabled());
    QCOMPARE(header->text(), QString());
    QTest::mouseClick(header, Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(0));
    QVERIFY(!fixture.command(QStringLiteral("Copy"))->isEnabled());
}

void TestMainWindow::startingWithoutFilesCreatesThemAndShowsAnEmptyInvestmentList()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    MainWindow window(session);
    window.Form_Load();
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));

    QCOMPARE(QFileInfo(QStringLiteral("In.dat")).size(), 0);
    QCOMPARE(QFileInfo(QStringLiteral("Ln.dat")).size(), 0);
    QVERIFY(session.InvMode);
    QCOMPARE(window.findChild<QWidget *>(QStringLiteral("Yield(0)"))->property("text").toString(),
             QStringLiteral("Yield"));
    for (int row = 1; row <= 14; ++row) {
        QVERIFY(window.findChild<QWidget *>(QStringLiteral("Sel(%1)").arg(row))->isHidden());
        for (const QString &column : gridColumns()) {
            auto *cell =
                window.findChild<GridCell *>(QStringLiteral("%1(%2)").arg(column).arg(row));
            QCOMPARE(cell->text(), QString());
            QCOMPARE(background(cell), systemColour(QPalette::Button));
        }
    }
    QVERIFY(window.findChild<QWidget *>(QStringLiteral("VScroll1"))->isHidden());
    for (const QString &name : SelectionButtons + QStringList{QStringLiteral("Undo")})
        QVERIFY2(!window.findChild<QWidget *>(name)->isEnabled(), qPrintable(name));
    for (const char *name : {"AddNew", "Print", "Investments", "Loans", "cmdExit"})
        QVERIFY2(window.findChild<QWidget *>(QString::fromLatin1(name))->isEnabled(), name);
    QCOMPARE(window.findChild<QPushButton *>(QStringLiteral("Investments"))
                 ->palette()
                 .color(QPalette::Button),
             QColor(192, 255, 192));
}

void TestMainWindow::onlyLoansOpensOnTheLoanList()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage(), mortgage(), mortgage()}));
    QVERIFY(!fixture.session().InvMode);
    QCOMPARE(fixture.session().CurList, ListKind::Loans);
    QCOMPARE(fixture.cell(QStringLiteral("Yield"), 0)->text(), QStringLiteral("Rate"));
    QCOMPARE(fixture.cell(QStringLiteral("FutureValue"), 0)->text(),
             QStringLiteral("Total Interest"));
    QCOMPARE(fixture.find<QPushButton>(QStringLiteral("Loans"))->palette().color(QPalette::Button),
             QColor(255, 192, 192));
    QCOMPARE(
        fixture.find<QPushButton>(QStringLiteral("Investments"))->palette().color(QPalette::Button),
        systemColour(QPalette::Button));
    QCOMPARE(background(fixture.cell(QStringLiteral("Years"), 0)), QColor(255, 192, 192));
    QCOMPARE(fixture.sel(3)->text(), QStringLiteral("3"));
    QVERIFY(fixture.sel(4)->isHidden());
}

void TestMainWindow::investmentsAndLoansOpenOnInvestments()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    QVERIFY(fixture.session().InvMode);
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Retirement"));
}

void TestMainWindow::rowsShowTheirRecordsWithTheSolvedValueBold()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(QStringLiteral("   Retirement   "))}));
    const struct
    {
        const char *column;
        const char *text;
    } shown[] = {{"Desc", "Retirement"}, {"InitialAmount", "$1,000.00 "}, {"Yield", "12.00% "},
                 {"Years", "10.0 "},     {"Payment", "$100.00 "},         {"PerYear", "12"}};
    for (const auto &expected : shown) {
        GridCell *cell = fixture.cell(QString::fromLatin1(expected.column), 1);
        QCOMPARE(cell->text(), QString::fromLatin1(expected.text));
        QVERIFY2(!cell->isBold(), expected.column);
    }
    GridCell *future = fixture.cell(QStringLiteral("FutureValue"), 1);
    QCOMPARE(future->text(), QStringLiteral("$25,298.85 "));
    QVERIFY(future->isBold());
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("1"));
    QVERIFY(!fixture.sel(1)->isHidden());
    QVERIFY(fixture.sel(2)->isHidden());
}

void TestMainWindow::solvedCellIsAnnouncedAsCalculated()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    QCOMPARE(fixture.cell(QStringLiteral("Payment"), 1)->accessibleName(),
             QStringLiteral("Payment, row 1"));
    QCOMPARE(fixture.cell(QStringLiteral("FutureValue"), 1)->accessibleName(),
             QStringLiteral("Future Value, row 1, calculated"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 3)->accessibleName(),
             QStringLiteral("Description, row 3"));

    QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    QCOMPARE(fixture.cell(QStringLiteral("Yield"), 3)->accessibleName(),
             QStringLiteral("Rate, row 3"));
    QCOMPARE(fixture.cell(QStringLiteral("Payment"), 1)->accessibleName(),
             QStringLiteral("Payment, row 1, calculated"));
    QCOMPARE(fixture.cell(QStringLiteral("FutureValue"), 1)->accessibleName(),
             QStringLiteral("Total Interest, row 1, calculated"));
    QCOMPARE(fixture.find(QStringLiteral("Loans"))->accessibleName(), QString());
    QCOMPARE(fixture.find<QPushButton>(QStringLiteral("Loans"))->text(), QStringLiteral("Loans"));
}

void TestMainWindow::loanRowShowsItsSolvedPaymentAndTotalInterest()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 1);
    QCOMPARE(payment->text(), QStringLiteral("$599.55 "));
    QVERIFY(payment->isBold());
    GridCell *interest = fixture.cell(QStringLiteral("FutureValue"), 1);
    QCOMPARE(interest->text(), QStringLiteral("$115,838.19 "));
    QVERIFY(interest->isBold());
    QCOMPARE(fixture.cell(QStringLiteral("Yield"), 1)->text(), QStringLiteral("6.00% "));
    QVERIFY(!fixture.cell(QStringLiteral("Yield"), 1)->isBold());
}

void TestMainWindow::blankPerYearShowsAnEmptyCell()
{
    ScenarioRecord record = retirement();
    record.PerYear = BlankPerYear;
    MainWindowFixture fixture;
    QVERIFY(fixture.start({record}));
    QCOMPARE(fixture.cell(QStringLiteral("PerYear"), 1)->text(), QString());
    QVERIFY(!fixture.cell(QStringLiteral("PerYear"), 1)->isBold());
}

void TestMainWindow::longDescriptionIsCutToItsCell()
{
    const QString longText = QStringLiteral("WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW");
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement(longText), retirement(QStringLiteral("Short"))}));
    const QString shown = fixture.cell(QStringLiteral("Desc"), 1)->text();
    // A W of Arial 9 pt is 11.33 pixels, 170 twips: 18 fit into 3200 twips, 19 do not.
    QCOMPARE(shown, QStringLiteral("WWWWWWWWWWWWWWWWWW"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Short"));
}

void TestMainWindow::boldMovesToTheFieldLeftBlank()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    QVERIFY(fixture.cell(QStringLiteral("FutureValue"), 1)->isBold());

    // The future value typed in, the payment left blank instead.
    ScenarioRecord record = retirement();
    record.FutureValue = 30000;
    record.Payment = BlankValue;
    QVERIFY(fixture.session().current().file.write(1, record).ok());
    fixture.window().DispRows();

    QCOMPARE(fixture.cell(QStringLiteral("FutureValue"), 1)->text(), QStringLiteral("$30,000.00 "));
    QVERIFY(!fixture.cell(QStringLiteral("FutureValue"), 1)->isBold());
    QVERIFY(fixture.cell(QStringLiteral("Payment"), 1)->isBold());
    QVERIFY(!fixture.cell(QStringLiteral("Payment"), 1)->text().isEmpty());
}

void TestMainWindow::scrollBarAppearsOnlyAboveFourteenRecords_data()
{
    QTest::addColumn<int>("records");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<int>("maximum");
    QTest::newRow("14 records: no scroll bar") << 14 << false << 0;
    QTest::newRow("15 records: two positions") << 15 << true << 2;
    QTest::newRow("40 records: 27 positions") << 40 << true << 27;
}

void TestMainWindow::scrollBarAppearsOnlyAboveFourteenRecords()
{
    QFETCH(int, records);
    QFETCH(bool, visible);
    QFETCH(int, maximum);
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(records)));
    QScrollBar *scrollBar = fixture.scrollBar();
    QCOMPARE(!scrollBar->isHidden(), visible);
    if (visible) {
        QCOMPARE(scrollBar->minimum(), 1);
        QCOMPARE(scrollBar->maximum(), maximum);
        QCOMPARE(scrollBar->pageStep(), 14);
    }
    QCOMPARE(fixture.sel(14)->text(), QStringLiteral("14"));
}

void TestMainWindow::scrollingShowsLaterRecordsInTheSameRows()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    fixture.scrollBar()->setValue(7);
    QCOMPARE(fixture.session().current().TopRow, qint16(7));
    for (int row = 1; row <= 14; ++row) {
        QCOMPARE(fixture.sel(row)->text(), QString::number(row + 6));
        QVERIFY(!fixture.sel(row)->isHidden());
        QCOMPARE(fixture.cell(QStringLiteral("Desc"), row)->text(),
                 QStringLiteral("Plan %1").arg(row + 6));
    }
    // A selection in a scrolled list takes the record of the row clicked.
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(8));
    QCOMPARE(background(fixture.cell(QStringLiteral("Desc"), 2)),
             systemColour(QPalette::Highlight));
}

void TestMainWindow::eachListKeepsItsOwnTopRowAndSelection()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20), {mortgage(), mortgage(QStringLiteral("Car"))}));
    fixture.scrollBar()->setValue(3);
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(3));

    QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(0));
    QCOMPARE(fixture.session().current().TopRow, qint16(1));
    QVERIFY(fixture.scrollBar()->isHidden());
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 2)->text(), QStringLiteral("Car"));
    QVERIFY(fixture.sel(3)->isHidden());
    QVERIFY(!fixture.command(QStringLiteral("Copy"))->isEnabled());

    QTest::mouseClick(fixture.find(QStringLiteral("Investments")), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(3));
    QCOMPARE(fixture.session().current().TopRow, qint16(3));
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("3"));
    QVERIFY(fixture.command(QStringLiteral("Copy"))->isEnabled());
}

void TestMainWindow::clickingASelectorSelectsTheRow()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(5)));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
    for (const QString &name : SelectionButtons)
        QVERIFY2(fixture.command(name)->isEnabled(), qPrintable(name));
    QVERIFY(!fixture.command(QStringLiteral("Undo"))->isEnabled());
    // The clicked record is the working record, the one Copy duplicates.
    QCOMPARE(trimmedDesc(fixture.session().WorkingRecord), QStringLiteral("Plan 2"));
}

void TestMainWindow::clickingAnotherSelectorMovesTheSelection()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(5)));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    QTest::mouseClick(fixture.sel(4), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(4));
    QCOMPARE(background(fixture.cell(QStringLiteral("Years"), 2)), systemColour(QPalette::Base));
    QCOMPARE(background(fixture.cell(QStringLiteral("Years"), 4)),
             systemColour(QPalette::Highlight));
}

void TestMainWindow::clickingTheSelectedRowAgainDeselectsIt()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(5)));
    QTest::mouseClick(fixture.sel(3), Qt::LeftButton);
    QTest::mouseClick(fixture.sel(3), Qt::LeftButton);
    QCOMPARE(fixture.session().current().SelRow, qint16(0));
    for (const QString &name : SelectionButtons)
        QVERIFY2(!fixture.command(name)->isEnabled(), qPrintable(name));
    QCOMPARE(background(fixture.cell(QStringLiteral("Desc"), 3)), systemColour(QPalette::Base));
    QCOMPARE(trimmedDesc(fixture.session().WorkingRecord), QStringLiteral("Plan 3"));
}

void TestMainWindow::clickingTheSelectorOfAnEmptyRowDoesNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
    fixture.window().Form_Activate();
    // Sel(5) is hidden; even a click that reaches it changes nothing.
    fixture.sel(5)->click();
    QCOMPARE(fixture.session().current().SelRow, qint16(2));
    QCOMPARE(fixture.sel(5)->text(), QString());
    QCOMPARE(background(fixture.cell(QStringLiteral("Desc"), 5)), systemColour(QPalette::Button));
}

void TestMainWindow::rowsAreColouredSelectedUnselectedOrEmpty()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(3)));
    QTest::mouseClick(fixture.sel(1), Qt::LeftButton);
    for (const QString &column : gridColumns()) {
        GridCell *selected = fixture.cell(column, 1);
        QCOMPARE(background(selected), systemColour(QPalette::Highlight));
        QCOMPARE(selected->palette().color(QPalette::Text),
                 systemColour(QPalette::HighlightedText));
        QCOMPARE(background(fixture.cell(column, 2)), systemColour(QPalette::Base));
        QCOMPARE(fixture.cell(column, 2)->palette().color(QPalette::Text),
                 systemColour(QPalette::Text));
        QCOMPARE(background(fixture.cell(column, 4)), systemColour(QPalette::Button));
    }
}

void TestMainWindow::switchingListsChangesHeadersColoursAndToolTips()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    for (int row = 0; row <= 14; ++row) {
        QCOMPARE(fixture.cell(QStringLiteral("Payment"), row)->toolTip(),
                 QStringLiteral("The amount you add to (or withdraw from) your investment each "
                                "period."));
    }
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->toolTip(),
             QStringLiteral("A description of the investment scenario; you can leave it blank."));

    QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    const QStringList loanTips = {
        QStringLiteral("A description of the loan scenario; you can leave it blank."),
        QStringLiteral("The amount of money that you are borrowing."),
        QStringLiteral("The interest rate of the loan."),
        QStringLiteral("The number of years in the loan."),
        QStringLiteral("The loan payment amount."),
        QStringLiteral("The number of payments in a year.  12 = monthly, 26 = biweekly, etc.  Any "
                       "number from 1 to 365."),
        QStringLiteral("The total amount of interest that is paid during the life of the loan.")};
    for (int k = 0; k < gridColumns().size(); ++k) {
        for (int row = 0; row <= 14; ++row)
            QCOMPARE(fixture.cell(gridColumns()[k], row)->toolTip(), loanTips[k]);
    }
    QCOMPARE(fixture.cell(QStringLiteral("Yield"), 0)->text(), QStringLiteral("Rate"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("House"));

    QTest::mouseClick(fixture.find(QStringLiteral("Investments")), Qt::LeftButton);
    QCOMPARE(fixture.cell(QStringLiteral("Yield"), 0)->text(), QStringLiteral("Yield"));
    QCOMPARE(fixture.cell(QStringLiteral("FutureValue"), 0)->text(),
             QStringLiteral("Future Value"));
    QCOMPARE(fixture.cell(QStringLiteral("PerYear"), 9)->toolTip(),
             QStringLiteral("The number of payments or contributions in a year.  12 = monthly, 1 = "
                            "yearly, etc.  Any number from 1 to 365."));
}

void TestMainWindow::switchingToTheListShownChangesNothing()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    fixture.cell(QStringLiteral("Desc"), 1)->setText(QStringLiteral("not redrawn"));
    fixture.window().SwitchTo(QStringLiteral("Investments"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("not redrawn"));
    QVERIFY(fixture.session().InvMode);
}

void TestMainWindow::helpBoxStartsWithTheGeneralHelp()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    auto *help = fixture.find<QLabel>(QStringLiteral("HelpBox"));
    QCOMPARE(help->text(),
             QStringLiteral("Click in the fields of the variables that are known to enter values "
                            "and see more specific help about each field.  The program will "
                            "calculate and display in bold the value that is left blank.\n\nAlso, "
                            "you may click on the row number to the left of an item you wish to "
                            "copy, delete, move or see an amortization schedule."));
}

void TestMainWindow::clickingTheTotalInterestOfALoanShowsItsHelp()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}, {mortgage()}));
    GridCell *interest = fixture.cell(QStringLiteral("FutureValue"), 1);
    const QString shown = interest->text();
    QTest::mouseClick(interest, Qt::LeftButton);
    QCOMPARE(fixture.find<QLabel>(QStringLiteral("HelpBox"))->text(),
             QStringLiteral("This is the total amount of interest that is paid during the life of "
                            "the loan.  You cannot edit this value, the program just calculates it "
                            "for you.  It is useful information to see the power of compounding "
                            "interest.  In this case it is working against the borrower.  Much "
                            "better to have it working for you."));
    QVERIFY(!interest->hasEditLook());
    QCOMPARE(interest->text(), shown);
}

void TestMainWindow::leavingACellShowsTheGeneralHelpAgain()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    auto *help = fixture.find<QLabel>(QStringLiteral("HelpBox"));
    QTest::mouseClick(fixture.cell(QStringLiteral("Years"), 1), Qt::LeftButton);
    QCOMPARE(help->text(),
             QStringLiteral("This is the number of years for the investment to grow.  If you leave "
                            "it blank, then after you fill in the other values, the program will "
                            "calculate the amount of time required to reach the given Future "
                            "Value.  To calculate this value, it is not necessary to have both an "
                            "Initial Amount and a Payment.  You may leave one or the other blank.  "
                            "However, many scenarios will involve both a starting amount and "
                            "periodic contributions."));
    QTest::keyClick(fixture.cell(QStringLiteral("Years"), 1), Qt::Key_Return);
    QCOMPARE(help->text(),
             QStringLiteral("Click in the fields of the variables that are known to enter values "
                            "and see more specific help about each field.  The program will "
                            "calculate and display in bold the value that is left blank.\n\nAlso, "
                            "you may click on the row number to the left of an item you wish to "
                            "copy, delete, move or see an amortization schedule."));
    QVERIFY(fixture.boxes().unexpected().isEmpty());
}

void TestMainWindow::focusGoesToTheScrollBarOrTheListButton()
{
    MainWindowFixture longList;
    QVERIFY(longList.start(numberedRecords(15)));
    QCOMPARE(QApplication::focusWidget(), longList.scrollBar());
    longList.window().close();

    MainWindowFixture shortList;
    QVERIFY(shortList.start({}, {mortgage()}));
    QCOMPARE(QApplication::focusWidget(), shortList.find(QStringLiteral("Loans")));
}

void TestMainWindow::exitClosesTheWindow()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(QStringLiteral("In.dat"));
    QTest::mouseClick(fixture.command(QStringLiteral("cmdExit")), Qt::LeftButton);
    QVERIFY(!fixture.window().isVisible());
    QCOMPARE(fixture.fileBytes(QStringLiteral("In.dat")), before);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
