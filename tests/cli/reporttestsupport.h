#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QMap>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>

#include <initializer_list>
#include <utility>
#include <vector>

#include <unistd.h>

#include "scenariorecord.h"

// Running quillet-report as its users do, over list files written for the
// test, and reading what it wrote.
namespace quillet::test {

inline const QString InvestmentsFile = QStringLiteral("In.dat");
inline const QString LoansFile = QStringLiteral("Ln.dat");
inline constexpr double Blank = BlankValue;

inline ScenarioRecord scenario(const QString &desc, double initialAmount, double rate, double years,
                               double payment, qint16 perYear, double futureValue)
{
    ScenarioRecord record;
    setDescText(record, desc);
    record.InitialAmount = initialAmount;
    record.IRate = rate;
    record.Years = years;
    record.Payment = payment;
    record.PerYear = perYear;
    record.FutureValue = futureValue;
    return record;
}

inline bool writeList(const QString &path, std::initializer_list<ScenarioRecord> records)
{
    QByteArray bytes;
    for (const ScenarioRecord &record : records)
        bytes += encodeRecord(record);
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

inline bool writeRecords(const QString &path, const std::vector<ScenarioRecord> &records)
{
    QByteArray bytes;
    for (const ScenarioRecord &record : records)
        bytes += encodeRecord(record);
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

struct Run
{
    int exitCode = -1; // also when the process crashed or hung
    QByteArray out;
    QByteArray err;

    QString outText() const { return QString::fromUtf8(out); }
    QString errText() const { return QString::fromUtf8(err); }
};

inline Run
runReport(const QStringList &arguments, const QString &workingDirectory,
          const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProgram(QStringLiteral(QUILLET_REPORT_EXECUTABLE));
    process.setArguments(arguments);
    process.setWorkingDirectory(workingDirectory);
    process.setProcessEnvironment(environment);
    process.start();
    Run run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

// Permissions mean nothing to root, so a test about them runs the tool as
// the unprivileged user "nobody" when the tests run as root. The files it
// reads must then be reachable by others.
inline bool runsAsRoot()
{
    return ::geteuid() == 0;
}

inline Run runReportUnprivileged(const QStringList &arguments, const QString &workingDirectory)
{
    if (!runsAsRoot())
        return runReport(arguments, workingDirectory);
    QProcess process;
    process.setProgram(QStringLiteral("setpriv"));
    process.setArguments(
        QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                    QStringLiteral("--clear-groups"), QStringLiteral(QUILLET_REPORT_EXECUTABLE)} +
        arguments);
    process.setWorkingDirectory(workingDirectory);
    process.start();
    Run run;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return run;
    run.exitCode = process.exitCode();
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

inline QString joinLines(const QStringList &lines, const QString &end = QStringLiteral("\n"))
{
    QString text;
    for (const QString &line : lines)
        text += line + end;
    return text;
}

// Every entry under the directory with its bytes and modification time.
using Snapshot = QMap<QString, std::pair<QByteArray, QDateTime>>;

inline Snapshot snapshot(const QString &path)
{
    Snapshot entries;
    QDirIterator it(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString entry = it.next();
        QFile file(entry);
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        entries.insert(QDir(path).relativeFilePath(entry),
                       {bytes, QFileInfo(entry).lastModified()});
    }
    return entries;
}

inline QJsonObject parseObject(const QByteArray &json)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return {};
    return document.object();
}

// All the numbers of a JSON value in document order.
inline void collectNumbers(const QJsonValue &value, QList<double> &numbers)
{
    if (value.isDouble()) {
        numbers.append(value.toDouble());
    } else if (value.isArray()) {
        for (const QJsonValue element : value.toArray())
            collectNumbers(element, numbers);
    } else if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it)
            collectNumbers(it.value(), numbers);
    }
}

// The output's schema, docs/quillet-report.schema.json; needs Debian's
// python3-jsonschema.
// Validates a JSON document against the report's schema with Python's
// jsonschema; empty when it is valid, else the validator's complaint.
inline QString schemaErrors(const QByteArray &json)
{
    QProcess python;
    python.start(QStringLiteral("python3"),
                 {QStringLiteral("-c"),
                  QStringLiteral("import json, sys, jsonschema\n"
                                 "schema = json.load(open(sys.argv[1]))\n"
                                 "jsonschema.Draft202012Validator.check_schema(schema)\n"
                                 "jsonschema.Draft202012Validator(schema).validate("
                                 "json.loads(sys.stdin.buffer.read()))\n"),
                  QStringLiteral(QUILLET_SOURCE_DIR "/docs/quillet-report.schema.json")});
    python.write(json);
    python.closeWriteChannel();
    if (!python.waitForFinished(60000))
        return QStringLiteral("python3 did not finish");
    if (python.exitStatus() != QProcess::NormalExit || python.exitCode() != 0)
        return QString::fromUtf8(python.readAllStandardError()).right(2000);
    return {};
}

} // namespace quillet::test

// Fails the test, with the validator's complaint, when the JSON does not
// match the output's schema.
#define QVERIFY_VALID_REPORT_JSON(json)                                                            \
    do {                                                                                           \
        const QString schemaErrors_ = quillet::test::schemaErrors(json);                           \
        QVERIFY2(schemaErrors_.isEmpty(), qPrintable(schemaErrors_));                              \
    } while (false)
