#include "recordingfilecalls.h"
#include "scenariofile.h"
#include "session.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

#include <sys/stat.h>
#include <unistd.h>

class TestScenarioFile : public QObject
{
    Q_OBJECT

private slots:
    void startingWithoutDataFilesCreatesEmptyFiles();
    void recordsAreCountedWithHalfSlotsRoundingToEven_data();
    void recordsAreCountedWithHalfSlotsRoundingToEven();
    void shortLastSlotReadsAsFarAsItsBytesGo();
    void recordNLivesAtItsSlot();
    void writingOneRecordChangesOnlyItsSlot();
    void writingAtCountPlusOneAppends();
    void appendingAfterAShortLastSlotCompletesIt();
    void readingOrWritingOutsideTheListFailsNamingTheFile();
    void newlyAddedRecordHoldsBlankMarkersOnDisk();
    void deletingRecord3Of5KeepsTheOthersInOrder();
    void deletingTheOnlyRecordLeavesAnEmptyFile();
    void rewriteSyncsTheScratchFileBeforeTheRenameAndTheDirectoryAfter();
    void deleteInterruptedAtAnyCallLeavesACompleteListFile_data();
    void deleteInterruptedAtAnyCallLeavesACompleteListFile();
    void failedWriteLeavesTheFileAsItWas_data();
    void failedWriteLeavesTheFileAsItWas();
    void deleteKeepsThePermissionsOfTheList();
    void deleteThroughASymbolicLinkReplacesTheFileItLeadsTo();
    void symbolicLinkLoopIsNamedAsTheCause();
    void listThatCannotBeWrittenOpensReadOnlyAndRefusesChanges();
    void listThatCannotBeReadOpensEmptyAndIsNeverWritten();
    void scratchFileLeftByACrashIsNeverTakenForData();
    void insertingPutsARecordBackInItsPlace();
    void fileThatCannotBeOpenedIsReportedByName();
    void fileWithMoreThan32767RecordsIsRefused();
    void listOf32767RecordsTakesNoMore();
};

void TestScenarioFile::startingWithoutDataFilesCreatesEmptyFiles()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    Session session;
    const Status status = session.openDataFiles(QDir::currentPath());
    QVERIFY2(status.ok(), qPrintable(status.message()));

    QVERIFY(QFileInfo::exists(QStringLiteral("In.dat")));
    QVERIFY(QFileInfo::exists(QStringLiteral("Ln.dat")));
    QCOMPARE(QFileInfo(QStringLiteral("In.dat")).size(), 0);
    QCOMPARE(QFileInfo(QStringLiteral("Ln.dat")).size(), 0);
    QCOMPARE(session.list(ListKind::Investments).NumRecs(), 0);
    QCOMPARE(session.list(ListKind::Loans).NumRecs(), 0);
}

void TestScenarioFile::recordsAreCountedWithHalfSlotsRoundingToEven_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("records");
    QTest::newRow("empty") << qint64(0) << qint64(0);
    QTest::newRow("less than half a slot") << qint64(73) << qint64(0);
    QTest::newRow("exactly half a slot goes to zero") << qint64(74) << qint64(0);
    QTest::newRow("more than half a slot") << qint64(75) << qint64(1);
    QTest::newRow("one slot short of a byte") << qint64(147) << qint64(1);
    QTest::newRow("one slot") << qint64(148) << qint64(1);
    QTest::newRow("one and a half slots goes to two") << qint64(148 + 74) << qint64(2);
    QTest::newRow("two and a half slots goes to two") << qint64(2 * 148 + 74) << qint64(2);
    QTest::newRow("four slots and 100 bytes") << qint64(4 * 148 + 100) << qint64(5);
    QTest::newRow("four slots and 50 bytes") << qint64(4 * 148 + 50) << qint64(4);
}

void TestScenarioFile::recordsAreCountedWithHalfSlotsRoundingToEven()
{
    QFETCH(qint64, bytes);
    QFETCH(qint64, records);
    QCOMPARE(ScenarioFile::countForSize(bytes), records);

    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), QByteArray(bytes, 'x')));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QCOMPARE(file.count(), records);
}

void TestScenarioFile::shortLastSlotReadsAsFarAsItsBytesGo()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QByteArray five = listBytes({1, 2, 3, 4, 5});
    // 76 bytes of the fifth slot hold everything up to the years.
    QVERIFY(writeBytes(QStringLiteral("In.dat"), five.left(4 * 148 + 76)));

    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QCOMPARE(file.count(), 5);
    ScenarioRecord fifth;
    QVERIFY(file.read(5, fifth).ok());
    QCOMPARE(trimmedDesc(fifth), QStringLiteral("Scenario 5"));
    QVERIFY(fifth.InitialAmount == 5000.0);
    QVERIFY(fifth.IRate == 0.05);
    QVERIFY(fifth.Years == BlankValue);
    QVERIFY(fifth.Payment == 0.0);
    QCOMPARE(fifth.PerYear, qint16(0));
    QVERIFY(fifth.FutureValue == 0.0);
}

void TestScenarioFile::recordNLivesAtItsSlot()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("Ln.dat"), listBytes({7, 8, 9})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("Ln.dat")).ok());
    for (int n = 1; n <= 3; ++n) {
        ScenarioRecord record;
        QVERIFY(file.read(n, record).ok());
        QCOMPARE(encodeRecord(record), encodeRecord(sampleRecord(6 + n)));
    }
}

void TestScenarioFile::writingOneRecordChangesOnlyItsSlot()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QVERIFY(file.write(2, sampleRecord(42)).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 42, 3}));
    QCOMPARE(file.count(), 3);
}

void TestScenarioFile::writingAtCountPlusOneAppends()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QVERIFY(file.write(1, sampleRecord(1)).ok());
    QVERIFY(file.write(2, sampleRecord(2)).ok());
    QCOMPARE(file.count(), 2);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestScenarioFile::appendingAfterAShortLastSlotCompletesIt()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QByteArray two = listBytes({1, 2});
    QVERIFY(writeBytes(QStringLiteral("In.dat"), two.left(148 + 100)));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QCOMPARE(file.count(), 2);
    QVERIFY(file.write(3, sampleRecord(3)).ok());

    const QByteArray bytes = fileBytes(QStringLiteral("In.dat"));
    QCOMPARE(bytes.size(), 3 * 148);
    QCOMPARE(bytes.mid(148, 100), two.mid(148, 100));
    QCOMPARE(bytes.mid(248, 48), QByteArray(48, '\0'));
    QCOMPARE(bytes.mid(296), encodeRecord(sampleRecord(3)));
}

void TestScenarioFile::readingOrWritingOutsideTheListFailsNamingTheFile()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());

    ScenarioRecord record;
    for (const int n : {0, 3, -1}) {
        const Status status = file.read(n, record);
        QVERIFY(!status.ok());
        QVERIFY2(status.message().contains(QStringLiteral("In.dat")), qPrintable(status.message()));
    }
    QVERIFY(!file.write(4, record).ok());
    QVERIFY(!file.write(0, record).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestScenarioFile::newlyAddedRecordHoldsBlankMarkersOnDisk()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    ScenarioRecord record;
    record.makeBlank();
    QVERIFY(file.write(1, record).ok());

    const QByteArray bytes = fileBytes(QStringLiteral("In.dat"));
    QCOMPARE(bytes.size(), 148);
    QCOMPARE(bytes.mid(2, 50), QByteArray(50, ' '));
    for (const int offset : {52, 60, 68, 76, 86})
        QCOMPARE(bytes.mid(offset, 8), QByteArray::fromHex("000080A0B16DCDC1"));
    QCOMPARE(bytes.mid(84, 2), QByteArray::fromHex("FFFF"));
}

void TestScenarioFile::deletingRecord3Of5KeepsTheOthersInOrder()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3, 4, 5})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());

    ScenarioRecord removed;
    const Status status = file.remove(3, &removed);
    QVERIFY2(status.ok(), qPrintable(status.message()));
    QCOMPARE(encodeRecord(removed), encodeRecord(sampleRecord(3)));
    QCOMPARE(file.count(), 4);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 4, 5}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));

    // The file stays usable after it was replaced.
    QVERIFY(file.write(5, sampleRecord(6)).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2, 4, 5, 6}));
}

void TestScenarioFile::deletingTheOnlyRecordLeavesAnEmptyFile()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("Ln.dat"), listBytes({1})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("Ln.dat")).ok());
    QVERIFY(file.remove(1).ok());
    QCOMPARE(file.count(), 0);
    QCOMPARE(QFileInfo(QStringLiteral("Ln.dat")).size(), 0);
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
}

void TestScenarioFile::rewriteSyncsTheScratchFileBeforeTheRenameAndTheDirectoryAfter()
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
    calls.openedPaths.clear();

    QVERIFY(file.remove(2).ok());
    const QString folder = QFileInfo(QDir::currentPath()).fileName();
    // The old list is neither removed nor truncated before the new one is
    // complete and on disk; the rename is made durable by syncing the folder.
    QCOMPARE(calls.changes(), (QStringList{
                                  QStringLiteral("unlink tmpil.dat"),
                                  QStringLiteral("open tmpil.dat"),
                                  QStringLiteral("fchmod tmpil.dat"),
                                  QStringLiteral("pwrite tmpil.dat"),
                                  QStringLiteral("fdatasync tmpil.dat"),
                                  QStringLiteral("close tmpil.dat"),
                                  QStringLiteral("rename tmpil.dat In.dat"),
                                  QStringLiteral("open %1 read-only").arg(folder),
                                  QStringLiteral("fsync %1").arg(folder),
                                  QStringLiteral("close %1").arg(folder),
                                  QStringLiteral("close In.dat"),
                                  QStringLiteral("open In.dat"),
                              }));
    QCOMPARE(calls.openedPaths.at(0), QDir::current().filePath(QStringLiteral("tmpil.dat")));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 3}));
}

void TestScenarioFile::deleteInterruptedAtAnyCallLeavesACompleteListFile_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<bool>("replaced");
    QTest::newRow("creating the scratch file") << QStringLiteral("open tmpil.dat") << false;
    QTest::newRow("setting its permissions") << QStringLiteral("fchmod tmpil.dat") << false;
    QTest::newRow("writing it") << QStringLiteral("pwrite tmpil.dat") << false;
    QTest::newRow("syncing it") << QStringLiteral("fdatasync tmpil.dat") << false;
    QTest::newRow("closing it") << QStringLiteral("close tmpil.dat") << false;
    QTest::newRow("renaming it over the list")
        << QStringLiteral("rename tmpil.dat In.dat") << false;
    QTest::newRow("opening the new list") << QStringLiteral("open In.dat") << true;
}

void TestScenarioFile::deleteInterruptedAtAnyCallLeavesACompleteListFile()
{
    QFETCH(QString, call);
    QFETCH(bool, replaced);
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.failing = QStringList{call, QStringLiteral("open In.dat read-only")};
    file.setCalls(&calls);

    const Status status = file.remove(2);
    QVERIFY(!status.ok());
    QVERIFY2(status.message().contains(QStringLiteral("In.dat")), qPrintable(status.message()));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")),
             replaced ? listBytes({1, 3}) : listBytes({1, 2, 3}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    QCOMPARE(file.count(), replaced ? 2 : 3);

    // Once the trouble is gone the list works on, without opening it anew.
    calls.failing.clear();
    QVERIFY(file.write(file.count() + 1, sampleRecord(9)).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")),
             replaced ? listBytes({1, 3, 9}) : listBytes({1, 2, 3, 9}));
    QVERIFY(file.remove(1).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")),
             replaced ? listBytes({3, 9}) : listBytes({2, 3, 9}));
}

void TestScenarioFile::failedWriteLeavesTheFileAsItWas_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<int>("record");
    QTest::newRow("appending, the write fails") << QStringLiteral("pwrite In.dat") << 3;
    QTest::newRow("appending, the sync fails") << QStringLiteral("fdatasync In.dat") << 3;
    QTest::newRow("in place, the sync fails") << QStringLiteral("fdatasync In.dat") << 1;
}

void TestScenarioFile::failedWriteLeavesTheFileAsItWas()
{
    QFETCH(QString, call);
    QFETCH(int, record);
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    calls.failing = QStringList{call};
    calls.failError = ENOSPC;
    file.setCalls(&calls);

    const Status status = file.write(record, sampleRecord(7));
    QCOMPARE(
        status.message(),
        QStringLiteral("Could not write record %1 of In.dat: No space left on device").arg(record));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QCOMPARE(file.count(), 2);
}

void TestScenarioFile::deleteKeepsThePermissionsOfTheList()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    QVERIFY(::chmod("In.dat", 0640) == 0);
    const mode_t oldMask = ::umask(077);
    ScenarioFile file;
    const bool opened = file.OpenDataFile(QStringLiteral("In.dat")).ok();
    const bool removed = opened && file.remove(1).ok();
    ::umask(oldMask);
    QVERIFY(removed);
    struct stat info = {};
    QVERIFY(::stat("In.dat", &info) == 0);
    QCOMPARE(info.st_mode & 07777, mode_t(0640));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({2}));
}

void TestScenarioFile::deleteThroughASymbolicLinkReplacesTheFileItLeadsTo()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QDir().mkdir(QStringLiteral("data")));
    QVERIFY(writeBytes(QStringLiteral("data/loans.dat"), listBytes({1, 2, 3})));
    QVERIFY(QFile::link(QStringLiteral("data/loans.dat"), QStringLiteral("Ln.dat")));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("Ln.dat")).ok());

    QVERIFY(file.remove(2).ok());
    QVERIFY(QFileInfo(QStringLiteral("Ln.dat")).isSymLink());
    QCOMPARE(fileBytes(QStringLiteral("data/loans.dat")), listBytes({1, 3}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    QVERIFY(!QFileInfo::exists(QStringLiteral("data/tmpil.dat")));
    // The list goes on through the link.
    QVERIFY(file.write(3, sampleRecord(4)).ok());
    QCOMPARE(fileBytes(QStringLiteral("data/loans.dat")), listBytes({1, 3, 4}));
}

void TestScenarioFile::symbolicLinkLoopIsNamedAsTheCause()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QFile::link(QStringLiteral("Ln.dat"), QStringLiteral("Ln.dat")));
    ScenarioFile file;
    const Status status = file.OpenDataFile(QStringLiteral("Ln.dat"));
    QCOMPARE(status.message(),
             QStringLiteral("Ln.dat cannot be used: Too many levels of symbolic links. Quillet "
                            "shows it as an empty list and leaves the file as it is."));
    QCOMPARE(file.access(), ScenarioFile::Access::Unavailable);
    QCOMPARE(file.count(), 0);
}

void TestScenarioFile::listThatCannotBeWrittenOpensReadOnlyAndRefusesChanges()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    calls.failing = QStringList{QStringLiteral("open In.dat")};
    calls.failError = EACCES;
    ScenarioFile file;
    file.setCalls(&calls);

    const Status status = file.OpenDataFile(QStringLiteral("In.dat"));
    QCOMPARE(status.message(),
             QStringLiteral("In.dat can be read but not written (Permission denied). Its "
                            "scenarios are shown, but changes to them cannot be saved."));
    QCOMPARE(file.access(), ScenarioFile::Access::ReadOnly);
    QCOMPARE(file.count(), 2);
    ScenarioRecord record;
    QVERIFY(file.read(2, record).ok());
    QCOMPARE(encodeRecord(record), encodeRecord(sampleRecord(2)));

    calls.calls.clear();
    QCOMPARE(file.write(1, sampleRecord(5)).message(),
             QStringLiteral("Could not write record 1 of In.dat: the file can only be read "
                            "(Permission denied)."));
    QVERIFY(!file.write(3, sampleRecord(5)).ok());
    QVERIFY(!file.remove(1).ok());
    QVERIFY(!file.insert(1, sampleRecord(5)).ok());
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestScenarioFile::listThatCannotBeReadOpensEmptyAndIsNeverWritten()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Outlives the file that calls it.
    RecordingFileCalls calls;
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    calls.failing =
        QStringList{QStringLiteral("open In.dat"), QStringLiteral("open In.dat read-only")};
    calls.failError = EACCES;
    ScenarioFile file;
    file.setCalls(&calls);

    QCOMPARE(file.OpenDataFile(QStringLiteral("In.dat")).message(),
             QStringLiteral("In.dat cannot be used: Permission denied. Quillet shows it as an "
                            "empty list and leaves the file as it is."));
    QCOMPARE(file.access(), ScenarioFile::Access::Unavailable);
    QCOMPARE(file.count(), 0);
    calls.calls.clear();
    calls.failing.clear();
    QCOMPARE(file.write(1, sampleRecord(5)).message(),
             QStringLiteral("Could not write record 1 of In.dat: the file cannot be used "
                            "(Permission denied)."));
    QVERIFY(!file.insert(1, sampleRecord(5)).ok());
    QCOMPARE(calls.changes(), QStringList());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
}

void TestScenarioFile::scratchFileLeftByACrashIsNeverTakenForData()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    QVERIFY(writeBytes(QStringLiteral("tmpil.dat"), listBytes({66, 77, 88, 99}) + "junk"));

    Session session;
    QVERIFY(session.openDataFiles(QDir::currentPath()).ok());
    QCOMPARE(session.list(ListKind::Investments).NumRecs(), 3);

    ScenarioFile &file = session.list(ListKind::Investments).file;
    QVERIFY(file.remove(1).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({2, 3}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
}

void TestScenarioFile::insertingPutsARecordBackInItsPlace()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 3})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QVERIFY(file.insert(2, sampleRecord(2)).ok());
    QVERIFY(file.insert(4, sampleRecord(4)).ok());
    QVERIFY(file.insert(1, sampleRecord(0)).ok());
    QCOMPARE(file.count(), 5);
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({0, 1, 2, 3, 4}));
    QVERIFY(!file.insert(7, sampleRecord(7)).ok());
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
}

void TestScenarioFile::fileThatCannotBeOpenedIsReportedByName()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // A directory in the file's place cannot be opened, even by root.
    QVERIFY(QDir().mkdir(QStringLiteral("Ln.dat")));
    Session session;
    const Status status = session.openDataFiles(QDir::currentPath());
    QVERIFY(!status.ok());
    QVERIFY2(status.message().contains(QStringLiteral("Ln.dat")), qPrintable(status.message()));
}

void TestScenarioFile::fileWithMoreThan32767RecordsIsRefused()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    {
        QFile big(QStringLiteral("In.dat"));
        QVERIFY(big.open(QIODevice::WriteOnly));
        QVERIFY(big.resize(qint64(32768) * 148));
    }
    ScenarioFile file;
    const Status status = file.OpenDataFile(QStringLiteral("In.dat"));
    QVERIFY(!status.ok());
    QVERIFY2(status.message().contains(QStringLiteral("In.dat")), qPrintable(status.message()));
    QCOMPARE(QFileInfo(QStringLiteral("In.dat")).size(), qint64(32768) * 148);
}

void TestScenarioFile::listOf32767RecordsTakesNoMore()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    {
        QFile big(QStringLiteral("In.dat"));
        QVERIFY(big.open(QIODevice::WriteOnly));
        QVERIFY(big.resize(qint64(32767) * 148));
    }
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    QCOMPARE(file.count(), 32767);
    QVERIFY(!file.write(32768, sampleRecord(1)).ok());
    QVERIFY(!file.insert(1, sampleRecord(1)).ok());
    QCOMPARE(QFileInfo(QStringLiteral("In.dat")).size(), qint64(32767) * 148);
}

QTEST_GUILESS_MAIN(TestScenarioFile)
#include "tst_scenariofile.moc"
