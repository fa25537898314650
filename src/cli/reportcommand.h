#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

namespace quillet::report {

// What the process tells its caller.
enum ExitStatus : int {
    ExitSuccess = 0,
    ExitFailure = 1, // a missing or unreadable file, a record out of range
    ExitUsage = 2    // a command line that makes no sense
};

inline const QString ProgramName = QStringLiteral("quillet-report");

QString usageText();
QString helpText();

// Whether the command line asks for a drawing (the chart command), which
// needs a QApplication rather than a QCoreApplication.
bool needsGraphics(const QStringList &arguments);

// Runs one command line (arguments[0] is the program) and returns the exit
// status; the report goes to out, messages to err. Sets the default locale.
int runReport(const QStringList &arguments, QTextStream &out, QTextStream &err);

} // namespace quillet::report
