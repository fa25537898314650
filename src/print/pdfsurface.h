#pragma once

#include "printsurface.h"

#include <QFont>
#include <QPageLayout>
#include <QSaveFile>
#include <QString>
#include <QTemporaryFile>

#include <map>
#include <memory>
#include <utility>

class QIODevice;
class QPrinter;

namespace quillet {

class PdfDocument;
class PrinterText;

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

    std::unique_ptr<PdfDocument> m_document;
    int m_resolution = 1200;
    QFont m_font;
    double m_dotsPerTwip = 1;
    double m_pageHeight = 0;
    double m_lineHeight = 0;
    double m_ascent = 0;
    double m_paperLeft = 0;
    double m_paperRight = 0;
    // The printer font at each size and weight met, with what it learnt.
    std::map<std::pair<double, bool>, std::unique_ptr<PrinterText>> m_texts;
    PrinterText *m_text = nullptr;
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
