// A list file of any bytes: decoded into records as the program counts them,
// each record written back byte for byte, and every field of every record
// solved and shown as an investment and as a loan. Every text shown must
// read back as a number when a person leaves the cell untouched.

#include "celledit.h"
#include "displaytext.h"
#include "fuzzcheck.h"
#include "rates.h"
#include "scenariofile.h"
#include "scenariorecord.h"
#include "solver.h"

#include <QByteArray>
#include <QLocale>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

using namespace quillet;

namespace {

constexpr std::array<std::pair<Field, GridColumn>, 5> NumericFields = {{
    {Field::InitialAmount, GridColumn::InitialAmount},
    {Field::IRate, GridColumn::Yield},
    {Field::Years, GridColumn::Years},
    {Field::Payment, GridColumn::Payment},
    {Field::FutureValue, GridColumn::FutureValue},
}};

// The 94 bytes of data of a slot survive a read and a write unchanged.
void checkCodec(QByteArrayView slot, const ScenarioRecord &record)
{
    const QByteArray written = encodeRecord(record);
    fuzz::check(written.size() == SlotSize, QStringLiteral("a record encodes to 148 bytes"));
    const qsizetype data = std::min<qsizetype>(slot.size(), 94);
    fuzz::check(written.first(data) == slot.first(data),
                QStringLiteral("a record written back keeps its bytes"));
    fuzz::check(written.sliced(94) == QByteArray(SlotSize - 94, '\0'),
                QStringLiteral("the filler is written as zeros"));
}

void checkField(const ScenarioRecord &record, Field field, GridColumn column, bool investments,
                quint16 flags)
{
    const SolveResult solved = Solve(record, field, investments, flags);
    const FieldDisplay shown = FieldText(record, field, investments, flags);
    fuzz::check(shown.computed == solved.computed,
                QStringLiteral("the bold flag is the solver's computed flag"));
    if (shown.text.isEmpty())
        return;
    // The cell is clicked and left as it was: its editing text must be
    // taken back.
    const EditingText editing = editingText(column, record, shown.text);
    ScenarioRecord edited = record;
    const StoreOutcome outcome = storeCellText(column, editing.text, edited);
    fuzz::check(outcome == StoreOutcome::Stored || outcome == StoreOutcome::BlankMarker,
                QStringLiteral("the editing text '%1' of the shown text '%2' is taken back")
                    .arg(editing.text, shown.text));
    const QString figure =
        field == Field::IRate ? shown.text.left(shown.text.indexOf(u'%')) : shown.text;
    fuzz::check(parseNumber(figure).has_value(),
                QStringLiteral("the shown text '%1' reads back as a number").arg(shown.text));
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
    const QByteArrayView bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const std::vector<ScenarioRecord> records = decodeListBytes(bytes);
    fuzz::check(static_cast<qint64>(records.size()) ==
                    ScenarioFile::countForSize(static_cast<qint64>(size)),
                QStringLiteral("the decoder counts the records as the list file does"));
    for (std::size_t n = 0; n < records.size(); ++n) {
        const ScenarioRecord &record = records[n];
        const qsizetype offset = static_cast<qsizetype>(n) * SlotSize;
        checkCodec(bytes.sliced(offset, std::min<qsizetype>(SlotSize, bytes.size() - offset)),
                   record);
        (void)trimmedDesc(record);
        // Spare means nothing to the program; here it picks the tolerance.
        const quint16 flags = (record.Spare & 1) ? FineToleranceFlag : 0;
        for (const bool investments : {true, false}) {
            for (const auto &[field, column] : NumericFields)
                checkField(record, field, column, investments, flags);
        }
    }
    return 0;
}
