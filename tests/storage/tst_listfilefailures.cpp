#include "recordingfilecalls.h"
#include "scenariofile.h"
#include "session.h"
#include "testfiles.h"
#include "undohistory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

using namespace quillet;
using namespace quillet::test;

namespace {

// System calls that misbehave the way a busy or failing disk can: reads and
// writes interrupted by a signal or stopping short, and a status query that
// fails from its n-th call on (counting from 1).
class TroubledFileCalls final : public FileCalls
{
public:
    int interruptedReads = 0;
    int interruptedWrites = 0;
    bool readsStopShort = false;
    bool writesStall = false;
    int fstatFailsFrom = 0;
    int fstatCalls = 0;

    ssize_t pread(int fd, char *buffer, size_t size, off_t offset) override
    {
        if (interruptedReads > 0) {
            --interruptedReads;
            errno = EINTR;
            return -1;
        }
        if (readsStopShort) {
            // One record, then the end of the file.
            if (offset > 0) {
                errno = 0;
                return 0;
            }
            size = std::min<size_t>(size, SlotSize);
        }
        return FileCalls::pread(fd, buffer, size, offset);
    }
    ssize_t pwrite(int fd, const char *data, size_t size, off_t offset) override
    {
        if (interruptedWrites > 0) {
            --interruptedWrites;
            errno = EINTR;
            return -1;
        }
        if (writesStall)
            return 0;
        return FileCalls::pwrite(fd, data, size, offset);
    }
    int fstat(int fd, struct stat *info) override
    {
        ++fstatCalls;
        if (fstatFailsFrom > 0 && fstatCalls >= fstatFailsFrom) {
            errno = EIO;
            return -1;
        }
        return FileCalls::fstat(fd, info);
    }
};

bool openSession(Session &session, std::initializer_list<int> investments)
{
    return writeBytes(QStringLiteral("In.dat"), listBytes(investments)) &&
           writeBytes(QStringLiteral("Ln.dat"), QByteArray()) &&
           session.openDataFiles(QDir::currentPath()).ok();
}

} // namespace

class TestListFileFailures : public QObject
{
    Q_OBJECT

private slots:
    void listOnAReadOnlyMediumOpensForReadingOnly_data();
    void listOnAReadOnlyMediumOpensForReadingOnly();
    void statusQueryFailingAtOpenLeavesTheListUnusable();
    void pipeInTheListsPlaceIsRefusedAsNotAPlainFile();
    void listStillClosedAfterARewriteSaysSoAtEachUseAndKeepsItsCount();
    void listReopenedReadOnlyAfterARewriteRefusesChanges();
    void readThatFailsNamesTheCauseAndChangesNothing();
    void interruptedReadsAndWritesAreRetried();
    void writeThatMakesNoProgressFailsAsAnInputOutputError();
    void readingAListThatFailedToOpenNamesTheCause();
    void statusQueryFailingBeforeAWriteLeavesTheFileAsItWas();
    void completingAShortLastSlotThatFailsLeavesTheFileAsItWas();
    void deleteReadingAFileThatFailsLeavesItWhole();
    void deleteReadingAFileThatEndsEarlyLeavesItWhole();
    void statusQueryFailingBeforeTheRewriteLeavesTheListWhole();
    void deletingOrInsertingOutsideTheListNamesItsSize();
    void listDeletedFromUnderTheProgramIsReportedGone();
    void folderThatCannotBeOpenedForSyncingStillGetsTheNewList();
    void deleteWithoutASelectionDoesNothing();
    void moveWhoseFirstReadFailsChangesNothing();
    void droppingFromAnEmptyHistoryKeepsItEmpty();
};

void TestListFileFailures::listOnAReadOnlyMediumOpensForReadingOnly_data()
{
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("reason");
    QTest::newRow("not permitted") << int(EPERM) << QStringLiteral("Operation not permitted");
    QTest::newRow("read-only file system") << int(EROFS) << QStringLiteral("Read-only file system");
    QTest::newRow("program being run") << int(ETXTBSY) << QStringLiteral("Text file busy");
}

void TestListFileFailures::listOnAReadOnlyMediumOpensForReadingOnly()
{
    QFETCH(int, error);
    QFETCH(QString, reason);
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    calls.failing = QStringList{QStringLiteral("open In.dat")};
    calls.failError = error;
    ScenarioFile file;
    file.setCalls(&calls);

    QCOMPARE(file.OpenDataFile(QStringLiteral("In.dat")).message(),
             QStringLiteral("In.dat can be read but not written (%1). Its scenarios are shown, "
                            "but changes to them cannot be saved.")
                 .arg(reason));
    QCOMPARE(file.access(), ScenarioFile::Access::ReadOnly);
    QCOMPARE(file.count(), 2);
}

void TestListFileFailures::statusQueryFailingAtOpenLeavesTheListUnusable()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    TroubledFileCalls calls;
    calls.fstatFailsFrom = 1;
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    ScenarioFile file;
    file.setCalls(&calls);

    QCOMPARE(file.OpenDataFile(QStringLiteral("In.dat")).message(),
             QStringLiteral("In.dat cannot be used: Input/output error. Quillet shows it as an "
                            "empty list and leaves the file as it is."));
    QCOMPARE(file.access(), ScenarioFile::Access::Unavailable);
    QCOMPARE(file.count(), 0);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestListFileFailures::pipeInTheListsPlaceIsRefusedAsNotAPlainFile()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(::mkfifo("In.dat", 0600) == 0);
    ScenarioFile file;

    QCOMPARE(file.OpenDataFile(QStringLiteral("In.dat")).message(),
             QStringLiteral("In.dat cannot be used: it is not a plain file. Quillet shows it as "
                            "an empty list and leaves the file as it is."));
    QCOMPARE(file.access(), ScenarioFile::Access::Unavailable);
    QCOMPARE(file.count(), 0);
    QCOMPARE(file.insert(1, sampleRecord(1)).message(),
             QStringLiteral("Could not insert record 1 into In.dat: the file cannot be used (it "
                            "is not a plain file)."));
}

void TestListFileFailures::listStillClosedAfterARewriteSaysSoAtEachUseAndKeepsItsCount()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.failing =
        QStringList{QStringLiteral("open In.dat"), QStringLiteral("open In.dat read-only")};
    file.setCalls(&calls);
    QVERIFY(!file.remove(1).ok());

    ScenarioRecord record;
    QCOMPARE(file.read(1, record).message(),
             QStringLiteral("Could not read record 1 of In.dat: the file could not be opened "
                            "again (Input/output error)."));
    QCOMPARE(file.count(), 2);
    QCOMPARE(file.access(), ScenarioFile::Access::ReadWrite);
    QCOMPARE(file.write(1, sampleRecord(7)).message(),
             QStringLiteral("Could not write record 1 of In.dat: the file could not be opened "
                            "again (Input/output error)."));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({2, 3}));

    calls.failing.clear();
    QVERIFY(file.read(2, record).ok());
    QCOMPARE(encodeRecord(record), encodeRecord(sampleRecord(3)));
}

void TestListFileFailures::listReopenedReadOnlyAfterARewriteRefusesChanges()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.failing =
        QStringList{QStringLiteral("open In.dat"), QStringLiteral("open In.dat read-only")};
    file.setCalls(&calls);
    QVERIFY(!file.remove(3).ok());

    // Meanwhile the list has become read-only.
    calls.failing = QStringList{QStringLiteral("open In.dat")};
    calls.failError = EACCES;
    QCOMPARE(file.write(1, sampleRecord(7)).message(),
             QStringLiteral("Could not write record 1 of In.dat: the file can only be read "
                            "(Permission denied)."));
    QCOMPARE(file.access(), ScenarioFile::Access::ReadOnly);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestListFileFailures::readThatFailsNamesTheCauseAndChangesNothing()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.failing = QStringList{QStringLiteral("pread In.dat")};
    file.setCalls(&calls);

    ScenarioRecord record = sampleRecord(5);
    QCOMPARE(file.read(2, record).message(),
             QStringLiteral("Could not read record 2 of In.dat: Input/output error"));
    QCOMPARE(encodeRecord(record), encodeRecord(sampleRecord(5)));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestListFileFailures::interruptedReadsAndWritesAreRetried()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    TroubledFileCalls calls;
    ScenarioFile file;
    file.setCalls(&calls);
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());

    calls.interruptedReads = 2;
    ScenarioRecord record;
    QVERIFY(file.read(2, record).ok());
    QCOMPARE(encodeRecord(record), encodeRecord(sampleRecord(2)));
    QCOMPARE(calls.interruptedReads, 0);

    calls.interruptedWrites = 2;
    QVERIFY(file.write(3, sampleRecord(3)).ok());
    QCOMPARE(calls.interruptedWrites, 0);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
}

void TestListFileFailures::writeThatMakesNoProgressFailsAsAnInputOutputError()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    TroubledFileCalls calls;
    ScenarioFile file;
    file.setCalls(&calls);
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.writesStall = true;

    QCOMPARE(file.write(3, sampleRecord(3)).message(),
             QStringLiteral("Could not write record 3 of In.dat: Input/output error"));
    QCOMPARE(file.count(), 2);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QCOMPARE(file.remove(1).message(),
             QStringLiteral("Could not write the new version of In.dat: Input/output error"));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
}

void TestListFileFailures::readingAListThatFailedToOpenNamesTheCause()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QDir().mkdir(QStringLiteral("In.dat")));
    ScenarioFile file;
    QVERIFY(!file.OpenDataFile(QStringLiteral("In.dat")).ok());

    ScenarioRecord record;
    QCOMPARE(file.read(1, record).message(),
             QStringLiteral("Could not read record 1 of In.dat: the file cannot be used (Is a "
                            "directory)."));
    QCOMPARE(file.remove(1).message(),
             QStringLiteral("Could not delete record 1 of In.dat: the file cannot be used (Is a "
                            "directory)."));
}

void TestListFileFailures::statusQueryFailingBeforeAWriteLeavesTheFileAsItWas()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    TroubledFileCalls calls;
    ScenarioFile file;
    file.setCalls(&calls);
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.fstatFailsFrom = calls.fstatCalls + 1;

    QCOMPARE(file.write(1, sampleRecord(7)).message(),
             QStringLiteral("Could not write record 1 of In.dat: Input/output error"));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestListFileFailures::completingAShortLastSlotThatFailsLeavesTheFileAsItWas()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Three quarters of a second record count as one.
    const QByteArray bytes = listBytes({1}) + listBytes({2}).left(SlotSize * 3 / 4);
    QVERIFY(writeBytes(QStringLiteral("In.dat"), bytes));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QCOMPARE(file.count(), 2);
    calls.failing = QStringList{QStringLiteral("ftruncate In.dat")};
    calls.failError = ENOSPC;
    file.setCalls(&calls);

    QCOMPARE(file.write(3, sampleRecord(3)).message(),
             QStringLiteral("Could not write record 3 of In.dat: No space left on device"));
    QCOMPARE(file.count(), 2);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), bytes);
}

void TestListFileFailures::deleteReadingAFileThatFailsLeavesItWhole()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.failing = QStringList{QStringLiteral("pread In.dat")};
    file.setCalls(&calls);

    QCOMPARE(file.remove(2).message(), QStringLiteral("Could not read In.dat: Input/output error"));
    QCOMPARE(file.insert(2, sampleRecord(9)).message(),
             QStringLiteral("Could not read In.dat: Input/output error"));
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(file.count(), 3);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
}

void TestListFileFailures::deleteReadingAFileThatEndsEarlyLeavesItWhole()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    TroubledFileCalls calls;
    ScenarioFile file;
    file.setCalls(&calls);
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.readsStopShort = true;

    QCOMPARE(file.remove(2).message(),
             QStringLiteral("Could not read In.dat: the file is shorter than it was."));
    QCOMPARE(file.count(), 3);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
}

void TestListFileFailures::statusQueryFailingBeforeTheRewriteLeavesTheListWhole()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    TroubledFileCalls calls;
    ScenarioFile file;
    file.setCalls(&calls);
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    // The first query sizes the list for reading; the second, before the
    // rewrite, fails.
    calls.fstatFailsFrom = calls.fstatCalls + 2;

    QCOMPARE(file.remove(2).message(), QStringLiteral("Could not read In.dat: Input/output error"));
    QCOMPARE(file.count(), 3);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));

    // From the first query on, the reading of the whole list fails too.
    calls.fstatFailsFrom = calls.fstatCalls + 1;
    QCOMPARE(file.insert(1, sampleRecord(9)).message(),
             QStringLiteral("Could not read In.dat: Input/output error"));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 3}));
}

void TestListFileFailures::deletingOrInsertingOutsideTheListNamesItsSize()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());

    QCOMPARE(file.remove(0).message(),
             QStringLiteral("Could not delete record 0 of In.dat: it holds 2 records."));
    QCOMPARE(file.remove(3).message(),
             QStringLiteral("Could not delete record 3 of In.dat: it holds 2 records."));
    QCOMPARE(file.insert(0, sampleRecord(9)).message(),
             QStringLiteral("Could not insert record 0 into In.dat: it holds 2 records."));
    QCOMPARE(file.insert(4, sampleRecord(9)).message(),
             QStringLiteral("Could not insert record 4 into In.dat: it holds 2 records."));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    // One past the end is a place to insert.
    QVERIFY(file.insert(3, sampleRecord(9)).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 9}));
}

void TestListFileFailures::listDeletedFromUnderTheProgramIsReportedGone()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QVERIFY(QFile::remove(QStringLiteral("In.dat")));

    QCOMPARE(file.remove(1).message(),
             QStringLiteral("Could not find the file behind In.dat: it is gone."));
    QVERIFY(!QFileInfo::exists(QStringLiteral("In.dat")));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    QCOMPARE(file.count(), 2);
}

void TestListFileFailures::folderThatCannotBeOpenedForSyncingStillGetsTheNewList()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    file.setCalls(&calls);
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.calls.clear();
    const QString folder = QFileInfo(QDir::currentPath()).fileName();
    calls.failing = QStringList{QStringLiteral("open %1 read-only").arg(folder)};

    QVERIFY(file.remove(2).ok());
    QCOMPARE(calls.changes(), (QStringList{
                                  QStringLiteral("unlink tmpil.dat"),
                                  QStringLiteral("open tmpil.dat"),
                                  QStringLiteral("fchmod tmpil.dat"),
                                  QStringLiteral("pwrite tmpil.dat"),
                                  QStringLiteral("fdatasync tmpil.dat"),
                                  QStringLiteral("close tmpil.dat"),
                                  QStringLiteral("rename tmpil.dat In.dat"),
                                  QStringLiteral("open %1 read-only").arg(folder),
                                  QStringLiteral("close In.dat"),
                                  QStringLiteral("open In.dat"),
                              }));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 3}));
    QCOMPARE(file.count(), 2);
}

void TestListFileFailures::deleteWithoutASelectionDoesNothing()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    QVERIFY(openSession(session, {1, 2}));
    session.current().SelRow = 0;

    QVERIFY(session.deleteSelected().ok());
    QCOMPARE(session.current().NumRecs(), 2);
    QCOMPARE(session.current().undo.UndoCount(), 0);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestListFileFailures::moveWhoseFirstReadFailsChangesNothing()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    Session session;
    QVERIFY(openSession(session, {1, 2}));
    session.WorkingRecord = sampleRecord(8);
    calls.failing = QStringList{QStringLiteral("pread In.dat")};
    session.current().file.setCalls(&calls);

    QCOMPARE(session.swapRecords(1, 2).message(),
             QStringLiteral("Could not read record 2 of In.dat: Input/output error"));
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(encodeRecord(session.WorkingRecord), encodeRecord(sampleRecord(8)));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestListFileFailures::droppingFromAnEmptyHistoryKeepsItEmpty()
{
    UndoHistory history;
    history.dropNewest();
    QCOMPARE(history.UndoCount(), 0);
    history.PushUndo({sampleRecord(1), 1, 1, 1, 0});
    history.dropNewest();
    history.dropNewest();
    QCOMPARE(history.UndoCount(), 0);
}

QTEST_GUILESS_MAIN(TestListFileFailures)
#include "tst_listfilefailures.moc"
