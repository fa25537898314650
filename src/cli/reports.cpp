#include "reports.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "displaytext.h"
#include "jsonvalue.h"
#include "schedule.h"
#include "solver.h"
#include "texttable.h"

namespace quillet::report {

namespace {

using Align = TextTable::Align;

constexpr std::array<Field, 5> ValueFields = ScheduleHeader::ValueFields;

bool isInvestments(ListKind list)
{
    return list == ListKind::Investments;
}

QString listName(ListKind list)
{
    return isInvestments(list) ? QStringLiteral("investments") : QStringLiteral("loans");
}

// The grid's column headings; the rate and the fifth value are named by list.
QString gridHeading(ListKind list, Field field)
{
    switch (field) {
    case Field::Desc:
        return QStringLiteral("Description");
    case Field::InitialAmount:
        return QStringLiteral("Initial Amount");
    case Field::IRate:
        return isInvestments(list) ? QStringLiteral("Yield") : QStringLiteral("Rate");
    case Field::Years:
        return QStringLiteral("Years");
    case Field::Payment:
        return QStringLiteral("Payment");
    case Field::PerYear:
        return QStringLiteral("# Per Year");
    case Field::FutureValue:
        return isInvestments(list) ? QStringLiteral("Future Value")
                                   : QStringLiteral("Total Interest");
    }
    return {};
}

// The schedule windows' caption labels.
QString scheduleLabel(ListKind list, Field field)
{
    switch (field) {
    case Field::Desc:
        return QStringLiteral("Description:");
    case Field::InitialAmount:
        return QStringLiteral("Initial Amount:");
    case Field::IRate:
        return isInvestments(list) ? QStringLiteral("Yield (Rate of Return):")
                                   : QStringLiteral("Interest Rate:");
    case Field::Years:
        return QStringLiteral("Years:");
    case Field::Payment:
        return QStringLiteral("Payment:");
    case Field::PerYear:
        return QStringLiteral("Payments per Year:");
    case Field::FutureValue:
        return isInvestments(list) ? QStringLiteral("Future Value:")
                                   : QStringLiteral("Total Interest:");
    }
    return {};
}

// The grid shows a blank PerYear as an empty cell, anything else as it is.
QString gridPerYear(const ScenarioRecord &record)
{
    return record.PerYear == BlankPerYear ? QString() : QString::number(record.PerYear);
}

// The schedule windows' currency text: the cell's, without its trailing blank.
QString currency(double value)
{
    return QLocale().toCurrencyString(value, QString(), 2);
}

JsonValue fieldJson(const QString &text, const SolveResult &solved)
{
    return JsonValue::object({
        {QStringLiteral("text"), JsonValue::string(text)},
        {QStringLiteral("value"), solved.ok ? JsonValue::number(solved.value) : JsonValue::null()},
        {QStringLiteral("ok"), JsonValue::boolean(solved.ok)},
        {QStringLiteral("computed"), JsonValue::boolean(solved.computed)},
    });
}

JsonValue amountJson(double value)
{
    return JsonValue::object({
        {QStringLiteral("text"), JsonValue::string(currency(value))},
        {QStringLiteral("value"), JsonValue::number(value)},
    });
}

// The value fields of a record as the grid or a schedule header shows them.
struct RecordView
{
    std::array<FieldDisplay, 5> displays;
    std::array<SolveResult, 5> solved;
    QStringList computedNames;
};

RecordView viewOf(const ScenarioRecord &record, ListKind list)
{
    RecordView view;
    for (std::size_t k = 0; k < ValueFields.size(); ++k) {
        view.solved[k] = Solve(record, ValueFields[k], isInvestments(list));
        view.displays[k] = displayOf(ValueFields[k], view.solved[k]);
        // As the grid shows it: the field in bold, if any.
        if (view.displays[k].bold())
            view.computedNames.append(fieldName(ValueFields[k]));
    }
    return view;
}

JsonValue fieldsJson(const RecordView &view)
{
    JsonValue::Object fields;
    for (std::size_t k = 0; k < ValueFields.size(); ++k)
        fields.emplace_back(fieldName(ValueFields[k]),
                            fieldJson(view.displays[k].text, view.solved[k]));
    return JsonValue::object(std::move(fields));
}

JsonValue namesJson(const QStringList &names)
{
    JsonValue::Array array;
    for (const QString &name : names)
        array.push_back(JsonValue::string(name));
    return JsonValue::array(std::move(array));
}

// The grid's column order: the payments a year stand between the payment
// and the fifth value.
constexpr std::array<Field, 6> GridNumberColumns = {Field::InitialAmount, Field::IRate,
                                                    Field::Years,         Field::Payment,
                                                    Field::PerYear,       Field::FutureValue};

const FieldDisplay &displayOf(const RecordView &view, Field field)
{
    for (std::size_t k = 0; k < ValueFields.size(); ++k) {
        if (ValueFields[k] == field)
            return view.displays[k];
    }
    return view.displays[0];
}

} // namespace

QString listReport(ListKind list, const std::vector<ScenarioRecord> &records,
                   const QString &fileName, Format format)
{
    if (format == Format::Json) {
        JsonValue::Array rows;
        int number = 0;
        for (const ScenarioRecord &record : records) {
            const RecordView view = viewOf(record, list);
            rows.push_back(JsonValue::object({
                {QStringLiteral("record"), JsonValue::integer(++number)},
                {QStringLiteral("description"), JsonValue::string(trimmedDesc(record))},
                {QStringLiteral("fields"), fieldsJson(view)},
                {QStringLiteral("perYear"),
                 JsonValue::object({
                     {QStringLiteral("text"), JsonValue::string(gridPerYear(record))},
                     {QStringLiteral("stored"), JsonValue::integer(record.PerYear)},
                 })},
                {QStringLiteral("computed"), namesJson(view.computedNames)},
            }));
        }
        return JsonValue::object(
                   {
                       {QStringLiteral("list"), JsonValue::string(listName(list))},
                       {QStringLiteral("file"), JsonValue::string(fileName)},
                       {QStringLiteral("locale"), JsonValue::string(QLocale().name())},
                       {QStringLiteral("records"), JsonValue::array(std::move(rows))},
                   })
                   .toJson() +
               u'\n';
    }

    QList<TextTable::Column> columns = {{QStringLiteral("Record"), Align::Right},
                                        {gridHeading(list, Field::Desc), Align::Left}};
    for (const Field field : GridNumberColumns)
        columns.append({gridHeading(list, field), Align::Right});
    columns.append({QStringLiteral("Computed"), Align::Left});
    TextTable table(columns);

    int number = 0;
    for (const ScenarioRecord &record : records) {
        const RecordView view = viewOf(record, list);
        QStringList cells = {QString::number(++number), trimmedDesc(record)};
        for (const Field field : GridNumberColumns)
            cells.append(field == Field::PerYear ? gridPerYear(record)
                                                 : displayOf(view, field).text);
        cells.append(view.computedNames.join(u' '));
        table.addRow(cells);
    }
    return format == Format::Csv ? table.toCsv() : table.toText();
}

Status scheduleReport(ListKind list, const ScenarioRecord &record, int recordNumber,
                      const QString &fileName, Format format, QString &output)
{
    const bool investments = isInvestments(list);
    const ScheduleHeader header = scheduleHeader(record, investments);
    const RecordView view = viewOf(record, list);

    using CountStatus = PeriodCountOutcome::Status;
    const PeriodCountOutcome periods =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    if (periods.status == CountStatus::TooMany) {
        return Status::failure(QStringLiteral("record %1 of %2 has more than %3 periods")
                                   .arg(recordNumber)
                                   .arg(fileName)
                                   .arg(std::numeric_limits<qint16>::max()));
    }
    if (periods.status == CountStatus::NotANumber) {
        return Status::failure(QStringLiteral("record %1 of %2: its years or payments per year "
                                              "are not a number")
                                   .arg(recordNumber)
                                   .arg(fileName));
    }
    const bool counted = periods.status == CountStatus::Counted;
    const int rowCount = counted && periods.count > 0 ? periods.count : 0;

    // Without rows the start values are never used; PerYear text is a
    // number whenever the count could be taken.
    const ScheduleStart start =
        scheduleStart(record, investments, schedulePerYear(header.perYear).value_or(1.0));

    QList<TextTable::Column> columns;
    std::vector<QStringList> textRows;
    JsonValue::Array jsonRows;
    if (investments) {
        columns = {{QStringLiteral("Period"), Align::Right},
                   {QStringLiteral("Earnings"), Align::Right},
                   {QStringLiteral("Cumulative Earnings"), Align::Right},
                   {QStringLiteral("Total Earnings and Payments"), Align::Right}};
        for (const InvestmentScheduleRow &row : InvestmentSchedule::rows(start, 1, rowCount)) {
            textRows.push_back({PadNum(row.period, 4), currency(row.earnings),
                                currency(row.cumulativeEarnings), currency(row.balance)});
            if (format == Format::Json) {
                jsonRows.push_back(JsonValue::object({
                    {QStringLiteral("period"), JsonValue::integer(row.period)},
                    {QStringLiteral("periodText"), JsonValue::string(textRows.back().first())},
                    {QStringLiteral("earnings"), amountJson(row.earnings)},
                    {QStringLiteral("cumulativeEarnings"), amountJson(row.cumulativeEarnings)},
                    {QStringLiteral("balance"), amountJson(row.balance)},
                }));
            }
        }
    } else {
        columns = {{QStringLiteral("Period / Payment"), Align::Right},
                   {QStringLiteral("Principal Portion"), Align::Right},
                   {QStringLiteral("Interest Portion"), Align::Right},
                   {QStringLiteral("Cumulative Principal"), Align::Right},
                   {QStringLiteral("Cumulative Interest"), Align::Right},
                   {QStringLiteral("Remaining Balance"), Align::Right}};
        for (const LoanScheduleRow &row : LoanSchedule::rows(start, 1, rowCount)) {
            textRows.push_back({PadNum(row.period, 4), currency(row.principal),
                                currency(row.interest), currency(row.cumulativePrincipal),
                                currency(row.cumulativeInterest), currency(row.balance)});
            if (format == Format::Json) {
                jsonRows.push_back(JsonValue::object({
                    {QStringLiteral("period"), JsonValue::integer(row.period)},
                    {QStringLiteral("periodText"), JsonValue::string(textRows.back().first())},
                    {QStringLiteral("principal"), amountJson(row.principal)},
                    {QStringLiteral("interest"), amountJson(row.interest)},
                    {QStringLiteral("cumulativePrincipal"), amountJson(row.cumulativePrincipal)},
                    {QStringLiteral("cumulativeInterest"), amountJson(row.cumulativeInterest)},
                    {QStringLiteral("balance"), amountJson(row.balance)},
                }));
            }
        }
    }

    if (format == Format::Json) {
        output = JsonValue::object(
                     {
                         {QStringLiteral("list"), JsonValue::string(listName(list))},
                         {QStringLiteral("file"), JsonValue::string(fileName)},
                         {QStringLiteral("record"), JsonValue::integer(recordNumber)},
                         {QStringLiteral("locale"), JsonValue::string(QLocale().name())},
                         {QStringLiteral("header"),
                          JsonValue::object({
                              {QStringLiteral("description"), JsonValue::string(header.desc)},
                              {QStringLiteral("fields"), fieldsJson(view)},
                              {QStringLiteral("perYear"), JsonValue::string(header.perYear)},
                          })},
                         {QStringLiteral("periodCount"),
                          counted ? JsonValue::integer(periods.count) : JsonValue::null()},
                         {QStringLiteral("rows"), JsonValue::array(std::move(jsonRows))},
                     })
                     .toJson() +
                 u'\n';
        return {};
    }

    TextTable table(columns);
    for (QStringList &row : textRows)
        table.addRow(std::move(row));
    if (format == Format::Csv) {
        output = table.toCsv();
        return {};
    }

    // The header as label and text lines, the solved values marked since
    // plain text has no bold.
    QList<std::pair<QString, QString>> lines;
    lines.append({scheduleLabel(list, Field::Desc), header.desc});
    for (const Field field : GridNumberColumns) {
        if (field == Field::PerYear) {
            lines.append({scheduleLabel(list, field), header.perYear});
            continue;
        }
        const FieldDisplay &display = header.value(field);
        lines.append({scheduleLabel(list, field),
                      display.bold() ? display.text + QStringLiteral("(computed)") : display.text});
    }
    lines.append(
        {QStringLiteral("Periods:"), counted ? QString::number(periods.count) : QString()});

    qsizetype labelWidth = 0;
    for (const auto &line : lines)
        labelWidth = std::max(labelWidth, line.first.size());

    QString text = (investments ? QStringLiteral("Investment Amortization")
                                : QStringLiteral("Loan Amortization")) +
                   QStringLiteral(", record %1 of %2\n").arg(recordNumber).arg(fileName);
    for (const auto &[label, value] : lines)
        text += withoutTrailingBlanks(label.leftJustified(labelWidth + 1, u' ') + value) + u'\n';
    text += u'\n' + table.toText();
    output = text;
    return {};
}

} // namespace quillet::report
