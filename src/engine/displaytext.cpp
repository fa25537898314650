#include "displaytext.h"

#include "figuretext.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

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
        return currencyText(value, locale) + u' ';
    case Field::IRate: {
        // A rate near the largest double has no percentage to show.
        const double percent = value * 100;
        if (!std::isfinite(percent))
            return {};
        return numberText(percent, 2, locale) + u"% ";
    }
    case Field::Years:
        return numberText(value, 1, locale) + u' ';
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
    return blanks + numberText(value, 0);
}

QString RemoveText(const QString &s, const QString &t)
{
    const qsizetype position = s.indexOf(t, 0, Qt::CaseSensitive);
    if (position < 0)
        return s;
    return s.left(position) + s.right(s.size() - position - t.size());
}

namespace {

// Qt writes direction marks (U+200E, U+200F, U+061C and the like) into the
// signs and currency texts of right-to-left locales; they carry no value.
QString withoutFormatMarks(QStringView text)
{
    QString plain;
    plain.reserve(text.size());
    for (const QChar c : text) {
        if (c.category() != QChar::Other_Format)
            plain.append(c);
    }
    return plain;
}

// A number written the locale's way, rewritten in the C locale's form: ASCII
// digits, '.' for the decimal point, ',' for grouping, ASCII signs and 'e'
// for the exponent (which is "\u00d710^" in some locales). The C parser
// then still checks that grouping separators stand where they belong.
QString inCForm(QStringView number, const QLocale &locale)
{
    const QString exponent = withoutFormatMarks(locale.exponential());
    const QString decimal = withoutFormatMarks(locale.decimalPoint());
    const QString group = withoutFormatMarks(locale.groupSeparator());
    const QString minus = withoutFormatMarks(locale.negativeSign());
    const QString plus = withoutFormatMarks(locale.positiveSign());
    const std::pair<const QString *, QChar> forms[] = {
        {&exponent, u'e'}, {&decimal, u'.'}, {&group, u','}, {&minus, u'-'}, {&plus, u'+'}};

    QString c;
    c.reserve(number.size());
    for (qsizetype k = 0; k < number.size();) {
        const QStringView rest = number.sliced(k);
        const auto form = std::find_if(std::begin(forms), std::end(forms), [&](const auto &f) {
            return !f.first->isEmpty() && rest.startsWith(*f.first);
        });
        if (form != std::end(forms)) {
            c.append(form->second);
            k += form->first->size();
            continue;
        }
        const QChar ch = number.at(k);
        if (ch.category() == QChar::Number_DecimalDigit && ch.digitValue() >= 0)
            c.append(QChar(u'0' + ch.digitValue()));
        else if (ch == u'\u2212') // the minus sign some locales use
            c.append(u'-');
        else
            c.append(ch);
        ++k;
    }
    return c;
}

// The C form first; the locale's own parser for what it alone knows, such
// as grouping in twos.
std::optional<double> numberOf(const QString &number, const QLocale &locale)
{
    bool ok = false;
    double value = QLocale::c().toDouble(inCForm(number, locale), &ok);
    if (!ok)
        value = locale.toDouble(number, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace

std::optional<double> parseNumber(QStringView text)
{
    const QLocale locale;
    QString number = withoutFormatMarks(text).trimmed();
    bool negative = false;
    if (number.size() >= 2 && number.startsWith(u'(') && number.endsWith(u')')) {
        negative = true;
        number = number.sliced(1, number.size() - 2);
    }
    // Blanks may stand between sign, symbol and digits, and some locales group
    // digits with a (narrow) no-break space; none of them carries meaning.
    number.removeIf([](QChar c) { return c.isSpace(); });

    // The text as it is, then without the currency symbol, then without the
    // currency code Qt writes where a locale has no symbol. A symbol can be
    // the exponent letter too (E in en_SZ), so it goes only when the text
    // reads as no number with it.
    std::optional<double> value = numberOf(number, locale);
    for (const QLocale::CurrencySymbolFormat format :
         {QLocale::CurrencySymbol, QLocale::CurrencyIsoCode}) {
        if (value)
            break;
        QString symbol = withoutFormatMarks(locale.currencySymbol(format));
        symbol.removeIf([](QChar c) { return c.isSpace(); });
        const qsizetype at = symbol.isEmpty() ? -1 : number.indexOf(symbol);
        if (at >= 0)
            value = numberOf(QString(number).remove(at, symbol.size()), locale);
    }
    if (!value)
        return std::nullopt;
    if (negative) {
        if (*value < 0)
            return std::nullopt;
        return -*value;
    }
    return value;
}

QString plainNumber(double value)
{
    // Fifteen significant digits, as many as a double holds faithfully, so
    // that 0.07 * 100 edits as 7 rather than 7.000000000000001.
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = locale.toString(value, 'g', 15);
    // Near the largest double, fifteen digits round up past it; seventeen
    // always read back.
    if (std::isfinite(value) && !parseNumber(text))
        text = locale.toString(value, 'g', 17);
    return text;
}

} // namespace quillet
