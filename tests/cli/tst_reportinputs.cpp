#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

// What quillet-report says about inputs it cannot use: its version, a list
// file that is a directory, one it may not read, one longer than a list can
// be. It runs as its users run it, a separate process in a scratch directory.

namespace {

struct Run
{
    int exitCode = -1; // also when the process crashed or hung
    QString out;
    QString err;
};

Run runProgram(const QString &program, const QStringList &arguments, const QString &directory)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(directory);
    process.start();
    Run run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

Run runReport(const QStringList &arguments, const QString &directory)
{
    return runProgram(QStringLiteral(QUILLET_REPORT_EXECUTABLE), arguments, directory);
}

// The superuser reads any file, so a file closed to reading is tried as the
// user nobody when the tests run as root.
Run runReportAsOrdinaryUser(const QStringList &arguments, const QString &directory)
{
    if (::geteuid() != 0)
        return runReport(arguments, directory);
    return runProgram(QStringLiteral("setpriv"),
                      QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                                  QStringLiteral("--clear-groups"),
                                  QStringLiteral(QUILLET_REPORT_EXECUTABLE)} +
                          arguments,
                      directory);
}

bool makeFileOfSize(const QString &path, qint64 size)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.resize(size);
}

QStringList entries(const QString &directory)
{
    return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                     QDir::Name);
}

} // namespace

class TestReportInputs : public QObject
{
    Q_OBJECT

private slots:
    void versionIsTheProgramNameAndVersionOnly();
    void listFileThatIsADirectoryIsRefusedNamingIt();
    void dirOptionNamingAFileIsRefused();
    void listFileThatCannotBeReadIsRefusedNamingIt();
    void listLongerThanAListCanBeIsRefused_data();
    void listLongerThanAListCanBeIsRefused();
};

void TestReportInputs::versionIsTheProgramNameAndVersionOnly()
{
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    for (const QString &option : {QStringLiteral("--version"), QStringLiteral("-v")}) {
        const Run run = runReport({option}, dir.path());
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, QStringLiteral("quillet-report 0.1\n"));
        QCOMPARE(run.err, QString());
    }
    QCOMPARE(entries(dir.path()), QStringList());
}

void TestReportInputs::listFileThatIsADirectoryIsRefusedNamingIt()
{
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(QDir(dir.path()).mkdir(QStringLiteral("Ln.dat")));
    const Run run = runReport({QStringLiteral("list"), QStringLiteral("loans")}, dir.path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("quillet-report: %1/Ln.dat is not a file\n").arg(dir.path()));
    QCOMPARE(entries(dir.path()), QStringList{QStringLiteral("Ln.dat")});
}

void TestReportInputs::dirOptionNamingAFileIsRefused()
{
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    QVERIFY(makeFileOfSize(dir.filePath(QStringLiteral("In.dat")), 148));
    const QString file = dir.filePath(QStringLiteral("In.dat"));
    const Run run = runReport(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), file},
        dir.path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err, QStringLiteral("quillet-report: %1 is not a directory\n").arg(file));
}

void TestReportInputs::listFileThatCannotBeReadIsRefusedNamingIt()
{
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    // Open to the user nobody, but for the list file itself.
    QVERIFY(QFile::setPermissions(dir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                  QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                                  QFileDevice::ExeOther));
    const QString path = dir.filePath(QStringLiteral("In.dat"));
    QVERIFY(makeFileOfSize(path, 2 * 148));
    QVERIFY(QFile::setPermissions(path, QFileDevice::WriteOwner));

    const Run run = runReportAsOrdinaryUser({QStringLiteral("list"), QStringLiteral("investments")},
                                            dir.path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QString());
    QCOMPARE(run.err,
             QStringLiteral("quillet-report: permission denied: cannot read %1\n").arg(path));
    QCOMPARE(QFileInfo(path).size(), 2 * 148);
}

void TestReportInputs::listLongerThanAListCanBeIsRefused_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<QString>("error");
    // A trailing piece of 74 bytes or more counts as one more record; exactly
    // 74 rounds to the even count.
    QTest::newRow("32,767 records") << qint64(32767) * 148 << QString();
    QTest::newRow("32,767 records and 73 bytes") << qint64(32767) * 148 + 73 << QString();
    QTest::newRow("32,767 records and 74 bytes, counted as 32,768")
        << qint64(32767) * 148 + 74
        << QStringLiteral("quillet-report: In.dat holds 32768 records, more than the 32767 a list "
                          "can hold\n");
    QTest::newRow("32,768 records")
        << qint64(32768) * 148
        << QStringLiteral("quillet-report: In.dat holds 32768 records, more than the 32767 a list "
                          "can hold\n");
    QTest::newRow("40,000 records")
        << qint64(40000) * 148
        << QStringLiteral("quillet-report: In.dat holds 40000 records, more than the 32767 a list "
                          "can hold\n");
}

void TestReportInputs::listLongerThanAListCanBeIsRefused()
{
    QFETCH(qint64, size);
    QFETCH(QString, error);
    QTemporaryDir dir;
    QVERIFY2(dir.isValid(), "no temporary directory");
    const QString path = dir.filePath(QStringLiteral("In.dat"));
    QVERIFY(makeFileOfSize(path, size));
    // The schedule of the last record: a short report that still reads the list.
    const Run run = runReport(
        {QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("32767")},
        dir.path());
    QCOMPARE(run.err, error);
    QCOMPARE(run.exitCode, error.isEmpty() ? 0 : 1);
    if (!error.isEmpty())
        QCOMPARE(run.out, QString());
    QCOMPARE(QFileInfo(path).size(), size);
}

QTEST_GUILESS_MAIN(TestReportInputs)
#include "tst_reportinputs.moc"
