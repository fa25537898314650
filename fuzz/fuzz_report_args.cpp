// quillet-report's command line: any arguments, one a line, run as the tool
// runs them in a folder holding a small investments and loans list. Every
// command line ends in a report or an exit status with a message; the exit
// status is one of the three the tool documents.
//
// Arguments may name files to write (--output) and folders to read (--dir):
// a '/' in an argument becomes '_', so whatever the input says, the tool
// only ever writes into its own scratch folder, which is emptied of
// everything but the two lists after each run.

#include "fuzzcheck.h"
#include "reportcommand.h"
#include "scenariorecord.h"

#include <QApplication>
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <utility>

using namespace quillet;

namespace {

QTemporaryDir *scratch = nullptr;

ScenarioRecord scenario(const char *desc, double amount, double rate, double years, double payment,
                        qint16 perYear, double fifth)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QString::fromLatin1(desc));
    record.InitialAmount = amount;
    record.IRate = rate;
    record.Years = years;
    record.Payment = payment;
    record.PerYear = perYear;
    record.FutureValue = fifth;
    return record;
}

// Two short lists, a blank quantity in each record (solved), a blank payments
// a year in one. A dozen years of monthly payments at most, so that every
// report is quick.
void writeLists(const QString &folder)
{
    const QByteArray investments =
        encodeRecord(scenario("Retirement", 1000, 0.12, 10, 100, 12, BlankValue)) +
        encodeRecord(scenario("College", 0, 0.04, 3, BlankValue, 4, 100000)) +
        encodeRecord(scenario("", 500, BlankValue, 2, 0, BlankPerYear, 600));
    const QByteArray loans =
        encodeRecord(scenario("House", 100000, 0.05, 10, BlankValue, 12, BlankValue)) +
        encodeRecord(scenario("Car", 9600, 0.02, 4, 500, 12, BlankValue));
    for (const auto &[name, bytes] :
         {std::pair{"In.dat", investments}, std::pair{"Ln.dat", loans}}) {
        QFile file(QDir(folder).filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            fuzz::fatal(QStringLiteral("cannot write the scratch lists in %1").arg(folder));
    }
}

void removeWrittenFiles()
{
    QDir folder(scratch->path());
    const QStringList names =
        folder.entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (name == u"In.dat" || name == u"Ln.dat")
            continue;
        QFileInfo info(folder.filePath(name));
        if (info.isDir() && !info.isSymLink())
            QDir(info.filePath()).removeRecursively();
        else
            folder.remove(name);
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // The chart and PDF commands draw without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication app(*argc, *argv);
    scratch = new QTemporaryDir;
    if (!scratch->isValid())
        fuzz::fatal(QStringLiteral("no scratch folder"));
    writeLists(scratch->path());
    QDir::setCurrent(scratch->path());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const fuzz::CurrentInput current(data, size);
    const QString input =
        QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    QStringList arguments{QStringLiteral("quillet-report")};
    for (QString argument : input.split(u'\n')) {
        argument.replace(u'/', u'_');
        arguments.append(argument);
    }
    // The last line's newline is no empty argument of its own.
    if (input.endsWith(u'\n'))
        arguments.removeLast();

    QByteArray outText;
    QByteArray errText;
    QTextStream out(&outText);
    QTextStream err(&errText);
    const int status = report::runReport(arguments, out, err);
    fuzz::check(status == report::ExitSuccess || status == report::ExitFailure ||
                    status == report::ExitUsage,
                QStringLiteral("exit status %1").arg(status));
    out.flush();
    err.flush();
    if (status != report::ExitSuccess)
        fuzz::check(!errText.isEmpty(), QStringLiteral("a failure says why on standard error"));
    removeWrittenFiles();
    return 0;
}
