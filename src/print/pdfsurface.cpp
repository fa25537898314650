#include "pdfsurface.h"

#include "paintedtext.h"
#include "pdfdocument.h"
#include "twips.h"

#include <QDir>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QMarginsF>
#include <QPageSize>
#include <QPrinter>

#include <cups/cups.h>

#include <algorithm>

namespace quillet {

namespace {

double lastAdvance(const QRawFont &font, quint32 glyph)
{
    QPointF advance;
    font.advancesForGlyphIndexes(&glyph, &advance, 1, QRawFont::UseDesignMetrics);
    return advance.x();
}

} // namespace

PdfSurface::PdfSurface() : m_font(QStringLiteral("Arial"))
{
    m_font.setPointSizeF(fontSize());
}

PdfSurface::~PdfSurface() = default;

void PdfSurface::begin(QIODevice &device, const QPageLayout &layout, int resolution,
                       const QString &title)
{
    const QRect printable = layout.paintRectPixels(resolution);
    m_resolution = resolution;
    m_dotsPerTwip = resolution / static_cast<double>(TwipsPerInch);
    m_pageHeight = pixelsToTwips(printable.height(), resolution);
    findPaperEdges(layout, resolution);
    m_document = std::make_unique<PdfDocument>(
        device, PdfPageGeometry{layout.fullRectPoints().size(), resolution, printable.topLeft()},
        title);
    m_document->beginPage();
    applyFont();
}

bool PdfSurface::finishDocument()
{
    if (!m_document)
        return false;
    const bool written = m_document->finish();
    m_document.reset();
    return written;
}

void PdfSurface::dropDocument()
{
    m_document.reset();
}

void PdfSurface::fontChanged()
{
    // The list printout sets the weight of every column of every line; a
    // font that stays as it is costs nothing.
    if (m_font.pointSizeF() == fontSize() && m_font.bold() == fontBold())
        return;
    applyFont();
}

void PdfSurface::applyFont()
{
    m_font.setPointSizeF(fontSize());
    m_font.setBold(fontBold());
    if (!m_document)
        return;
    m_deviceFont = fontAtResolution(m_font, m_resolution);
    const QFontMetricsF metrics(m_deviceFont);
    m_lineHeight = metrics.height() / m_dotsPerTwip;
    m_ascent = metrics.ascent();
    m_rawFont = QRawFont::fromFont(m_deviceFont);
    m_metrics = &m_latin1[{m_font.pointSizeF(), m_font.bold()}];
}

void PdfSurface::findPaperEdges(const QPageLayout &layout, int resolution)
{
    const QRect paper = layout.fullRectPixels(resolution);
    const QRect printable = layout.paintRectPixels(resolution);
    m_paperLeft = paper.left() - printable.left();
    m_paperRight = m_paperLeft + paper.width();
    // A layout that knows no paper still has its printable width.
    if (paper.isEmpty()) {
        m_paperLeft = 0;
        m_paperRight = printable.width();
    }
}

void PdfSurface::startNewPage()
{
    if (m_document)
        m_document->beginPage();
}

void PdfSurface::drawText(double x, double y, const QString &text)
{
    // Blank texts leave no mark: the list's blank lines are a single space.
    if (!m_document || text.trimmed().isEmpty())
        return;
    const QPointF baseline(dots(x), dots(y) + m_ascent);
    // Figures and plain words need no shaping: their glyphs are the font's
    // glyphs for their characters, side by side, kerned. A character the
    // font lacks takes the full way, which finds it in another font.
    if (!drawPlainText(baseline, text))
        drawShapedText(baseline, text);
}

bool PdfSurface::drawPlainText(const QPointF &baseline, const QString &text)
{
    if (m_metrics && std::all_of(text.cbegin(), text.cend(),
                                 [](QChar c) { return c.unicode() < Latin1Metrics::Characters; }))
        return drawLatin1Text(baseline, text);
    const QList<quint32> glyphs = m_rawFont.glyphIndexesForString(text);
    if (glyphs.size() != text.size() || glyphs.contains(0u))
        return false;
    const QList<QPointF> advances = m_rawFont.advancesForGlyphIndexes(
        glyphs, QRawFont::KernedAdvances | QRawFont::UseDesignMetrics);
    QList<QPointF> positions(advances.size());
    QPointF pen;
    for (qsizetype n = 0; n < advances.size(); ++n) {
        positions[n] = pen;
        pen += advances[n];
    }
    drawOnPaper(m_rawFont, baseline, glyphs, positions, text);
    return true;
}

bool PdfSurface::drawLatin1Text(const QPointF &baseline, const QString &text)
{
    const qsizetype count = text.size();
    const QChar *characters = text.constData();
    // Only the glyphs on the paper are gathered, but each is placed by the
    // pen summed over every advance before it. Nothing is drawn before all
    // characters are known to have a glyph.
    const PaperSpan paper = paperSpan(m_rawFont, baseline);
    QList<quint32> shown;
    QList<QPointF> shownAt;
    QString shownText;
    QPointF pen;
    for (qsizetype n = 0; n < count; ++n) {
        const char16_t c = characters[n].unicode();
        const quint32 glyph = latin1Glyph(c);
        if (glyph == 0)
            return false;
        // The font kerns a glyph against the next one only: the advance of
        // a pair is the advance it has in any text.
        const int next = n + 1 < count ? characters[n + 1].unicode() : Latin1Metrics::Last;
        const QPointF at = pen;
        pen += latin1Advance(c, next);
        if (paper.reaches(at.x(), pen.x())) {
            shown.append(glyph);
            shownAt.append(at);
            shownText.append(characters[n]);
        }
    }
    if (!shown.isEmpty())
        m_document->drawGlyphs(m_rawFont, baseline, shown.constData(), shownAt.constData(),
                               shown.size(), shownText);
    return true;
}

PdfSurface::PaperSpan PdfSurface::paperSpan(const QRawFont &font, const QPointF &baseline) const
{
    // A 300-digit figure set flush right in its column runs far off the
    // paper's left edge: only the glyphs that reach onto the paper are
    // drawn. The paper's edges are widened by an em so that no glyph's ink
    // reaching past its advance is lost.
    const double slack = font.pixelSize();
    return {m_paperLeft - slack - baseline.x(), m_paperRight + slack - baseline.x()};
}

void PdfSurface::drawShapedText(const QPointF &baseline, const QString &text)
{
    for (const PaintedRun &run : paintedGlyphRuns(text, m_font, m_resolution))
        drawOnPaper(run.glyphs.rawFont(), baseline, run.glyphs.glyphIndexes(),
                    run.glyphs.positions(), run.characters);
}

void PdfSurface::drawOnPaper(const QRawFont &font, const QPointF &baseline,
                             const QList<quint32> &glyphs, const QList<QPointF> &positions,
                             QStringView text)
{
    const PaperSpan paper = paperSpan(font, baseline);
    QList<quint32> shown;
    QList<QPointF> shownAt;
    QString shownText;
    for (qsizetype n = 0; n < glyphs.size(); ++n) {
        // A glyph spans from its place to the next one's, the last one its
        // own advance.
        const double x = positions[n].x();
        const double end =
            n + 1 < positions.size() ? positions[n + 1].x() : x + lastAdvance(font, glyphs[n]);
        if (paper.reaches(x, end)) {
            shown.append(glyphs[n]);
            shownAt.append(positions[n]);
            if (!text.isEmpty())
                shownText.append(text[n]);
        }
    }
    if (!shown.isEmpty())
        m_document->drawGlyphs(font, baseline, shown.constData(), shownAt.constData(), shown.size(),
                               shownText);
}

quint32 PdfSurface::latin1Glyph(char16_t c)
{
    if (!m_metrics->glyphKnown[c]) {
        const QList<quint32> glyph = m_rawFont.glyphIndexesForString(QString(QChar(c)));
        m_metrics->glyphs[c] = glyph.size() == 1 ? glyph[0] : 0;
        m_metrics->glyphKnown[c] = true;
    }
    return m_metrics->glyphs[c];
}

QPointF PdfSurface::latin1Advance(char16_t c, int next)
{
    constexpr std::size_t Columns = Latin1Metrics::Characters + 1;
    if (m_metrics->advances.empty()) {
        m_metrics->advances.resize(Latin1Metrics::Characters * Columns);
        m_metrics->advanceKnown.resize(Latin1Metrics::Characters * Columns);
    }
    const std::size_t at = c * Columns + static_cast<std::size_t>(next);
    if (!m_metrics->advanceKnown[at]) {
        QList<quint32> pair{latin1Glyph(c)};
        if (next != Latin1Metrics::Last)
            pair.append(latin1Glyph(static_cast<char16_t>(next)));
        m_metrics->advances[at] = m_rawFont.advancesForGlyphIndexes(
            pair, QRawFont::KernedAdvances | QRawFont::UseDesignMetrics)[0];
        m_metrics->advanceKnown[at] = true;
    }
    return m_metrics->advances[at];
}

void PdfSurface::drawBox(double x1, double y1, double x2, double y2)
{
    if (m_document)
        m_document->fillRect(
            QRectF(QPointF(dots(x1), dots(y1)), QPointF(dots(x2), dots(y2))).normalized());
}

void PdfSurface::drawSegment(double x1, double y1, double x2, double y2, double thickness)
{
    if (m_document)
        m_document->strokeLine(QPointF(dots(x1), dots(y1)), QPointF(dots(x2), dots(y2)),
                               dots(thickness));
}

namespace {

QPageLayout letterLayout(double marginInches)
{
    const double margin = marginInches * 72.0;
    return QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                       QMarginsF(margin, margin, margin, margin), QPageLayout::Point);
}

} // namespace

PdfFileSurface::PdfFileSurface(const QString &path, const QString &title) : m_file(path)
{
    if (!m_file.open(QIODevice::WriteOnly)) {
        m_error = QStringLiteral("%1 cannot be written: %2")
                      .arg(QDir::toNativeSeparators(path), m_file.errorString());
        return;
    }
    begin(m_file, letterLayout(MarginInches), Resolution, title);
}

PdfFileSurface::~PdfFileSurface()
{
    if (isOpen())
        abortDoc();
}

bool PdfFileSurface::endDoc()
{
    if (!m_error.isEmpty())
        return false;
    if (!finishDocument()) {
        m_error = QStringLiteral("%1 cannot be written.")
                      .arg(QDir::toNativeSeparators(m_file.fileName()));
        m_file.cancelWriting();
        return false;
    }
    if (!m_file.commit()) {
        m_error = QStringLiteral("%1 cannot be written: %2")
                      .arg(QDir::toNativeSeparators(m_file.fileName()), m_file.errorString());
        return false;
    }
    return true;
}

void PdfFileSurface::abortDoc()
{
    dropDocument();
    m_file.cancelWriting();
}

PrinterSurface::PrinterSurface(QPrinter &printer, const QString &title)
    : m_printer(printer), m_title(title)
{
    m_printer.setDocName(title);
    QIODevice *output = nullptr;
    if (m_printer.outputFormat() == QPrinter::PdfFormat) {
        m_file.setFileName(m_printer.outputFileName());
        if (!m_printer.outputFileName().isEmpty() && m_file.open(QIODevice::WriteOnly))
            output = &m_file;
    } else {
        m_spool.setFileTemplate(QDir::temp().filePath(QStringLiteral("quillet-XXXXXX.pdf")));
        if (!m_printer.printerName().isEmpty() && m_spool.open())
            output = &m_spool;
    }
    if (!output) {
        m_error = QStringLiteral("The printer %1cannot be used.").arg(namedPrinter());
        return;
    }
    begin(*output, m_printer.pageLayout(), m_printer.resolution(), title);
}

QString PrinterSurface::namedPrinter() const
{
    const QString name =
        m_printer.outputFormat() == QPrinter::PdfFormat ? QString() : m_printer.printerName();
    return name.isEmpty() ? QString() : name + u' ';
}

PrinterSurface::~PrinterSurface()
{
    if (isOpen())
        abortDoc();
}

bool PrinterSurface::endDoc()
{
    if (!m_error.isEmpty())
        return false;
    const bool toFile = m_printer.outputFormat() == QPrinter::PdfFormat;
    const bool written = finishDocument() && (toFile ? m_file.commit() : m_spool.flush());
    if (!written || (!toFile && !submitToPrinter())) {
        m_error = QStringLiteral("The printer %1did not accept the document.").arg(namedPrinter());
        abortDoc();
        return false;
    }
    return true;
}

bool PrinterSurface::submitToPrinter()
{
    const QByteArray printer = m_printer.printerName().toLocal8Bit();
    const QByteArray file = QFile::encodeName(m_spool.fileName());
    const QByteArray title = m_title.toUtf8();
    return cupsPrintFile(printer.constData(), file.constData(), title.constData(), 0, nullptr) > 0;
}

void PrinterSurface::abortDoc()
{
    dropDocument();
    m_file.cancelWriting();
    m_spool.remove();
}

} // namespace quillet
