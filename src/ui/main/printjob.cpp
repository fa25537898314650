#include "printjob.h"

#include "messages.h"
#include "pdfsurface.h"

#include <QAbstractButton>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>

namespace quillet {

namespace {

std::unique_ptr<QPrinter> openDefaultPrinter()
{
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    // Without a printing system Qt has no printer to name, and a plain
    // QPrinter would swallow the document without a word.
    if (info.isNull() || info.state() == QPrinter::Error)
        return nullptr;
    return std::make_unique<QPrinter>(info, QPrinter::HighResolution);
}

QString askForPdfFile(QWidget *parent, const QString &proposedPath)
{
    return QFileDialog::getSaveFileName(parent, QStringLiteral("Save the Printout as PDF"),
                                        proposedPath, QStringLiteral("PDF files (*.pdf)"));
}

// Asks whether to save as PDF instead. Only the Save button says yes: a box
// closed any other way prints nothing.
bool offerPdf(QWidget *parent)
{
    QMessageBox box(QMessageBox::Question, QStringLiteral("Quillet"), noPrinterQuestion(),
                    QMessageBox::Save | QMessageBox::Cancel, parent);
    box.button(QMessageBox::Save)->setText(QStringLiteral("Save as PDF..."));
    box.setDefaultButton(QMessageBox::Save);
    return box.exec() == QMessageBox::Save;
}

// Shows the progress of a long printout and hears its Cancel button.
class ProgressWatch
{
public:
    ProgressWatch(QWidget *parent, const QString &title, int lineCount, int delayMs)
        : m_dialog(QStringLiteral("Printing %1...").arg(title), QStringLiteral("Cancel"), 0,
                   lineCount, parent)
    {
        m_dialog.setWindowTitle(QStringLiteral("Quillet"));
        m_dialog.setWindowModality(Qt::WindowModal);
        m_dialog.setMinimumDuration(delayMs);
        m_dialog.setAutoClose(false);
        m_dialog.setAutoReset(false);
        m_dialog.setValue(0);
    }
    ~ProgressWatch() { m_dialog.close(); }
    Q_DISABLE_COPY_MOVE(ProgressWatch)

    bool update(int done, int total)
    {
        // Every line would spend more time on the dialog than on the page.
        if (done % UpdateEvery == 0 || done == total)
            m_dialog.setValue(done);
        return !m_dialog.wasCanceled();
    }

private:
    static constexpr int UpdateEvery = 32;
    QProgressDialog m_dialog;
};

PrintOutcome runOn(PrintSurface &surface, QWidget *parent, const PrintSeams &seams,
                   const QString &title, int lineCount, const Printout &printout)
{
    ProgressWatch watch(parent, title, lineCount, seams.progressDelayMs);
    return printout(surface, [&watch](int done, int total) { return watch.update(done, total); });
}

} // namespace

PrintSeams PrintSeams::system()
{
    PrintSeams seams;
    seams.defaultPrinter = openDefaultPrinter;
    seams.choosePdfFile = askForPdfFile;
    return seams;
}

QString noPrinterQuestion()
{
    return QStringLiteral("There is no printer to print on: no printer is installed, or the "
                          "default printer is not available.\n\n"
                          "Save the printout as a PDF file instead?");
}

QString pdfFileName(const QString &text, const QString &fallback)
{
    QString name = text.trimmed();
    for (QChar &c : name) {
        if (c.category() == QChar::Other_Control || QStringView(u"/\\:*?\"<>|").contains(c))
            c = u'_';
    }
    if (name.isEmpty() || name.startsWith(u'.'))
        name = fallback;
    return name + QStringLiteral(".pdf");
}

PrintOutcome runPrintout(QWidget *parent, const PrintSeams &seams, const QString &title,
                         const QString &pdfName, int lineCount, const Printout &printout)
{
    PrintOutcome outcome;
    if (std::unique_ptr<QPrinter> printer =
            seams.defaultPrinter ? seams.defaultPrinter() : nullptr) {
        PrinterSurface surface(*printer, title);
        outcome = surface.isOpen()
                      ? runOn(surface, parent, seams, title, lineCount, printout)
                      : PrintOutcome{PrintOutcome::Result::Failed, surface.errorText()};
    } else {
        if (!offerPdf(parent))
            return {PrintOutcome::Result::Cancelled, {}};
        const QString path = seams.choosePdfFile
                                 ? seams.choosePdfFile(parent, QDir::current().filePath(pdfName))
                                 : QString();
        if (path.isEmpty())
            return {PrintOutcome::Result::Cancelled, {}};
        PdfFileSurface surface(path, title);
        outcome = surface.isOpen()
                      ? runOn(surface, parent, seams, title, lineCount, printout)
                      : PrintOutcome{PrintOutcome::Result::Failed, surface.errorText()};
    }
    if (outcome.result == PrintOutcome::Result::Failed) {
        showMessage(parent,
                    QStringLiteral("The printout could not be finished. %1").arg(outcome.message),
                    QMessageBox::Warning);
    }
    return outcome;
}

} // namespace quillet
