#include "scenariofile.h"
#include "session.h"
#include "testfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

using RewriteStep = ScenarioFile::RewriteStep;

Q_DECLARE_METATYPE(RewriteStep)

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
    void deleteInterruptedAtAnyStepLeavesACompleteListFile_data();
    void deleteInterruptedAtAnyStepLeavesACompleteListFile();
    void scratchFileLeftByACrashIsNeverTakenForData();
    void insertingPutsARecordBackInItsPlace();
    void fileThatCannotBeOpenedIsReportedByName();
    void failedWriteIsReportedByName();
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

void TestScenarioFile::deleteInterruptedAtAnyStepLeavesACompleteListFile_data()
{
    QTest::addColumn<RewriteStep>("step");
    QTest::addColumn<bool>("replaced");
    QTest::newRow("opening the scratch file") << RewriteStep::OpenScratch << false;
    QTest::newRow("writing the scratch file") << RewriteStep::WriteScratch << false;
    QTest::newRow("syncing the scratch file") << RewriteStep::SyncScratch << false;
    QTest::newRow("closing the list file") << RewriteStep::CloseList << false;
    QTest::newRow("renaming over the list file") << RewriteStep::Rename << false;
    QTest::newRow("reopening the new list file") << RewriteStep::Reopen << true;
}

void TestScenarioFile::deleteInterruptedAtAnyStepLeavesACompleteListFile()
{
    QFETCH(RewriteStep, step);
    QFETCH(bool, replaced);
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2, 3})));
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    file.setFailureInjector([step](RewriteStep current) { return current == step; });

    const Status status = file.remove(2);
    QVERIFY(!status.ok());
    QVERIFY2(status.message().contains(QStringLiteral("In.dat")), qPrintable(status.message()));
    QCOMPARE(fileBytes(QStringLiteral("In.dat")),
             replaced ? listBytes({1, 3}) : listBytes({1, 2, 3}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("tmpil.dat")));
    QCOMPARE(file.count(), replaced ? 2 : 3);

    // Once the trouble is gone the list works on.
    file.setFailureInjector({});
    if (replaced) {
        QVERIFY(!file.isOpen());
        QVERIFY(file.OpenDataFile(QStringLiteral("In.dat")).ok());
    }
    QVERIFY(file.write(file.count() + 1, sampleRecord(9)).ok());
    QCOMPARE(fileBytes(QStringLiteral("In.dat")),
             replaced ? listBytes({1, 3, 9}) : listBytes({1, 2, 3, 9}));
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

void TestScenarioFile::failedWriteIsReportedByName()
{
    if (!QFileInfo::exists(QStringLiteral("/dev/full")))
        QSKIP("this system has no /dev/full to fill up");
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("/dev/full")).ok());
    const Status status = file.write(1, sampleRecord(1));
    QVERIFY(!status.ok());
    QVERIFY2(status.message().contains(QStringLiteral("full")), qPrintable(status.message()));
    QCOMPARE(file.count(), 0);
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
