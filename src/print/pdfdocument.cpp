#include "pdfdocument.h"

#include "pdffont.h"
#include "pdfsyntax.h"

#include <QDateTime>
#include <QIODevice>
#include <QPainterPath>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace quillet {

namespace {

// The fixed objects; the rest are numbered as they are written.
constexpr int CatalogObject = 1;
constexpr int PagesObject = 2;
constexpr int InfoObject = 3;
constexpr int ResourcesObject = 4;
constexpr int FirstFreeObject = 5;

// Page contents are mostly digits at varying offsets: the fastest
// compression keeps nearly all of the gain of the default one.
constexpr int ContentCompression = 1;
constexpr int FontCompression = 6;

QByteArray deflated(const QByteArray &data, int level)
{
    // qCompress puts the uncompressed size in front of the zlib stream.
    return qCompress(data, level).mid(4);
}

// The six capitals that mark a font's name as a subset, told apart by the
// glyphs it keeps.
QByteArray subsetTag(const std::vector<bool> &used)
{
    quint32 hash = 2166136261u;
    for (std::size_t g = 0; g < used.size(); ++g) {
        if (used[g])
            hash = (hash ^ static_cast<quint32>(g)) * 16777619u;
    }
    QByteArray tag;
    for (int k = 0; k < 6; ++k) {
        tag.append(static_cast<char>('A' + hash % 26));
        hash /= 26;
    }
    return tag;
}

QByteArray reference(int id)
{
    return QByteArray::number(id) + " 0 R";
}

// A glyph index as the two bytes of a PDF string, escaped where the string's
// syntax needs it.
void appendGlyphBytes(QByteArray &out, quint32 glyph)
{
    for (const char byte : {static_cast<char>(glyph >> 8), static_cast<char>(glyph)}) {
        switch (byte) {
        case '(':
        case ')':
        case '\\':
            out.append('\\');
            out.append(byte);
            break;
        case '\r':
            // A bare carriage return in a string would be read as a line feed.
            out.append("\\r");
            break;
        default:
            out.append(byte);
        }
    }
}

} // namespace

PdfDocument::PdfDocument(QIODevice &device, const PdfPageGeometry &geometry, const QString &title)
    : m_device(device), m_geometry(geometry), m_title(title), m_offsets(FirstFreeObject, -1)
{
    write(QByteArrayLiteral("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n"));
}

PdfDocument::~PdfDocument() = default;

int PdfDocument::newObject()
{
    m_offsets.push_back(-1);
    return static_cast<int>(m_offsets.size()) - 1;
}

void PdfDocument::write(const QByteArray &bytes)
{
    if (m_failed)
        return;
    if (m_device.write(bytes) != bytes.size()) {
        m_failed = true;
        return;
    }
    m_written += bytes.size();
}

void PdfDocument::writeObject(int id, const QByteArray &body)
{
    m_offsets[static_cast<std::size_t>(id)] = m_written;
    write(QByteArray::number(id) + " 0 obj\n" + body + "\nendobj\n");
}

void PdfDocument::writeStream(int id, const QByteArray &dictionary, const QByteArray &data)
{
    m_offsets[static_cast<std::size_t>(id)] = m_written;
    write(QByteArray::number(id) + " 0 obj\n<< " + dictionary + " /Length " +
          QByteArray::number(data.size()) + " >>\nstream\n");
    write(data);
    write(QByteArrayLiteral("\nendstream\nendobj\n"));
}

void PdfDocument::beginPage()
{
    endPage();
    m_pageOpen = true;
    m_content.clear();
    m_textFont = -1;
    m_textSize = -1;
    // Drawing units become points, y turned to run down from the sheet's
    // top, the origin moved to the printable area's corner. Lines keep the
    // default square-cut ends.
    const double scale = 72.0 / m_geometry.resolution;
    m_content.append("q ");
    pdf::appendNumber(m_content, scale, 8);
    m_content.append(" 0 0 ");
    pdf::appendNumber(m_content, -scale, 8);
    m_content.append(' ');
    pdf::appendNumber(m_content, m_geometry.originDots.x() * scale, 6);
    m_content.append(' ');
    pdf::appendNumber(m_content,
                      m_geometry.paperPoints.height() - m_geometry.originDots.y() * scale, 6);
    m_content.append(" cm\n");
}

void PdfDocument::endPage()
{
    if (!m_pageOpen)
        return;
    endText();
    m_content.append("Q\n");
    m_pageOpen = false;
    const int contents = newObject();
    writeStream(contents, QByteArrayLiteral("/Filter /FlateDecode"),
                deflated(m_content, ContentCompression));
    m_content.clear();
    const int page = newObject();
    writeObject(page, "<< /Type /Page /Parent " + reference(PagesObject) + " /MediaBox [0 0 " +
                          pdf::number(m_geometry.paperPoints.width()) + ' ' +
                          pdf::number(m_geometry.paperPoints.height()) + "] /Resources " +
                          reference(ResourcesObject) + " /Contents " + reference(contents) + " >>");
    m_pages.push_back(page);
}

void PdfDocument::beginText()
{
    if (!m_inText)
        m_content.append("BT\n");
    m_inText = true;
}

void PdfDocument::endText()
{
    if (m_inText)
        m_content.append("ET\n");
    m_inText = false;
}

int PdfDocument::fontFor(const QRawFont &font)
{
    for (std::size_t k = 0; k < m_fonts.size(); ++k) {
        if (m_fonts[k]->isFontOf(font))
            return static_cast<int>(k);
    }
    m_fonts.push_back(std::make_unique<PdfFont>(font));
    return static_cast<int>(m_fonts.size()) - 1;
}

void PdfDocument::drawGlyphs(const QRawFont &font, const QPointF &baseline, const quint32 *glyphs,
                             const QPointF *positions, qsizetype count, QStringView text)
{
    if (!m_pageOpen)
        beginPage();
    const int index = fontFor(font);
    PdfFont &pdfFont = *m_fonts[static_cast<std::size_t>(index)];
    if (!pdfFont.embeddable()) {
        for (qsizetype n = 0; n < count; ++n)
            fillPath(font.pathForGlyph(glyphs[n]).translated(baseline + positions[n]));
        return;
    }
    beginText();
    const double size = pdfFont.size();
    if (index != m_textFont || size != m_textSize) {
        m_content.append("/F" + QByteArray::number(index) + ' ');
        pdf::appendNumber(m_content, size);
        m_content.append(" Tf\n");
        m_textFont = index;
        m_textSize = size;
    }
    showGlyphs(pdfFont, size, baseline, glyphs, positions, count,
               text.size() == count ? text : QStringView());
}

void PdfDocument::showGlyphs(PdfFont &font, double size, const QPointF &baseline,
                             const quint32 *glyphs, const QPointF *positions, qsizetype count,
                             QStringView text)
{
    qsizetype n = 0;
    while (n < count) {
        // One string for the glyphs on the same baseline; the text matrix
        // turns the page's downward y back up for the glyphs.
        const double y = positions[n].y();
        m_content.append("1 0 0 -1 ");
        pdf::appendNumber(m_content, baseline.x() + positions[n].x());
        m_content.append(' ');
        pdf::appendNumber(m_content, baseline.y() + y);
        m_content.append(" Tm [(");
        // Where the viewer's pen stands after what was written so far.
        double pen = positions[n].x();
        for (; n < count && positions[n].y() == y; ++n) {
            const double shift = std::round((pen - positions[n].x()) * 1000 / size * 100) / 100;
            if (shift != 0) {
                m_content.append(')');
                pdf::appendNumber(m_content, shift, 2);
                m_content.append('(');
                pen -= shift / 1000 * size;
            }
            appendGlyphBytes(m_content, glyphs[n]);
            pen += font.width(glyphs[n]) / 1000 * size;
            if (!text.isEmpty())
                font.mapToText(glyphs[n], text.sliced(n, 1));
        }
        m_content.append(")] TJ\n");
    }
}

void PdfDocument::fillRect(const QRectF &rect)
{
    if (!m_pageOpen)
        beginPage();
    endText();
    pdf::appendNumber(m_content, rect.x());
    m_content.append(' ');
    pdf::appendNumber(m_content, rect.y());
    m_content.append(' ');
    pdf::appendNumber(m_content, rect.width());
    m_content.append(' ');
    pdf::appendNumber(m_content, rect.height());
    m_content.append(" re f\n");
}

void PdfDocument::strokeLine(const QPointF &from, const QPointF &to, qreal width)
{
    if (!m_pageOpen)
        beginPage();
    endText();
    pdf::appendNumber(m_content, width);
    m_content.append(" w ");
    pdf::appendNumber(m_content, from.x());
    m_content.append(' ');
    pdf::appendNumber(m_content, from.y());
    m_content.append(" m ");
    pdf::appendNumber(m_content, to.x());
    m_content.append(' ');
    pdf::appendNumber(m_content, to.y());
    m_content.append(" l S\n");
}

void PdfDocument::fillPath(const QPainterPath &path)
{
    if (!m_pageOpen)
        beginPage();
    if (path.isEmpty())
        return;
    endText();
    for (int k = 0; k < path.elementCount(); ++k) {
        const QPainterPath::Element element = path.elementAt(k);
        pdf::appendNumber(m_content, element.x);
        m_content.append(' ');
        pdf::appendNumber(m_content, element.y);
        switch (element.type) {
        case QPainterPath::MoveToElement:
            m_content.append(" m\n");
            break;
        case QPainterPath::LineToElement:
            m_content.append(" l\n");
            break;
        case QPainterPath::CurveToElement:
            m_content.append(' ');
            break;
        case QPainterPath::CurveToDataElement:
            // The second control point is followed by the end point.
            m_content.append(k + 1 < path.elementCount() &&
                                     path.elementAt(k + 1).type == QPainterPath::CurveToDataElement
                                 ? " "
                                 : " c\n");
            break;
        }
    }
    m_content.append(path.fillRule() == Qt::WindingFill ? "f\n" : "f*\n");
}

int PdfDocument::writeFontProgram(std::size_t font)
{
    // Sizes of one face share its program.
    for (std::size_t k = 0; k < font; ++k) {
        if (m_fonts[k]->embeddable() && m_fonts[k]->hasFaceOf(*m_fonts[font])) {
            m_fontNames[font] = m_fontNames[k];
            return m_fontPrograms[k];
        }
    }
    const PdfFont &pdfFont = *m_fonts[font];
    // The glyphs drawn at any size of the face.
    std::vector<bool> used;
    for (const std::unique_ptr<PdfFont> &other : m_fonts) {
        if (!other->hasFaceOf(pdfFont))
            continue;
        const std::vector<bool> glyphs = other->usedGlyphs();
        used.resize(std::max(used.size(), glyphs.size()));
        for (std::size_t g = 0; g < glyphs.size(); ++g)
            used[g] = used[g] || glyphs[g];
    }
    m_fontNames[font] = subsetTag(used) + '+' + pdfFont.baseName();
    const QByteArray program = pdfFont.fontProgram(used);
    const int file = newObject();
    writeStream(file, "/Filter /FlateDecode /Length1 " + QByteArray::number(program.size()),
                deflated(program, FontCompression));
    const int descriptor = newObject();
    writeObject(descriptor, "<< /Type /FontDescriptor /FontName /" + m_fontNames[font] + ' ' +
                                pdfFont.descriptorEntries() + " /FontFile2 " + reference(file) +
                                " >>");
    return descriptor;
}

QByteArray PdfDocument::writeFonts()
{
    QByteArray resources("<< /Font <<");
    m_fontPrograms.assign(m_fonts.size(), 0);
    m_fontNames.assign(m_fonts.size(), QByteArray());
    for (std::size_t k = 0; k < m_fonts.size(); ++k) {
        const PdfFont &font = *m_fonts[k];
        if (!font.embeddable())
            continue;
        m_fontPrograms[k] = writeFontProgram(k);
        const QByteArray &name = m_fontNames[k];
        const int glyphs = newObject();
        writeObject(glyphs, "<< /Type /Font /Subtype /CIDFontType2 /BaseFont /" + name +
                                " /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) "
                                "/Supplement 0 >> /FontDescriptor " +
                                reference(m_fontPrograms[k]) + " /CIDToGIDMap /Identity /W " +
                                font.widthArray() + " >>");
        const int toUnicode = newObject();
        writeStream(toUnicode, QByteArrayLiteral("/Filter /FlateDecode"),
                    deflated(font.toUnicodeCMap(), FontCompression));
        const int type0 = newObject();
        writeObject(type0, "<< /Type /Font /Subtype /Type0 /BaseFont /" + name +
                               " /Encoding /Identity-H /DescendantFonts [" + reference(glyphs) +
                               "] /ToUnicode " + reference(toUnicode) + " >>");
        resources.append(" /F" + QByteArray::number(static_cast<qulonglong>(k)) + ' ' +
                         reference(type0));
    }
    resources.append(" >> >>");
    return resources;
}

bool PdfDocument::finish()
{
    if (m_pages.empty() && !m_pageOpen)
        beginPage();
    endPage();
    writeObject(ResourcesObject, writeFonts());
    QByteArray kids;
    for (const int page : m_pages)
        kids.append(reference(page) + ' ');
    writeObject(PagesObject, "<< /Type /Pages /Kids [" + kids + "] /Count " +
                                 QByteArray::number(m_pages.size()) + " >>");
    writeObject(CatalogObject, "<< /Type /Catalog /Pages " + reference(PagesObject) + " >>");
    const QString now = QDateTime::currentDateTimeUtc().toString(u"yyyyMMddHHmmss");
    writeObject(InfoObject, "<< /Title " + pdf::textString(m_title) + " /Creator " +
                                pdf::textString(QStringLiteral("Quillet")) + " /Producer " +
                                pdf::textString(QStringLiteral("Quillet")) +
                                " /CreationDate (D:" + now.toLatin1() + "Z) >>");
    const qint64 index = m_written;
    QByteArray table = "xref\n0 " + QByteArray::number(m_offsets.size()) + "\n";
    table.append("0000000000 65535 f \n");
    for (std::size_t id = 1; id < m_offsets.size(); ++id) {
        if (m_offsets[id] < 0)
            table.append("0000000000 65535 f \n");
        else
            table.append(QByteArray::number(m_offsets[id]).rightJustified(10, '0') + " 00000 n \n");
    }
    table.append("trailer\n<< /Size " + QByteArray::number(m_offsets.size()) + " /Root " +
                 reference(CatalogObject) + " /Info " + reference(InfoObject) + " >>\nstartxref\n" +
                 QByteArray::number(index) + "\n%%EOF\n");
    write(table);
    return !m_failed;
}

} // namespace quillet
