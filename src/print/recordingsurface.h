#pragma once

#include "printsurface.h"

#include <QString>

#include <vector>

namespace quillet {

// A printer that keeps what it is asked to print instead of printing it, so
// that tests can check every position, text and weight. Its lines are
// LineHeightPerPoint twips high for each point of the font size (207 twips at
// 9 points), its pages pageHeight twips high.
class RecordingSurface final : public PrintSurface
{
public:
    static constexpr double LineHeightPerPoint = 23.0;
    static constexpr double DefaultPageHeight = 15000.0;

    struct Mark
    {
        enum class Kind { Text, Box, Line };
        Kind kind = Kind::Text;
        int page = 1;
        // Text: its top left corner; box and line: the first corner or end.
        double x = 0;
        double y = 0;
        // Box and line: the second corner or end.
        double x2 = 0;
        double y2 = 0;
        double thickness = 0;
        QString text;
        double fontSize = 0;
        bool bold = false;
    };

    explicit RecordingSurface(double pageHeight = DefaultPageHeight);

    const std::vector<Mark> &marks() const { return m_marks; }
    std::vector<Mark> texts() const;
    bool ended() const { return m_ended; }
    bool aborted() const { return m_aborted; }
    // Makes endDoc() report a failure, as a printer that went off line.
    void failAtEnd(const QString &why) { m_failure = why; }

    bool endDoc() override;
    void abortDoc() override;
    QString errorText() const override { return m_failure; }
    double lineHeight() const override;

protected:
    double pageHeight() const override { return m_pageHeight; }
    void startNewPage() override;
    void drawText(double x, double y, const QString &text) override;
    void drawBox(double x1, double y1, double x2, double y2) override;
    void drawSegment(double x1, double y1, double x2, double y2, double thickness) override;

private:
    double m_pageHeight;
    int m_page = 1;
    std::vector<Mark> m_marks;
    bool m_ended = false;
    bool m_aborted = false;
    QString m_failure;
};

} // namespace quillet
