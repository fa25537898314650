#pragma once

#include <QByteArray>
#include <QPoint>
#include <QPointF>
#include <QRawFont>
#include <QSizeF>
#include <QString>

#include <memory>
#include <vector>

class QIODevice;
class QPainterPath;
class QRectF;

namespace quillet {

class PdfFont;

// Where the drawing of a page lands on its sheet: drawing units are dots at
// `resolution` per inch, y down, from the printable area's top left corner,
// which lies `originDots` from the sheet's top left.
struct PdfPageGeometry
{
    QSizeF paperPoints;
    int resolution = 1200;
    QPoint originDots;
};

// A PDF document written to a device as it is drawn: a page's contents go
// out, compressed, when the next page begins; the fonts, embedded whole,
// and the cross-reference table when it is finished. Each glyph costs a
// couple of bytes, in strings whose spacing is adjusted only where the
// positions asked for depart from the font's own advances (kerning), so a
// page full of figures is written about as fast as it is laid out.
class PdfDocument final
{
public:
    PdfDocument(QIODevice &device, const PdfPageGeometry &geometry, const QString &title);
    ~PdfDocument();
    PdfDocument(const PdfDocument &) = delete;
    PdfDocument &operator=(const PdfDocument &) = delete;

    // Ends the page being drawn, if any, and begins a new one.
    void beginPage();
    // Glyphs of a font at positions from a point on their baseline, drawing
    // units. `text` holds the character each glyph stands for, or is empty
    // when that is not known one for one.
    void drawGlyphs(const QRawFont &font, const QPointF &baseline, const quint32 *glyphs,
                    const QPointF *positions, qsizetype count, QStringView text);
    void fillRect(const QRectF &rect);
    // A line `width` thick with square-cut ends.
    void strokeLine(const QPointF &from, const QPointF &to, qreal width);
    void fillPath(const QPainterPath &path);

    // Writes the last page, the fonts and the index of objects. False when
    // the device refused a write at any point.
    bool finish();

private:
    int newObject();
    void write(const QByteArray &bytes);
    void writeObject(int id, const QByteArray &body);
    void writeStream(int id, const QByteArray &dictionary, const QByteArray &data);
    void endPage();
    void beginText();
    void endText();
    int fontFor(const QRawFont &font);
    void showGlyphs(PdfFont &font, double size, const QPointF &baseline, const quint32 *glyphs,
                    const QPointF *positions, qsizetype count, QStringView text);
    QByteArray writeFonts();
    // The font descriptor, with the embedded program, of a font's face.
    int writeFontProgram(std::size_t font);

    QIODevice &m_device;
    PdfPageGeometry m_geometry;
    QString m_title;
    bool m_failed = false;
    qint64 m_written = 0;
    std::vector<qint64> m_offsets; // by object number; -1 where not written
    std::vector<int> m_pages;
    std::vector<std::unique_ptr<PdfFont>> m_fonts;
    std::vector<int> m_fontPrograms; // each font's descriptor object
    std::vector<QByteArray> m_fontNames;

    bool m_pageOpen = false;
    QByteArray m_content;
    bool m_inText = false;
    int m_textFont = -1;
    double m_textSize = -1;
};

} // namespace quillet
