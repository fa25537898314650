#include "pdfsurface.h"

#include "paintedtext.h"
#include "pdfdocument.h"
#include "printertext.h"
#include "twips.h"

#include <QDir>
#include <QFontMetricsF>
#include <QMarginsF>
#include <QPageSize>
#include <QPrinter>

#include <cups/cups.h>

namespace quillet {

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
    const QFontMetricsF metrics(fontAtResolution(m_font, m_resolution));
    m_lineHeight = metrics.height() / m_dotsPerTwip;
    m_ascent = metrics.ascent();
    std::unique_ptr<PrinterText> &text = m_texts[{m_font.pointSizeF(), m_font.bold()}];
    if (!text)
        text = std::make_unique<PrinterText>(m_font, m_resolution);
    m_text = text.get();
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
    if (!m_document || !m_text || text.trimmed().isEmpty())
        return;
    const QPointF baseline(dots(x), dots(y) + m_ascent);
    // A 300-digit figure set flush right in its column runs far off the
    // paper's left edge: only the glyphs that reach onto the paper are
    // drawn, each where the whole text puts it. The paper's edges are
    // widened by an em so that no glyph's ink reaching past its advance is
    // lost.
    const double slack = m_text->rawFont().pixelSize();
    const double left = m_paperLeft - slack - baseline.x();
    const double right = m_paperRight + slack - baseline.x();
    for (const PaintedRun &run : m_text->glyphRuns(text, left, right)) {
        const QList<quint32> glyphs = run.glyphs.glyphIndexes();
        const QList<QPointF> positions = run.glyphs.positions();
        m_document->drawGlyphs(run.glyphs.rawFont(), baseline, glyphs.constData(),
                               positions.constData(), glyphs.size(), run.characters);
    }
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
