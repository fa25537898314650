// The schedule of any record, as an investment and as a loan: the header the
// window shows, the number of periods from its texts, the whole run period
// by period, and pages read through the kept loop states, which must give
// the same bits as the run from the first period. The pages' texts are
// formatted as the window and the printout show them.

#include "displaytext.h"
#include "fuzzcheck.h"
#include "schedule.h"
#include "scenariorecord.h"

#include <QByteArray>
#include <QLocale>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <vector>

using namespace quillet;

namespace {

constexpr int PageRows = 12;

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

bool sameRow(const InvestmentScheduleRow &a, const InvestmentScheduleRow &b)
{
    return a.period == b.period && sameBits(a.earnings, b.earnings) &&
           sameBits(a.cumulativeEarnings, b.cumulativeEarnings) && sameBits(a.balance, b.balance);
}

bool sameRow(const LoanScheduleRow &a, const LoanScheduleRow &b)
{
    return a.period == b.period && sameBits(a.principal, b.principal) &&
           sameBits(a.interest, b.interest) &&
           sameBits(a.cumulativePrincipal, b.cumulativePrincipal) &&
           sameBits(a.cumulativeInterest, b.cumulativeInterest) && sameBits(a.balance, b.balance);
}

void showRow(const InvestmentScheduleRow &row)
{
    (void)schedulePeriodText(row.period);
    (void)scheduleAmountText(row.earnings);
    (void)scheduleAmountText(row.cumulativeEarnings);
    (void)scheduleAmountText(row.balance);
}

void showRow(const LoanScheduleRow &row)
{
    (void)schedulePeriodText(row.period);
    (void)scheduleAmountText(row.principal);
    (void)scheduleAmountText(row.interest);
    (void)scheduleAmountText(row.cumulativePrincipal);
    (void)scheduleAmountText(row.cumulativeInterest);
    (void)scheduleAmountText(row.balance);
}

// The first periods of the pages to look at: the first, the last, and one
// the input picks.
std::vector<int> pageStarts(int periods, quint16 pick)
{
    std::vector<int> starts{1};
    if (periods > PageRows)
        starts.push_back(periods - PageRows + 1);
    if (periods > 1)
        starts.push_back(1 + pick % periods);
    return starts;
}

template <typename Schedule, typename Read>
void runSchedule(const ScheduleStart &start, int periods, quint16 pick, Read readPage)
{
    std::vector<typename Schedule::Row> all;
    all.reserve(static_cast<std::size_t>(periods));
    Schedule schedule(start);
    for (int k = 0; k < periods; ++k)
        all.push_back(schedule.next());
    for (const int first : pageStarts(periods, pick)) {
        const int count = std::min(PageRows, periods - first + 1);
        const auto page = readPage(first, count);
        fuzz::check(static_cast<int>(page.size()) == count,
                    QStringLiteral("a page of %1 rows from period %2").arg(count).arg(first));
        for (int k = 0; k < count; ++k) {
            const auto &row = page[static_cast<std::size_t>(k)];
            fuzz::check(sameRow(row, all[static_cast<std::size_t>(first - 1 + k)]),
                        QStringLiteral("period %1 read from a kept state has the bits of the "
                                       "run from the first period")
                            .arg(first + k));
            showRow(row);
        }
    }
}

void scheduleOf(const ScenarioRecord &record, bool investments, quint16 pick)
{
    const ScheduleHeader header = scheduleHeader(record, investments);
    const PeriodCountOutcome count =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    if (count.status != PeriodCountOutcome::Status::Counted || count.count <= 0)
        return;
    const std::optional<double> perYear = schedulePerYear(header.perYear);
    fuzz::check(perYear.has_value(), QStringLiteral("a counted schedule has payments a year"));
    const ScheduleStart start = scheduleStart(record, investments, *perYear);
    ScheduleCheckpoints checkpoints;
    if (investments) {
        runSchedule<InvestmentSchedule>(start, count.count, pick, [&](int first, int rows) {
            return checkpoints.investmentRows(start, first, rows);
        });
    } else {
        runSchedule<LoanSchedule>(start, count.count, pick, [&](int first, int rows) {
            return checkpoints.loanRows(start, first, rows);
        });
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const fuzz::CurrentInput current(data, size);
    // One record as a list file holds it; Spare, which the program never
    // reads, picks the page in the middle.
    const ScenarioRecord record =
        decodeRecord(QByteArrayView(reinterpret_cast<const char *>(data),
                                    static_cast<qsizetype>(std::min<size_t>(size, SlotSize))));
    const quint16 pick = static_cast<quint16>(record.Spare);
    scheduleOf(record, true, pick);
    scheduleOf(record, false, pick);
    return 0;
}
