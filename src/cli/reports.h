#pragma once

#include "scenariorecord.h"
#include "schedule.h"
#include "status.h"

#include <QString>

#include <vector>

namespace quillet::report {

enum class Format { Text, Csv, Json };

// The name of a field in the report's output. The fifth quantity of a loan
// is its total interest and is called so.
QString reportFieldName(ListKind list, Field field);

// The records of one list in file order. Text and JSON carry each field's
// text exactly as the grid shows it in the default locale; CSV carries plain
// numbers ('.' decimal point, no grouping) at the grid's rounding.
QString listReport(ListKind list, const std::vector<ScenarioRecord> &records,
                   const QString &fileName, Format format);

// One record's schedule over all its periods, computed as the schedule
// window computes it.
struct ScheduleData
{
    ScheduleHeader header;
    bool counted = false; // the years gave a period count
    int periodCount = 0;  // when counted; may be zero or negative
    double perYear = 1;   // the payments a year the schedule runs with
    std::vector<InvestmentScheduleRow> investmentRows;
    std::vector<LoanScheduleRow> loanRows;

    int rowCount() const;
};

// Fails when the record has more periods than a schedule can count or its
// header texts are no numbers.
Status computeSchedule(ListKind list, const ScenarioRecord &record, int recordNumber,
                       const QString &fileName, ScheduleData &data);

// Writes one record's schedule; output is left untouched on failure.
Status scheduleReport(ListKind list, const ScenarioRecord &record, int recordNumber,
                      const QString &fileName, Format format, QString &output);

// One scenario given on the command line, solved as the grid solves it: all
// five quantities as the grid shows them, the solved ones marked.
QString solveReport(ListKind list, const ScenarioRecord &record, Format format);

} // namespace quillet::report
