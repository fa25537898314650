#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
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

// The compressed streams of a PDF file, uncompressed, in file order: page
// contents, fonts and the like.
inline QList<QByteArray> compressedStreams(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    QList<QByteArray> contents;
    const QByteArray start("stream\n");
    const QByteArray stop("endstream");
    for (qsizetype at = bytes.indexOf(start); at >= 0; at = bytes.indexOf(start, at)) {
        at += start.size();
        const qsizetype end = bytes.indexOf(stop, at);
        if (end < 0)
            break;
        // qUncompress wants the size first and grows its buffer as needed.
        const QByteArray stream = bytes.mid(at, end - at);
        if (stream.startsWith('\x78'))
            contents.append(qUncompress(QByteArray::fromHex("00010000") + stream));
        at = end + stop.size();
    }
    return contents;
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
