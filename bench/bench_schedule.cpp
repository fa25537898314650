// Timings of the schedule windows on the longest schedule there is, 32,767
// periods: opening the window, paging one page on, and jumping to the last
// page, each painted once; and the engine's page of rows with and without
// the kept loop states.

#include "fonts.h"
#include "investmentschedulewindow.h"
#include "loanschedulewindow.h"
#include "schedule.h"
#include "session.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QScrollBar>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace quillet;

// 2,730.6 years paid monthly: 32,767 periods. The loan's total interest is
// left blank, so opening the window also solves it over every period.
ScenarioRecord longestLoan()
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QStringLiteral("The longest schedule"));
    record.InitialAmount = 100000;
    record.IRate = 0.06;
    record.Years = 2730.6;
    record.Payment = 600;
    record.PerYear = 12;
    return record;
}

ScenarioRecord longestInvestment()
{
    ScenarioRecord record = longestLoan();
    record.IRate = 0.0001;
    record.Payment = 1;
    return record;
}

struct Bench
{
    QTemporaryDir dir;
    QString previous = QDir::currentPath();
    Session session;
    std::unique_ptr<ScheduleWindow> window;

    explicit Bench(bool investments)
    {
        QDir::setCurrent(dir.path());
        const QByteArray bytes = encodeRecord(investments ? longestInvestment() : longestLoan());
        for (const QString &name : {Session::InvestmentsFileName, Session::LoansFileName}) {
            QFile file(name);
            if (file.open(QIODevice::WriteOnly))
                file.write(bytes);
        }
        (void)session.openDataFiles(dir.path());
        if (investments)
            window = std::make_unique<InvestmentScheduleWindow>(session);
        else
            window = std::make_unique<LoanScheduleWindow>(session);
        window->setRecord(1);
        window->show();
    }
    ~Bench() { QDir::setCurrent(previous); }
    Q_DISABLE_COPY_MOVE(Bench)

    QScrollBar *bar() { return window->findChild<QScrollBar *>(QStringLiteral("VScroll1")); }
};

// Showing the window again: the record read, the header, the count, the
// scroll bar and the first page.
void openWindow(benchmark::State &state, bool investments)
{
    Bench bench(investments);
    for (auto _ : state) {
        state.PauseTiming();
        bench.window->hide();
        state.ResumeTiming();
        bench.window->show();
        bench.window->repaint();
    }
    state.counters["periods"] = bench.session.PeriodCount;
}

// The first opening: a new window, nothing solved or kept yet.
void openNewWindow(benchmark::State &state, bool investments)
{
    Bench bench(investments);
    for (auto _ : state) {
        state.PauseTiming();
        bench.window.reset();
        if (investments)
            bench.window = std::make_unique<InvestmentScheduleWindow>(bench.session);
        else
            bench.window = std::make_unique<LoanScheduleWindow>(bench.session);
        bench.window->setRecord(1);
        state.ResumeTiming();
        bench.window->show();
        bench.window->repaint();
    }
}

void scrollOnePage(benchmark::State &state, bool investments)
{
    Bench bench(investments);
    QScrollBar *bar = bench.bar();
    bar->setValue(16000);
    for (auto _ : state) {
        bar->setValue(bar->value() == 16000 ? 16012 : 16000);
        bench.window->repaint();
    }
}

void scrollToLastPage(benchmark::State &state, bool investments)
{
    Bench bench(investments);
    QScrollBar *bar = bench.bar();
    for (auto _ : state) {
        state.PauseTiming();
        bar->setValue(1);
        state.ResumeTiming();
        bar->setValue(bar->maximum());
        bench.window->repaint();
    }
    state.counters["lastTop"] = bar->maximum();
}

void lastPageFromPeriodOne(benchmark::State &state)
{
    const ScheduleStart start{100000, 0.06, 600, 12};
    for (auto _ : state)
        benchmark::DoNotOptimize(LoanSchedule::rows(start, 32756, 12));
}

void lastPageFromKeptStates(benchmark::State &state)
{
    const ScheduleStart start{100000, 0.06, 600, 12};
    ScheduleCheckpoints checkpoints;
    (void)checkpoints.loanRows(start, 32756, 12);
    for (auto _ : state)
        benchmark::DoNotOptimize(checkpoints.loanRows(start, 32756, 12));
}

BENCHMARK_CAPTURE(openWindow, loan, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openWindow, investment, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openNewWindow, loan, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(openNewWindow, investment, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrollOnePage, loan, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrollOnePage, investment, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrollToLastPage, loan, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scrollToLastPage, investment, true)->Unit(benchmark::kMillisecond);
BENCHMARK(lastPageFromPeriodOne)->Unit(benchmark::kMicrosecond);
BENCHMARK(lastPageFromKeptStates)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    installFontSubstitutions();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
