#include "displaytext.h"

#include <QLocale>

#include <cmath>

namespace quillet {

FieldDisplay FieldText(const ScenarioRecord &record, Field field, bool investments,
                       quint16 stateFlags)
{
    return displayOf(field, Solve(record, field, investments, stateFlags));
}

FieldDisplay displayOf(Field field, const SolveResult &solved)
{
    return {FormatValue(field, solved.value, solved.ok), solved.computed};
}

QString FormatValue(Field field, double value, bool ok)
{
    // Only a damaged file can store a value that is not a number: it has no
    // text to show.
    if (!ok || !std::isfinite(value))
        return {};
    const QLocale locale;
    switch (field) {
    case Field::InitialAmount:
    case Field::Payment:
    case Field::FutureValue:
        return locale.toCurrencyString(value, QString(), 2) + u' ';
    case Field::IRate:
        return locale.toString(value * 100, 'f', 2) + u"% ";
    case Field::Years:
        return locale.toString(value, 'f', 1) + u' ';
    case Field::Desc:
    case Field::PerYear:
        break;
    }
    return {};
}

QString PadNum(double value, int width)
{
    double limit = std::pow(10.0, width - 1);
    QString blanks;
    for (int k = 1; k <= width - 1; ++k) {
        if (value < limit)
            blanks += u' ';
        limit = limit / 10;
    }
    return blanks + QLocale().toString(value, 'f', 0);
}

QString RemoveText(const QString &s, const QString &t)
{
    const qsizetype position = s.indexOf(t, 0, Qt::CaseSensitive);
    if (position < 0)
        return s;
    return s.left(position) + s.right(s.size() - position - t.size());
}

std::optional<double> parseNumber(QStringView text)
{
    const QLocale locale;
    QString number = text.trimmed().toString();
    bool negative = false;
    if (number.size() >= 2 && number.startsWith(u'(') && number.endsWith(u')')) {
        negative = true;
        number = number.sliced(1, number.size() - 2);
    }
    const QString symbol = locale.currencySymbol(QLocale::CurrencySymbol);
    if (!symbol.isEmpty())
        number.remove(symbol);
    // Blanks may stand between sign, symbol and digits, and some locales group
    // digits with a (narrow) no-break space; none of them carries meaning.
    number.removeIf([](QChar c) { return c.isSpace(); });

    bool ok = false;
    const double value = locale.toDouble(number, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    if (negative) {
        if (value < 0)
            return std::nullopt;
        return -value;
    }
    return value;
}

QString plainNumber(double value)
{
    // Fifteen significant digits, as many as a double holds faithfully, so
    // that 0.07 * 100 edits as 7 rather than 7.000000000000001.
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value, 'g', 15);
}

} // namespace quillet
