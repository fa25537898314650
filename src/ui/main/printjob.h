#pragma once

#include "printoutcome.h"
#include "printsurface.h"

#include <QString>

#include <functional>
#include <memory>

class QPrinter;
class QWidget;

namespace quillet {

// Where a printout goes and the dialogs that decide it, replaceable so that
// tests can answer them without a person and without hanging.
struct PrintSeams
{
    // The system's default printer, or none when no printer is installed or
    // the default one cannot be used.
    std::function<std::unique_ptr<QPrinter>()> defaultPrinter;
    // The PDF file to write instead, proposing a path; empty when the user
    // cancels.
    std::function<QString(QWidget *parent, const QString &proposedPath)> choosePdfFile;
    // How long a printout runs before its progress dialog appears.
    int progressDelayMs = 500;

    // The real printer and the real save dialog.
    static PrintSeams system();
};

// The text that offers a PDF when there is no printer.
QString noPrinterQuestion();

// A PDF file name made of a text, such as a scenario's description: the
// characters a file name cannot hold become '_'; fallback when it is empty.
QString pdfFileName(const QString &text, const QString &fallback);

using Printout = std::function<PrintOutcome(PrintSurface &printer, const PrintProgress &progress)>;

// Prints on the default printer at once, without a dialog. Without a usable
// printer it says so and offers to save the printout as a PDF file, proposing
// pdfName in the current directory. A progress dialog that can cancel the
// printout appears when it runs longer than the seams' delay. Failures are
// told in a message box; nothing is left half printed or half written.
PrintOutcome runPrintout(QWidget *parent, const PrintSeams &seams, const QString &title,
                         const QString &pdfName, int lineCount, const Printout &printout);

} // namespace quillet
