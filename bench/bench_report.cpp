// Timings of quillet-report: the chart of the longest schedule a record can
// have, and the list reports of a full list in every format.

#include "chart.h"
#include "reports.h"
#include "scenariorecord.h"

#include <QApplication>
#include <QDir>
#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace quillet;
using namespace quillet::report;

// A loan of 1,000 at 5 % over 2,730 years, paid monthly: 32,760 periods.
ScenarioRecord longestLoan()
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QStringLiteral("Longest"));
    record.InitialAmount = 1000;
    record.IRate = 0.05;
    record.Years = 2730;
    record.PerYear = 12;
    return record;
}

void chartOfTheLongestSchedule(benchmark::State &state, const char *suffix)
{
    QTemporaryDir dir;
    const QString path =
        QDir(dir.path()).filePath(QStringLiteral("chart.") + QString::fromLatin1(suffix));
    const ScenarioRecord record = longestLoan();
    for (auto _ : state) {
        const Status status = writeScheduleChart(ListKind::Loans, record, 1,
                                                 QStringLiteral("Ln.dat"), path, DefaultChartSize);
        if (!status.ok())
            state.SkipWithError(qPrintable(status.message()));
    }
}
BENCHMARK_CAPTURE(chartOfTheLongestSchedule, svg, "svg")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(chartOfTheLongestSchedule, png, "png")->Unit(benchmark::kMillisecond);

// A full list: 32,767 monthly investments, the future value solved.
std::vector<ScenarioRecord> fullList()
{
    std::vector<ScenarioRecord> records;
    for (int n = 0; n < 32767; ++n) {
        ScenarioRecord record;
        record.makeBlank();
        setDescText(record, QStringLiteral("Plan %1").arg(n + 1));
        record.InitialAmount = 1000 + n;
        record.IRate = 0.05;
        record.Years = 10;
        record.Payment = 100;
        record.PerYear = 12;
        records.push_back(record);
    }
    return records;
}

void listReportOfAFullList(benchmark::State &state, Format format)
{
    const std::vector<ScenarioRecord> records = fullList();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            listReport(ListKind::Investments, records, QStringLiteral("In.dat"), format));
}
BENCHMARK_CAPTURE(listReportOfAFullList, text, Format::Text)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listReportOfAFullList, csv, Format::Csv)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listReportOfAFullList, json, Format::Json)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    // Charts are drawn with widgets' graphics, never shown.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
