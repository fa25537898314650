#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace quillet::report {

// Rows of text cells under a row of column headings, written either as
// aligned columns for reading or as CSV for other programs.
class TextTable final
{
public:
    enum class Align { Left, Right };

    struct Column
    {
        QString heading;
        Align align = Align::Left;
    };

    explicit TextTable(QList<Column> columns);

    // A row with fewer cells than columns is completed with empty ones.
    void addRow(QStringList cells);
    qsizetype rowCount() const { return m_rows.size(); }

    // Each column as wide as its widest cell, two blanks apart; lines end
    // without blanks and with a newline. Control characters show as '?', so
    // that no cell can break the table.
    QString toText() const;
    // RFC 4180: the headings as the first record, CRLF after every record,
    // a field quoted when it holds a comma, a quote or a line break.
    QString toCsv() const;

private:
    QList<Column> m_columns;
    QList<QStringList> m_rows;
};

// One field of a CSV record, quoted when it holds a comma, a quote, a line
// break or any other control character.
QString csvField(const QString &text);

// The text with each control character (line breaks, tabs, C0 and C1
// controls) replaced by '?'.
QString withoutControls(const QString &text);

// The text without the blanks at its end.
QString withoutTrailingBlanks(const QString &text);

} // namespace quillet::report
