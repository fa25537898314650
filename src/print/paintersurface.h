#pragma once

#include "printsurface.h"

#include <QFont>
#include <QPainter>
#include <QRawFont>
#include <QSaveFile>
#include <QString>

#include <array>
#include <map>
#include <memory>
#include <utility>
#include <vector>

class QPagedPaintDevice;
class QPdfWriter;
class QPrinter;

namespace quillet {

// The print surface on Qt's painting, for a printer and a PDF file alike.
// Twips become device pixels here by the device's resolution; the font is
// the printer's own (Arial) at the size the printout asks for.
class PainterSurface : public PrintSurface
{
public:
    double lineHeight() const override { return m_lineHeight; }
    bool isOpen() const { return m_painter.isActive(); }

protected:
    PainterSurface();
    // Starts painting on the device; false when the device will not paint.
    bool begin(QPagedPaintDevice &device);
    bool endPainting();

    double pageHeight() const override { return m_pageHeight; }
    void fontChanged() override;
    void startNewPage() override;
    void drawText(double x, double y, const QString &text) override;
    void drawBox(double x1, double y1, double x2, double y2) override;
    void drawSegment(double x1, double y1, double x2, double y2, double thickness) override;

private:
    double pixels(double twips) const { return twips * m_pixelsPerTwip; }
    void applyFont();
    // The paper's left and right edges in device pixels, from the printable
    // area's left edge.
    void findPaperEdges(QPagedPaintDevice &device);
    // The glyphs of a text and their kerned advances, without shaping; false
    // when the font lacks one of its characters.
    bool plainGlyphs(const QString &text, QList<quint32> &glyphs, QList<QPointF> &advances);
    bool latin1Glyphs(const QString &text, QList<quint32> &glyphs, QList<QPointF> &advances);

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

    QPainter m_painter;
    QPagedPaintDevice *m_device = nullptr;
    QFont m_font;
    QRawFont m_rawFont;
    double m_pixelsPerTwip = 1;
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
class PdfFileSurface final : public PainterSurface
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
    std::unique_ptr<QPdfWriter> m_writer;
    QString m_error;
};

// A printout sent to a printer. The printer's own page size, margins and
// orientation are used; nothing is set but the document's name.
class PrinterSurface final : public PainterSurface
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

    QPrinter &m_printer;
    QString m_error;
};

} // namespace quillet
