#pragma once

#include "helptexts.h"
#include "scenariorecord.h"

#include <QString>

namespace quillet {

// The text a schedule header field is given for editing when it is clicked.
// shownText is what the field showed: amounts and years are edited as shown,
// the rate from the record.
QString headerEditingText(GridColumn field, const ScenarioRecord &record, const QString &shownText);

enum class HeaderStore {
    Stored,         // the text is in the record
    Empty,          // a numeric field left empty: nothing changes
    NotANumber,     // nothing changes
    BlankMarker,    // the number that marks an empty field: nothing changes
    PerYearTooLarge // beyond what the record's 16 bits hold: nothing changes
};

// Parses an edited header field into the record. The rate is typed in
// percent, its first "%" dropped wherever it stands; payments a year are
// rounded half to even and not range-checked.
HeaderStore storeHeaderText(GridColumn field, const QString &text, ScenarioRecord &record);

QString perYearTooLargeMessage(const QString &text);
// Periods too many for a schedule to count, for an edit (nothing written)
// or for a scenario being opened.
QString tooManyPeriodsMessage(double periods, bool edited);

} // namespace quillet
