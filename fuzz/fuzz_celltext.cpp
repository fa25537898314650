// Any text typed into a cell of any column, in a few locales: it is stored
// or refused, never anything else. A stored number is a number the record
// can hold, shown again as a text that is taken back the same. The texts
// of a schedule window's header go through their own readers too.

#include "celledit.h"
#include "displaytext.h"
#include "fuzzcheck.h"
#include "helptexts.h"
#include "rates.h"
#include "schedule.h"
#include "scenariorecord.h"

#include <QLocale>
#include <QString>

#include <cmath>
#include <cstddef>
#include <cstdint>

using namespace quillet;

namespace {

constexpr GridColumn Columns[] = {
    GridColumn::Desc,    GridColumn::InitialAmount, GridColumn::Yield,      GridColumn::Years,
    GridColumn::Payment, GridColumn::PerYear,       GridColumn::FutureValue};

double storedValue(GridColumn column, const ScenarioRecord &record)
{
    switch (column) {
    case GridColumn::InitialAmount:
        return record.InitialAmount;
    case GridColumn::Yield:
        return record.IRate;
    case GridColumn::Years:
        return record.Years;
    case GridColumn::Payment:
        return record.Payment;
    case GridColumn::FutureValue:
        return record.FutureValue;
    case GridColumn::Desc:
    case GridColumn::PerYear:
        break;
    }
    return 0;
}

void typeInto(GridColumn column, const QString &text)
{
    ScenarioRecord record;
    record.makeBlank();
    const ScenarioRecord before = record;
    const StoreOutcome outcome = storeCellText(column, text, record);
    if (outcome != StoreOutcome::Stored) {
        fuzz::check(record == before, QStringLiteral("a refused text leaves the record as it was"));
        return;
    }
    if (column == GridColumn::Desc) {
        fuzz::check(descText(record).size() == DescLength,
                    QStringLiteral("a description is held in 50 characters"));
        return;
    }
    if (column == GridColumn::PerYear) {
        fuzz::check(
            record.PerYear == BlankPerYear || (record.PerYear >= 0 && record.PerYear <= 365),
            QStringLiteral("payments a year '%1' stored as %2").arg(text).arg(record.PerYear));
        return;
    }
    const double value = storedValue(column, record);
    if (!IsSet(value))
        return; // an empty text stores the blank marker
    fuzz::check(std::isfinite(value),
                QStringLiteral("the text '%1' is stored as a finite number").arg(text));
    // What is stored is shown, and the text a click gives for editing is
    // taken back.
    const Field field = fieldOf(column);
    const QString shown = FormatValue(field, value, true);
    if (shown.isEmpty())
        return;
    const EditingText editing = editingText(column, record, shown);
    ScenarioRecord again = record;
    const StoreOutcome second = storeCellText(column, editing.text, again);
    fuzz::check(second == StoreOutcome::Stored || second == StoreOutcome::BlankMarker,
                QStringLiteral("'%1' stored, shown as '%2', edited as '%3', is taken back")
                    .arg(text, shown, editing.text));
    // An amount is edited as shown, to the cent, in 15 significant digits:
    // from a cent to 1e12 it then shows as before (below a cent, a "-0.00"
    // becomes "0.00").
    const bool amount = column == GridColumn::InitialAmount || column == GridColumn::Payment ||
                        column == GridColumn::FutureValue;
    if (second == StoreOutcome::Stored && amount && std::fabs(value) >= 0.01 &&
        std::fabs(value) < 1e12) {
        const QString shownAgain = FormatValue(field, storedValue(column, again), true);
        fuzz::check(shownAgain == shown,
                    QStringLiteral("'%1' shown as '%2', edited as '%3', shows '%4' once left "
                                   "untouched")
                        .arg(text, shown, editing.text, shownAgain));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const fuzz::CurrentInput current(data, size);
    if (size < 1)
        return 0;
    // The first byte picks the locale; the rest is the typed text.
    QLocale::setDefault(fuzz::pickLocale(data[0]));
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data + 1),
                                           static_cast<qsizetype>(size - 1));
    for (const GridColumn column : Columns)
        typeInto(column, text);

    (void)parseNumber(text);
    (void)schedulePerYear(text);
    // The schedule's period count reads the Years and PerYear texts; a tab
    // splits the input into the two.
    const qsizetype tab = text.indexOf(u'\t');
    const QString years = tab < 0 ? text : text.left(tab);
    const QString perYear = tab < 0 ? QString() : text.sliced(tab + 1);
    const PeriodCountOutcome count = PeriodCountFor(years, perYear);
    if (count.status == PeriodCountOutcome::Status::Counted)
        fuzz::check(count.count == count.periods,
                    QStringLiteral("a counted schedule holds its rounded number of periods"));
    return 0;
}
