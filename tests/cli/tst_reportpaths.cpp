#include "reporttestsupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>

#include <sys/stat.h>

using namespace quillet;
using namespace quillet::test;

// What quillet-report says about the places it is sent to read from and write
// to: directories it cannot reach, paths too long for the system, lists with
// nothing in them, outputs that cannot be written.
class TestReportPaths : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void directoryBehindOneThatCannotBeEnteredSaysPermissionDenied();
    void directoryThroughAFileSaysAPartIsNotADirectory();
    void directoryWithANameTooLongIsNamedWithTheReason();
    void listFileWhosePathIsTooLongIsNamedWithTheReason();
    void recordOfAnEmptyListSaysTheListHoldsNoRecords_data();
    void recordOfAnEmptyListSaysTheListHoldsNoRecords();
    void doubleDashEndsTheOptions();
    void optionsBeforeTheCommandStillDrawAChart();
    void chartIsDrawnWithoutAnyDisplay();
    void chartIntoAMissingDirectoryFailsNamingIt();
    void schedulePdfIntoAMissingDirectoryFailsNamingIt();
    void schedulePdfOfMoreThan32767PeriodsWritesNoFile();

private:
    QString path() const { return m_dir->path(); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestReportPaths::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY2(m_dir->isValid(), "no temporary directory");
    QVERIFY(writeList(QDir(path()).filePath(InvestmentsFile),
                      {scenario(QStringLiteral("Savings"), 1000, 0.06, 2, 100, 12, Blank)}));
    QVERIFY(writeList(QDir(path()).filePath(LoansFile), {}));
}

void TestReportPaths::directoryBehindOneThatCannotBeEnteredSaysPermissionDenied()
{
    // The test directory must be reachable by the unprivileged user.
    QVERIFY(QFile::setPermissions(path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                              QFileDevice::ExeOwner | QFileDevice::ReadOther |
                                              QFileDevice::ExeOther));
    QVERIFY(QDir(path()).mkpath(QStringLiteral("locked/inner")));
    QVERIFY(QFile::setPermissions(QDir(path()).filePath(QStringLiteral("locked")),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                      QFileDevice::ExeOwner));
    const QString inner = QDir(path()).filePath(QStringLiteral("locked/inner"));

    const Run run = runReportUnprivileged(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), inner},
        path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: directory %1: permission denied (a "
                                           "directory on the way cannot be entered)\n")
                                .arg(inner));
    QVERIFY(QDir(inner).isEmpty());
}

void TestReportPaths::directoryThroughAFileSaysAPartIsNotADirectory()
{
    const QString through = QDir(path()).filePath(QStringLiteral("In.dat/lists"));
    const Run run = runReport(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), through},
        path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: directory %1 not found: a part of the "
                                           "path is not a directory\n")
                                .arg(through));
}

void TestReportPaths::directoryWithANameTooLongIsNamedWithTheReason()
{
    // No file system takes a name of 300 bytes.
    const QString tooLong = QDir(path()).filePath(QString(300, u'a'));
    const Run run = runReport(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), tooLong},
        path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: directory %1: File name too long\n").arg(tooLong));
}

void TestReportPaths::listFileWhosePathIsTooLongIsNamedWithTheReason()
{
    // A directory whose path takes 4,090 of the 4,095 bytes a path may have:
    // the directory can be reached, the list file in it cannot.
    QString deep = path();
    while (deep.size() < 4090) {
        const qsizetype room = 4090 - deep.size() - 1;
        deep += u'/' + QString(std::min<qsizetype>(room, 200), u'd');
        QVERIFY2(::mkdir(QFile::encodeName(deep).constData(), 0700) == 0, qPrintable(deep));
    }
    QCOMPARE(deep.size(), 4090);
    const QString file = deep + QStringLiteral("/In.dat");

    const Run run = runReport(
        {QStringLiteral("list"), QStringLiteral("investments"), QStringLiteral("--dir"), deep},
        path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: could not open %1: File name too long\n").arg(file));
}

void TestReportPaths::recordOfAnEmptyListSaysTheListHoldsNoRecords_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("schedule") << QStringList{QStringLiteral("schedule"), QStringLiteral("loans"),
                                             QStringLiteral("1")};
    QTest::newRow("chart") << QStringList{QStringLiteral("chart"), QStringLiteral("loans"),
                                          QStringLiteral("3"), QStringLiteral("--output"),
                                          QStringLiteral("chart.png")};
    QTest::newRow("schedule printout") << QStringList{
        QStringLiteral("schedule"),    QStringLiteral("loans"), QStringLiteral("1"),
        QStringLiteral("--format"),    QStringLiteral("pdf"),   QStringLiteral("--output"),
        QStringLiteral("schedule.pdf")};
}

void TestReportPaths::recordOfAnEmptyListSaysTheListHoldsNoRecords()
{
    QFETCH(QStringList, arguments);
    const Run run = runReport(arguments, path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: Ln.dat holds no records; there is no record %1\n")
                 .arg(arguments.at(2)));
    QCOMPARE(QDir(path()).entryList(QDir::Files, QDir::Name),
             (QStringList{InvestmentsFile, LoansFile}));
}

void TestReportPaths::doubleDashEndsTheOptions()
{
    const QStringList plain = {QStringLiteral("list"), QStringLiteral("investments"),
                               QStringLiteral("--locale"), QStringLiteral("en_US")};
    const Run expected = runReport(plain, path());
    QCOMPARE(expected.exitCode, 0);

    const Run run =
        runReport({QStringLiteral("list"), QStringLiteral("--locale"), QStringLiteral("en_US"),
                   QStringLiteral("--"), QStringLiteral("investments")},
                  path());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.outText(), expected.outText());
    QVERIFY(run.outText().contains(QStringLiteral("Savings")));

    // After it, a word that looks like an option is a word.
    const Run option = runReport({QStringLiteral("list"), QStringLiteral("--"),
                                  QStringLiteral("--locale"), QStringLiteral("investments")},
                                 path());
    QCOMPARE(option.exitCode, 2);
    QCOMPARE(option.out, QByteArray());
    QVERIFY2(option.errText().startsWith(
                 QStringLiteral("quillet-report: unknown list '--locale': use investments or "
                                "loans\n")),
             qPrintable(option.errText()));
}

void TestReportPaths::optionsBeforeTheCommandStillDrawAChart()
{
    const QString chart = QDir(path()).filePath(QStringLiteral("savings.svg"));
    const Run run = runReport({QStringLiteral("--dir"), path(), QStringLiteral("chart"),
                               QStringLiteral("investments"), QStringLiteral("1"),
                               QStringLiteral("--output"), chart},
                              QDir::rootPath());
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QFile svg(chart);
    QVERIFY(svg.open(QIODevice::ReadOnly));
    QVERIFY(svg.readAll().contains("Savings"));
    svg.close();
    QVERIFY(QFile::remove(chart));

    // The option and its value in one word.
    const Run joined = runReport({QStringLiteral("--dir=") + path(), QStringLiteral("chart"),
                                  QStringLiteral("investments"), QStringLiteral("1"),
                                  QStringLiteral("--output"), chart},
                                 QDir::rootPath());
    QCOMPARE(joined.errText(), QString());
    QCOMPARE(joined.exitCode, 0);
    QVERIFY(svg.open(QIODevice::ReadOnly));
    QVERIFY(svg.readAll().contains("Savings"));
}

void TestReportPaths::chartIsDrawnWithoutAnyDisplay()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("DISPLAY"),
                                QStringLiteral("WAYLAND_DISPLAY")})
        environment.remove(name);
    const QString chart = QDir(path()).filePath(QStringLiteral("savings.png"));
    const Run run = runReport({QStringLiteral("chart"), QStringLiteral("investments"),
                               QStringLiteral("1"), QStringLiteral("--size"),
                               QStringLiteral("320x200"), QStringLiteral("--output"), chart},
                              path(), environment);
    QCOMPARE(run.errText(), QString());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QImage(chart).size(), QSize(320, 200));
}

void TestReportPaths::chartIntoAMissingDirectoryFailsNamingIt()
{
    const Run run =
        runReport({QStringLiteral("chart"), QStringLiteral("investments"), QStringLiteral("1"),
                   QStringLiteral("--output"), QStringLiteral("nowhere/chart.png")},
                  path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: could not write nowhere/chart.png: No "
                                           "such file or directory\n"));
    QVERIFY(!QFileInfo::exists(QDir(path()).filePath(QStringLiteral("nowhere"))));
}

void TestReportPaths::schedulePdfIntoAMissingDirectoryFailsNamingIt()
{
    const Run run =
        runReport({QStringLiteral("schedule"), QStringLiteral("investments"), QStringLiteral("1"),
                   QStringLiteral("--format"), QStringLiteral("pdf"), QStringLiteral("--output"),
                   QStringLiteral("nowhere/schedule.pdf")},
                  path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(), QStringLiteral("quillet-report: nowhere/schedule.pdf cannot be "
                                           "written: No such file or directory\n"));
    QVERIFY(!QFileInfo::exists(QDir(path()).filePath(QStringLiteral("nowhere"))));
}

void TestReportPaths::schedulePdfOfMoreThan32767PeriodsWritesNoFile()
{
    // 2,731 years of monthly payments: 32,772 periods.
    QVERIFY(writeList(QDir(path()).filePath(LoansFile),
                      {scenario(QStringLiteral("Too long"), 1000, 0.05, 2731, 5, 12, Blank)}));
    const Run run =
        runReport({QStringLiteral("schedule"), QStringLiteral("loans"), QStringLiteral("1"),
                   QStringLiteral("--format"), QStringLiteral("pdf"), QStringLiteral("--output"),
                   QStringLiteral("long.pdf")},
                  path());
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.out, QByteArray());
    QCOMPARE(run.errText(),
             QStringLiteral("quillet-report: record 1 of Ln.dat has more than 32767 periods\n"));
    QVERIFY(!QFileInfo::exists(QDir(path()).filePath(QStringLiteral("long.pdf"))));
}

QTEST_GUILESS_MAIN(TestReportPaths)
#include "tst_reportpaths.moc"
