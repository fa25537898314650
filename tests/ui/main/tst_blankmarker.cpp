#include "celledit.h"
#include "fonts.h"
#include "mainwindowfixture.h"

#include <QApplication>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

Q_DECLARE_METATYPE(quillet::GridColumn)

namespace {

const QString InDat = QStringLiteral("In.dat");

// Clicks a cell, replaces its text by typing, and leaves it with Enter.
void typeInto(GridCell *cell, const QString &text)
{
    QTest::mouseClick(cell, Qt::LeftButton);
    QTest::keyClick(cell, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(cell, text);
    QTest::keyClick(cell, Qt::Key_Return);
}

} // namespace

// The number that marks an empty field cannot be typed: stored, it would
// quietly blank the field and have it solved instead.
class TestBlankMarker : public QObject
{
    Q_OBJECT

private:
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void initTestCase();
    void cleanup();

    void markerTypedIntoAFieldIsRefusedAndLeavesTheRecord_data();
    void markerTypedIntoAFieldIsRefusedAndLeavesTheRecord();
    void numbersNextToTheMarkerAreStored_data();
    void numbersNextToTheMarkerAreStored();
    void typingTheMarkerInTheGridShowsWhyAndWritesNothing_data();
    void typingTheMarkerInTheGridShowsWhyAndWritesNothing();
};

void TestBlankMarker::initTestCase()
{
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TestBlankMarker::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestBlankMarker::markerTypedIntoAFieldIsRefusedAndLeavesTheRecord_data()
{
    QTest::addColumn<GridColumn>("column");
    QTest::addColumn<QString>("text");

    QTest::newRow("initial amount") << GridColumn::InitialAmount << QStringLiteral("-987456321");
    QTest::newRow("payment with grouping") << GridColumn::Payment << QStringLiteral("-987,456,321");
    QTest::newRow("future value as currency text")
        << GridColumn::FutureValue << QStringLiteral("($987,456,321.00)");
    QTest::newRow("years with decimals") << GridColumn::Years << QStringLiteral("-987456321.000");
    QTest::newRow("years as an exponent") << GridColumn::Years << QStringLiteral("-9.87456321e8");
    QTest::newRow("rate in percent") << GridColumn::Yield << QStringLiteral("-98745632100%");
    QTest::newRow("rate without its sign") << GridColumn::Yield << QStringLiteral("-98745632100");
}

void TestBlankMarker::markerTypedIntoAFieldIsRefusedAndLeavesTheRecord()
{
    QFETCH(GridColumn, column);
    QFETCH(QString, text);

    const ScenarioRecord before = retirement();
    ScenarioRecord record = before;
    QCOMPARE(storeCellText(column, text, record), StoreOutcome::BlankMarker);
    QVERIFY(record == before);
}

void TestBlankMarker::numbersNextToTheMarkerAreStored_data()
{
    QTest::addColumn<GridColumn>("column");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("stored");

    QTest::newRow("amount one more")
        << GridColumn::InitialAmount << QStringLiteral("-987456320") << -987456320.0;
    QTest::newRow("positive amount")
        << GridColumn::InitialAmount << QStringLiteral("987456321") << 987456321.0;
    QTest::newRow("amount a cent off")
        << GridColumn::Payment << QStringLiteral("-987456321.01") << -987456321.01;
    QTest::newRow("the marker as a rate fraction")
        << GridColumn::Yield << QStringLiteral("-987456321%") << -9874563.21;
}

void TestBlankMarker::numbersNextToTheMarkerAreStored()
{
    QFETCH(GridColumn, column);
    QFETCH(QString, text);
    QFETCH(double, stored);

    ScenarioRecord record = retirement();
    QCOMPARE(storeCellText(column, text, record), StoreOutcome::Stored);
    const double value = column == GridColumn::InitialAmount ? record.InitialAmount
                         : column == GridColumn::Payment     ? record.Payment
                                                             : record.IRate;
    QCOMPARE(value, stored);
}

void TestBlankMarker::typingTheMarkerInTheGridShowsWhyAndWritesNothing_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");

    QTest::newRow("initial amount") << QStringLiteral("InitialAmount")
                                    << QStringLiteral("-987456321") << QStringLiteral("$1,000.00 ");
    QTest::newRow("rate") << QStringLiteral("Yield") << QStringLiteral("-98745632100%")
                          << QStringLiteral("12.00% ");
}

void TestBlankMarker::typingTheMarkerInTheGridShowsWhyAndWritesNothing()
{
    QFETCH(QString, column);
    QFETCH(QString, typed);
    QFETCH(QString, shown);

    MainWindowFixture fixture;
    QVERIFY(fixture.start({retirement()}));
    const QByteArray before = fixture.fileBytes(InDat);
    fixture.boxes().expect();
    typeInto(fixture.cell(column, 1), typed);

    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("Error, \"%1\" cannot be stored: this exact number marks "
                                        "an empty field. Nothing was changed; leave the cell "
                                        "empty to have the value calculated.")
                             .arg(typed)});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fixture.fileBytes(InDat), before);
    QCOMPARE(fixture.session().current().undo.UndoCount(), 0);
    QCOMPARE(fixture.cell(column, 1)->text(), shown);
    QVERIFY(!fixture.cell(column, 1)->isBold());
    QVERIFY(fixture.cell(QStringLiteral("FutureValue"), 1)->isBold());
}

QTEST_MAIN(TestBlankMarker)
#include "tst_blankmarker.moc"
