#include "reportcommand.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QLocale>

#include <optional>

#include "readonlylistfile.h"
#include "reports.h"
#include "scenariorecord.h"
#include "session.h"

namespace quillet::report {

namespace {

enum class Command { List, Schedule };

struct Request
{
    Command command = Command::List;
    ListKind list = ListKind::Investments;
    int recordNumber = 0;
    QString directory;
    Format format = Format::Text;
    std::optional<QLocale> locale;
};

// Either a request or the reason the command line makes none.
struct ParseOutcome
{
    enum class Action { Run, Help, Version, Error };
    Action action = Action::Run;
    Request request;
    QString error;
};

ParseOutcome usageError(const QString &message)
{
    ParseOutcome outcome;
    outcome.action = ParseOutcome::Action::Error;
    outcome.error = message;
    return outcome;
}

ParseOutcome parseArguments(const QStringList &arguments)
{
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsCompactedShortOptions);
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();
    const QCommandLineOption dirOption(QStringLiteral("dir"), QString(), QStringLiteral("DIR"));
    const QCommandLineOption formatOption(QStringLiteral("format"), QString(),
                                          QStringLiteral("FORMAT"));
    const QCommandLineOption localeOption(QStringLiteral("locale"), QString(),
                                          QStringLiteral("NAME"));
    parser.addOptions({dirOption, formatOption, localeOption});

    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (parser.isSet(helpOption)) {
        ParseOutcome outcome;
        outcome.action = ParseOutcome::Action::Help;
        return outcome;
    }
    if (parser.isSet(versionOption)) {
        ParseOutcome outcome;
        outcome.action = ParseOutcome::Action::Version;
        return outcome;
    }
    for (const QCommandLineOption &option : {dirOption, formatOption, localeOption}) {
        if (parser.values(option).size() > 1)
            return usageError(
                QStringLiteral("--%1 given more than once").arg(option.names().first()));
    }

    ParseOutcome outcome;
    Request &request = outcome.request;
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty())
        return usageError(QStringLiteral("no command given"));
    const QString &command = positional.at(0);
    if (command == u"list")
        request.command = Command::List;
    else if (command == u"schedule")
        request.command = Command::Schedule;
    else
        return usageError(QStringLiteral("unknown command '%1'").arg(command));

    if (positional.size() < 2)
        return usageError(QStringLiteral("%1: which list, investments or loans?").arg(command));
    const QString &list = positional.at(1);
    if (list == u"investments")
        request.list = ListKind::Investments;
    else if (list == u"loans")
        request.list = ListKind::Loans;
    else
        return usageError(QStringLiteral("unknown list '%1': use investments or loans").arg(list));

    qsizetype used = 2;
    if (request.command == Command::Schedule) {
        if (positional.size() < 3)
            return usageError(QStringLiteral("schedule: which record number?"));
        bool ok = false;
        request.recordNumber = positional.at(2).toInt(&ok, 10);
        if (!ok) {
            return usageError(
                QStringLiteral("record number '%1' is not a whole number").arg(positional.at(2)));
        }
        used = 3;
    }
    if (positional.size() > used)
        return usageError(QStringLiteral("unexpected argument '%1'").arg(positional.at(used)));

    request.directory = parser.isSet(dirOption) ? parser.value(dirOption) : QDir::currentPath();

    if (parser.isSet(formatOption)) {
        const QString format = parser.value(formatOption);
        if (format == u"text")
            request.format = Format::Text;
        else if (format == u"csv")
            request.format = Format::Csv;
        else if (format == u"json")
            request.format = Format::Json;
        else
            return usageError(
                QStringLiteral("unknown format '%1': use text, csv or json").arg(format));
    }

    if (parser.isSet(localeOption)) {
        const QString name = parser.value(localeOption);
        const QLocale locale(name);
        // QLocale falls back to C for a name it does not know; say so instead.
        if (locale.language() == QLocale::C && name != u"C" && name != u"POSIX")
            return usageError(QStringLiteral("unknown locale '%1'").arg(name));
        request.locale = locale;
    }
    return outcome;
}

int fail(QTextStream &err, const QString &message)
{
    err << ProgramName << QStringLiteral(": ") << message << u'\n';
    err.flush();
    return ExitFailure;
}

} // namespace

QString usageText()
{
    return QStringLiteral(
        "Usage: quillet-report list investments|loans [--dir DIR] [--format text|csv|json] "
        "[--locale NAME]\n"
        "       quillet-report schedule investments|loans N [--dir DIR] "
        "[--format text|csv|json] [--locale NAME]\n"
        "       quillet-report --help\n");
}

QString helpText()
{
    return usageText() + QStringLiteral(R"(
Shows Quillet's scenario lists and amortization schedules. It only ever reads
the data files: it never creates or changes one.

Commands:
  list investments|loans
      One row per scenario, in file order: the record number, the description,
      the initial amount, rate, years, payment, payments per year and future
      value (for loans: the total interest), each as the main window shows it,
      the blank one solved, and the names of the solved fields (Computed).
      A blank payments per year shows as an empty text.
  schedule investments|loans N
      The amortization schedule of record N (counting from 1) as the schedule
      window computes it, all periods: the header fields, the number of periods
      (the shown years times the payments per year, a half rounding to even)
      and one row per period. There are no rows when the years cannot be given
      or the number of periods is not positive. Investments: period, earnings,
      cumulative earnings, balance. Loans: period, principal, interest,
      cumulative principal, cumulative interest, remaining balance.

Options:
  --dir DIR        Read In.dat (investments) and Ln.dat (loans) in DIR instead
                   of the current directory.
  --format FORMAT  text: aligned columns for reading (the default).
                   csv: RFC 4180, a heading row first, CRLF line ends; for a
                   schedule, the table of periods only.
                   json: everything the text holds, plus each value as a
                   number with 17 significant digits (null when there is none)
                   and, for each scenario field, whether it could be given
                   (ok) and whether it was solved (computed).
  --locale NAME    Write numbers and amounts as the locale NAME does (en_US,
                   de_DE, ...) instead of the user's own locale.
  -h, --help       Show this help.
  -v, --version    Show the version.

Exit status:
  0  the report was written
  1  a data file is missing or cannot be read, there is no record N, or the
     schedule has more than 32767 periods (one line on standard error)
  2  the command line is wrong (the usage on standard error)
)");
}

int runReport(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const ParseOutcome parsed = parseArguments(arguments);
    switch (parsed.action) {
    case ParseOutcome::Action::Error:
        err << ProgramName << QStringLiteral(": ") << parsed.error << u'\n' << usageText()
            << QStringLiteral("Run 'quillet-report --help' for more.\n");
        err.flush();
        return ExitUsage;
    case ParseOutcome::Action::Help:
        out << helpText();
        out.flush();
        return ExitSuccess;
    case ParseOutcome::Action::Version:
        out << ProgramName << u' ' << QCoreApplication::applicationVersion() << u'\n';
        out.flush();
        return ExitSuccess;
    case ParseOutcome::Action::Run:
        break;
    }

    const Request &request = parsed.request;
    QLocale::setDefault(request.locale.value_or(QLocale::system()));

    const QString fileName = request.list == ListKind::Investments ? Session::InvestmentsFileName
                                                                   : Session::LoansFileName;
    ReadOnlyListFile file;
    if (const Status status = file.load(QDir(request.directory).filePath(fileName)); !status.ok())
        return fail(err, status.message());

    QString report;
    if (request.command == Command::List) {
        report = listReport(request.list, file.records(), fileName, request.format);
    } else {
        const int n = request.recordNumber;
        if (n < 1 || n > file.count()) {
            return fail(err, QStringLiteral("%1 holds %2 records; there is no record %3")
                                 .arg(fileName)
                                 .arg(file.count())
                                 .arg(n));
        }
        const Status status = scheduleReport(request.list, file.records()[n - 1], n, fileName,
                                             request.format, report);
        if (!status.ok())
            return fail(err, status.message());
    }
    out << report;
    out.flush();
    return ExitSuccess;
}

} // namespace quillet::report
