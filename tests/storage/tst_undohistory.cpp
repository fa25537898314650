#include "recordingfilecalls.h"
#include "session.h"
#include "testfiles.h"
#include "undohistory.h"

#include <QDir>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

// A session over In.dat and Ln.dat holding the given sample records.
bool openSession(Session &session, std::initializer_list<int> investments,
                 std::initializer_list<int> loans = {})
{
    return writeBytes(QStringLiteral("In.dat"), listBytes(investments)) &&
           writeBytes(QStringLiteral("Ln.dat"), listBytes(loans)) &&
           session.openDataFiles(QDir::currentPath()).ok();
}

// Changes the payment of record n of the list shown as the grid does: the
// old record goes onto the history, then the new one is written.
bool changePayment(Session &session, int n, double payment)
{
    if (!session.readRecord(n).ok())
        return false;
    session.PushUndo(session.WorkingRecord, static_cast<qint16>(n), 0);
    session.WorkingRecord.Payment = payment;
    return session.writeRecord(n).ok();
}

} // namespace

class TestUndoHistory : public QObject
{
    Q_OBJECT

private slots:
    void historyStartsEmpty();
    void changingAFieldThenUndoingWritesTheOldRecordBack();
    void deletingRecord2Of3ThenUndoingRestoresOrderAndSelection();
    void investmentChangesAreNotUndoneWhileLoansAreShown();
    void tenChangesFillTheSlotsAndUndoNewestFirst();
    void eleventhChangeDropsTheOldestAndKeepsTheCounterAtTen();
    void undoWithAnEmptyHistoryDoesNothing();
    void undoThatCannotBeWrittenKeepsTheHistory();
    void pushingTakesTopRowAndSelectionOfTheListShown();
    void changesFollowTheirScenarioWhenTwoRecordsSwap();
    void changesOlderThanADeleteFollowTheirScenarioAcrossIt();
    void failedSwapLeavesFileAndHistoryAsTheyWere();
    void deleteWhoseReopenFailsIsStillUndoable();
};

void TestUndoHistory::historyStartsEmpty()
{
    Session session;
    QCOMPARE(session.list(ListKind::Investments).undo.UndoCount(), 0);
    QCOMPARE(session.list(ListKind::Loans).undo.UndoCount(), 0);
}

void TestUndoHistory::changingAFieldThenUndoingWritesTheOldRecordBack()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2, 3}));
    QVERIFY(changePayment(session, 2, 250.0));
    QVERIFY(fileBytes(QStringLiteral("In.dat")) != listBytes({1, 2, 3}));
    QCOMPARE(session.current().undo.UndoCount(), 1);

    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
    QCOMPARE(session.current().undo.UndoCount(), 0);
    QVERIFY(session.readRecord(2).ok());
    QCOMPARE(encodeRecord(session.WorkingRecord), encodeRecord(sampleRecord(2)));
}

void TestUndoHistory::deletingRecord2Of3ThenUndoingRestoresOrderAndSelection()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2, 3}));
    session.current().SelRow = 2;

    QVERIFY(session.deleteSelected().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 3}));
    QCOMPARE(session.current().SelRow, qint16(0));
    QCOMPARE(session.current().NumRecs(), 2);
    QCOMPARE(session.current().undo.UndoCount(), 1);
    QCOMPARE(session.current().undo.newest().Deleted, qint16(-1));
    QCOMPARE(session.current().undo.newest().RecNo, qint16(2));

    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
    QCOMPARE(session.current().NumRecs(), 3);
    QCOMPARE(session.current().SelRow, qint16(2));
    QCOMPARE(session.current().undo.UndoCount(), 0);
}

void TestUndoHistory::investmentChangesAreNotUndoneWhileLoansAreShown()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2}, {5, 6}));
    session.CurList = ListKind::Investments;
    QVERIFY(changePayment(session, 1, 99.0));
    const QByteArray changedInvestments = fileBytes(QStringLiteral("In.dat"));

    session.CurList = ListKind::Loans;
    QCOMPARE(session.current().undo.UndoCount(), 0);
    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), changedInvestments);
    QCOMPARE(fileBytes(QStringLiteral("Ln.dat")), listBytes({5, 6}));

    QVERIFY(changePayment(session, 2, 7.0));
    session.CurList = ListKind::Investments;
    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QVERIFY(fileBytes(QStringLiteral("Ln.dat")) != listBytes({5, 6}));
    QCOMPARE(session.list(ListKind::Loans).undo.UndoCount(), 1);
}

void TestUndoHistory::tenChangesFillTheSlotsAndUndoNewestFirst()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1}));
    for (int change = 1; change <= 10; ++change)
        QVERIFY(changePayment(session, 1, change));
    const UndoHistory &history = session.current().undo;
    QCOMPARE(history.UndoCount(), 10);
    // Slot 1 holds the record before the tenth change, slot 10 the original.
    for (int slot = 1; slot <= 9; ++slot)
        QVERIFY(history.slot(slot).record.Payment == 10.0 - slot);
    QCOMPARE(encodeRecord(history.slot(10).record), encodeRecord(sampleRecord(1)));

    for (int undo = 1; undo <= 10; ++undo) {
        QVERIFY(session.PopUndo().ok());
        QVERIFY(session.readRecord(1).ok());
        if (undo < 10)
            QVERIFY(session.WorkingRecord.Payment == 10.0 - undo);
        QCOMPARE(history.UndoCount(), 10 - undo);
    }
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1}));
}

void TestUndoHistory::eleventhChangeDropsTheOldestAndKeepsTheCounterAtTen()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2}));
    session.current().SelRow = 2;
    for (int change = 1; change <= 11; ++change)
        QVERIFY(changePayment(session, 1, change));
    const UndoHistory &history = session.current().undo;
    QCOMPARE(history.UndoCount(), 10);

    session.current().SelRow = 0;
    QVERIFY(session.PopUndo().ok());
    QVERIFY(session.readRecord(1).ok());
    QVERIFY(session.WorkingRecord.Payment == 10.0);
    QCOMPARE(session.current().SelRow, qint16(2));
    QCOMPARE(history.UndoCount(), 9);

    // Every remaining entry can be undone; the original record was dropped.
    for (int undo = 2; undo <= 10; ++undo)
        QVERIFY(session.PopUndo().ok());
    QCOMPARE(history.UndoCount(), 0);
    QVERIFY(session.readRecord(1).ok());
    QVERIFY(session.WorkingRecord.Payment == 1.0);
}

void TestUndoHistory::undoWithAnEmptyHistoryDoesNothing()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2}));
    session.current().SelRow = 1;
    session.current().TopRow = 1;
    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QCOMPARE(session.current().SelRow, qint16(1));
}

void TestUndoHistory::undoThatCannotBeWrittenKeepsTheHistory()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    Session session;
    QVERIFY(openSession(session, {1, 2, 3}));
    session.current().SelRow = 3;
    QVERIFY(session.deleteSelected().ok());
    calls.failing = QStringList{QStringLiteral("rename tmpil.dat In.dat")};
    session.current().file.setCalls(&calls);

    const Status status = session.PopUndo();
    QVERIFY(!status.ok());
    QVERIFY2(status.message().contains(QStringLiteral("In.dat")), qPrintable(status.message()));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QCOMPARE(session.current().undo.UndoCount(), 1);
    QCOMPARE(session.current().SelRow, qint16(0));

    calls.failing.clear();
    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
    QCOMPARE(session.current().SelRow, qint16(3));
}

void TestUndoHistory::pushingTakesTopRowAndSelectionOfTheListShown()
{
    Session session;
    session.CurList = ListKind::Loans;
    session.current().TopRow = 4;
    session.current().SelRow = 6;
    session.PushUndo(sampleRecord(3), 5, 0);
    const UndoEntry &entry = session.list(ListKind::Loans).undo.newest();
    QCOMPARE(entry.RecNo, qint16(5));
    QCOMPARE(entry.TopRow, qint16(4));
    QCOMPARE(entry.SelRow, qint16(6));
    QCOMPARE(entry.Deleted, qint16(0));
    QCOMPARE(encodeRecord(entry.record), encodeRecord(sampleRecord(3)));
    QCOMPARE(session.list(ListKind::Investments).undo.UndoCount(), 0);
}

void TestUndoHistory::changesFollowTheirScenarioWhenTwoRecordsSwap()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2}));
    // Record 1 is changed, then moved down: its change goes with it.
    QVERIFY(changePayment(session, 1, 11.0));
    ScenarioRecord changedOne = sampleRecord(1);
    changedOne.Payment = 11.0;
    QVERIFY(session.swapRecords(2, 1).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")),
             encodeRecord(sampleRecord(2)) + encodeRecord(changedOne));
    QCOMPARE(session.current().undo.newest().RecNo, qint16(2));
    // The working record holds the scenario that moved the other way.
    QCOMPARE(encodeRecord(session.WorkingRecord), encodeRecord(sampleRecord(2)));

    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({2, 1}));
}

void TestUndoHistory::changesOlderThanADeleteFollowTheirScenarioAcrossIt()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2, 3}));
    QVERIFY(changePayment(session, 3, 33.0)); // scenario 3 changed while it is record 3
    session.current().SelRow = 1;
    QVERIFY(session.deleteSelected().ok());  // now 2, 3'
    QVERIFY(session.swapRecords(1, 2).ok()); // now 3', 2

    QVERIFY(session.PopUndo().ok()); // scenario 1 back in front: 1, 3', 2
    ScenarioRecord changedThree = sampleRecord(3);
    changedThree.Payment = 33.0;
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), encodeRecord(sampleRecord(1)) +
                                                      encodeRecord(changedThree) +
                                                      encodeRecord(sampleRecord(2)));
    QVERIFY(session.PopUndo().ok()); // scenario 3 as it was, in its own place
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 3, 2}));
}

void TestUndoHistory::failedSwapLeavesFileAndHistoryAsTheyWere()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    Session session;
    QVERIFY(openSession(session, {1, 2}));
    QVERIFY(changePayment(session, 1, 11.0));
    const QByteArray before = fileBytes(QStringLiteral("In.dat"));
    calls.failing = QStringList{QStringLiteral("fdatasync In.dat")};
    session.current().file.setCalls(&calls);

    const Status status = session.swapRecords(2, 1);
    QVERIFY(!status.ok());
    QCOMPARE(status.message(),
             QStringLiteral("Could not write record 2 of In.dat: Input/output error"));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), before);
    QCOMPARE(session.current().undo.newest().RecNo, qint16(1));

    calls.failing.clear();
    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestUndoHistory::deleteWhoseReopenFailsIsStillUndoable()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    Session session;
    QVERIFY(openSession(session, {1, 2, 3}));
    // The list file cannot be opened again once it has been replaced.
    calls.failing =
        QStringList{QStringLiteral("open In.dat"), QStringLiteral("open In.dat read-only")};
    session.current().file.setCalls(&calls);
    session.current().SelRow = 2;

    const Status status = session.deleteSelected();
    QVERIFY(!status.ok());
    QCOMPARE(status.message(),
             QStringLiteral("In.dat was saved, but could not be opened again (Input/output "
                            "error). Quillet tries again at the next change."));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 3}));
    QCOMPARE(session.current().NumRecs(), 2);
    QCOMPARE(session.current().undo.UndoCount(), 1);
    QCOMPARE(session.current().SelRow, qint16(0));

    // Once the file opens again the delete is undone as any other.
    calls.failing.clear();
    QVERIFY(session.PopUndo().ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
    QCOMPARE(session.current().NumRecs(), 3);
    QCOMPARE(session.current().SelRow, qint16(2));
}

QTEST_GUILESS_MAIN(TestUndoHistory)
#include "tst_undohistory.moc"
