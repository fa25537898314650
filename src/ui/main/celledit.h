#pragma once

#include "helptexts.h"
#include "scenariorecord.h"
#include "solver.h"

#include <QString>

namespace quillet {

// The engine's name for the field a column shows.
Field fieldOf(GridColumn column);

// The double field a column edits, or null; const with a const record. The
// schedule windows' header fields edit the same fields.
template <typename Record>
auto numericField(GridColumn column, Record &record) -> decltype(&record.InitialAmount)
{
    switch (column) {
    case GridColumn::InitialAmount:
        return &record.InitialAmount;
    case GridColumn::Yield:
        return &record.IRate;
    case GridColumn::Years:
        return &record.Years;
    case GridColumn::Payment:
        return &record.Payment;
    case GridColumn::FutureValue:
        return &record.FutureValue;
    case GridColumn::Desc:
    case GridColumn::PerYear:
        break;
    }
    return nullptr;
}

// The text a cell is given for editing when it is clicked, and whether its
// changed flag is lowered afterwards. A blank field leaves the flag as it
// was, so a blank that is left alone is stored as a blank again.
struct EditingText
{
    QString text;
    bool clearChangedFlag = false;
};

// shownText is what the cell showed before the click: amounts are edited as
// shown, rounded to cents, not at their full stored precision.
EditingText editingText(GridColumn column, const ScenarioRecord &record, const QString &shownText);

enum class StoreOutcome {
    Stored,            // the text is in the record
    NotANumber,        // the record is unchanged
    PerYearOutOfRange, // the record is unchanged
    BlankMarker        // the number is the blank marker itself; the record is unchanged
};

// Parses a cell's text into its field of the record: an empty text stores
// the blank marker, a rate is typed in percent with or without its sign.
StoreOutcome storeCellText(GridColumn column, const QString &text, ScenarioRecord &record);

QString perYearMessage();
QString notANumberMessage(const QString &text);
QString blankMarkerMessage(const QString &text);

} // namespace quillet
