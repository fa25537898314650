// Timings of the printouts written to PDF: the list of 4,096 to 32,767
// records and the schedule of 4,096 to 32,767 periods, with the pages each
// makes and the lines printed a second. Also the same printouts laid out on
// the recording surface, which prints nothing: the cost of the layout alone.
// The schedule of a loan of 1e303 is there too: every figure of it is a
// currency text of some 300 digits, most of it beyond the page's left edge.

#include "fonts.h"
#include "listprintout.h"
#include "pdfsurface.h"
#include "recordingsurface.h"
#include "scenariorecord.h"
#include "scheduleprintout.h"

#include <QGuiApplication>
#include <QLocale>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <bit>
#include <vector>

namespace {

using namespace quillet;

// A varied list: investments with one of four quantities solved in turn.
std::vector<ScenarioRecord> investments(int count)
{
    std::vector<ScenarioRecord> records;
    records.reserve(static_cast<std::size_t>(count));
    for (int n = 1; n <= count; ++n) {
        ScenarioRecord record;
        record.makeBlank();
        setDescText(record, QStringLiteral("Savings plan number %1").arg(n));
        record.InitialAmount = 1000.0 + n;
        record.IRate = 0.05;
        record.Years = 10;
        record.Payment = 100;
        record.PerYear = 12;
        switch (n % 3) {
        case 0:
            record.FutureValue = BlankValue;
            break;
        case 1:
            record.Payment = BlankValue;
            record.FutureValue = 50000;
            break;
        default:
            record.InitialAmount = BlankValue;
            record.FutureValue = 50000;
            break;
        }
        records.push_back(record);
    }
    return records;
}

// A loan of as many monthly periods as asked whose payment is the interest
// alone, so that its figures keep their width however long it runs (a loan
// paid off early would go on below zero with ever longer figures).
SchedulePrintJob loanSchedule(int periods)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QStringLiteral("Interest-only loan"));
    record.InitialAmount = 250000;
    record.IRate = 0.06;
    record.Years = periods / 12.0;
    record.Payment = 1250;
    record.PerYear = 12;
    return schedulePrintJob(record, false, periods);
}

// 1e303 borrowed at 10 % for a year, -4e303 paid 32,767 times, the total
// interest solved: the figures run to some 300 digits.
SchedulePrintJob hugeLoanSchedule(int periods)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QStringLiteral("Huge"));
    record.InitialAmount = std::bit_cast<double>(quint64{0x7ed754e31cd072da});
    record.IRate = std::bit_cast<double>(quint64{0x3fb999999999999a});
    record.Years = 1;
    record.Payment = std::bit_cast<double>(quint64{0xfef754e31cd072da});
    record.PerYear = 32767;
    return schedulePrintJob(record, false, periods);
}

PrintOutcome printListOn(PrintSurface &surface, const std::vector<ScenarioRecord> &records)
{
    ScenarioRecord working;
    ListPrintJob job;
    job.investments = true;
    job.headers = listHeaders(true);
    job.count = static_cast<int>(records.size());
    job.readRecord = [&](int n) {
        working = records[static_cast<std::size_t>(n - 1)];
        return Status();
    };
    return printList(surface, mainWindowMeasure(96), job, working);
}

void report(benchmark::State &state, int lines, int pages)
{
    state.counters["lines/s"] = benchmark::Counter(static_cast<double>(lines),
                                                   benchmark::Counter::kIsIterationInvariantRate);
    state.counters["pages"] = pages;
    state.counters["lines"] = lines;
}

void listToPdf(benchmark::State &state)
{
    const auto records = investments(static_cast<int>(state.range(0)));
    QTemporaryDir dir;
    int pages = 0;
    for (auto _ : state) {
        PdfFileSurface pdf(dir.filePath(QStringLiteral("list.pdf")), QStringLiteral("Investments"));
        if (!printListOn(pdf, records).printed())
            state.SkipWithError("the PDF was not written");
        pages = pdf.pageCount();
    }
    report(state, static_cast<int>(records.size()), pages);
}

// Prints a schedule into a PDF file again and again.
void printScheduleToPdf(benchmark::State &state, const SchedulePrintJob &job)
{
    const TextMeasure measure = scheduleWindowMeasure(96);
    QTemporaryDir dir;
    int pages = 0;
    for (auto _ : state) {
        PdfFileSurface pdf(dir.filePath(QStringLiteral("schedule.pdf")),
                           QStringLiteral("Loan Amortization"));
        if (!PrintAmort(pdf, measure, job).printed())
            state.SkipWithError("the PDF was not written");
        pages = pdf.pageCount();
    }
    report(state, job.periodCount, pages);
}

void scheduleToPdf(benchmark::State &state)
{
    printScheduleToPdf(state, loanSchedule(static_cast<int>(state.range(0))));
}

void hugeScheduleToPdf(benchmark::State &state)
{
    printScheduleToPdf(state, hugeLoanSchedule(static_cast<int>(state.range(0))));
}

void hugeScheduleLayout(benchmark::State &state)
{
    const SchedulePrintJob job = hugeLoanSchedule(static_cast<int>(state.range(0)));
    const TextMeasure measure = scheduleWindowMeasure(96);
    int pages = 0;
    for (auto _ : state) {
        RecordingSurface surface;
        PrintAmort(surface, measure, job);
        pages = surface.pageCount();
    }
    report(state, job.periodCount, pages);
}

void listLayout(benchmark::State &state)
{
    const auto records = investments(static_cast<int>(state.range(0)));
    int pages = 0;
    for (auto _ : state) {
        RecordingSurface surface;
        printListOn(surface, records);
        pages = surface.pageCount();
    }
    report(state, static_cast<int>(records.size()), pages);
}

void scheduleLayout(benchmark::State &state)
{
    const SchedulePrintJob job = loanSchedule(static_cast<int>(state.range(0)));
    const TextMeasure measure = scheduleWindowMeasure(96);
    int pages = 0;
    for (auto _ : state) {
        RecordingSurface surface;
        PrintAmort(surface, measure, job);
        pages = surface.pageCount();
    }
    report(state, job.periodCount, pages);
}

constexpr int Sizes[] = {4096, 8192, 16384, 32767};

void sizes(benchmark::internal::Benchmark *bench)
{
    for (const int size : Sizes)
        bench->Arg(size);
    bench->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(listToPdf)->Apply(sizes)->Iterations(2);
BENCHMARK(scheduleToPdf)->Apply(sizes)->Iterations(2);
BENCHMARK(listLayout)->Apply(sizes);
BENCHMARK(scheduleLayout)->Apply(sizes);
BENCHMARK(hugeScheduleToPdf)->Apply(sizes)->Iterations(1);
BENCHMARK(hugeScheduleLayout)->Apply(sizes)->Iterations(1);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    installFontSubstitutions();
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
