#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QLabel>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

// What the window shows when a colour is looked at.
enum class Moment {
    Laid,        // built, before any list is shown
    Investments, // the investments shown, record 2 of 3 selected
    Loans,       // the loans shown, nothing selected
    Editing      // the payment of row 1 clicked for editing
};

QColor systemColour(QPalette::ColorRole role)
{
    return QApplication::palette().color(role);
}

void compareFont(const QFont &actual, const QString &family, qreal points)
{
    QCOMPARE(actual.family(), family);
    QCOMPARE(actual.pointSizeF(), points);
    QVERIFY(!actual.bold());
    QVERIFY(!actual.italic());
}

} // namespace

Q_DECLARE_METATYPE(Moment)

class TestLayout : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void initTestCase();
    void cleanup();

    void windowHasItsCaptionFixedClientSizeAndFont();
    void everyControlSitsAtItsRectangle_data();
    void everyControlSitsAtItsRectangle();
    void commandButtonsHaveTheirCaptionsPicturesFontAndTips_data();
    void commandButtonsHaveTheirCaptionsPicturesFontAndTips();
    void listButtonsHaveTheirCaptionsFontAndTips_data();
    void listButtonsHaveTheirCaptionsFontAndTips();
    void gridColumnsHaveTheirHeadersAlignmentAndFont_data();
    void gridColumnsHaveTheirHeadersAlignmentAndFont();
    void rowSelectorsHaveTheirFontsAndTips_data();
    void rowSelectorsHaveTheirFontsAndTips();
    void helpBoxStartsEmptyInTheWindowFont();
    void tabChainVisitsEveryControlInOrder_data();
    void tabChainVisitsEveryControlInOrder();
    void controlsWearTheirColours_data();
    void controlsWearTheirColours();
};

void TestLayout::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestLayout::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestLayout::windowHasItsCaptionFixedClientSizeAndFont()
{
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    MainWindow &window = fixture.window();
    QCOMPARE(window.objectName(), QStringLiteral("frmMain"));
    QCOMPARE(window.windowTitle(), QStringLiteral("Fennrow"));
    // 11295 x 7035 twips.
    QCOMPARE(window.size(), QSize(753, 469));
    QCOMPARE(window.minimumSize(), QSize(753, 469));
    QCOMPARE(window.maximumSize(), QSize(753, 469));
    compareFont(window.font(), QStringLiteral("Arial"), 9);
    QCOMPARE(QFontInfo(window.font()).family(), QStringLiteral("Liberation Sans"));
    QVERIFY(!window.windowIcon().isNull());
}

// Pixels at 96 DPI: each edge of the rectangle in twips divided by 15 and
// rounded to the nearest pixel, so that the cells that share an edge in
// twips share it on the screen.
void TestLayout::everyControlSitsAtItsRectangle_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::newRow("AddNew") << 0 << 0 << 69 << 40;
    QTest::newRow("Copy") << 69 << 0 << 69 << 40;
    QTest::newRow("Delete") << 138 << 0 << 69 << 40;
    QTest::newRow("Undo") << 207 << 0 << 69 << 40;
    QTest::newRow("MoveUp") << 276 << 0 << 69 << 40;
    QTest::newRow("MoveDown") << 345 << 0 << 69 << 40;
    QTest::newRow("Amort") << 414 << 0 << 69 << 40;
    QTest::newRow("Print") << 483 << 0 << 69 << 40;
    QTest::newRow("cmdExit") << 684 << 0 << 69 << 40;
    QTest::newRow("Command2") << 684 << 0 << 69 << 40;
    QTest::newRow("Investments") << 23 << 51 << 113 << 27;
    QTest::newRow("Loans") << 139 << 51 << 113 << 27;
    QTest::newRow("Sel(0)") << 4 << 81 << 17 << 19;
    QTest::newRow("Sel(1)") << 4 << 102 << 18 << 19;
    QTest::newRow("Sel(2)") << 4 << 120 << 18 << 19;
    QTest::newRow("Sel(3)") << 4 << 138 << 18 << 19;
    QTest::newRow("Sel(4)") << 4 << 156 << 18 << 19;
    QTest::newRow("Sel(5)") << 4 << 174 << 18 << 19;
    QTest::newRow("Sel(6)") << 4 << 192 << 18 << 19;
    QTest::newRow("Sel(7)") << 4 << 210 << 18 << 19;
    QTest::newRow("Sel(8)") << 4 << 228 << 18 << 19;
    QTest::newRow("Sel(9)") << 4 << 246 << 18 << 19;
    QTest::newRow("Sel(10)") << 4 << 264 << 18 << 19;
    QTest::newRow("Sel(11)") << 4 << 282 << 18 << 19;
    QTest::newRow("Sel(12)") << 4 << 300 << 18 << 19;
    QTest::newRow("Sel(13)") << 4 << 318 << 18 << 19;
    QTest::newRow("Sel(14)") << 4 << 336 << 18 << 19;
    QTest::newRow("Desc(0)") << 23 << 78 << 213 << 23;
    QTest::newRow("Desc(1)") << 23 << 102 << 213 << 19;
    QTest::newRow("Desc(2)") << 23 << 120 << 213 << 19;
    QTest::newRow("Desc(3)") << 23 << 138 << 213 << 19;
    QTest::newRow("Desc(4)") << 23 << 156 << 213 << 19;
    QTest::newRow("Desc(5)") << 23 << 174 << 213 << 19;
    QTest::newRow("Desc(6)") << 23 << 192 << 213 << 19;
    QTest::newRow("Desc(7)") << 23 << 210 << 213 << 19;
    QTest::newRow("Desc(8)") << 23 << 228 << 213 << 19;
    QTest::newRow("Desc(9)") << 23 << 246 << 213 << 19;
    QTest::newRow("Desc(10)") << 23 << 264 << 213 << 19;
    QTest::newRow("Desc(11)") << 23 << 282 << 213 << 19;
    QTest::newRow("Desc(12)") << 23 << 300 << 213 << 19;
    QTest::newRow("Desc(13)") << 23 << 318 << 213 << 19;
    QTest::newRow("Desc(14)") << 23 << 336 << 213 << 19;
    QTest::newRow("InitialAmount(0)") << 236 << 78 << 113 << 23;
    QTest::newRow("InitialAmount(1)") << 236 << 102 << 113 << 19;
    QTest::newRow("InitialAmount(2)") << 236 << 120 << 113 << 19;
    QTest::newRow("InitialAmount(3)") << 236 << 138 << 113 << 19;
    QTest::newRow("InitialAmount(4)") << 236 << 156 << 113 << 19;
    QTest::newRow("InitialAmount(5)") << 236 << 174 << 113 << 19;
    QTest::newRow("InitialAmount(6)") << 236 << 192 << 113 << 19;
    QTest::newRow("InitialAmount(7)") << 236 << 210 << 113 << 19;
    QTest::newRow("InitialAmount(8)") << 236 << 228 << 113 << 19;
    QTest::newRow("InitialAmount(9)") << 236 << 246 << 113 << 19;
    QTest::newRow("InitialAmount(10)") << 236 << 264 << 113 << 19;
    QTest::newRow("InitialAmount(11)") << 236 << 282 << 113 << 19;
    QTest::newRow("InitialAmount(12)") << 236 << 300 << 113 << 19;
    QTest::newRow("InitialAmount(13)") << 236 << 318 << 113 << 19;
    QTest::newRow("InitialAmount(14)") << 236 << 336 << 113 << 19;
    QTest::newRow("Yield(0)") << 348 << 78 << 81 << 23;
    QTest::newRow("Yield(1)") << 348 << 102 << 81 << 19;
    QTest::newRow("Yield(2)") << 348 << 120 << 81 << 19;
    QTest::newRow("Yield(3)") << 348 << 138 << 81 << 19;
    QTest::newRow("Yield(4)") << 348 << 156 << 81 << 19;
    QTest::newRow("Yield(5)") << 348 << 174 << 81 << 19;
    QTest::newRow("Yield(6)") << 348 << 192 << 81 << 19;
    QTest::newRow("Yield(7)") << 348 << 210 << 81 << 19;
    QTest::newRow("Yield(8)") << 348 << 228 << 81 << 19;
    QTest::newRow("Yield(9)") << 348 << 246 << 81 << 19;
    QTest::newRow("Yield(10)") << 348 << 264 << 81 << 19;
    QTest::newRow("Yield(11)") << 348 << 282 << 81 << 19;
    QTest::newRow("Yield(12)") << 348 << 300 << 81 << 19;
    QTest::newRow("Yield(13)") << 348 << 318 << 81 << 19;
    QTest::newRow("Yield(14)") << 348 << 336 << 81 << 19;
    QTest::newRow("Years(0)") << 428 << 78 << 41 << 23;
    QTest::newRow("Years(1)") << 428 << 102 << 41 << 19;
    QTest::newRow("Years(2)") << 428 << 120 << 41 << 19;
    QTest::newRow("Years(3)") << 428 << 138 << 41 << 19;
    QTest::newRow("Years(4)") << 428 << 156 << 41 << 19;
    QTest::newRow("Years(5)") << 428 << 174 << 41 << 19;
    QTest::newRow("Years(6)") << 428 << 192 << 41 << 19;
    QTest::newRow("Years(7)") << 428 << 210 << 41 << 19;
    QTest::newRow("Years(8)") << 428 << 228 << 41 << 19;
    QTest::newRow("Years(9)") << 428 << 246 << 41 << 19;
    QTest::newRow("Years(10)") << 428 << 264 << 41 << 19;
    QTest::newRow("Years(11)") << 428 << 282 << 41 << 19;
    QTest::newRow("Years(12)") << 428 << 300 << 41 << 19;
    QTest::newRow("Years(13)") << 428 << 318 << 41 << 19;
    QTest::newRow("Years(14)") << 428 << 336 << 41 << 19;
    QTest::newRow("Payment(0)") << 468 << 78 << 102 << 23;
    QTest::newRow("Payment(1)") << 468 << 102 << 102 << 19;
    QTest::newRow("Payment(2)") << 468 << 120 << 102 << 19;
    QTest::newRow("Payment(3)") << 468 << 138 << 102 << 19;
    QTest::newRow("Payment(4)") << 468 << 156 << 102 << 19;
    QTest::newRow("Payment(5)") << 468 << 174 << 102 << 19;
    QTest::newRow("Payment(6)") << 468 << 192 << 102 << 19;
    QTest::newRow("Payment(7)") << 468 << 210 << 102 << 19;
    QTest::newRow("Payment(8)") << 468 << 228 << 102 << 19;
    QTest::newRow("Payment(9)") << 468 << 246 << 102 << 19;
    QTest::newRow("Payment(10)") << 468 << 264 << 102 << 19;
    QTest::newRow("Payment(11)") << 468 << 282 << 102 << 19;
    QTest::newRow("Payment(12)") << 468 << 300 << 102 << 19;
    QTest::newRow("Payment(13)") << 468 << 318 << 102 << 19;
    QTest::newRow("Payment(14)") << 468 << 336 << 102 << 19;
    QTest::newRow("PerYear(0)") << 568 << 78 << 61 << 23;
    QTest::newRow("PerYear(1)") << 568 << 102 << 61 << 19;
    QTest::newRow("PerYear(2)") << 568 << 120 << 61 << 19;
    QTest::newRow("PerYear(3)") << 568 << 138 << 61 << 19;
    QTest::newRow("PerYear(4)") << 568 << 156 << 61 << 19;
    QTest::newRow("PerYear(5)") << 568 << 174 << 61 << 19;
    QTest::newRow("PerYear(6)") << 568 << 192 << 61 << 19;
    QTest::newRow("PerYear(7)") << 568 << 210 << 61 << 19;
    QTest::newRow("PerYear(8)") << 568 << 228 << 61 << 19;
    QTest::newRow("PerYear(9)") << 568 << 246 << 61 << 19;
    QTest::newRow("PerYear(10)") << 568 << 264 << 61 << 19;
    QTest::newRow("PerYear(11)") << 568 << 282 << 61 << 19;
    QTest::newRow("PerYear(12)") << 568 << 300 << 61 << 19;
    QTest::newRow("PerYear(13)") << 568 << 318 << 61 << 19;
    QTest::newRow("PerYear(14)") << 568 << 336 << 61 << 19;
    QTest::newRow("FutureValue(0)") << 628 << 78 << 105 << 23;
    QTest::newRow("FutureValue(1)") << 628 << 102 << 105 << 19;
    QTest::newRow("FutureValue(2)") << 628 << 120 << 105 << 19;
    QTest::newRow("FutureValue(3)") << 628 << 138 << 105 << 19;
    QTest::newRow("FutureValue(4)") << 628 << 156 << 105 << 19;
    QTest::newRow("FutureValue(5)") << 628 << 174 << 105 << 19;
    QTest::newRow("FutureValue(6)") << 628 << 192 << 105 << 19;
    QTest::newRow("FutureValue(7)") << 628 << 210 << 105 << 19;
    QTest::newRow("FutureValue(8)") << 628 << 228 << 105 << 19;
    QTest::newRow("FutureValue(9)") << 628 << 246 << 105 << 19;
    QTest::newRow("FutureValue(10)") << 628 << 264 << 105 << 19;
    QTest::newRow("FutureValue(11)") << 628 << 282 << 105 << 19;
    QTest::newRow("FutureValue(12)") << 628 << 300 << 105 << 19;
    QTest::newRow("FutureValue(13)") << 628 << 318 << 105 << 19;
    QTest::newRow("FutureValue(14)") << 628 << 336 << 105 << 19;
    QTest::newRow("VScroll1") << 732 << 102 << 17 << 253;
    QTest::newRow("HelpBox") << 4 << 360 << 745 << 91;
}

void TestLayout::everyControlSitsAtItsRectangle()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(int, width);
    QFETCH(int, height);
    MainWindowFixture fixture;
    QVERIFY(fixture.start(numberedRecords(20)));
    QWidget *control = fixture.find(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(control);
    QCOMPARE(control->geometry(), QRect(x, y, width, height));
}

void TestLayout::commandButtonsHaveTheirCaptionsPicturesFontAndTips_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<bool>("greyPicture");
    QTest::addColumn<QString>("tip");
    // The key of the command, named after the tip.
    QTest::addColumn<QString>("key");
    QTest::newRow("AddNew") << QStringLiteral("AddNew") << QStringLiteral("Add New")
                            << QSize(16, 15) << false
                            << QStringLiteral(
                                   "Click here to add a new, blank, investment or loan scenario.")
                            << QStringLiteral("Ctrl+N");
    QTest::newRow("Copy") << QStringLiteral("Copy") << QStringLiteral("Copy") << QSize(16, 15)
                          << true
                          << QStringLiteral(
                                 "Click here to add a copy of the currently selected investment or "
                                 "loan scenario.")
                          << QStringLiteral("Ctrl+D");
    QTest::newRow("Delete") << QStringLiteral("Delete") << QStringLiteral("Delete") << QSize(14, 14)
                            << true
                            << QStringLiteral(
                                   "Click here to delete the currently selected investment or loan "
                                   "scenario.")
                            << QStringLiteral("Del");
    QTest::newRow("Undo")
        << QStringLiteral("Undo") << QStringLiteral("Undo") << QSize(16, 15) << true
        << QStringLiteral("Click here to undo the last change.  (Last 10 changes kept during "
                          "current session.)")
        << QStringLiteral("Ctrl+Z");
    QTest::newRow("MoveUp") << QStringLiteral("MoveUp") << QStringLiteral("Move Up")
                            << QSize(70, 20) << true
                            << QStringLiteral(
                                   "Click here to move the currently selected investment or loan "
                                   "scenario up one place in the list.")
                            << QStringLiteral("Alt+Up");
    QTest::newRow("MoveDown") << QStringLiteral("MoveDown") << QStringLiteral("Move Down")
                              << QSize(70, 20) << true
                              << QStringLiteral(
                                     "Click here to move the currently selected investment or loan "
                                     "scenario down one place in the list.")
                              << QStringLiteral("Alt+Down");
    QTest::newRow("Amort")
        << QStringLiteral("Amort") << QStringLiteral("Amortize") << QSize(16, 15) << true
        << QStringLiteral("Click here to show a detailed amortization of the currently "
                          "selected investment or loan scenario and to be able to print it.")
        << QStringLiteral("Ctrl+M");
    QTest::newRow("Print") << QStringLiteral("Print") << QStringLiteral("Print") << QSize(16, 15)
                           << false
                           << QStringLiteral(
                                  "Click here to print out the entire list of investment or loan "
                                  "scenarios.")
                           << QStringLiteral("Ctrl+P");
    QTest::newRow("cmdExit") << QStringLiteral("cmdExit") << QStringLiteral("Exit") << QSize(16, 16)
                             << false
                             << QStringLiteral(
                                    "Click here to exit.  You don't have to save.  All changes are "
                                    "saved as you make them.")
                             << QStringLiteral("Ctrl+Q");
    QTest::newRow("Command2")
        << QStringLiteral("Command2") << QStringLiteral("Exit") << QSize(16, 16) << false
        << QStringLiteral("Click here to exit.  You don't have to save.  All changes are "
                          "saved as you make them.")
        << QStringLiteral("");
}

void TestLayout::commandButtonsHaveTheirCaptionsPicturesFontAndTips()
{
    QFETCH(QString, name);
    QFETCH(QString, caption);
    QFETCH(QSize, picture);
    QFETCH(bool, greyPicture);
    QFETCH(QString, tip);
    QFETCH(QString, key);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    QToolButton *button = fixture.command(name);
    QVERIFY(button);
    QCOMPARE(button->text(), caption);
    QCOMPARE(button->toolTip(), key.isEmpty() ? tip : tip + QStringLiteral(" (%1)").arg(key));
    compareFont(button->font(), QStringLiteral("Arial"), 8.25);
    QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonTextUnderIcon);
    QCOMPARE(button->iconSize(), picture);
    QCOMPARE(button->icon().availableSizes(QIcon::Normal), QList<QSize>{picture});
    QCOMPARE(button->icon().availableSizes(QIcon::Disabled),
             greyPicture ? QList<QSize>{picture} : QList<QSize>{});
    if (greyPicture) {
        QVERIFY(button->icon().pixmap(picture, QIcon::Disabled).toImage() !=
                button->icon().pixmap(picture, QIcon::Normal).toImage());
    }
}

void TestLayout::listButtonsHaveTheirCaptionsFontAndTips_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("tip");
    // The key of the command, named after the tip.
    QTest::addColumn<QString>("key");
    QTest::newRow("Investments") << QStringLiteral("Investments") << QStringLiteral("Investments")
                                 << QStringLiteral(
                                        "Click here to look at \"Investment\" scenarios.")
                                 << QStringLiteral("Ctrl+1");
    QTest::newRow("Loans") << QStringLiteral("Loans") << QStringLiteral("Loans")
                           << QStringLiteral("Click here to look at \"Loan\" scenarios.")
                           << QStringLiteral("Ctrl+2");
}

void TestLayout::listButtonsHaveTheirCaptionsFontAndTips()
{
    QFETCH(QString, name);
    QFETCH(QString, caption);
    QFETCH(QString, tip);
    QFETCH(QString, key);
    MainWindowFixture fixture;
    QVERIFY(fixture.start({}));
    auto *button = fixture.find<QPushButton>(name);
    QVERIFY(button);
    QCOMPARE(button->text(), caption);
    QCOMPARE(button->toolTip(), key.isEmpty() ? tip : tip + QStringLiteral(" (%1)").arg(key));
    compareFont(button->font(), QStringLiteral("Arial"), 9);
    QVERIFY(button->isEnabled());
}

void TestLayout::gridColumnsHaveTheirHeadersAlignmentAndFont_data()
{
    QTest::addColumn<QString>("header");
    QTest::addColumn<QString>("loansHeader");
    QTest::addColumn<int>("alignment");
    const int left = Qt::AlignLeft;
    const int right = Qt::AlignRight;
    QTest::newRow("Desc") << QStringLiteral("Description") << QStringLiteral("Description") << left;
    QTest::newRow("InitialAmount")
        << QStringLiteral("Initial Amount") << QStringLiteral("Initial Amount") << right;
    QTest::newRow("Yield") << QStringLiteral("Yield") << QStringLiteral("Rate") << right;
    QTest::newRow("Years") << QStringLiteral("Years") << QStringLiteral("Years") << right;
    QTest::newRow("Payment") << QStringLiteral("Payment") << QStringLiteral("Payment") << right;
    QTest::newRow("PerYear") << QStringLiteral("# Per Year") << QStringLiteral("# Per Year")
                             << right;
    QTest::newRow("FutureValue") << QStringLiteral("Future Value")
                                 << QStringLiteral("Total Interest") << right;
}

void TestLayout::gridColumnsHaveTheirHeadersAlignmentAndFont()
{
    QFETCH(QString, header);
    QFETCH(QString, loansHeader);
    QFETCH(int, alignment);
    const QString column = QString::fromLatin1(QTest::currentDataTag());

    // As laid out, before a list is shown: no tool tips, empty cells.
    Session session;
    MainWindow laid(session);
    auto *headerCell = laid.findChild<GridCell *>(column + QStringLiteral("(0)"));
    QVERIFY(headerCell);
    QCOMPARE(headerCell->text(), header);
    QVERIFY(headerCell->isReadOnly());
    QCOMPARE(headerCell->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
    compareFont(headerCell->font(), QStringLiteral("Arial"), 9);
    QCOMPARE(headerCell->toolTip(), QString());
    for (int row = 1; row <= 14; ++row) {
        auto *cell = laid.findChild<GridCell *>(QStringLiteral("%1(%2)").arg(column).arg(row));
        QVERIFY(cell);
        QCOMPARE(int(cell->alignment() & Qt::AlignHorizontal_Mask), alignment);
        compareFont(cell->font(), QStringLiteral("Arial"), 9);
        QCOMPARE(cell->text(), QString());
        QCOMPARE(cell->toolTip(), QString());
    }

    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}, {mortgage()}));
    QCOMPARE(fixture.cell(column, 0)->text(), header);
    QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
    QCOMPARE(fixture.cell(column, 0)->text(), loansHeader);
    QTest::mouseClick(fixture.find(QStringLiteral("Investments")), Qt::LeftButton);
    QCOMPARE(fixture.cell(column, 0)->text(), header);
}

void TestLayout::rowSelectorsHaveTheirFontsAndTips_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("tip");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("Sel(0)") << 0 << QStringLiteral("MS Sans Serif") << QString() << false;
    QTest::newRow("Sel(1)") << 1 << QStringLiteral("MS Serif")
                            << QStringLiteral("Click here to select a row to delete, copy, move "
                                              "or do an amortization.  (Click again to "
                                              "de-select.)")
                            << true;
    for (int index = 2; index <= 14; ++index) {
        QTest::addRow("Sel(%d)", index)
            << index << QStringLiteral("MS Serif")
            << QStringLiteral(
                   "Click here to select a row to delete, copy, move or do an amortization.")
            << true;
    }
}

void TestLayout::rowSelectorsHaveTheirFontsAndTips()
{
    QFETCH(int, index);
    QFETCH(QString, family);
    QFETCH(QString, tip);
    QFETCH(bool, enabled);
    Session session;
    MainWindow laid(session);
    auto *selector = laid.findChild<QPushButton *>(QStringLiteral("Sel(%1)").arg(index));
    QVERIFY(selector);
    QCOMPARE(selector->text(), QString());
    QCOMPARE(selector->toolTip(), tip);
    compareFont(selector->font(), family, 8.25);
    QCOMPARE(selector->isEnabled(), enabled);
}

void TestLayout::helpBoxStartsEmptyInTheWindowFont()
{
    Session session;
    MainWindow laid(session);
    auto *help = laid.findChild<QLabel *>(QStringLiteral("HelpBox"));
    QVERIFY(help);
    QCOMPARE(help->text(), QString());
    compareFont(help->font(), QStringLiteral("Arial"), 9);
    QVERIFY(help->wordWrap());
    // A label: never in the way of the keyboard.
    QCOMPARE(help->focusPolicy(), Qt::NoFocus);
    auto *scrollBar = laid.findChild<QScrollBar *>(QStringLiteral("VScroll1"));
    QVERIFY(scrollBar);
    QCOMPARE(scrollBar->orientation(), Qt::Vertical);
}

// The controls in tab index order; the help box, a label, is skipped, and
// the chain closes on itself.
void TestLayout::tabChainVisitsEveryControlInOrder_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("next");
    QTest::newRow("after Desc(0)")
        << QStringLiteral("Desc(0)") << QStringLiteral("InitialAmount(0)");
    QTest::newRow("after InitialAmount(0)")
        << QStringLiteral("InitialAmount(0)") << QStringLiteral("Yield(0)");
    QTest::newRow("after Yield(0)") << QStringLiteral("Yield(0)") << QStringLiteral("Years(0)");
    QTest::newRow("after Years(0)") << QStringLiteral("Years(0)") << QStringLiteral("Payment(0)");
    QTest::newRow("after Payment(0)")
        << QStringLiteral("Payment(0)") << QStringLiteral("PerYear(0)");
    QTest::newRow("after PerYear(0)")
        << QStringLiteral("PerYear(0)") << QStringLiteral("FutureValue(0)");
    QTest::newRow("after FutureValue(0)")
        << QStringLiteral("FutureValue(0)") << QStringLiteral("Desc(1)");
    QTest::newRow("after Desc(1)") << QStringLiteral("Desc(1)") << QStringLiteral("Desc(2)");
    QTest::newRow("after Desc(2)") << QStringLiteral("Desc(2)") << QStringLiteral("Desc(3)");
    QTest::newRow("after Desc(3)") << QStringLiteral("Desc(3)") << QStringLiteral("Desc(4)");
    QTest::newRow("after Desc(4)") << QStringLiteral("Desc(4)") << QStringLiteral("Desc(5)");
    QTest::newRow("after Desc(5)") << QStringLiteral("Desc(5)") << QStringLiteral("Desc(6)");
    QTest::newRow("after Desc(6)") << QStringLiteral("Desc(6)") << QStringLiteral("Desc(7)");
    QTest::newRow("after Desc(7)") << QStringLiteral("Desc(7)") << QStringLiteral("Desc(8)");
    QTest::newRow("after Desc(8)") << QStringLiteral("Desc(8)") << QStringLiteral("Desc(9)");
    QTest::newRow("after Desc(9)") << QStringLiteral("Desc(9)") << QStringLiteral("Desc(10)");
    QTest::newRow("after Desc(10)") << QStringLiteral("Desc(10)") << QStringLiteral("Desc(11)");
    QTest::newRow("after Desc(11)") << QStringLiteral("Desc(11)") << QStringLiteral("Desc(12)");
    QTest::newRow("after Desc(12)") << QStringLiteral("Desc(12)") << QStringLiteral("Desc(13)");
    QTest::newRow("after Desc(13)") << QStringLiteral("Desc(13)") << QStringLiteral("Desc(14)");
    QTest::newRow("after Desc(14)")
        << QStringLiteral("Desc(14)") << QStringLiteral("InitialAmount(1)");
    QTest::newRow("after InitialAmount(1)")
        << QStringLiteral("InitialAmount(1)") << QStringLiteral("InitialAmount(2)");
    QTest::newRow("after InitialAmount(2)")
        << QStringLiteral("InitialAmount(2)") << QStringLiteral("InitialAmount(3)");
    QTest::newRow("after InitialAmount(3)")
        << QStringLiteral("InitialAmount(3)") << QStringLiteral("InitialAmount(4)");
    QTest::newRow("after InitialAmount(4)")
        << QStringLiteral("InitialAmount(4)") << QStringLiteral("InitialAmount(5)");
    QTest::newRow("after InitialAmount(5)")
        << QStringLiteral("InitialAmount(5)") << QStringLiteral("InitialAmount(7)");
    QTest::newRow("after InitialAmount(7)")
        << QStringLiteral("InitialAmount(7)") << QStringLiteral("InitialAmount(8)");
    QTest::newRow("after InitialAmount(8)")
        << QStringLiteral("InitialAmount(8)") << QStringLiteral("InitialAmount(9)");
    QTest::newRow("after InitialAmount(9)")
        << QStringLiteral("InitialAmount(9)") << QStringLiteral("InitialAmount(10)");
    QTest::newRow("after InitialAmount(10)")
        << QStringLiteral("InitialAmount(10)") << QStringLiteral("InitialAmount(11)");
    QTest::newRow("after InitialAmount(11)")
        << QStringLiteral("InitialAmount(11)") << QStringLiteral("InitialAmount(12)");
    QTest::newRow("after InitialAmount(12)")
        << QStringLiteral("InitialAmount(12)") << QStringLiteral("InitialAmount(13)");
    QTest::newRow("after InitialAmount(13)")
        << QStringLiteral("InitialAmount(13)") << QStringLiteral("InitialAmount(14)");
    QTest::newRow("after InitialAmount(14)")
        << QStringLiteral("InitialAmount(14)") << QStringLiteral("Yield(1)");
    QTest::newRow("after Yield(1)") << QStringLiteral("Yield(1)") << QStringLiteral("Yield(2)");
    QTest::newRow("after Yield(2)") << QStringLiteral("Yield(2)") << QStringLiteral("Yield(3)");
    QTest::newRow("after Yield(3)") << QStringLiteral("Yield(3)") << QStringLiteral("Yield(4)");
    QTest::newRow("after Yield(4)") << QStringLiteral("Yield(4)") << QStringLiteral("Yield(5)");
    QTest::newRow("after Yield(5)") << QStringLiteral("Yield(5)") << QStringLiteral("Yield(6)");
    QTest::newRow("after Yield(6)") << QStringLiteral("Yield(6)") << QStringLiteral("Yield(7)");
    QTest::newRow("after Yield(7)") << QStringLiteral("Yield(7)") << QStringLiteral("Yield(8)");
    QTest::newRow("after Yield(8)") << QStringLiteral("Yield(8)") << QStringLiteral("Yield(9)");
    QTest::newRow("after Yield(9)") << QStringLiteral("Yield(9)") << QStringLiteral("Yield(10)");
    QTest::newRow("after Yield(10)") << QStringLiteral("Yield(10)") << QStringLiteral("Yield(11)");
    QTest::newRow("after Yield(11)") << QStringLiteral("Yield(11)") << QStringLiteral("Yield(12)");
    QTest::newRow("after Yield(12)") << QStringLiteral("Yield(12)") << QStringLiteral("Yield(13)");
    QTest::newRow("after Yield(13)") << QStringLiteral("Yield(13)") << QStringLiteral("Yield(14)");
    QTest::newRow("after Yield(14)")
        << QStringLiteral("Yield(14)") << QStringLiteral("InitialAmount(6)");
    QTest::newRow("after InitialAmount(6)")
        << QStringLiteral("InitialAmount(6)") << QStringLiteral("Years(1)");
    QTest::newRow("after Years(1)") << QStringLiteral("Years(1)") << QStringLiteral("Years(2)");
    QTest::newRow("after Years(2)") << QStringLiteral("Years(2)") << QStringLiteral("Years(3)");
    QTest::newRow("after Years(3)") << QStringLiteral("Years(3)") << QStringLiteral("Years(4)");
    QTest::newRow("after Years(4)") << QStringLiteral("Years(4)") << QStringLiteral("Years(5)");
    QTest::newRow("after Years(5)") << QStringLiteral("Years(5)") << QStringLiteral("Years(6)");
    QTest::newRow("after Years(6)") << QStringLiteral("Years(6)") << QStringLiteral("Years(7)");
    QTest::newRow("after Years(7)") << QStringLiteral("Years(7)") << QStringLiteral("Years(8)");
    QTest::newRow("after Years(8)") << QStringLiteral("Years(8)") << QStringLiteral("Years(9)");
    QTest::newRow("after Years(9)") << QStringLiteral("Years(9)") << QStringLiteral("Years(10)");
    QTest::newRow("after Years(10)") << QStringLiteral("Years(10)") << QStringLiteral("Years(11)");
    QTest::newRow("after Years(11)") << QStringLiteral("Years(11)") << QStringLiteral("Years(12)");
    QTest::newRow("after Years(12)") << QStringLiteral("Years(12)") << QStringLiteral("Years(13)");
    QTest::newRow("after Years(13)") << QStringLiteral("Years(13)") << QStringLiteral("Years(14)");
    QTest::newRow("after Years(14)") << QStringLiteral("Years(14)") << QStringLiteral("Payment(1)");
    QTest::newRow("after Payment(1)")
        << QStringLiteral("Payment(1)") << QStringLiteral("Payment(2)");
    QTest::newRow("after Payment(2)")
        << QStringLiteral("Payment(2)") << QStringLiteral("Payment(3)");
    QTest::newRow("after Payment(3)")
        << QStringLiteral("Payment(3)") << QStringLiteral("Payment(4)");
    QTest::newRow("after Payment(4)")
        << QStringLiteral("Payment(4)") << QStringLiteral("Payment(5)");
    QTest::newRow("after Payment(5)")
        << QStringLiteral("Payment(5)") << QStringLiteral("Payment(6)");
    QTest::newRow("after Payment(6)")
        << QStringLiteral("Payment(6)") << QStringLiteral("Payment(7)");
    QTest::newRow("after Payment(7)")
        << QStringLiteral("Payment(7)") << QStringLiteral("Payment(8)");
    QTest::newRow("after Payment(8)")
        << QStringLiteral("Payment(8)") << QStringLiteral("Payment(9)");
    QTest::newRow("after Payment(9)")
        << QStringLiteral("Payment(9)") << QStringLiteral("Payment(10)");
    QTest::newRow("after Payment(10)")
        << QStringLiteral("Payment(10)") << QStringLiteral("Payment(11)");
    QTest::newRow("after Payment(11)")
        << QStringLiteral("Payment(11)") << QStringLiteral("Payment(12)");
    QTest::newRow("after Payment(12)")
        << QStringLiteral("Payment(12)") << QStringLiteral("Payment(13)");
    QTest::newRow("after Payment(13)")
        << QStringLiteral("Payment(13)") << QStringLiteral("Payment(14)");
    QTest::newRow("after Payment(14)")
        << QStringLiteral("Payment(14)") << QStringLiteral("PerYear(1)");
    QTest::newRow("after PerYear(1)")
        << QStringLiteral("PerYear(1)") << QStringLiteral("PerYear(2)");
    QTest::newRow("after PerYear(2)")
        << QStringLiteral("PerYear(2)") << QStringLiteral("PerYear(3)");
    QTest::newRow("after PerYear(3)")
        << QStringLiteral("PerYear(3)") << QStringLiteral("PerYear(4)");
    QTest::newRow("after PerYear(4)")
        << QStringLiteral("PerYear(4)") << QStringLiteral("PerYear(5)");
    QTest::newRow("after PerYear(5)")
        << QStringLiteral("PerYear(5)") << QStringLiteral("PerYear(6)");
    QTest::newRow("after PerYear(6)")
        << QStringLiteral("PerYear(6)") << QStringLiteral("PerYear(7)");
    QTest::newRow("after PerYear(7)")
        << QStringLiteral("PerYear(7)") << QStringLiteral("PerYear(8)");
    QTest::newRow("after PerYear(8)")
        << QStringLiteral("PerYear(8)") << QStringLiteral("PerYear(9)");
    QTest::newRow("after PerYear(9)")
        << QStringLiteral("PerYear(9)") << QStringLiteral("PerYear(10)");
    QTest::newRow("after PerYear(10)")
        << QStringLiteral("PerYear(10)") << QStringLiteral("PerYear(11)");
    QTest::newRow("after PerYear(11)")
        << QStringLiteral("PerYear(11)") << QStringLiteral("PerYear(12)");
    QTest::newRow("after PerYear(12)")
        << QStringLiteral("PerYear(12)") << QStringLiteral("PerYear(13)");
    QTest::newRow("after PerYear(13)")
        << QStringLiteral("PerYear(13)") << QStringLiteral("PerYear(14)");
    QTest::newRow("after PerYear(14)")
        << QStringLiteral("PerYear(14)") << QStringLiteral("FutureValue(1)");
    QTest::newRow("after FutureValue(1)")
        << QStringLiteral("FutureValue(1)") << QStringLiteral("FutureValue(2)");
    QTest::newRow("after FutureValue(2)")
        << QStringLiteral("FutureValue(2)") << QStringLiteral("FutureValue(3)");
    QTest::newRow("after FutureValue(3)")
        << QStringLiteral("FutureValue(3)") << QStringLiteral("FutureValue(4)");
    QTest::newRow("after FutureValue(4)")
        << QStringLiteral("FutureValue(4)") << QStringLiteral("FutureValue(5)");
    QTest::newRow("after FutureValue(5)")
        << QStringLiteral("FutureValue(5)") << QStringLiteral("FutureValue(6)");
    QTest::newRow("after FutureValue(6)")
        << QStringLiteral("FutureValue(6)") << QStringLiteral("FutureValue(7)");
    QTest::newRow("after FutureValue(7)")
        << QStringLiteral("FutureValue(7)") << QStringLiteral("FutureValue(8)");
    QTest::newRow("after FutureValue(8)")
        << QStringLiteral("FutureValue(8)") << QStringLiteral("FutureValue(9)");
    QTest::newRow("after FutureValue(9)")
        << QStringLiteral("FutureValue(9)") << QStringLiteral("FutureValue(10)");
    QTest::newRow("after FutureValue(10)")
        << QStringLiteral("FutureValue(10)") << QStringLiteral("FutureValue(11)");
    QTest::newRow("after FutureValue(11)")
        << QStringLiteral("FutureValue(11)") << QStringLiteral("FutureValue(12)");
    QTest::newRow("after FutureValue(12)")
        << QStringLiteral("FutureValue(12)") << QStringLiteral("FutureValue(13)");
    QTest::newRow("after FutureValue(13)")
        << QStringLiteral("FutureValue(13)") << QStringLiteral("FutureValue(14)");
    QTest::newRow("after FutureValue(14)")
        << QStringLiteral("FutureValue(14)") << QStringLiteral("VScroll1");
    QTest::newRow("after VScroll1") << QStringLiteral("VScroll1") << QStringLiteral("Sel(0)");
    QTest::newRow("after Sel(0)") << QStringLiteral("Sel(0)") << QStringLiteral("Sel(1)");
    QTest::newRow("after Sel(1)") << QStringLiteral("Sel(1)") << QStringLiteral("Sel(2)");
    QTest::newRow("after Sel(2)") << QStringLiteral("Sel(2)") << QStringLiteral("Sel(3)");
    QTest::newRow("after Sel(3)") << QStringLiteral("Sel(3)") << QStringLiteral("Sel(4)");
    QTest::newRow("after Sel(4)") << QStringLiteral("Sel(4)") << QStringLiteral("Sel(5)");
    QTest::newRow("after Sel(5)") << QStringLiteral("Sel(5)") << QStringLiteral("Sel(6)");
    QTest::newRow("after Sel(6)") << QStringLiteral("Sel(6)") << QStringLiteral("Sel(7)");
    QTest::newRow("after Sel(7)") << QStringLiteral("Sel(7)") << QStringLiteral("Sel(8)");
    QTest::newRow("after Sel(8)") << QStringLiteral("Sel(8)") << QStringLiteral("Sel(9)");
    QTest::newRow("after Sel(9)") << QStringLiteral("Sel(9)") << QStringLiteral("Sel(10)");
    QTest::newRow("after Sel(10)") << QStringLiteral("Sel(10)") << QStringLiteral("Sel(11)");
    QTest::newRow("after Sel(11)") << QStringLiteral("Sel(11)") << QStringLiteral("Sel(12)");
    QTest::newRow("after Sel(12)") << QStringLiteral("Sel(12)") << QStringLiteral("Sel(13)");
    QTest::newRow("after Sel(13)") << QStringLiteral("Sel(13)") << QStringLiteral("Sel(14)");
    QTest::newRow("after Sel(14)") << QStringLiteral("Sel(14)") << QStringLiteral("Investments");
    QTest::newRow("after Investments") << QStringLiteral("Investments") << QStringLiteral("Loans");
    QTest::newRow("after Loans") << QStringLiteral("Loans") << QStringLiteral("AddNew");
    QTest::newRow("after AddNew") << QStringLiteral("AddNew") << QStringLiteral("Copy");
    QTest::newRow("after Copy") << QStringLiteral("Copy") << QStringLiteral("Delete");
    QTest::newRow("after Delete") << QStringLiteral("Delete") << QStringLiteral("MoveDown");
    QTest::newRow("after MoveDown") << QStringLiteral("MoveDown") << QStringLiteral("Amort");
    QTest::newRow("after Amort") << QStringLiteral("Amort") << QStringLiteral("Print");
    QTest::newRow("after Print") << QStringLiteral("Print") << QStringLiteral("MoveUp");
    QTest::newRow("after MoveUp") << QStringLiteral("MoveUp") << QStringLiteral("Undo");
    QTest::newRow("after Undo") << QStringLiteral("Undo") << QStringLiteral("Command2");
    QTest::newRow("after Command2") << QStringLiteral("Command2") << QStringLiteral("cmdExit");
    QTest::newRow("after cmdExit") << QStringLiteral("cmdExit") << QStringLiteral("Desc(0)");
}

void TestLayout::tabChainVisitsEveryControlInOrder()
{
    QFETCH(QString, control);
    QFETCH(QString, next);
    Session session;
    MainWindow laid(session);
    QWidget *widget = laid.findChild<QWidget *>(control);
    QVERIFY(widget);
    QVERIFY(widget->focusPolicy() & Qt::TabFocus);
    QWidget *after = widget->nextInFocusChain();
    while (after != widget && !(after->focusPolicy() & Qt::TabFocus))
        after = after->nextInFocusChain();
    QCOMPARE(after->objectName(), next);
}

void TestLayout::controlsWearTheirColours_data()
{
    QTest::addColumn<Moment>("moment");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QPalette::ColorRole>("role");
    QTest::addColumn<QColor>("colour");

    const QColor lightGreen(192, 255, 192);
    const QColor lightPink(255, 192, 192);
    const QColor lightYellow(255, 255, 192);
    const QColor editColour(192, 192, 255);
    const QColor buttonFace = systemColour(QPalette::Button);
    // The trough of a scroll bar, a shade darker than a button's face.
    const QColor scrollBarColour(213, 213, 213);

    QTest::newRow("laid out: investments button face")
        << Moment::Laid << QStringLiteral("Investments") << QPalette::Button << buttonFace;
    QTest::newRow("laid out: loans button face")
        << Moment::Laid << QStringLiteral("Loans") << QPalette::Button << buttonFace;
    QTest::newRow("laid out: description header button face")
        << Moment::Laid << QStringLiteral("Desc(0)") << QPalette::Base << buttonFace;
    for (const char *column :
         {"InitialAmount", "Yield", "Years", "Payment", "PerYear", "FutureValue"}) {
        QTest::addRow("laid out: %s header scroll-bar colour", column)
            << Moment::Laid << QStringLiteral("%1(0)").arg(QString::fromLatin1(column))
            << QPalette::Base << scrollBarColour;
    }
    QTest::newRow("laid out: help box light yellow")
        << Moment::Laid << QStringLiteral("HelpBox") << QPalette::Window << lightYellow;

    QTest::newRow("investments: investments button light green")
        << Moment::Investments << QStringLiteral("Investments") << QPalette::Button << lightGreen;
    QTest::newRow("investments: loans button face")
        << Moment::Investments << QStringLiteral("Loans") << QPalette::Button << buttonFace;
    QTest::newRow("loans: loans button light pink")
        << Moment::Loans << QStringLiteral("Loans") << QPalette::Button << lightPink;
    QTest::newRow("loans: investments button face")
        << Moment::Loans << QStringLiteral("Investments") << QPalette::Button << buttonFace;
    for (const char *column :
         {"Desc", "InitialAmount", "Yield", "Years", "Payment", "PerYear", "FutureValue"}) {
        const QString name = QString::fromLatin1(column);
        QTest::addRow("investments: %s header light green", column)
            << Moment::Investments << name + QStringLiteral("(0)") << QPalette::Base << lightGreen;
        QTest::addRow("loans: %s header light pink", column)
            << Moment::Loans << name + QStringLiteral("(0)") << QPalette::Base << lightPink;
        QTest::addRow("investments: %s of the selected row, highlight", column)
            << Moment::Investments << name + QStringLiteral("(2)") << QPalette::Base
            << systemColour(QPalette::Highlight);
        QTest::addRow("investments: %s of the selected row, highlight text", column)
            << Moment::Investments << name + QStringLiteral("(2)") << QPalette::Text
            << systemColour(QPalette::HighlightedText);
        QTest::addRow("investments: %s of an unselected row, window", column)
            << Moment::Investments << name + QStringLiteral("(3)") << QPalette::Base
            << systemColour(QPalette::Base);
        QTest::addRow("investments: %s of an unselected row, window text", column)
            << Moment::Investments << name + QStringLiteral("(1)") << QPalette::Text
            << systemColour(QPalette::Text);
        QTest::addRow("investments: %s of an empty row, button face", column)
            << Moment::Investments << name + QStringLiteral("(4)") << QPalette::Base << buttonFace;
        QTest::addRow("loans: %s of an empty row, button face", column)
            << Moment::Loans << name + QStringLiteral("(2)") << QPalette::Base << buttonFace;
        QTest::addRow("loans: %s of an unselected row, window", column)
            << Moment::Loans << name + QStringLiteral("(1)") << QPalette::Base
            << systemColour(QPalette::Base);
    }
    QTest::newRow("investments: help box light yellow")
        << Moment::Investments << QStringLiteral("HelpBox") << QPalette::Window << lightYellow;
    QTest::newRow("editing: the cell clicked, edit colour")
        << Moment::Editing << QStringLiteral("Payment(1)") << QPalette::Base << editColour;
    QTest::newRow("editing: its neighbour, window")
        << Moment::Editing << QStringLiteral("Years(1)") << QPalette::Base
        << systemColour(QPalette::Base);
}

void TestLayout::controlsWearTheirColours()
{
    QFETCH(Moment, moment);
    QFETCH(QString, control);
    QFETCH(QPalette::ColorRole, role);
    QFETCH(QColor, colour);
    const std::vector<ScenarioRecord> investments = numberedRecords(3);

    if (moment == Moment::Laid) {
        Session session;
        MainWindow laid(session);
        QWidget *widget = laid.findChild<QWidget *>(control);
        QVERIFY(widget);
        QCOMPARE(widget->palette().color(role).name(QColor::HexArgb), colour.name(QColor::HexArgb));
        return;
    }
    MainWindowFixture fixture;
    QVERIFY(fixture.start(investments, {mortgage()}));
    switch (moment) {
    case Moment::Investments:
        QTest::mouseClick(fixture.sel(2), Qt::LeftButton);
        break;
    case Moment::Loans:
        QTest::mouseClick(fixture.find(QStringLiteral("Loans")), Qt::LeftButton);
        break;
    case Moment::Editing:
        QTest::mouseClick(fixture.cell(QStringLiteral("Payment"), 1), Qt::LeftButton);
        break;
    case Moment::Laid:
        break;
    }
    QWidget *widget = fixture.find(control);
    QVERIFY(widget);
    QCOMPARE(widget->palette().color(role).name(QColor::HexArgb), colour.name(QColor::HexArgb));
}

QTEST_MAIN(TestLayout)
#include "tst_layout.moc"
