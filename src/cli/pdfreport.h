#pragma once

#include "scenariorecord.h"
#include "status.h"

#include <QString>

#include <vector>

namespace quillet::report {

// The printout the main window's Print makes of a list, written to a PDF
// file. An empty list writes no file and says why.
Status writeListPdf(ListKind list, const std::vector<ScenarioRecord> &records,
                    const QString &outputPath);

// The printout a schedule window's Print makes of record recordNumber of
// fileName, every period, written to a PDF file.
Status writeSchedulePdf(ListKind list, const ScenarioRecord &record, int recordNumber,
                        const QString &fileName, const QString &outputPath);

} // namespace quillet::report
