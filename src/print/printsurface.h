#pragma once

#include <QString>

namespace quillet {

// What the printouts ask of a printer: a current position in twips, a font
// size and weight, a line of text that moves down a line, a filled box, a
// line, and the end of the document.
//
// Vertical positions run down the whole document, never back to 0 on a new
// page, so a printout can step back up to the top of the line it is printing
// whatever page that line landed on. The surface maps them onto pages: a line
// of text that would cross the bottom of the page starts a new page, at its
// top. A text printed less than half a line from the previous text's top
// belongs to the same printed line and stays on that text's page, so the
// columns of one line are never split over two pages.
class PrintSurface
{
public:
    // A document starts in the printer's own font at this size, not bold.
    static constexpr double DefaultFontSize = 10.0;

    PrintSurface() = default;
    virtual ~PrintSurface() = default;
    PrintSurface(const PrintSurface &) = delete;
    PrintSurface &operator=(const PrintSurface &) = delete;

    double currentX() const { return m_x; }
    double currentY() const { return m_y; }
    void setCurrentX(double x) { m_x = x; }
    void setCurrentY(double y) { m_y = y; }

    double fontSize() const { return m_fontSize; }
    bool fontBold() const { return m_fontBold; }
    void setFontSize(double points);
    void setFontBold(bool bold);

    // Prints text with its top left corner at the current position, then
    // moves to the start of the next line: x 0, y one line lower (a line as
    // high as the printer's font, whatever the text).
    void printLine(const QString &text);
    // A filled black box between two corners; the position moves to the
    // second corner.
    void fillBox(double x1, double y1, double x2, double y2);
    // A black line `thickness` twips thick, centred on the segment; the
    // position moves to its end.
    void drawLine(double x1, double y1, double x2, double y2, double thickness);

    // Sends the document to the printer, or finishes its file. False when
    // that failed; errorText() then says why.
    virtual bool endDoc() = 0;
    // Gives the document up: nothing is printed, no file is left behind.
    virtual void abortDoc() = 0;
    virtual QString errorText() const { return {}; }

    // Pages begun so far, the first included.
    int pageCount() const { return m_page; }
    // The height of one printed line in the current font, twips.
    virtual double lineHeight() const = 0;

protected:
    // The printable height of a page, twips.
    virtual double pageHeight() const = 0;
    virtual void fontChanged() {}
    virtual void startNewPage() = 0;
    // Marks on the current page, y measured from the page's top.
    virtual void drawText(double x, double y, const QString &text) = 0;
    virtual void drawBox(double x1, double y1, double x2, double y2) = 0;
    virtual void drawSegment(double x1, double y1, double x2, double y2, double thickness) = 0;

private:
    // Chooses the page for a line of text whose top lies at y.
    void placeText(double y, double height);

    double m_x = 0;
    double m_y = 0;
    double m_fontSize = DefaultFontSize;
    bool m_fontBold = false;
    int m_page = 1;
    double m_pageTop = 0;
    bool m_pageUsed = false;
    double m_lastTextTop = 0;
};

} // namespace quillet
