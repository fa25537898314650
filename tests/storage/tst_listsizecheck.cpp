#include <QFile>
#include <QFileInfo>
#include <QTest>

#include "scenariofile.h"
#include "testfiles.h"

using namespace quillet;
using namespace quillet::test;

// The window opens its lists through ScenarioFile, which counts records from
// the file's size before it reads anything: a list file far too large for a
// list is refused at once, whatever its size, and left as it is.
class TestListSizeCheck : public QObject
{
    Q_OBJECT

private slots:
    void hundredGigabyteListIsRefusedWithoutReadingIt();
    void largestListIsOpenedAndCounted();
};

void TestListSizeCheck::hundredGigabyteListIsRefusedWithoutReadingIt()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const qint64 size = qint64(100) * 1024 * 1024 * 1024;
    {
        QFile huge(QStringLiteral("In.dat"));
        QVERIFY(huge.open(QIODevice::WriteOnly));
        QVERIFY(huge.resize(size)); // sparse: no room taken on disk
    }
    ScenarioFile file;
    const Status status = file.OpenDataFile(QStringLiteral("In.dat"));
    QVERIFY(!status.ok());
    // The message names the file and the count it would have.
    QVERIFY2(status.message().contains(QStringLiteral("In.dat")), qPrintable(status.message()));
    QVERIFY2(status.message().contains(QStringLiteral("725501232 records")),
             qPrintable(status.message()));
    QVERIFY(!file.isOpen());
    QCOMPARE(file.count(), 0);
    QCOMPARE(QFileInfo(QStringLiteral("In.dat")).size(), size);
}

void TestListSizeCheck::largestListIsOpenedAndCounted()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    {
        QFile full(QStringLiteral("Ln.dat"));
        QVERIFY(full.open(QIODevice::WriteOnly));
        // 32,767 whole records and a piece of 73 bytes, which does not count.
        QVERIFY(full.resize(qint64(32767) * 148 + 73));
    }
    ScenarioFile file;
    QVERIFY(file.OpenDataFile(QStringLiteral("Ln.dat")).ok());
    QCOMPARE(file.count(), 32767);
}

QTEST_GUILESS_MAIN(TestListSizeCheck)
#include "tst_listsizecheck.moc"
