#pragma once

#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>

namespace quillet::test {

// The text of a PDF file as pdftotext reads it, pages separated by form
// feeds; a null string when pdftotext cannot read it.
inline QString pdfText(const QString &path, const QStringList &options = {})
{
    QProcess process;
    process.start(QStringLiteral("pdftotext"), options + QStringList{path, QStringLiteral("-")});
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

// The number of pages of a PDF file by pdfinfo; 0 when it cannot be read.
inline int pdfPageCount(const QString &path)
{
    QProcess process;
    process.start(QStringLiteral("pdfinfo"), {path});
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        return 0;
    const QStringList lines = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n');
    for (const QString &line : lines) {
        if (line.startsWith(QStringLiteral("Pages:")))
            return line.mid(6).trimmed().toInt();
    }
    return 0;
}

// The non-empty lines of a text, each without surrounding blanks: what two
// printouts of the same content share whatever their page breaks.
inline QStringList contentLines(const QString &text)
{
    QStringList lines;
    for (const QString &line : text.split(QRegularExpression(QStringLiteral("[\n\f]")))) {
        const QString trimmed = line.trimmed();
        if (!trimmed.isEmpty())
            lines << trimmed;
    }
    return lines;
}

} // namespace quillet::test
