#pragma once

#include "printsurface.h"

#include <QFont>
#include <QPageLayout>
#include <QRawFont>
#include <QSaveFile>
#include <QString>
#include <QTemporaryFile>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <utility>
#include <vector>

class QIODevice;
class QPrinter;

namespace quillet {

class PdfDocument;

// The print surface on a PDF document, for a file and a printer alike.
// Twips become dots here by the page's resolution; the font is the
// printer's own (Arial) at the size the printout asks for.
class PdfSurface : public PrintSurface
{
public:
    ~PdfSurface() override;
    double lineHeight() const override { return m_lineHeight; }
    bool isOpen() const { return m_document != nullptr; }

protected:
    PdfSurface();
    // Starts the document on a device, pages laid out as given.
    void begin(QIODevice &device, const QPageLayout &layout, int resolution, const QString &title);
    // Writes the rest of the document; false when the device refused.
    bool finishDocument();
    // Drops the document unwritten.
    void dropDocument();

    double pageHeight() const override { return m_pageHeight; }
    void fontChanged() override;
    void startNewPage() override;
    void drawText(double x, double y, const QString &text) override;
    void drawBox(double x1, double y1, double x2, double y2) override;
    void drawSegment(double x1, double y1, double x2, double y2, double thickness) override;

private:
    double dots(double twips) const { return twips * m_dotsPerTwip; }
    void applyFont();
    // The paper's left and right edges in dots, from the printable area's
    // left edge.
    void findPaperEdges(const QPageLayout &layout, int resolution);
    // Draws a text whose glyphs are the font's glyphs for its characters,
    // side by side, kerned; false when the font lacks one of them.
    bool drawPlainText(const QPointF &baseline, const QString &text);
    bool drawLatin1Text(const QPointF &baseline, const QString &text);
    // A text that needs shaping or other fonts, laid out as a whole.
    void drawShapedText(const QPointF &baseline, const QString &text);
    // Where glyphs reach onto the paper, from a text's start on its baseline.
    struct PaperSpan
    {
        double left;
        double right;
        bool reaches(double from, double to) const
        {
            return std::max(from, to) > left && std::min(from, to) < right;
        }
    };
    PaperSpan paperSpan(const QRawFont &font, const QPointF &baseline) const;
    // Draws the glyphs that reach onto the paper.
    void drawOnPaper(const QRawFont &font, const QPointF &baseline, const QList<quint32> &glyphs,
                     const QList<QPointF> &positions, QStringView text);

    // The glyph of each character U+0000 to U+00FF in one font, and its
    // advance kerned against the character after it (or none, the last
    // column), learnt as they are first met: a long figure then costs a
    // look-up a character instead of a trip through the font engine.
    struct Latin1Metrics
    {
        static constexpr int Characters = 256;
        static constexpr int Last = Characters;
        std::array<quint32, Characters> glyphs{};
        std::array<bool, Characters> glyphKnown{};
        std::vector<QPointF> advances;
        std::vector<bool> advanceKnown;
    };
    quint32 latin1Glyph(char16_t c);
    QPointF latin1Advance(char16_t c, int next);

    std::unique_ptr<PdfDocument> m_document;
    int m_resolution = 1200;
    QFont m_font;
    QFont m_deviceFont; // m_font at the page's resolution
    QRawFont m_rawFont;
    double m_dotsPerTwip = 1;
    double m_pageHeight = 0;
    double m_lineHeight = 0;
    double m_ascent = 0;
    double m_paperLeft = 0;
    double m_paperRight = 0;
    std::map<std::pair<double, bool>, Latin1Metrics> m_latin1;
    Latin1Metrics *m_metrics = nullptr;
};

// A printout written to a PDF file on US Letter paper, all or nothing: the
// file is replaced only when the whole document was written.
class PdfFileSurface final : public PdfSurface
{
public:
    // Letter, portrait, a printable area 0.2 inch in from each edge: wide
    // enough for the 11,600 twips of the list printout.
    static constexpr double MarginInches = 0.2;
    static constexpr int Resolution = 1200;

    PdfFileSurface(const QString &path, const QString &title);
    ~PdfFileSurface() override;

    bool endDoc() override;
    void abortDoc() override;
    QString errorText() const override { return m_error; }

private:
    QSaveFile m_file;
    QString m_error;
};

// A printout for a printer, on the printer's own page size, margins and
// orientation. The document is drawn whole into a file first and handed to
// the print system only when it is finished, so a printout that is
// cancelled or fails half way prints nothing at all. A printer set to print
// into a PDF file gets that file, all or nothing.
class PrinterSurface final : public PdfSurface
{
public:
    PrinterSurface(QPrinter &printer, const QString &title);
    ~PrinterSurface() override;

    bool endDoc() override;
    void abortDoc() override;
    QString errorText() const override { return m_error; }

private:
    // The printer's name and a blank, for messages; empty without a name.
    QString namedPrinter() const;
    bool submitToPrinter();

    QPrinter &m_printer;
    QString m_title;
    QSaveFile m_file;       // a printer printing to a file
    QTemporaryFile m_spool; // a printer of the print system
    QString m_error;
};

} // namespace quillet
