#pragma once

#include "printoutcome.h"
#include "printsurface.h"
#include "scenariorecord.h"
#include "status.h"
#include "textmeasure.h"

#include <QString>

#include <array>
#include <functional>

namespace quillet {

// The texts of one line of the list printout: row number, description, then
// the initial amount, rate, years, payment, payments per year and future
// value (the total interest for loans).
using ListLineTexts = std::array<QString, 8>;

// Bold-column codes, by the field a column holds.
enum BoldColumn : qint16 {
    BoldNone = 0,
    BoldInitialAmount = 2,
    BoldRate = 3,
    BoldYears = 4,
    BoldPayment = 5,
    BoldPerYear = 6,
    BoldFutureValue = 7
};

// Prints one line of the list at the surface's current y: the first two
// texts at 100 and 600 twips, the six numbers each starting at its column's
// left edge (AlignFactor 0) or ending at its right edge (AlignFactor 1), as
// wide as measure makes them; measure is the main window's font, never the
// printer's. BoldCol names the one bold column; in the loan list
// (InvMode false) the last column is bold in any case. Leaves y one line
// lower and bold off.
void OutText8(PrintSurface &printer, const TextMeasure &measure, bool InvMode,
              const ListLineTexts &texts, qint16 AlignFactor, qint16 BoldCol);

// The list to print: which one, the grid's header texts (Desc(0) to
// FutureValue(0)), how many records, and how to read record n into the
// working record.
struct ListPrintJob
{
    bool investments = true;
    std::array<QString, 7> headers;
    int count = 0;
    std::function<Status(int n)> readRecord;
    quint16 stateFlags = 0;
};

// The heading of the printed list.
QString listHeading(bool investments);
// The header texts the grid shows for a list.
std::array<QString, 7> listHeaders(bool investments);
// Said instead of printing a list that has no records.
QString emptyListMessage(bool investments);
// The main window's font as the printouts measure it: Arial 9 pt.
TextMeasure mainWindowMeasure(qreal logicalDpi);

// Prints the whole list: heading, header line, rule, one line per record in
// file order with the solved values bold, then ends the document. Reads each
// record into working, which is left holding the last one with its
// description trimmed. An empty list prints nothing and ends no document.
PrintOutcome printList(PrintSurface &printer, const TextMeasure &measure, const ListPrintJob &job,
                       ScenarioRecord &working, const PrintProgress &progress = {});

} // namespace quillet
