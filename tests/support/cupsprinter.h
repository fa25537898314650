#pragma once

#include <QDir>
#include <QFileInfo>
#include <QPrinterInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTest>

#include <algorithm>

#include <unistd.h>

// A real default printer for the printing tests: the cups-pdf printer, which
// writes every job as a PDF into ~/PDF.
namespace quillet::test {

struct Command
{
    int exitCode = -1;
    QString out;
};

inline Command runCommand(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    Command command;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return command;
    command.exitCode = process.exitCode();
    command.out =
        QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
    return command;
}

inline bool schedulerRunning()
{
    return runCommand(QStringLiteral("lpstat"), {QStringLiteral("-r")})
        .out.contains(QStringLiteral("scheduler is running"));
}

inline const QString PrinterName = QStringLiteral("PDF");

// Makes the cups-pdf printer the system's default, starting the printing
// system when it is not running. Returns why it cannot, or nothing.
inline QString prepareCupsPdfPrinter()
{
    if (!QFileInfo::exists(QStringLiteral("/usr/sbin/cupsd")) ||
        !QFileInfo::exists(QStringLiteral("/usr/lib/cups/backend/cups-pdf")))
        return QStringLiteral("cups and printer-driver-cups-pdf are not installed");
    const bool root = geteuid() == 0;
    if (!schedulerRunning()) {
        if (!root)
            return QStringLiteral("the printing system is not running and only root may start it");
        runCommand(QStringLiteral("/usr/sbin/cupsd"), {});
        if (!QTest::qWaitFor(schedulerRunning, 15000))
            return QStringLiteral("cupsd did not start");
    }
    if (runCommand(QStringLiteral("lpstat"), {QStringLiteral("-p"), PrinterName}).exitCode != 0) {
        if (!root)
            return QStringLiteral("there is no cups-pdf printer and only root may add one");
        const Command added =
            runCommand(QStringLiteral("lpadmin"),
                       {QStringLiteral("-p"), PrinterName, QStringLiteral("-v"),
                        QStringLiteral("cups-pdf:/"), QStringLiteral("-E"), QStringLiteral("-m"),
                        QStringLiteral("lsb/usr/cups-pdf/CUPS-PDF_opt.ppd"), QStringLiteral("-o"),
                        QStringLiteral("pdftops-renderer-default=pdftocairo")});
        if (added.exitCode != 0)
            return QStringLiteral("lpadmin could not add the cups-pdf printer: ") + added.out;
    }
    const QString defaultLine = runCommand(QStringLiteral("lpstat"), {QStringLiteral("-d")}).out;
    if (!defaultLine.contains(QStringLiteral("system default destination: ") + PrinterName)) {
        if (defaultLine.contains(QStringLiteral("system default destination:")))
            return QStringLiteral("another printer is the default; the test prints only on "
                                  "the cups-pdf printer: ") +
                   defaultLine.trimmed();
        if (runCommand(QStringLiteral("lpadmin"), {QStringLiteral("-d"), PrinterName}).exitCode !=
            0)
            return QStringLiteral("the cups-pdf printer could not be made the default");
    }
    if (QPrinterInfo::defaultPrinter().printerName() != PrinterName)
        return QStringLiteral("Qt does not see the cups-pdf printer as the default");
    return {};
}

inline const QString RefusingPrinterName = QStringLiteral("QuilletRefusing");

// A second cups-pdf printer that refuses every job, for the failures of
// handing a printout over. Returns why it cannot be had, or nothing.
inline QString prepareRefusingPrinter()
{
    if (runCommand(QStringLiteral("lpstat"), {QStringLiteral("-p"), RefusingPrinterName})
            .exitCode != 0) {
        if (geteuid() != 0)
            return QStringLiteral("only root may add a printer");
        const Command added =
            runCommand(QStringLiteral("lpadmin"),
                       {QStringLiteral("-p"), RefusingPrinterName, QStringLiteral("-v"),
                        QStringLiteral("cups-pdf:/"), QStringLiteral("-E"), QStringLiteral("-m"),
                        QStringLiteral("lsb/usr/cups-pdf/CUPS-PDF_opt.ppd")});
        if (added.exitCode != 0)
            return QStringLiteral("lpadmin could not add the printer: ") + added.out;
    }
    if (runCommand(QStringLiteral("cupsreject"), {RefusingPrinterName}).exitCode != 0)
        return QStringLiteral("cupsreject failed");
    if (QPrinterInfo::printerInfo(RefusingPrinterName).isNull())
        return QStringLiteral("Qt does not see the refusing printer");
    return {};
}

inline QString outputDirectory()
{
    return QDir::home().filePath(QStringLiteral("PDF"));
}

inline QStringList printedFiles()
{
    return QDir(outputDirectory()).entryList({QStringLiteral("*.pdf")}, QDir::Files);
}

inline bool noJobsWaiting()
{
    return runCommand(QStringLiteral("lpstat"), {QStringLiteral("-o"), PrinterName})
        .out.trimmed()
        .isEmpty();
}

// The number of the last job the printer was given, finished or not; 0 when
// it was given none, -1 when that cannot be told. Jobs are numbered in the
// order they come, so a job given later has a higher number.
inline int lastJobId()
{
    const Command jobs =
        runCommand(QStringLiteral("lpstat"), {QStringLiteral("-W"), QStringLiteral("all"),
                                              QStringLiteral("-o"), PrinterName});
    if (jobs.exitCode != 0)
        return -1;
    int last = 0;
    static const QRegularExpression job(QStringLiteral("^%1-(\\d+)\\s").arg(PrinterName),
                                        QRegularExpression::MultilineOption);
    auto matches = job.globalMatch(jobs.out);
    while (matches.hasNext())
        last = std::max(last, matches.next().captured(1).toInt());
    return last;
}

// The PDF the printer makes of the next job: a file that was not there
// before, once the printer's queue is empty.
inline QString waitForPrintedFile(const QStringList &before)
{
    QString found;
    const bool printed = QTest::qWaitFor(
        [&] {
            if (!noJobsWaiting())
                return false;
            for (const QString &name : printedFiles()) {
                if (!before.contains(name)) {
                    found = QDir(outputDirectory()).filePath(name);
                    return true;
                }
            }
            return false;
        },
        120000);
    return printed ? found : QString();
}

// The PDF quillet-report writes for the arguments, at output; empty on failure.
inline QString reportPdf(const QStringList &arguments, const QString &output)
{
    QProcess process;
    process.start(QStringLiteral(QUILLET_REPORT_EXECUTABLE),
                  arguments + QStringList{QStringLiteral("--format"), QStringLiteral("pdf"),
                                          QStringLiteral("--output"), output,
                                          QStringLiteral("--locale"), QStringLiteral("en_US")});
    if (!process.waitForFinished(120000) || process.exitCode() != 0)
        return {};
    return output;
}

} // namespace quillet::test
