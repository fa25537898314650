// Timings of the main window on the largest lists a file can hold: deleting
// the first of 32,767 records and undoing it, adding a record, and drawing
// 14 rows whose records take the engine longest.

#include "fonts.h"
#include "mainwindow.h"
#include "session.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

using namespace quillet;

ScenarioRecord everydayRecord(int n)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, QStringLiteral("Scenario number %1 with a longer description").arg(n));
    record.InitialAmount = 1000 + n;
    record.IRate = 0.05 + (n % 10) / 100.0;
    record.Years = 10 + n % 20;
    record.Payment = 100;
    record.PerYear = 12;
    return record;
}

// A loan that is never paid off over 30 years at 32,767 payments a year:
// its total interest runs the longest literal loop there is.
ScenarioRecord slowestLoan(int n, double shift)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record,
                QStringLiteral("WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW%1").arg(n));
    record.InitialAmount = 100000 + n;
    record.IRate = 0.06;
    record.Years = 30;
    record.PerYear = 32767;
    record.Payment = 0.1 + shift;
    return record;
}

bool writeList(const QString &name, int count, ScenarioRecord (*make)(int))
{
    QByteArray bytes;
    bytes.reserve(qsizetype(count) * SlotSize);
    for (int n = 1; n <= count; ++n)
        bytes += encodeRecord(make(n));
    QFile file(name);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(bytes) == bytes.size();
}

// A window over a fresh directory holding the lists the benchmark asks for.
struct Bench
{
    QTemporaryDir dir;
    QString previous = QDir::currentPath();
    Session session;
    std::unique_ptr<MainWindow> window;

    explicit Bench(int investments)
    {
        QDir::setCurrent(dir.path());
        writeList(QStringLiteral("In.dat"), investments, everydayRecord);
        window = std::make_unique<MainWindow>(session);
        window->Form_Load();
        window->show();
    }
    ~Bench() { QDir::setCurrent(previous); }

    void click(const char *name)
    {
        window->findChild<QAbstractButton *>(QString::fromLatin1(name))->click();
    }
};

void deleteFirstOf32767(benchmark::State &state)
{
    Bench bench(32767);
    for (auto _ : state) {
        bench.click("Sel(1)");
        bench.click("Delete");
        state.PauseTiming();
        bench.click("Undo");
        bench.session.current().SelRow = 0;
        state.ResumeTiming();
    }
    state.counters["records"] = bench.session.current().NumRecs();
}

void undoDeleteOfFirstOf32767(benchmark::State &state)
{
    Bench bench(32767);
    for (auto _ : state) {
        state.PauseTiming();
        bench.click("Sel(1)");
        bench.click("Delete");
        state.ResumeTiming();
        bench.click("Undo");
    }
    state.counters["records"] = bench.session.current().NumRecs();
}

void addNewTo32766(benchmark::State &state)
{
    Bench bench(32766);
    for (auto _ : state) {
        bench.click("AddNew");
        state.PauseTiming();
        // Back to 32,766 so every round adds the last record a list can hold.
        bench.session.current().SelRow = static_cast<qint16>(bench.session.current().NumRecs());
        (void)bench.session.deleteSelected();
        state.ResumeTiming();
    }
}

void redrawFourteenSlowestRows(benchmark::State &state, bool sameRecords)
{
    Bench bench(0);
    bench.click("Loans");
    int round = 0;
    const auto writeRows = [&bench](double shift) {
        ScenarioFile &file = bench.session.list(ListKind::Loans).file;
        for (int n = 1; n <= 14; ++n)
            (void)file.write(n, slowestLoan(n, shift));
    };
    writeRows(0);
    bench.window->DispRows();
    for (auto _ : state) {
        if (!sameRecords) {
            // Records never drawn before: every field is solved afresh.
            state.PauseTiming();
            writeRows(++round * 1e-6);
            state.ResumeTiming();
        }
        bench.window->DispRows();
    }
}

void redrawFourteenSlowestRowsAgain(benchmark::State &state)
{
    redrawFourteenSlowestRows(state, true);
}

void drawFourteenSlowestRowsFirstTime(benchmark::State &state)
{
    redrawFourteenSlowestRows(state, false);
}

BENCHMARK(deleteFirstOf32767)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(undoDeleteOfFirstOf32767)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(addNewTo32766)->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(redrawFourteenSlowestRowsAgain)->Unit(benchmark::kMillisecond);
BENCHMARK(drawFourteenSlowestRowsFirstTime)->Unit(benchmark::kMillisecond)->Iterations(10);

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
