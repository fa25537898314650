#include "listprintout.h"

#include "displaytext.h"
#include "solver.h"

#include <QFont>

namespace quillet {

namespace {

struct MeasuredColumn
{
    int left;
    int width;
    qint16 boldCode;
};

// Columns 3 to 8 of a list line.
constexpr std::array<MeasuredColumn, 6> MeasuredColumns = {{
    {4700, 1200, BoldInitialAmount},
    {6250, 500, BoldRate},
    {7050, 450, BoldYears},
    {8200, 800, BoldPayment},
    {9250, 400, BoldPerYear},
    {10400, 1150, BoldFutureValue},
}};

constexpr double HeadingLeft = 100;
constexpr double HeadingSize = 20;
constexpr double BodySize = 9;
constexpr double RuleLeft = 100;
constexpr double RuleDrop = 5;
constexpr double RuleWidth = 11500;
constexpr double RuleHeight = 15;
constexpr int RowNumberWidth = 4;

// Prints a text at x as a whole line, then returns to the line's top.
void printAt(PrintSurface &printer, double x, double lineTop, const QString &text)
{
    printer.setCurrentX(x);
    printer.printLine(text);
    printer.setCurrentY(lineTop);
}

} // namespace

void OutText8(PrintSurface &printer, const TextMeasure &measure, bool InvMode,
              const ListLineTexts &texts, qint16 AlignFactor, qint16 BoldCol)
{
    const double y = printer.currentY();
    printAt(printer, 100, y, texts[0]);
    printAt(printer, 600, y, texts[1]);
    for (std::size_t k = 0; k < MeasuredColumns.size(); ++k) {
        const MeasuredColumn &column = MeasuredColumns[k];
        const QString &text = texts[k + 2];
        const float T = measure.width(text);
        const float x = (static_cast<float>(column.width) - T) * static_cast<float>(AlignFactor) +
                        static_cast<float>(column.left);
        printer.setCurrentX(x);
        const bool last = k + 1 == MeasuredColumns.size();
        printer.setFontBold(BoldCol == column.boldCode || (last && !InvMode));
        printer.printLine(text);
        // The last column's line advance is the line's.
        if (!last)
            printer.setCurrentY(y);
    }
    printer.setFontBold(false);
}

QString listHeading(bool investments)
{
    return investments ? QStringLiteral("Investments") : QStringLiteral("Loans");
}

std::array<QString, 7> listHeaders(bool investments)
{
    return {QStringLiteral("Description"),
            QStringLiteral("Initial Amount"),
            investments ? QStringLiteral("Yield") : QStringLiteral("Rate"),
            QStringLiteral("Years"),
            QStringLiteral("Payment"),
            QStringLiteral("# Per Year"),
            investments ? QStringLiteral("Future Value") : QStringLiteral("Total Interest")};
}

QString emptyListMessage(bool investments)
{
    return QStringLiteral("There are no ") +
           (investments ? QStringLiteral("investment") : QStringLiteral("loan")) +
           QStringLiteral(" scenarios to print.");
}

TextMeasure mainWindowMeasure(qreal logicalDpi)
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSizeF(9);
    return TextMeasure(font, logicalDpi);
}

PrintOutcome printList(PrintSurface &printer, const TextMeasure &measure, const ListPrintJob &job,
                       ScenarioRecord &working, const PrintProgress &progress)
{
    if (job.count < 1)
        return {PrintOutcome::Result::Empty, emptyListMessage(job.investments)};

    printer.setCurrentX(HeadingLeft);
    printer.setFontBold(true);
    printer.setFontSize(HeadingSize);
    printer.printLine(listHeading(job.investments));
    printer.setFontBold(false);
    printer.setFontSize(BodySize);
    printer.printLine(QStringLiteral(" "));
    printer.printLine(QStringLiteral(" "));

    ListLineTexts header;
    for (std::size_t k = 0; k < job.headers.size(); ++k)
        header[k + 1] = job.headers[k];
    OutText8(printer, measure, job.investments, header, 0, BoldNone);

    const auto G = static_cast<float>(0.2 * static_cast<double>(measure.height(u"Sample")));
    printer.setCurrentY(printer.currentY() + G);

    printer.setCurrentX(RuleLeft);
    const double x1 = printer.currentX();
    const double y1 = printer.currentY() + RuleDrop;
    printer.fillBox(x1, y1, x1 + RuleWidth, y1 + RuleHeight);

    static constexpr std::array<Field, 4> FirstFields = {Field::InitialAmount, Field::IRate,
                                                         Field::Years, Field::Payment};
    static constexpr std::array<qint16, 4> FirstBoldCodes = {BoldInitialAmount, BoldRate, BoldYears,
                                                             BoldPayment};
    const int count = job.count;
    for (int i = 1; i <= count; ++i) {
        if (const Status status = job.readRecord(i); !status.ok()) {
            printer.abortDoc();
            return {PrintOutcome::Result::Failed, status.message()};
        }
        const QString desc = trimmedDesc(working);
        setDescText(working, desc);

        qint16 BoldCol = BoldNone;
        std::array<SolveResult, 5> solved;
        for (std::size_t k = 0; k < FirstFields.size(); ++k) {
            solved[k] = Solve(working, FirstFields[k], job.investments, job.stateFlags);
            if (solved[k].computed)
                BoldCol = FirstBoldCodes[k];
        }
        const QString perYear =
            working.PerYear == BlankPerYear ? QString() : QString::number(working.PerYear);
        solved[4] = Solve(working, Field::FutureValue, job.investments, job.stateFlags);
        if (solved[4].computed && job.investments)
            BoldCol = BoldFutureValue;

        printer.setCurrentY(printer.currentY() + G);
        const ListLineTexts line = {
            PadNum(i, RowNumberWidth),
            desc,
            FormatValue(Field::InitialAmount, solved[0].value, solved[0].ok),
            FormatValue(Field::IRate, solved[1].value, solved[1].ok),
            FormatValue(Field::Years, solved[2].value, solved[2].ok),
            FormatValue(Field::Payment, solved[3].value, solved[3].ok),
            perYear,
            FormatValue(Field::FutureValue, solved[4].value, solved[4].ok),
        };
        OutText8(printer, measure, job.investments, line, 1, BoldCol);

        if (progress && !progress(i, count)) {
            printer.abortDoc();
            return {PrintOutcome::Result::Cancelled, {}};
        }
    }
    if (!printer.endDoc())
        return {PrintOutcome::Result::Failed, printer.errorText()};
    return {};
}

} // namespace quillet
