#include "messageboxwatcher.h"
#include "startup.h"
#include "testfiles.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

using namespace quillet;
using namespace quillet::test;

namespace {

// Closes the main window once it is shown and no message box is open, as
// its user would.
class CloseWhenShown final : public QObject
{
public:
    CloseWhenShown() { qApp->installEventFilter(this); }
    ~CloseWhenShown() override { qApp->removeEventFilter(this); }
    Q_DISABLE_COPY_MOVE(CloseWhenShown)

    bool closed() const { return m_closed; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && watched->objectName() == QStringLiteral("frmMain"))
            closeLater(static_cast<QWidget *>(watched));
        return QObject::eventFilter(watched, event);
    }

private:
    void closeLater(QWidget *window)
    {
        QMetaObject::invokeMethod(
            this,
            [this, window] {
                if (QApplication::activeModalWidget()) {
                    closeLater(window);
                    return;
                }
                m_closed = window->close();
            },
            Qt::QueuedConnection);
    }

    bool m_closed = false;
};

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private:
    // Answers the boxes shown while no test watches; they fail the test.
    MessageBoxWatcher m_suiteBoxes;

private slots:
    void cleanup();
    void secondQuilletInTheSameFolderExplainsAndTouchesNothing();
    void listFileThatCannotBeUsedIsExplainedAndTheOtherListOpens();
    void displayIsFoundOnlyWhenOneIsSet();
    void withoutADisplayQuilletSaysSoAndTouchesNothing();
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

void TestStartup::listFileThatCannotBeUsedIsExplainedAndTheOtherListOpens()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QDir().mkdir(QStringLiteral("In.dat")));
    MessageBoxWatcher boxes;
    boxes.expect();
    CloseWhenShown closer;
    QCOMPARE(runQuillet(), 0);
    QCOMPARE(boxes.texts(),
             QStringList{QStringLiteral("In.dat cannot be used: Is a directory. Quillet shows it "
                                        "as an empty list and leaves the file as it is.")});
    QCOMPARE(boxes.titles(), QStringList{QStringLiteral("Quillet")});
    QVERIFY(closer.closed());
    // The other list is usable; the directory is left as it was.
    QVERIFY(QFileInfo(QStringLiteral("In.dat")).isDir());
    QCOMPARE(QFileInfo(QStringLiteral("Ln.dat")).size(), 0);
    // The lock is given back, so Quillet starts again.
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

void TestStartup::withoutADisplayQuilletSaysSoAndTouchesNothing()
{
    ScratchDirectory dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    QProcess quillet;
    quillet.setProgram(QStringLiteral(QUILLET_EXECUTABLE));
    quillet.setWorkingDirectory(QDir::currentPath());
    quillet.setProcessEnvironment(environment);
    quillet.start();
    QVERIFY(quillet.waitForFinished(60000));
    QCOMPARE(quillet.exitStatus(), QProcess::NormalExit);
    QCOMPARE(quillet.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(quillet.readAllStandardError()),
             QStringLiteral("Quillet needs a display: run it on a desktop, or start one with "
                            "'Xvfb :1 & export DISPLAY=:1'.\n"));
    QCOMPARE(quillet.readAllStandardOutput(), QByteArray());
    // Not even the list files or the lock are created.
    QCOMPARE(QDir::current().entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

QTEST_MAIN(TestStartup)
#include "tst_startup.moc"
