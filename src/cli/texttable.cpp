#include "texttable.h"

#include <algorithm>

namespace quillet::report {

TextTable::TextTable(QList<Column> columns) : m_columns(std::move(columns)) {}

void TextTable::addRow(QStringList cells)
{
    while (cells.size() < m_columns.size())
        cells.append(QString());
    m_rows.append(std::move(cells));
}

QString TextTable::toText() const
{
    QList<qsizetype> widths;
    for (qsizetype c = 0; c < m_columns.size(); ++c) {
        qsizetype width = m_columns[c].heading.size();
        for (const QStringList &row : m_rows)
            width = std::max(width, row[c].size());
        widths.append(width);
    }

    auto line = [&](auto cellAt) -> QString {
        QString text;
        for (qsizetype c = 0; c < m_columns.size(); ++c) {
            if (c > 0)
                text += QStringLiteral("  ");
            const QString cell = withoutControls(cellAt(c));
            if (m_columns[c].align == Align::Right)
                text += cell.rightJustified(widths[c], u' ');
            else
                text += cell.leftJustified(widths[c], u' ');
        }
        return withoutTrailingBlanks(text) + u'\n';
    };

    QString text = line([&](qsizetype c) { return m_columns[c].heading; });
    for (const QStringList &row : m_rows)
        text += line([&](qsizetype c) { return row[c]; });
    return text;
}

QString TextTable::toCsv() const
{
    auto record = [](const QStringList &fields) -> QString {
        QStringList quoted;
        for (const QString &field : fields)
            quoted.append(csvField(field));
        return quoted.join(u',') + QStringLiteral("\r\n");
    };

    QStringList headings;
    for (const Column &column : m_columns)
        headings.append(column.heading);
    QString text = record(headings);
    for (const QStringList &row : m_rows)
        text += record(row);
    return text;
}

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control;
}

QString withoutControls(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), isControl))
        return text;
    QString shown = text;
    std::replace_if(shown.begin(), shown.end(), isControl, u'?');
    return shown;
}

QString csvField(const QString &text)
{
    // Line breaks and the other control characters are quoted too, so that
    // a reader keeps them inside their field.
    const bool mustQuote = text.contains(u',') || text.contains(u'"') ||
                           std::any_of(text.begin(), text.end(), isControl);
    if (!mustQuote)
        return text;
    QString quoted = text;
    quoted.replace(u'"', QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString withoutTrailingBlanks(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1) == u' ')
        --end;
    return text.left(end);
}

} // namespace quillet::report
