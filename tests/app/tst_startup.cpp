#include "messageboxwatcher.h"
#include "startup.h"
#include "testfiles.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

class TestStartup : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void cleanup();
    void secondQuilletInTheSameFolderExplainsAndTouchesNothing();
    void listFileThatCannotBeOpenedIsExplainedByName();
    void displayIsFoundOnlyWhenOneIsSet();
};

void TestStartup::cleanup()
{
    QApplication::closeAllWindows();
    QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX();
}

void TestStartup::secondQuilletInTheSameFolderExplainsAndTouchesNothing()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(writeBytes(QStringLiteral("In.dat"), listBytes({1, 2})));
    QLockFile running(QDir::current().filePath(lockFileName()));
    QVERIFY(running.tryLock(0));

    MessageBoxWatcher boxes;
    boxes.expect();
    QCOMPARE(runQuillet(), 1);
    QCOMPARE(boxes.texts(),
             QStringList{QStringLiteral("Quillet is already open in the folder %1. Use that "
                                        "window: a second one would overwrite the changes made "
                                        "in the other.")
                             .arg(QDir::currentPath())});
    QCOMPARE(boxes.titles(), QStringList{QStringLiteral("Quillet")});
    QCOMPARE(fileBytes(QStringLiteral("In.dat")), listBytes({1, 2}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("Ln.dat")));
}

void TestStartup::listFileThatCannotBeOpenedIsExplainedByName()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QDir().mkdir(QStringLiteral("In.dat")));
    MessageBoxWatcher boxes;
    boxes.expect();
    QCOMPARE(runQuillet(), 1);
    QCOMPARE(boxes.texts(), QStringList{QStringLiteral("Could not open In.dat: Is a directory")});
    QCOMPARE(boxes.titles(), QStringList{QStringLiteral("Quillet")});
    QVERIFY(!QFileInfo::exists(QStringLiteral("Ln.dat")));
    // The lock is given back, so Quillet starts once the folder is mended.
    QLockFile next(QDir::current().filePath(lockFileName()));
    QVERIFY(next.tryLock(0));
}

void TestStartup::displayIsFoundOnlyWhenOneIsSet()
{
    const QList<QByteArray> names = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};
    QList<QByteArray> saved;
    for (const QByteArray &name : names) {
        saved << qgetenv(name.constData());
        qunsetenv(name.constData());
    }
    const bool withNone = haveDisplay();
    QList<bool> withOne;
    for (const QByteArray &name : names) {
        qputenv(name.constData(), "x");
        withOne << haveDisplay();
        qunsetenv(name.constData());
    }
    for (qsizetype k = 0; k < names.size(); ++k) {
        if (!saved[k].isNull())
            qputenv(names[k].constData(), saved[k]);
    }
    QVERIFY(!withNone);
    QCOMPARE(withOne, (QList<bool>{true, true, true}));
}

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
