#pragma once

#include "scenariorecord.h"
#include "status.h"

#include <QSize>
#include <QString>

namespace quillet::report {

inline constexpr QSize DefaultChartSize(800, 500);
inline constexpr int MinChartSide = 200;
inline constexpr int MaxChartSide = 8000;

// A line chart of one record's schedule over all its periods, written to
// `outputPath` as SVG or PNG by its extension. Needs a QApplication (the
// offscreen platform will do); fails when the record has no periods.
Status writeScheduleChart(ListKind list, const ScenarioRecord &record, int recordNumber,
                          const QString &fileName, const QString &outputPath, QSize size);

} // namespace quillet::report
