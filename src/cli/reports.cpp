#include "reports.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
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
    // A figure that is not finite shows no text, as in the grid.
    if (!std::isfinite(value))
        return {};
    return scheduleAmountText(value);
}

// A figure as spreadsheets read numbers: '.' decimal point, no grouping,
// no currency sign, rounded as the window rounds it; empty without a value.
QString plainFigure(double value, int decimals)
{
    if (!std::isfinite(value))
        return {};
    QString text;
    if (std::abs(value) < 0x1p53) {
        text = QString::number(value, 'f', decimals);
    } else {
        // A whole number this large has no fraction to round, and Qt writes
        // its hundreds of digits far more slowly than to_chars does.
        std::array<char, 400> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                       std::chars_format::fixed, decimals)
                             .ptr;
        text = QString::fromLatin1(digits.data(), end - digits.data());
    }
    // A value that rounds to zero from below is zero, not "-0.00".
    if (text.startsWith(u'-') &&
        std::all_of(text.cbegin() + 1, text.cend(), [](QChar c) { return c == u'0' || c == u'.'; }))
        text.remove(0, 1);
    return text;
}

QString plainAmount(double value)
{
    return plainFigure(value, 2);
}

// The value fields of a record as the grid or a schedule header shows them.
struct RecordView
{
    std::array<FieldDisplay, 5> displays;
    std::array<SolveResult, 5> solved;
    QStringList computedNames;

    // A value to report: solved or stored, and a number.
    bool hasValue(std::size_t k) const { return solved[k].ok && std::isfinite(solved[k].value); }
    // Solved and shown (bold in the grid): the one meaning of "computed"
    // throughout the output.
    bool isComputed(std::size_t k) const { return displays[k].bold(); }
};

RecordView viewOf(const ScenarioRecord &record, ListKind list)
{
    RecordView view;
    for (std::size_t k = 0; k < ValueFields.size(); ++k) {
        view.solved[k] = Solve(record, ValueFields[k], isInvestments(list));
        view.displays[k] = displayOf(ValueFields[k], view.solved[k]);
        if (view.isComputed(k))
            view.computedNames.append(reportFieldName(list, ValueFields[k]));
    }
    return view;
}

std::size_t indexOf(Field field)
{
    for (std::size_t k = 0; k < ValueFields.size(); ++k) {
        if (ValueFields[k] == field)
            return k;
    }
    return 0;
}

// The plain CSV figure of one value field: amounts to cents, the rate in
// percent to hundredths, years to tenths.
QString plainField(const RecordView &view, Field field)
{
    const std::size_t k = indexOf(field);
    if (!view.hasValue(k))
        return {};
    const double value = view.solved[k].value;
    switch (field) {
    case Field::IRate:
        return plainFigure(value * 100, 2);
    case Field::Years:
        return plainFigure(value, 1);
    default:
        return plainAmount(value);
    }
}

JsonValue fieldJson(const RecordView &view, std::size_t k)
{
    const bool hasValue = view.hasValue(k);
    return JsonValue::object({
        {QStringLiteral("text"), JsonValue::string(view.displays[k].text)},
        {QStringLiteral("value"),
         hasValue ? JsonValue::number(view.solved[k].value) : JsonValue::null()},
        {QStringLiteral("ok"), JsonValue::boolean(hasValue)},
        {QStringLiteral("computed"), JsonValue::boolean(view.isComputed(k))},
    });
}

JsonValue fieldsJson(const RecordView &view, ListKind list)
{
    JsonValue::Object fields;
    for (std::size_t k = 0; k < ValueFields.size(); ++k)
        fields.emplace_back(reportFieldName(list, ValueFields[k]), fieldJson(view, k));
    return JsonValue::object(std::move(fields));
}

JsonValue namesJson(const QStringList &names)
{
    JsonValue::Array array;
    for (const QString &name : names)
        array.push_back(JsonValue::string(name));
    return JsonValue::array(std::move(array));
}

JsonValue perYearJson(const QString &text, qint16 stored)
{
    return JsonValue::object({
        {QStringLiteral("text"), JsonValue::string(text)},
        {QStringLiteral("stored"), JsonValue::integer(stored)},
    });
}

JsonValue amountJson(double value)
{
    return JsonValue::object({
        {QStringLiteral("text"), JsonValue::string(currency(value))},
        {QStringLiteral("value"), JsonValue::number(value)},
    });
}

// The grid's column order: the payments a year stand between the payment
// and the fifth value.
constexpr std::array<Field, 6> GridNumberColumns = {Field::InitialAmount, Field::IRate,
                                                    Field::Years,         Field::Payment,
                                                    Field::PerYear,       Field::FutureValue};

// CSV names the rate column by its unit, since its figures carry no sign.
QString csvHeading(ListKind list, Field field)
{
    return field == Field::IRate ? QStringLiteral("Rate (%)") : gridHeading(list, field);
}

// Label and text lines of the value fields, the solved values marked since
// plain text has no bold.
QList<std::pair<QString, QString>> headerLines(ListKind list, const RecordView &view,
                                               const QString &perYearText)
{
    QList<std::pair<QString, QString>> lines;
    for (const Field field : GridNumberColumns) {
        if (field == Field::PerYear) {
            lines.append({scheduleLabel(list, field), perYearText});
            continue;
        }
        const std::size_t k = indexOf(field);
        const FieldDisplay &display = view.displays[k];
        QString text = display.text;
        if (view.isComputed(k))
            text += QStringLiteral("(computed)");
        else if (view.solved[k].computed)
            text += QStringLiteral("(cannot be calculated)");
        lines.append({scheduleLabel(list, field), text});
    }
    return lines;
}

QString labelledLines(const QList<std::pair<QString, QString>> &lines)
{
    qsizetype labelWidth = 0;
    for (const auto &line : lines)
        labelWidth = std::max(labelWidth, line.first.size());
    QString text;
    for (const auto &[label, value] : lines) {
        text += withoutTrailingBlanks(label.leftJustified(labelWidth + 1, u' ') +
                                      withoutControls(value)) +
                u'\n';
    }
    return text;
}

QString toJsonText(JsonValue::Object members)
{
    return JsonValue::object(std::move(members)).toJson() + u'\n';
}

} // namespace

QString reportFieldName(ListKind list, Field field)
{
    if (field == Field::FutureValue && !isInvestments(list))
        return QStringLiteral("TotalInterest");
    return fieldName(field);
}

QString listReport(ListKind list, const std::vector<ScenarioRecord> &records,
                   const QString &fileName, Format format)
{
    if (format == Format::Json) {
        JsonArrayWriter rows(1);
        int number = 0;
        for (const ScenarioRecord &record : records) {
            const RecordView view = viewOf(record, list);
            rows.append(JsonValue::object({
                {QStringLiteral("record"), JsonValue::integer(++number)},
                {QStringLiteral("description"), JsonValue::string(trimmedDesc(record))},
                {QStringLiteral("fields"), fieldsJson(view, list)},
                {QStringLiteral("perYear"), perYearJson(gridPerYear(record), record.PerYear)},
                {QStringLiteral("computed"), namesJson(view.computedNames)},
            }));
        }
        return toJsonText({
            {QStringLiteral("report"), JsonValue::string(QStringLiteral("list"))},
            {QStringLiteral("list"), JsonValue::string(listName(list))},
            {QStringLiteral("file"), JsonValue::string(fileName)},
            {QStringLiteral("locale"), JsonValue::string(QLocale().name())},
            {QStringLiteral("records"), rows.take()},
        });
    }

    const bool csv = format == Format::Csv;
    QList<TextTable::Column> columns = {{QStringLiteral("Record"), Align::Right},
                                        {gridHeading(list, Field::Desc), Align::Left}};
    for (const Field field : GridNumberColumns)
        columns.append({csv ? csvHeading(list, field) : gridHeading(list, field), Align::Right});
    columns.append({QStringLiteral("Computed"), Align::Left});
    TextTable table(columns);

    int number = 0;
    for (const ScenarioRecord &record : records) {
        const RecordView view = viewOf(record, list);
        QStringList cells = {QString::number(++number), trimmedDesc(record)};
        for (const Field field : GridNumberColumns) {
            if (field == Field::PerYear)
                cells.append(gridPerYear(record));
            else
                cells.append(csv ? plainField(view, field) : view.displays[indexOf(field)].text);
        }
        cells.append(view.computedNames.join(u' '));
        table.addRow(cells);
    }
    return csv ? table.toCsv() : table.toText();
}

int ScheduleData::rowCount() const
{
    return static_cast<int>(investmentRows.size() + loanRows.size());
}

Status computeSchedule(ListKind list, const ScenarioRecord &record, int recordNumber,
                       const QString &fileName, ScheduleData &data)
{
    const bool investments = isInvestments(list);
    data = ScheduleData();
    data.header = scheduleHeader(record, investments);

    using CountStatus = PeriodCountOutcome::Status;
    const PeriodCountOutcome periods =
        PeriodCountFor(data.header.value(Field::Years).text, data.header.perYear);
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
    data.counted = periods.status == CountStatus::Counted;
    data.periodCount = data.counted ? periods.count : 0;
    const int rowCount = std::max(data.periodCount, 0);

    // Without rows the start values are never used; the PerYear text is a
    // number whenever the count could be taken.
    data.perYear = schedulePerYear(data.header.perYear).value_or(1.0);
    const ScheduleStart start = scheduleStart(record, investments, data.perYear);
    if (investments)
        data.investmentRows = InvestmentSchedule::rows(start, 1, rowCount);
    else
        data.loanRows = LoanSchedule::rows(start, 1, rowCount);
    return {};
}

Status scheduleReport(ListKind list, const ScenarioRecord &record, int recordNumber,
                      const QString &fileName, Format format, QString &output)
{
    ScheduleData data;
    if (Status status = computeSchedule(list, record, recordNumber, fileName, data); !status.ok())
        return status;
    const bool investments = isInvestments(list);
    const RecordView view = viewOf(record, list);
    const bool csv = format == Format::Csv;
    // Text shows the window's currency texts, CSV plain figures.
    auto money = [csv](double value) {
        return csv ? plainAmount(value) : currency(value);
    };

    QList<TextTable::Column> columns;
    std::vector<QStringList> textRows;
    JsonArrayWriter jsonRows(1);
    if (investments) {
        columns = {{QStringLiteral("Period"), Align::Right},
                   {QStringLiteral("Earnings"), Align::Right},
                   {QStringLiteral("Cumulative Earnings"), Align::Right},
                   {QStringLiteral("Total Earnings and Payments"), Align::Right}};
        for (const InvestmentScheduleRow &row : data.investmentRows) {
            const QString period =
                csv ? QString::number(row.period) : schedulePeriodText(row.period);
            if (format == Format::Json) {
                jsonRows.append(JsonValue::object({
                    {QStringLiteral("period"), JsonValue::integer(row.period)},
                    {QStringLiteral("periodText"),
                     JsonValue::string(schedulePeriodText(row.period))},
                    {QStringLiteral("earnings"), amountJson(row.earnings)},
                    {QStringLiteral("cumulativeEarnings"), amountJson(row.cumulativeEarnings)},
                    {QStringLiteral("balance"), amountJson(row.balance)},
                }));
            } else {
                textRows.push_back({period, money(row.earnings), money(row.cumulativeEarnings),
                                    money(row.balance)});
            }
        }
    } else {
        columns = {{QStringLiteral("Period / Payment"), Align::Right},
                   {QStringLiteral("Principal Portion"), Align::Right},
                   {QStringLiteral("Interest Portion"), Align::Right},
                   {QStringLiteral("Cumulative Principal"), Align::Right},
                   {QStringLiteral("Cumulative Interest"), Align::Right},
                   {QStringLiteral("Remaining Balance"), Align::Right}};
        for (const LoanScheduleRow &row : data.loanRows) {
            const QString period =
                csv ? QString::number(row.period) : schedulePeriodText(row.period);
            if (format == Format::Json) {
                jsonRows.append(JsonValue::object({
                    {QStringLiteral("period"), JsonValue::integer(row.period)},
                    {QStringLiteral("periodText"),
                     JsonValue::string(schedulePeriodText(row.period))},
                    {QStringLiteral("principal"), amountJson(row.principal)},
                    {QStringLiteral("interest"), amountJson(row.interest)},
                    {QStringLiteral("cumulativePrincipal"), amountJson(row.cumulativePrincipal)},
                    {QStringLiteral("cumulativeInterest"), amountJson(row.cumulativeInterest)},
                    {QStringLiteral("balance"), amountJson(row.balance)},
                }));
            } else {
                textRows.push_back({period, money(row.principal), money(row.interest),
                                    money(row.cumulativePrincipal), money(row.cumulativeInterest),
                                    money(row.balance)});
            }
        }
    }

    if (format == Format::Json) {
        output = toJsonText({
            {QStringLiteral("report"), JsonValue::string(QStringLiteral("schedule"))},
            {QStringLiteral("list"), JsonValue::string(listName(list))},
            {QStringLiteral("file"), JsonValue::string(fileName)},
            {QStringLiteral("record"), JsonValue::integer(recordNumber)},
            {QStringLiteral("locale"), JsonValue::string(QLocale().name())},
            {QStringLiteral("header"),
             JsonValue::object({
                 {QStringLiteral("description"), JsonValue::string(data.header.desc)},
                 {QStringLiteral("fields"), fieldsJson(view, list)},
                 {QStringLiteral("perYear"), perYearJson(data.header.perYear, record.PerYear)},
                 {QStringLiteral("computed"), namesJson(view.computedNames)},
             })},
            {QStringLiteral("periodCount"),
             data.counted ? JsonValue::integer(data.periodCount) : JsonValue::null()},
            {QStringLiteral("rows"), jsonRows.take()},
        });
        return {};
    }

    TextTable table(columns);
    for (QStringList &row : textRows)
        table.addRow(std::move(row));
    if (csv) {
        output = table.toCsv();
        return {};
    }

    QList<std::pair<QString, QString>> lines = headerLines(list, view, data.header.perYear);
    lines.prepend({scheduleLabel(list, Field::Desc), data.header.desc});
    lines.append(
        {QStringLiteral("Periods:"), data.counted ? QString::number(data.periodCount) : QString()});
    output = (investments ? QStringLiteral("Investment Amortization")
                          : QStringLiteral("Loan Amortization")) +
             QStringLiteral(", record %1 of %2\n").arg(recordNumber).arg(fileName) +
             labelledLines(lines) + u'\n' + table.toText();
    return {};
}

QString solveReport(ListKind list, const ScenarioRecord &record, Format format)
{
    const RecordView view = viewOf(record, list);
    if (format == Format::Json) {
        return toJsonText({
            {QStringLiteral("report"), JsonValue::string(QStringLiteral("solve"))},
            {QStringLiteral("list"), JsonValue::string(listName(list))},
            {QStringLiteral("locale"), JsonValue::string(QLocale().name())},
            {QStringLiteral("fields"), fieldsJson(view, list)},
            {QStringLiteral("perYear"), perYearJson(gridPerYear(record), record.PerYear)},
            {QStringLiteral("computed"), namesJson(view.computedNames)},
        });
    }
    return (isInvestments(list) ? QStringLiteral("Investment\n") : QStringLiteral("Loan\n")) +
           labelledLines(headerLines(list, view, gridPerYear(record)));
}

} // namespace quillet::report
