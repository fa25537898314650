#include "pdfreport.h"

#include "fonts.h"
#include "listprintout.h"
#include "pdfsurface.h"
#include "schedule.h"
#include "scheduleprintout.h"

#include <limits>

namespace quillet::report {

namespace {

// The windows are measured at 96 dpi, as they are laid out on screen.
constexpr qreal WindowDpi = 96;

Status statusOf(const PrintOutcome &outcome)
{
    return outcome.printed() ? Status() : Status::failure(outcome.message);
}

} // namespace

Status writeListPdf(ListKind list, const std::vector<ScenarioRecord> &records,
                    const QString &outputPath)
{
    installFontSubstitutions();
    const bool investments = list == ListKind::Investments;
    if (records.empty())
        return Status::failure(emptyListMessage(investments));

    ScenarioRecord working;
    ListPrintJob job;
    job.investments = investments;
    job.headers = listHeaders(investments);
    job.count = static_cast<int>(records.size());
    job.readRecord = [&](int n) {
        working = records.at(static_cast<std::size_t>(n - 1));
        return Status();
    };
    PdfFileSurface pdf(outputPath, listHeading(investments));
    if (!pdf.isOpen())
        return Status::failure(pdf.errorText());
    return statusOf(printList(pdf, mainWindowMeasure(WindowDpi), job, working));
}

Status writeSchedulePdf(ListKind list, const ScenarioRecord &record, int recordNumber,
                        const QString &fileName, const QString &outputPath)
{
    installFontSubstitutions();
    const bool investments = list == ListKind::Investments;
    const ScheduleHeader header = scheduleHeader(record, investments);
    using CountStatus = PeriodCountOutcome::Status;
    const PeriodCountOutcome periods =
        PeriodCountFor(header.value(Field::Years).text, header.perYear);
    if (periods.status == CountStatus::TooMany) {
        return Status::failure(QStringLiteral("record %1 of %2 has more than %3 periods")
                                   .arg(recordNumber)
                                   .arg(fileName)
                                   .arg(std::numeric_limits<qint16>::max()));
    }
    if (periods.status == CountStatus::NotANumber) {
        return Status::failure(QStringLiteral("record %1 of %2: its years or payments per year "
                                              "are not a number")
                                   .arg(recordNumber)
                                   .arg(fileName));
    }
    // Without a count (no years) the window would keep an earlier one; a
    // report has none, so it prints no periods.
    const int count =
        periods.status == CountStatus::Counted && periods.count > 0 ? periods.count : 0;

    PdfFileSurface pdf(outputPath, investments ? QStringLiteral("Investment Amortization")
                                               : QStringLiteral("Loan Amortization"));
    if (!pdf.isOpen())
        return Status::failure(pdf.errorText());
    return statusOf(PrintAmort(pdf, scheduleWindowMeasure(WindowDpi),
                               schedulePrintJob(record, investments, count)));
}

} // namespace quillet::report
