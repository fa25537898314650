#include "headeredit.h"

#include "celledit.h"
#include "displaytext.h"
#include "rates.h"

#include <QLocale>

#include <limits>

namespace quillet {

namespace {

QString largestCount()
{
    return QLocale().toString(std::numeric_limits<qint16>::max());
}

} // namespace

QString headerEditingText(GridColumn field, const ScenarioRecord &record, const QString &shownText)
{
    switch (field) {
    case GridColumn::Desc:
        // The shown text, its leading blank included.
        return trimmedDesc(record).isEmpty() ? QString() : shownText;
    case GridColumn::Yield:
        // A blank rate has no figure to edit: just its sign, as in the grid.
        if (!IsSet(record.IRate))
            return QStringLiteral("%");
        return plainNumber(record.IRate * 100) + u'%';
    case GridColumn::PerYear:
        return QString::number(record.PerYear);
    case GridColumn::InitialAmount:
    case GridColumn::Years:
    case GridColumn::Payment:
    case GridColumn::FutureValue:
        break;
    }
    // A field the engine gave no value shows nothing, and is edited so.
    const std::optional<double> shown = parseNumber(shownText);
    return shown ? plainNumber(*shown) : QString();
}

HeaderStore storeHeaderText(GridColumn field, const QString &text, ScenarioRecord &record)
{
    if (field == GridColumn::Desc) {
        setDescText(record, text.trimmed());
        return HeaderStore::Stored;
    }
    const QString number =
        field == GridColumn::Yield ? RemoveText(text, QStringLiteral("%")) : text;
    if (number.trimmed().isEmpty())
        return HeaderStore::Empty;
    const std::optional<double> value = parseNumber(number);
    if (!value)
        return HeaderStore::NotANumber;
    if (field == GridColumn::PerYear) {
        const double rounded = roundHalfEven(*value);
        if (!(rounded >= std::numeric_limits<qint16>::min() &&
              rounded <= std::numeric_limits<qint16>::max()))
            return HeaderStore::PerYearTooLarge;
        record.PerYear = static_cast<qint16>(rounded);
        return HeaderStore::Stored;
    }
    const double stored = field == GridColumn::Yield ? *value / 100 : *value;
    // Stored, the marker would blank the field behind the user's back.
    if (!IsSet(stored))
        return HeaderStore::BlankMarker;
    *numericField(field, record) = stored;
    return HeaderStore::Stored;
}

QString perYearTooLargeMessage(const QString &text)
{
    const QLocale locale;
    return QStringLiteral("Error, \"%1\" payments per year cannot be stored: the number must lie "
                          "between %2 and %3. Nothing was changed.")
        .arg(text.trimmed(), locale.toString(std::numeric_limits<qint16>::min()), largestCount());
}

QString tooManyPeriodsMessage(double periods, bool edited)
{
    const QString count = QLocale().toString(periods, 'f', 0);
    if (edited)
        return QStringLiteral("Error, this change would give the schedule %1 periods, more than "
                              "the %2 a schedule can show. Nothing was changed.")
            .arg(count, largestCount());
    return QStringLiteral("This scenario's schedule would have %1 periods, more than the %2 a "
                          "schedule can show. Change its years or payments per year to see it.")
        .arg(count, largestCount());
}

} // namespace quillet
