#include "scheduleprintout.h"

#include "displaytext.h"

#include <QFont>

#include <cstddef>

namespace quillet {

namespace {

struct TableColumn
{
    int base;
    int width;
};

constexpr std::array<TableColumn, 3> InvestmentColumns = {
    {{2000, 600}, {5000, 1400}, {8000, 1600}}};
constexpr std::array<TableColumn, 5> LoanColumns = {
    {{1800, 1000}, {3300, 1000}, {4800, 1200}, {6700, 1200}, {8800, 1200}}};

constexpr double FirstColumnLeft = 100;
constexpr double HeaderValueLeft = 3000;
constexpr double RuleLeft = 100;
// Where the rule ends, before the width of the last heading is added.
constexpr double InvestmentRuleEnd = 8100;
constexpr double LoanRuleEnd = 9000;
// The rule lies in the space between the headings and the first figures:
// its centre below the headings' line, 1 point thick.
constexpr double RuleDrop = 15;
constexpr double RuleThickness = 20;

// Prints a text as a line, then moves back up by its height in the window's
// font, so that the next text lands on the same line.
void printAndReturn(PrintSurface &printer, const TextMeasure &measure, const QString &text)
{
    printer.printLine(text);
    printer.setCurrentY(printer.currentY() - static_cast<double>(measure.height(text)));
}

template <std::size_t N>
void outTable(PrintSurface &printer, const TextMeasure &measure,
              const std::array<QString, N> &texts, const std::array<TableColumn, N - 1> &columns,
              qint16 AlignFactor)
{
    printer.setCurrentX(FirstColumnLeft);
    printAndReturn(printer, measure, texts[0]);
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const QString &text = texts[c + 1];
        const float x = static_cast<float>(columns[c].base) +
                        (static_cast<float>(columns[c].width) - measure.width(text)) *
                            static_cast<float>(AlignFactor);
        printer.setCurrentX(x);
        if (c + 1 < columns.size())
            printAndReturn(printer, measure, text);
        else
            printer.printLine(text);
    }
}

template <std::size_t N> std::array<QString, N> headingTexts(const QStringList &headings)
{
    std::array<QString, N> texts;
    for (std::size_t k = 0; k < N && k < static_cast<std::size_t>(headings.size()); ++k)
        texts[k] = headings.at(static_cast<qsizetype>(k));
    return texts;
}

void printRule(PrintSurface &printer, const TextMeasure &measure, const SchedulePrintJob &job)
{
    const QString last = job.headings.isEmpty() ? QString() : job.headings.last();
    const double end = (job.investments ? InvestmentRuleEnd : LoanRuleEnd) +
                       static_cast<double>(measure.width(last));
    const double y = printer.currentY() + RuleDrop;
    printer.drawLine(RuleLeft, y, end, y, RuleThickness);
}

template <typename Schedule, typename Line>
bool printRows(const SchedulePrintJob &job, const PrintProgress &progress, Line &&line)
{
    Schedule schedule(job.start);
    for (int k = 1; k <= job.periodCount; ++k) {
        line(schedule.next());
        if (progress && !progress(k, job.periodCount))
            return false;
    }
    return true;
}

} // namespace

void OutText2(PrintSurface &printer, const TextMeasure &measure, const QString &label,
              const QString &value, bool bold)
{
    printer.setCurrentX(FirstColumnLeft);
    printAndReturn(printer, measure, label);
    printer.setCurrentX(HeaderValueLeft);
    printer.setFontBold(bold);
    printer.printLine(value);
    printer.setFontBold(false);
}

void OutText4(PrintSurface &printer, const TextMeasure &measure,
              const std::array<QString, 4> &texts, qint16 AlignFactor)
{
    outTable(printer, measure, texts, InvestmentColumns, AlignFactor);
}

void OutText6(PrintSurface &printer, const TextMeasure &measure,
              const std::array<QString, 6> &texts, qint16 AlignFactor)
{
    outTable(printer, measure, texts, LoanColumns, AlignFactor);
}

PrintOutcome PrintAmort(PrintSurface &printer, const TextMeasure &measure,
                        const SchedulePrintJob &job, const PrintProgress &progress)
{
    for (const ScheduleHeaderLine &line : job.header)
        OutText2(printer, measure, line.label, line.value, line.bold);
    printer.printLine(QStringLiteral(" "));
    printer.printLine(QStringLiteral(" "));

    bool finished = false;
    if (job.investments) {
        OutText4(printer, measure, headingTexts<4>(job.headings), 0);
        printRule(printer, measure, job);
        finished =
            printRows<InvestmentSchedule>(job, progress, [&](const InvestmentScheduleRow &row) {
                OutText4(printer, measure,
                         {schedulePeriodText(row.period), scheduleAmountText(row.earnings),
                          scheduleAmountText(row.cumulativeEarnings),
                          scheduleAmountText(row.balance)},
                         1);
            });
    } else {
        OutText6(printer, measure, headingTexts<6>(job.headings), 0);
        printRule(printer, measure, job);
        finished = printRows<LoanSchedule>(job, progress, [&](const LoanScheduleRow &row) {
            OutText6(printer, measure,
                     {schedulePeriodText(row.period), scheduleAmountText(row.principal),
                      scheduleAmountText(row.interest), scheduleAmountText(row.cumulativePrincipal),
                      scheduleAmountText(row.cumulativeInterest), scheduleAmountText(row.balance)},
                     1);
        });
    }
    if (!finished) {
        printer.abortDoc();
        return {PrintOutcome::Result::Cancelled, {}};
    }
    if (!printer.endDoc())
        return {PrintOutcome::Result::Failed, printer.errorText()};
    return {};
}

std::array<QString, 7> scheduleLabels(bool investments)
{
    return {QStringLiteral("Description:"),
            QStringLiteral("Intitial Amount:"),
            investments ? QStringLiteral("Yield (Rate of Return):")
                        : QStringLiteral("Interest Rate:"),
            QStringLiteral("Years:"),
            QStringLiteral("Payment:"),
            QStringLiteral("Payments per Year:"),
            investments ? QStringLiteral("Future Value:") : QStringLiteral("Total Interest:")};
}

QStringList scheduleHeadings(bool investments)
{
    if (investments) {
        return {QStringLiteral("Period"), QStringLiteral("Earnings"),
                QStringLiteral("Cumulative Earnings"),
                QStringLiteral("Total Earnings and Payments")};
    }
    return {QStringLiteral("Period / Payment"),    QStringLiteral("Principal Portion"),
            QStringLiteral("Interest Portion"),    QStringLiteral("Cumulative Principal"),
            QStringLiteral("Cumulative Interest"), QStringLiteral("Remaining Balance")};
}

TextMeasure scheduleWindowMeasure(qreal logicalDpi)
{
    QFont font(QStringLiteral("MS Sans Serif"));
    font.setPointSizeF(9.75);
    return TextMeasure(font, logicalDpi);
}

SchedulePrintJob schedulePrintJob(const ScenarioRecord &record, bool investments, int periodCount,
                                  quint16 stateFlags)
{
    const ScheduleHeader header = scheduleHeader(record, investments, stateFlags);
    const std::array<QString, 7> labels = scheduleLabels(investments);
    const auto valueLine = [&](std::size_t k, Field field) {
        const FieldDisplay &display = header.value(field);
        return ScheduleHeaderLine{labels[k], display.text, display.bold()};
    };

    SchedulePrintJob job;
    job.investments = investments;
    job.header = {ScheduleHeaderLine{labels[0], header.desc, false},
                  valueLine(1, Field::InitialAmount),
                  valueLine(2, Field::IRate),
                  valueLine(3, Field::Years),
                  valueLine(4, Field::Payment),
                  ScheduleHeaderLine{labels[5], header.perYear, false},
                  valueLine(6, Field::FutureValue)};
    job.headings = scheduleHeadings(investments);
    job.start = scheduleStart(record, investments, schedulePerYear(header.perYear).value_or(1.0),
                              stateFlags);
    job.periodCount = periodCount;
    return job;
}

} // namespace quillet
