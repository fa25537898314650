#include "paintersurface.h"

#include "twips.h"

#include <QDir>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QMarginsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QPen>
#include <QPrinter>

#include <algorithm>

namespace quillet {

PainterSurface::PainterSurface() : m_font(QStringLiteral("Arial"))
{
    m_font.setPointSizeF(fontSize());
}

bool PainterSurface::begin(QPagedPaintDevice &device)
{
    if (!m_painter.begin(&device))
        return false;
    m_device = &device;
    m_pixelsPerTwip = device.logicalDpiY() / static_cast<double>(TwipsPerInch);
    m_pageHeight = pixelsToTwips(device.height(), device.logicalDpiY());
    findPaperEdges(device);
    applyFont();
    return true;
}

bool PainterSurface::endPainting()
{
    return m_painter.isActive() ? m_painter.end() : false;
}

void PainterSurface::fontChanged()
{
    // The list printout sets the weight of every column of every line; a
    // font that stays as it is costs nothing.
    if (m_font.pointSizeF() == fontSize() && m_font.bold() == fontBold())
        return;
    applyFont();
}

void PainterSurface::applyFont()
{
    m_font.setPointSizeF(fontSize());
    m_font.setBold(fontBold());
    if (!m_device)
        return;
    m_painter.setFont(m_font);
    const QFontMetricsF metrics(m_painter.font(), m_device);
    m_lineHeight = metrics.height() / m_pixelsPerTwip;
    m_ascent = metrics.ascent();
    m_rawFont = QRawFont::fromFont(QFont(m_painter.font(), m_device));
    m_metrics = &m_latin1[{m_font.pointSizeF(), m_font.bold()}];
}

void PainterSurface::findPaperEdges(QPagedPaintDevice &device)
{
    const QPageLayout layout = device.pageLayout();
    const int dpi = device.logicalDpiX();
    const QRect paper = layout.fullRectPixels(dpi);
    const QRect printable = layout.paintRectPixels(dpi);
    m_paperLeft = paper.left() - printable.left();
    m_paperRight = m_paperLeft + paper.width();
    // A device that knows no paper still paints its whole width.
    if (paper.isEmpty()) {
        m_paperLeft = 0;
        m_paperRight = device.width();
    }
}

void PainterSurface::startNewPage()
{
    if (m_device)
        m_device->newPage();
}

void PainterSurface::drawText(double x, double y, const QString &text)
{
    // Blank texts leave no mark: the list's blank lines are a single space.
    if (text.trimmed().isEmpty())
        return;
    const QPointF baseline(pixels(x), pixels(y) + m_ascent);
    // Figures and plain words need no shaping: their glyphs are the font's
    // glyphs for their characters, side by side, kerned. That halves the
    // cost of a printed line. A character the font lacks takes the full way,
    // which finds it in another font.
    QList<quint32> glyphs;
    QList<QPointF> advances;
    if (!plainGlyphs(text, glyphs, advances)) {
        m_painter.drawText(baseline, text);
        return;
    }
    // A 300-digit figure set flush right in its column runs far off the
    // paper's left edge. Only the glyphs that reach onto the paper are
    // drawn; each keeps the position it has in the whole text, the pen
    // summed over every advance before it. The paper's edges are widened by
    // an em so that no glyph's ink reaching past its advance is lost.
    const double slack = m_rawFont.pixelSize();
    const double left = m_paperLeft - slack - baseline.x();
    const double right = m_paperRight + slack - baseline.x();
    QList<quint32> shown;
    QList<QPointF> positions;
    QPointF pen;
    for (qsizetype n = 0; n < glyphs.size(); ++n) {
        const QPointF at = pen;
        pen += advances[n];
        if (pen.x() > left && at.x() < right) {
            shown.append(glyphs[n]);
            positions.append(at);
        }
    }
    if (shown.isEmpty())
        return;
    QGlyphRun run;
    run.setRawFont(m_rawFont);
    run.setGlyphIndexes(shown);
    run.setPositions(positions);
    m_painter.drawGlyphRun(baseline, run);
}

bool PainterSurface::plainGlyphs(const QString &text, QList<quint32> &glyphs,
                                 QList<QPointF> &advances)
{
    if (m_metrics && std::all_of(text.cbegin(), text.cend(),
                                 [](QChar c) { return c.unicode() < Latin1Metrics::Characters; }))
        return latin1Glyphs(text, glyphs, advances);
    glyphs = m_rawFont.glyphIndexesForString(text);
    if (glyphs.size() != text.size() || glyphs.contains(0u))
        return false;
    advances = m_rawFont.advancesForGlyphIndexes(glyphs, QRawFont::KernedAdvances |
                                                             QRawFont::UseDesignMetrics);
    return true;
}

bool PainterSurface::latin1Glyphs(const QString &text, QList<quint32> &glyphs,
                                  QList<QPointF> &advances)
{
    const qsizetype count = text.size();
    glyphs.resize(count);
    advances.resize(count);
    const QChar *characters = text.constData();
    quint32 *glyph = glyphs.data();
    QPointF *advance = advances.data();
    for (qsizetype n = 0; n < count; ++n) {
        const char16_t c = characters[n].unicode();
        glyph[n] = latin1Glyph(c);
        if (glyph[n] == 0)
            return false;
        // The font kerns a glyph against the next one only: the advance of
        // a pair is the advance it has in any text.
        const int next = n + 1 < count ? characters[n + 1].unicode() : Latin1Metrics::Last;
        advance[n] = latin1Advance(c, next);
    }
    return true;
}

quint32 PainterSurface::latin1Glyph(char16_t c)
{
    if (!m_metrics->glyphKnown[c]) {
        const QList<quint32> glyph = m_rawFont.glyphIndexesForString(QString(QChar(c)));
        m_metrics->glyphs[c] = glyph.size() == 1 ? glyph[0] : 0;
        m_metrics->glyphKnown[c] = true;
    }
    return m_metrics->glyphs[c];
}

QPointF PainterSurface::latin1Advance(char16_t c, int next)
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

void PainterSurface::drawBox(double x1, double y1, double x2, double y2)
{
    m_painter.fillRect(
        QRectF(QPointF(pixels(x1), pixels(y1)), QPointF(pixels(x2), pixels(y2))).normalized(),
        Qt::black);
}

void PainterSurface::drawSegment(double x1, double y1, double x2, double y2, double thickness)
{
    m_painter.setPen(QPen(Qt::black, pixels(thickness), Qt::SolidLine, Qt::FlatCap));
    m_painter.drawLine(QPointF(pixels(x1), pixels(y1)), QPointF(pixels(x2), pixels(y2)));
}

PdfFileSurface::PdfFileSurface(const QString &path, const QString &title) : m_file(path)
{
    if (!m_file.open(QIODevice::WriteOnly)) {
        m_error = QStringLiteral("%1 cannot be written: %2")
                      .arg(QDir::toNativeSeparators(path), m_file.errorString());
        return;
    }
    m_writer = std::make_unique<QPdfWriter>(&m_file);
    m_writer->setTitle(title);
    m_writer->setCreator(QStringLiteral("Quillet"));
    m_writer->setResolution(Resolution);
    const double margin = MarginInches * 72.0;
    m_writer->setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                        QMarginsF(margin, margin, margin, margin),
                                        QPageLayout::Point));
    if (!begin(*m_writer)) {
        m_error = QStringLiteral("%1 cannot be written.").arg(QDir::toNativeSeparators(path));
        m_file.cancelWriting();
    }
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
    if (!endPainting()) {
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
    endPainting();
    m_file.cancelWriting();
}

PrinterSurface::PrinterSurface(QPrinter &printer, const QString &title) : m_printer(printer)
{
    m_printer.setDocName(title);
    if (!begin(m_printer))
        m_error = QStringLiteral("The printer %1cannot be used.").arg(namedPrinter());
}

QString PrinterSurface::namedPrinter() const
{
    const QString name = m_printer.printerName();
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
    if (!endPainting() || m_printer.printerState() == QPrinter::Error) {
        m_error = QStringLiteral("The printer %1did not accept the document.").arg(namedPrinter());
        return false;
    }
    return true;
}

void PrinterSurface::abortDoc()
{
    m_printer.abort();
    endPainting();
}

} // namespace quillet
