#include "celledit.h"

#include "displaytext.h"
#include "rates.h"

namespace quillet {

namespace {

// Plain editable text of a shown amount; the stored value if the shown text
// cannot be read back.
QString amountForEditing(const QString &shownText, double stored)
{
    const std::optional<double> shown = parseNumber(shownText);
    return plainNumber(shown ? *shown : stored);
}

bool isEmptyText(const QString &text)
{
    return text.trimmed().isEmpty();
}

} // namespace

Field fieldOf(GridColumn column)
{
    switch (column) {
    case GridColumn::InitialAmount:
        return Field::InitialAmount;
    case GridColumn::Yield:
        return Field::IRate;
    case GridColumn::Years:
        return Field::Years;
    case GridColumn::Payment:
        return Field::Payment;
    case GridColumn::FutureValue:
        return Field::FutureValue;
    case GridColumn::Desc:
        return Field::Desc;
    case GridColumn::PerYear:
        return Field::PerYear;
    }
    return Field::Desc;
}

EditingText editingText(GridColumn column, const ScenarioRecord &record, const QString &shownText)
{
    switch (column) {
    case GridColumn::Desc: {
        const QString desc = trimmedDesc(record);
        return {desc, !desc.isEmpty()};
    }
    case GridColumn::InitialAmount:
    case GridColumn::Payment:
    case GridColumn::FutureValue: {
        const double stored = *numericField(column, record);
        if (!IsSet(stored))
            return {QString(), false};
        return {amountForEditing(shownText, stored), true};
    }
    case GridColumn::Yield:
        if (!IsSet(record.IRate))
            return {QStringLiteral("%"), false};
        return {plainNumber(record.IRate * 100) + u'%', true};
    case GridColumn::Years:
        if (!IsSet(record.Years))
            return {QString(), false};
        return {plainNumber(record.Years), true};
    case GridColumn::PerYear:
        if (record.PerYear == BlankPerYear)
            return {QString(), false};
        return {QString::number(record.PerYear), true};
    }
    return {};
}

StoreOutcome storeCellText(GridColumn column, const QString &text, ScenarioRecord &record)
{
    if (column == GridColumn::Desc) {
        setDescText(record, isEmptyText(text) ? QString() : text.trimmed());
        return StoreOutcome::Stored;
    }
    if (column == GridColumn::PerYear) {
        if (isEmptyText(text)) {
            record.PerYear = BlankPerYear;
            return StoreOutcome::Stored;
        }
        const std::optional<double> perYear = parseNumber(text);
        if (!perYear)
            return StoreOutcome::NotANumber;
        // Fractions pass the check and are rounded: 0.4 is stored as 0.
        if (!(*perYear > 0 && *perYear <= 365))
            return StoreOutcome::PerYearOutOfRange;
        record.PerYear = static_cast<qint16>(roundHalfEven(*perYear));
        return StoreOutcome::Stored;
    }

    // A rate is read up to its first percent sign.
    const QString number = column == GridColumn::Yield ? text.left(text.indexOf(u'%')) : text;
    double *field = numericField(column, record);
    if (isEmptyText(number)) {
        *field = BlankValue;
        return StoreOutcome::Stored;
    }
    const std::optional<double> value = parseNumber(number);
    if (!value)
        return StoreOutcome::NotANumber;
    const double stored = column == GridColumn::Yield ? *value / 100 : *value;
    // Stored, the marker would silently blank the field and have it solved.
    if (!IsSet(stored))
        return StoreOutcome::BlankMarker;
    *field = stored;
    return StoreOutcome::Stored;
}

QString perYearMessage()
{
    return QStringLiteral("Error, the number of payments per year must an integer from 1 to 365");
}

QString notANumberMessage(const QString &text)
{
    return QStringLiteral("Error, \"%1\" is not a number").arg(text);
}

QString blankMarkerMessage(const QString &text)
{
    return QStringLiteral("Error, \"%1\" cannot be stored: this exact number marks an empty "
                          "field. Nothing was changed; leave the cell empty to have the value "
                          "calculated.")
        .arg(text.trimmed());
}

} // namespace quillet
