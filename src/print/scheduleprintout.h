#pragma once

#include "printoutcome.h"
#include "printsurface.h"
#include "scenariorecord.h"
#include "schedule.h"
#include "textmeasure.h"

#include <QString>
#include <QStringList>

#include <array>

namespace quillet {

// One header line of a schedule printout: a field's caption, its text as the
// window shows it, and whether it is shown bold (the solved value).
struct ScheduleHeaderLine
{
    QString label;
    QString value;
    bool bold = false;
};

// What a schedule printout needs: the seven header lines in printed order
// (description, initial amount, rate, years, payment, payments per year,
// future value or total interest), the column headings (four for an
// investment, six for a loan), the quantities the schedule starts from and
// the number of periods to print.
struct SchedulePrintJob
{
    bool investments = true;
    std::array<ScheduleHeaderLine, 7> header;
    QStringList headings;
    ScheduleStart start;
    int periodCount = 0;
};

// One header line: the label at 100 twips, the value at 3000 in bold when
// asked. Returns to the line by moving up the label's height in measure's
// font (the schedule window's), then advances by the printed value's line.
void OutText2(PrintSurface &printer, const TextMeasure &measure, const QString &label,
              const QString &value, bool bold);
// One line of the investment table, columns at 100, 2000, 5000 and 8000:
// left-aligned (AlignFactor 0) or ending at 2600, 6400 and 9600 (1).
void OutText4(PrintSurface &printer, const TextMeasure &measure,
              const std::array<QString, 4> &texts, qint16 AlignFactor);
// One line of the loan table, columns at 100, 1800, 3300, 4800, 6700 and
// 8800, right-aligned ending at 2800, 4300, 6000, 7900 and 10000.
void OutText6(PrintSurface &printer, const TextMeasure &measure,
              const std::array<QString, 6> &texts, qint16 AlignFactor);

// Prints a schedule: the header lines, two blank lines, the column headings,
// a rule under them 1 point thick, and every period from 1 to the count, each
// computed as the schedule window computes it; then ends the document.
PrintOutcome PrintAmort(PrintSurface &printer, const TextMeasure &measure,
                        const SchedulePrintJob &job, const PrintProgress &progress = {});

// The schedule windows' captions of the seven header fields, in printed order.
std::array<QString, 7> scheduleLabels(bool investments);
// The schedule windows' column headings.
QStringList scheduleHeadings(bool investments);
// The schedule window's font as the printouts measure it: MS Sans Serif 9.75 pt.
TextMeasure scheduleWindowMeasure(qreal logicalDpi);

// The printout of a record's schedule as its window would show it, over
// periodCount periods.
SchedulePrintJob schedulePrintJob(const ScenarioRecord &record, bool investments, int periodCount,
                                  quint16 stateFlags = 0);

} // namespace quillet
