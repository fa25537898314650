// Any text printed anywhere on a PDF page, in any weight, with the list's
// and the schedules' font sizes and a locale's layout direction: the
// printout is written whole and reads as a PDF. The text comes in as raw
// UTF-16, so lone surrogates, controls, marks and unassigned characters
// reach the layout and the writer as they are.

#include "fuzzcheck.h"
#include "pdfsurface.h"

#include <QByteArray>
#include <QFile>
#include <QGuiApplication>
#include <QRegularExpression>
#include <QString>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

using namespace quillet;

namespace {

QTemporaryDir *scratch = nullptr;

constexpr double Sizes[] = {10.0, 9.0, 20.0};
constexpr double Lefts[] = {100, 3000, -20000, 10000, 8800};

// Every object the cross-reference table lists starts where it says.
bool indexFindsEveryObject(const QByteArray &pdf)
{
    const qsizetype start = pdf.lastIndexOf("startxref\n");
    if (start < 0)
        return false;
    const qsizetype table = pdf.mid(start + 10).split('\n').value(0).toLongLong();
    if (table <= 0 || table >= pdf.size() || !pdf.mid(table).startsWith("xref\n0 "))
        return false;
    const QList<QByteArray> lines = pdf.mid(table).split('\n');
    const int count = lines.value(1).mid(2).toInt();
    for (int id = 1; id < count; ++id) {
        const QByteArray entry = lines.value(2 + id);
        if (entry.endsWith("f "))
            return false;
        const qsizetype at = entry.left(10).toLongLong();
        const QByteArray head = QByteArray::number(id) + QByteArrayView(" 0 obj\n");
        if (at < 0 || at >= pdf.size() || !QByteArrayView(pdf).sliced(at).startsWith(head))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    scratch = new QTemporaryDir;
    if (!scratch->isValid())
        fuzz::fatal(QStringLiteral("no scratch folder"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const fuzz::CurrentInput current(data, size);
    if (size < 2)
        return 0;
    // The first byte picks the locale and with it the layout direction,
    // the second the size, the weight and where the lines begin.
    const QLocale locale = fuzz::pickLocale(data[0]);
    QLocale::setDefault(locale);
    QGuiApplication::setLayoutDirection(locale.textDirection());
    const unsigned char style = data[1];
    const QString text = QString::fromUtf16(reinterpret_cast<const char16_t *>(data + 2),
                                            static_cast<qsizetype>((size - 2) / 2));

    const QString path = scratch->filePath(QStringLiteral("printout.pdf"));
    int pages = 0;
    {
        PdfFileSurface pdf(path, text.left(20));
        fuzz::check(pdf.isOpen(), QStringLiteral("the scratch PDF opens"));
        pdf.setFontSize(Sizes[style % 3]);
        int line = 0;
        for (const QString &piece : text.split(u'\n')) {
            pdf.setFontBold((style >> 2 & 1) != 0 && line % 2 == 0);
            pdf.setCurrentX(Lefts[(style / 8 + line) % 5]);
            pdf.printLine(piece);
            ++line;
        }
        fuzz::check(pdf.endDoc(), QStringLiteral("the printout is written"));
        pages = pdf.pageCount();
    }
    QFile file(path);
    fuzz::check(file.open(QIODevice::ReadOnly), QStringLiteral("the PDF is there"));
    const QByteArray pdf = file.readAll();
    fuzz::check(pdf.startsWith("%PDF-1.4\n") && pdf.endsWith("%%EOF\n"),
                QStringLiteral("the PDF has its head and its end"));
    fuzz::check(indexFindsEveryObject(pdf), QStringLiteral("the index finds every object"));
    fuzz::check(pdf.count("/Type /Page ") == pages,
                QStringLiteral("the PDF has the pages the surface began"));
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    return 0;
}
