#pragma once

#include "scenariorecord.h"
#include "status.h"

#include <QString>

#include <vector>

namespace quillet::report {

enum class Format { Text, Csv, Json };

// The records of one list in file order, each field's text exactly as the
// grid shows it, in the default locale.
QString listReport(ListKind list, const std::vector<ScenarioRecord> &records,
                   const QString &fileName, Format format);

// Every period of one record's schedule, computed as the schedule window
// computes it. Fails when the record has more periods than a schedule can
// count; output is then left untouched.
Status scheduleReport(ListKind list, const ScenarioRecord &record, int recordNumber,
                      const QString &fileName, Format format, QString &output);

} // namespace quillet::report
