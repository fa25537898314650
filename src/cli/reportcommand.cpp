#include "reportcommand.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QRegularExpression>
#include <QSize>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "chart.h"
#include "pdfreport.h"
#include "rates.h"
#include "readonlylistfile.h"
#include "reports.h"
#include "scenariorecord.h"
#include "session.h"

namespace quillet::report {

namespace {

enum class Command { List, Schedule, Solve, Chart };

// The quantities of a scenario given to `solve`; a missing one is blank.
struct SolveInput
{
    std::optional<double> initialAmount;
    std::optional<double> rate; // a fraction: 6.5 % is 0.065
    std::optional<double> years;
    std::optional<double> payment;
    std::optional<qint16> perYear;
    std::optional<double> fifth; // future value or total interest

    ScenarioRecord record() const
    {
        ScenarioRecord scenario;
        scenario.makeBlank();
        scenario.InitialAmount = initialAmount.value_or(BlankValue);
        scenario.IRate = rate.value_or(BlankValue);
        scenario.Years = years.value_or(BlankValue);
        scenario.Payment = payment.value_or(BlankValue);
        scenario.PerYear = perYear.value_or(BlankPerYear);
        scenario.FutureValue = fifth.value_or(BlankValue);
        return scenario;
    }
};

struct Request
{
    Command command = Command::List;
    ListKind list = ListKind::Investments;
    QString recordText; // as given, checked against the list once it is read
    QString directory;
    Format format = Format::Text;
    std::optional<QLocale> locale;
    SolveInput solve;
    QString output;
    QSize size = DefaultChartSize;
    bool pdf = false; // the printout, written to output
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

// Every option that takes a value; the parser is told of each, and the
// scan for negative record numbers skips their values.
struct Options
{
    QCommandLineOption dir{QStringLiteral("dir"), QString(), QStringLiteral("DIR")};
    QCommandLineOption format{QStringLiteral("format"), QString(), QStringLiteral("FORMAT")};
    QCommandLineOption locale{QStringLiteral("locale"), QString(), QStringLiteral("NAME")};
    QCommandLineOption output{QStringLiteral("output"), QString(), QStringLiteral("FILE")};
    QCommandLineOption size{QStringLiteral("size"), QString(), QStringLiteral("WxH")};
    QCommandLineOption initial{QStringLiteral("initial"), QString(), QStringLiteral("X")};
    QCommandLineOption rate{QStringLiteral("rate"), QString(), QStringLiteral("R")};
    QCommandLineOption years{QStringLiteral("years"), QString(), QStringLiteral("Y")};
    QCommandLineOption payment{QStringLiteral("payment"), QString(), QStringLiteral("P")};
    QCommandLineOption perYear{QStringLiteral("per-year"), QString(), QStringLiteral("N")};
    QCommandLineOption future{QStringLiteral("future"), QString(), QStringLiteral("F")};
    QCommandLineOption totalInterest{QStringLiteral("total-interest"), QString(),
                                     QStringLiteral("T")};

    QList<QCommandLineOption> all() const
    {
        return {dir,  format, locale,  output,  size,   initial,
                rate, years,  payment, perYear, future, totalInterest};
    }
    QList<QCommandLineOption> solveOnly() const
    {
        return {initial, rate, years, payment, perYear, future, totalInterest};
    }
};

QString dashed(const QCommandLineOption &option)
{
    return QStringLiteral("--") + option.names().first();
}

bool takesValue(const Options &options, const QString &argument)
{
    if (!argument.startsWith(QStringLiteral("--")) || argument.contains(u'='))
        return false;
    const QString name = argument.sliced(2);
    const QList<QCommandLineOption> all = options.all();
    return std::any_of(all.begin(), all.end(), [&](const QCommandLineOption &option) {
        return option.names().contains(name);
    });
}

// The parser would read "-1" as an option. A negative number that is no
// option's value is taken out and put back among the positional arguments
// where it stood, so that it is refused as a record number.
struct NegativeNumbers
{
    QStringList arguments;                              // what the parser sees
    std::vector<std::pair<qsizetype, QString>> numbers; // positional index, text
};

NegativeNumbers takeNegativeNumbers(const QStringList &arguments, const Options &options)
{
    static const QRegularExpression negativeNumber(QStringLiteral("^-[0-9.]"));
    NegativeNumbers result;
    qsizetype positionals = 0;
    bool optionsEnded = false;
    for (qsizetype k = 0; k < arguments.size(); ++k) {
        const QString &argument = arguments.at(k);
        if (k == 0 || optionsEnded) {
            result.arguments.append(argument);
            positionals += k == 0 ? 0 : 1;
            continue;
        }
        if (argument == u"--") {
            optionsEnded = true;
            result.arguments.append(argument);
        } else if (takesValue(options, argument)) {
            result.arguments.append(argument);
            if (k + 1 < arguments.size())
                result.arguments.append(arguments.at(++k));
        } else if (negativeNumber.match(argument).hasMatch()) {
            result.numbers.emplace_back(positionals++, argument);
        } else {
            result.arguments.append(argument);
            if (!argument.startsWith(u'-'))
                ++positionals;
        }
    }
    return result;
}

// A quantity given to solve: a number in the C locale's form ('.' decimal
// point, no grouping), whatever --locale says, so that scripts read the
// same everywhere. A rate may end in "%".
std::optional<double> numberArgument(QString text, bool percent)
{
    text = text.trimmed();
    if (percent && text.endsWith(u'%'))
        text.chop(1);
    QLocale c = QLocale::c();
    c.setNumberOptions(QLocale::RejectGroupSeparator);
    bool ok = false;
    const double value = c.toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

// Sets one quantity of the scenario from its option, or says why it cannot.
QString takeQuantity(const QCommandLineParser &parser, const QCommandLineOption &option,
                     bool percent, std::optional<double> &quantity)
{
    if (!parser.isSet(option))
        return {};
    const QString text = parser.value(option);
    const std::optional<double> value = numberArgument(text, percent);
    if (!value) {
        return QStringLiteral("%1 '%2' is not a number (write it like 1234.5%3)")
            .arg(dashed(option), text, percent ? QStringLiteral(" or 6.5%") : QString());
    }
    const double stored = percent ? *value / 100 : *value;
    // The grid refuses the marker of an empty field too: stored, it would
    // quietly turn the quantity into the one to solve.
    if (!IsSet(stored)) {
        return QStringLiteral("%1 '%2': this exact number marks an empty field and cannot be "
                              "given; leave the option out to have the quantity calculated")
            .arg(dashed(option), text);
    }
    quantity = stored;
    return {};
}

QString parseSolveInput(const QCommandLineParser &parser, const Options &options, Request &request)
{
    const bool investments = request.list == ListKind::Investments;
    if (investments && parser.isSet(options.totalInterest))
        return QStringLiteral("--total-interest is for a loan; an investment has --future");
    if (!investments && parser.isSet(options.future))
        return QStringLiteral("--future is for an investment; a loan has --total-interest");

    SolveInput &input = request.solve;
    for (const auto &[option, percent, quantity] :
         {std::tuple{&options.initial, false, &input.initialAmount},
          std::tuple{&options.rate, true, &input.rate},
          std::tuple{&options.years, false, &input.years},
          std::tuple{&options.payment, false, &input.payment},
          std::tuple{investments ? &options.future : &options.totalInterest, false,
                     &input.fifth}}) {
        if (QString error = takeQuantity(parser, *option, percent, *quantity); !error.isEmpty())
            return error;
    }

    if (parser.isSet(options.perYear)) {
        const QString text = parser.value(options.perYear);
        const std::optional<double> value = numberArgument(text, false);
        if (!value || *value != std::floor(*value) || *value < 1 || *value > 365) {
            return QStringLiteral("--per-year must be a whole number from 1 to 365, not '%1'")
                .arg(text);
        }
        input.perYear = static_cast<qint16>(*value);
    }
    return {};
}

std::optional<Command> commandNamed(const QString &name)
{
    if (name == u"list")
        return Command::List;
    if (name == u"schedule")
        return Command::Schedule;
    if (name == u"solve")
        return Command::Solve;
    if (name == u"chart")
        return Command::Chart;
    return std::nullopt;
}

// The lists by name: the list commands take the plural, solve one scenario.
std::optional<ListKind> listNamed(Command command, const QString &name)
{
    if (command == Command::Solve) {
        if (name == u"investment")
            return ListKind::Investments;
        if (name == u"loan")
            return ListKind::Loans;
        return std::nullopt;
    }
    if (name == u"investments")
        return ListKind::Investments;
    if (name == u"loans")
        return ListKind::Loans;
    return std::nullopt;
}

bool takesARecord(Command command)
{
    return command == Command::Schedule || command == Command::Chart;
}

QString parseChartOptions(const QCommandLineParser &parser, const Options &options,
                          Request &request)
{
    if (!parser.isSet(options.output))
        return QStringLiteral("chart: --output FILE.svg or FILE.png is needed");
    request.output = parser.value(options.output);
    const QString suffix = QFileInfo(request.output).suffix().toLower();
    if (suffix != u"svg" && suffix != u"png")
        return QStringLiteral("--output '%1' must end in .svg or .png").arg(request.output);
    if (parser.isSet(options.format))
        return QStringLiteral("chart takes no --format: the --output name's extension decides");
    if (parser.isSet(options.size)) {
        static const QRegularExpression pattern(QStringLiteral("^([0-9]{1,5})x([0-9]{1,5})$"));
        const QString text = parser.value(options.size);
        const QRegularExpressionMatch match = pattern.match(text);
        const int width = match.hasMatch() ? match.captured(1).toInt() : 0;
        const int height = match.hasMatch() ? match.captured(2).toInt() : 0;
        if (width < MinChartSide || width > MaxChartSide || height < MinChartSide ||
            height > MaxChartSide) {
            return QStringLiteral("--size '%1' must be WIDTHxHEIGHT in pixels, each from %2 to %3")
                .arg(text)
                .arg(MinChartSide)
                .arg(MaxChartSide);
        }
        request.size = QSize(width, height);
    }
    return {};
}

QString parseFormat(const QCommandLineParser &parser, const Options &options, Request &request)
{
    if (!parser.isSet(options.format))
        return {};
    const QString format = parser.value(options.format);
    if (format == u"text")
        request.format = Format::Text;
    else if (format == u"csv" && request.command != Command::Solve)
        request.format = Format::Csv;
    else if (format == u"json")
        request.format = Format::Json;
    else if (format == u"pdf" && request.command != Command::Solve) {
        if (!parser.isSet(options.output))
            return QStringLiteral("--format pdf needs --output FILE");
        request.pdf = true;
        request.output = parser.value(options.output);
    } else if (request.command == Command::Solve)
        return QStringLiteral("unknown format '%1' for solve: use text or json").arg(format);
    else
        return QStringLiteral("unknown format '%1': use text, csv, json or pdf").arg(format);
    return {};
}

// Options that mean nothing to the command are refused, not ignored.
QString misplacedOption(const QCommandLineParser &parser, const Options &options, Command command)
{
    if (command != Command::Solve) {
        for (const QCommandLineOption &option : options.solveOnly()) {
            if (parser.isSet(option))
                return QStringLiteral("%1 is only for solve").arg(dashed(option));
        }
    } else if (parser.isSet(options.dir)) {
        return QStringLiteral("solve reads no list: --dir has no use");
    }
    // A PDF printout is written to the --output file.
    const bool pdf = parser.value(options.format) == u"pdf";
    if (command != Command::Chart) {
        for (const QCommandLineOption &option : {options.output, options.size}) {
            if (parser.isSet(option) && !(pdf && option.names() == options.output.names()))
                return QStringLiteral("%1 is only for chart").arg(dashed(option));
        }
    }
    return {};
}

ParseOutcome parseArguments(const QStringList &arguments)
{
    const Options options;
    const NegativeNumbers split = takeNegativeNumbers(arguments, options);

    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsCompactedShortOptions);
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();
    parser.addOptions(options.all());

    if (!parser.parse(split.arguments))
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
    for (const QCommandLineOption &option : options.all()) {
        if (parser.values(option).size() > 1)
            return usageError(QStringLiteral("%1 given more than once").arg(dashed(option)));
    }

    QStringList positional = parser.positionalArguments();
    for (const auto &[index, text] : split.numbers)
        positional.insert(std::min(index, positional.size()), text);

    ParseOutcome outcome;
    Request &request = outcome.request;
    if (positional.isEmpty())
        return usageError(QStringLiteral("no command given"));
    const QString &commandName = positional.at(0);
    const std::optional<Command> command = commandNamed(commandName);
    if (!command)
        return usageError(QStringLiteral("unknown command '%1'").arg(commandName));
    request.command = *command;

    if (positional.size() < 2) {
        return usageError(
            request.command == Command::Solve
                ? QStringLiteral("solve: which kind, investment or loan?")
                : QStringLiteral("%1: which list, investments or loans?").arg(commandName));
    }
    const QString &listText = positional.at(1);
    const std::optional<ListKind> list = listNamed(request.command, listText);
    if (!list) {
        return usageError(
            request.command == Command::Solve
                ? QStringLiteral("unknown kind '%1': use investment or loan").arg(listText)
                : QStringLiteral("unknown list '%1': use investments or loans").arg(listText));
    }
    request.list = *list;

    qsizetype used = 2;
    if (takesARecord(request.command)) {
        if (positional.size() < 3)
            return usageError(QStringLiteral("%1: which record number?").arg(commandName));
        request.recordText = positional.at(2);
        bool ok = false;
        request.recordText.toInt(&ok, 10);
        if (!ok) {
            return usageError(QStringLiteral("record number '%1' is not a whole number: N must be "
                                             "a record number from 1 to the list's count")
                                  .arg(request.recordText));
        }
        used = 3;
    }
    if (positional.size() > used)
        return usageError(QStringLiteral("unexpected argument '%1'").arg(positional.at(used)));

    if (QString error = misplacedOption(parser, options, request.command); !error.isEmpty())
        return usageError(error);
    request.directory = parser.isSet(options.dir) ? parser.value(options.dir) : QDir::currentPath();
    if (QString error = parseFormat(parser, options, request); !error.isEmpty())
        return usageError(error);
    if (request.command == Command::Chart) {
        if (QString error = parseChartOptions(parser, options, request); !error.isEmpty())
            return usageError(error);
    }
    if (request.command == Command::Solve) {
        if (QString error = parseSolveInput(parser, options, request); !error.isEmpty())
            return usageError(error);
    }

    if (parser.isSet(options.locale)) {
        const QString name = parser.value(options.locale);
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

// The record a schedule or chart is about, or the reason there is none.
std::optional<int> recordNumberIn(const Request &request, const ReadOnlyListFile &file,
                                  QString &error)
{
    const int n = request.recordText.toInt();
    if (n >= 1 && n <= file.count())
        return n;
    if (file.count() == 0) {
        error = QStringLiteral("%1 holds no records; there is no record %2")
                    .arg(file.fileName(), request.recordText);
    } else {
        error = QStringLiteral("%1 holds %2 records; there is no record %3: N must be a record "
                               "number from 1 to %2")
                    .arg(file.fileName())
                    .arg(file.count())
                    .arg(request.recordText);
    }
    return std::nullopt;
}

int runRequest(const Request &request, QTextStream &out, QTextStream &err)
{
    QString report;
    if (request.command == Command::Solve) {
        report = solveReport(request.list, request.solve.record(), request.format);
        out << report;
        out.flush();
        return ExitSuccess;
    }

    const QString fileName = request.list == ListKind::Investments ? Session::InvestmentsFileName
                                                                   : Session::LoansFileName;
    ReadOnlyListFile file;
    if (const Status status = file.load(request.directory, fileName); !status.ok())
        return fail(err, status.message());

    if (request.command == Command::List && request.pdf) {
        const Status status = writeListPdf(request.list, file.records(), request.output);
        return status.ok() ? ExitSuccess : fail(err, status.message());
    }
    if (request.command == Command::List) {
        report = listReport(request.list, file.records(), fileName, request.format);
    } else {
        QString error;
        const std::optional<int> n = recordNumberIn(request, file, error);
        if (!n)
            return fail(err, error);
        const ScenarioRecord &record = file.records()[static_cast<std::size_t>(*n - 1)];
        const Status status =
            request.pdf ? writeSchedulePdf(request.list, record, *n, fileName, request.output)
            : request.command == Command::Chart
                ? writeScheduleChart(request.list, record, *n, fileName, request.output,
                                     request.size)
                : scheduleReport(request.list, record, *n, fileName, request.format, report);
        if (!status.ok())
            return fail(err, status.message());
    }
    out << report;
    out.flush();
    return ExitSuccess;
}

} // namespace

QString usageText()
{
    return QStringLiteral(
        "Usage: quillet-report list investments|loans [--dir DIR] [--format text|csv|json] "
        "[--locale NAME]\n"
        "       quillet-report schedule investments|loans N [--dir DIR] "
        "[--format text|csv|json] [--locale NAME]\n"
        "       quillet-report list investments|loans --format pdf --output FILE [--dir DIR] "
        "[--locale NAME]\n"
        "       quillet-report schedule investments|loans N --format pdf --output FILE "
        "[--dir DIR] [--locale NAME]\n"
        "       quillet-report solve investment|loan [--initial X] [--rate R] [--years Y] "
        "[--payment P] [--per-year N] [--future F | --total-interest T] [--format text|json] "
        "[--locale NAME]\n"
        "       quillet-report chart investments|loans N --output FILE.svg|FILE.png "
        "[--size WxH] [--dir DIR] [--locale NAME]\n"
        "       quillet-report --help\n");
}

QString helpText()
{
    // A delimited raw string: "Rate (%)" holds what would end a plain one.
    return usageText() + QStringLiteral(R"help(
Shows Quillet's scenario lists and amortization schedules, solves one
scenario, and draws a schedule as a chart. It only ever reads the data files:
it never creates or changes one.

Commands:
  list investments|loans
      One row per scenario, in file order: the record number, the description,
      the initial amount, rate, years, payment, payments per year and future
      value (for loans: the total interest), each as the main window shows it,
      the blank one solved, and the names of the solved fields (Computed; a
      loan's total interest is called TotalInterest).
      A blank payments per year shows as an empty text.
  schedule investments|loans N
      The amortization schedule of record N (a record number from 1 to the
      list's count) as the schedule window computes it, all periods: the
      header fields, the number of periods (the shown years times the payments
      per year, a half rounding to even) and one row per period. There are no
      rows when the years cannot be given or the number of periods is not
      positive. Investments: period, earnings, cumulative earnings, balance.
      Loans: period, principal, interest, cumulative principal, cumulative
      interest, remaining balance.
  solve investment|loan
      One scenario from the command line, solved as the grid solves it. The
      quantities given are the scenario's; each one left out is blank, and the
      blank one is calculated. Prints all five quantities as the grid shows
      them, the calculated ones marked (computed).
        --initial X         initial amount (for a loan: the amount borrowed)
        --rate R            yearly rate in percent: 6.5 or 6.5%
        --years Y           years
        --payment P         payment each period
        --per-year N        payments per year, a whole number from 1 to 365
        --future F          future value (investments)
        --total-interest T  total interest (loans)
      Numbers are written with a '.' decimal point and no grouping, whatever
      --locale says. -987456321 (and -98745632100% as a rate) is refused: that
      exact number marks an empty field.
  chart investments|loans N
      A line chart of record N's schedule over all periods: for investments
      the balance and the cumulative earnings, for loans the remaining
      balance, the cumulative principal and the cumulative interest. The
      title is the description (or "Investment N", "Loan N"); the x axis
      counts periods, or years when there are more than 120 periods; amounts
      are in the locale's currency format. Drawn without a display.
        --output FILE       FILE.svg (SVG) or FILE.png (PNG), by its extension
        --size WxH          the picture's size in pixels (default 800x500,
                            each side from 200 to 8000)
      A record without periods has no chart (exit status 1).

Options:
  --dir DIR        Read In.dat (investments) and Ln.dat (loans) in DIR instead
                   of the current directory.
  --format FORMAT  text: aligned columns for reading (the default); control
                   characters in descriptions show as '?'.
                   csv: RFC 4180, a heading row first, CRLF line ends; for a
                   schedule, the table of periods only. Numbers are plain for
                   spreadsheets: '.' decimal point, no grouping, no currency
                   sign, rounded as the window shows them (amounts to cents,
                   years to tenths, the rate in percent to hundredths, in the
                   column "Rate (%)"); an empty cell where there is no value.
                   CSV numbers do not follow --locale.
                   json: everything the text holds, plus each value as a
                   number with 17 significant digits (null when there is none)
                   and, for each scenario field, whether it has a value (ok)
                   and whether it was solved (computed); one schema for every
                   command (docs/quillet-report.schema.json).
                   pdf: the printout Quillet's Print button makes of the list
                   or of the schedule window (every period), written to
                   --output FILE (US Letter). No display or printer is needed.
  --locale NAME    Write numbers and amounts as the locale NAME does (en_US,
                   de_DE, ...) instead of the user's own locale.
  -h, --help       Show this help.
  -v, --version    Show the version.

Exit status:
  0  the report was written
  1  a data file is missing or cannot be read (the message names the cause:
     not found, permission denied, a symbolic link loop, a directory that
     cannot be entered, --dir naming a file), there is no record N, the
     schedule has more than 32767 periods, a chart has no periods, or the
     chart cannot be written (one line on standard error)
  2  the command line is wrong (the usage on standard error)
)help");
}

// A PDF is laid out in fonts, which need a graphical application too.
static bool asksForPdf(const QStringList &arguments)
{
    const qsizetype format = arguments.indexOf(QStringLiteral("--format"));
    return arguments.contains(QStringLiteral("--format=pdf")) ||
           (format >= 0 && arguments.value(format + 1) == u"pdf");
}

bool needsGraphics(const QStringList &arguments)
{
    const Options options;
    const NegativeNumbers split = takeNegativeNumbers(arguments, options);
    for (qsizetype k = 1; k < split.arguments.size(); ++k) {
        const QString &argument = split.arguments.at(k);
        if (takesValue(options, argument)) {
            ++k;
            continue;
        }
        if (!argument.startsWith(u'-'))
            return argument == u"chart" || asksForPdf(arguments);
    }
    return false;
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
    return runRequest(request, out, err);
}

} // namespace quillet::report
