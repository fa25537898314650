#include "fonts.h"
#include "mainwindowfixture.h"
#include "recordingfilecalls.h"

#include <QApplication>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

// A list file that stops being readable while the window shows it: each
// failure is explained once, nothing is written, and the list works on once
// the file reads again.
class TestReadFailures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { installFontSubstitutions(); }
    void cleanup();
    void scrollingToRowsThatCannotBeReadSaysSoOnceAndWritesNothing();
    void editingACellWhoseRecordCannotBeReadSaysSoAndWritesNothing();
};

void TestReadFailures::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestReadFailures::scrollingToRowsThatCannotBeReadSaysSoOnceAndWritesNothing()
{
    RecordingFileCalls calls;
    MainWindowFixture fixture;
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    QVERIFY(fixture.start(numberedRecords(20)));
    const QByteArray before = fixture.fileBytes(QStringLiteral("In.dat"));
    calls.calls.clear();

    calls.failing = QStringList{QStringLiteral("pread In.dat")};
    fixture.boxes().expect();
    fixture.scrollBar()->setValue(5);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("Could not read record 5 of In.dat: Input/output error")});
    QCOMPARE(fixture.boxes().titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(fixture.fileBytes(QStringLiteral("In.dat")), before);

    // Readable again: the rows are drawn from the records now at the top.
    calls.failing.clear();
    fixture.scrollBar()->setValue(6);
    QCOMPARE(fixture.sel(1)->text(), QStringLiteral("6"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 1)->text(), QStringLiteral("Plan 6"));
    QCOMPARE(fixture.cell(QStringLiteral("Desc"), 10)->text(), QStringLiteral("Plan 15"));
    QCOMPARE(fixture.boxes().texts().size(), 1);
}

void TestReadFailures::editingACellWhoseRecordCannotBeReadSaysSoAndWritesNothing()
{
    RecordingFileCalls calls;
    MainWindowFixture fixture;
    fixture.session().list(ListKind::Investments).file.setCalls(&calls);
    QVERIFY(fixture.start(numberedRecords(3)));
    const QByteArray before = fixture.fileBytes(QStringLiteral("In.dat"));
    GridCell *payment = fixture.cell(QStringLiteral("Payment"), 2);
    calls.calls.clear();

    calls.failing = QStringList{QStringLiteral("pread In.dat")};
    fixture.boxes().expect();
    QTest::mouseClick(payment, Qt::LeftButton);
    QCOMPARE(fixture.boxes().texts(),
             QStringList{QStringLiteral("Could not read record 2 of In.dat: Input/output error")});
    calls.failing.clear();
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(fixture.fileBytes(QStringLiteral("In.dat")), before);
}

QTEST_MAIN(TestReadFailures)
#include "tst_readfailures.moc"
