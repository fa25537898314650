#pragma once

#include "printjob.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QObject>

namespace quillet::test {

// Presses "Save as PDF..." when Quillet, finding no printer, offers to save
// the printout as a PDF, as a person accepting the offer would. Any other
// box is left to the message box watcher, which closes it with OK.
//
// Make it before the watcher: filters installed later see the box first, so
// the watcher's OK is queued first and this press, queued after it, decides.
class PdfOfferAccepter final : public QObject
{
public:
    PdfOfferAccepter() { qApp->installEventFilter(this); }
    ~PdfOfferAccepter() override { qApp->removeEventFilter(this); }
    Q_DISABLE_COPY_MOVE(PdfOfferAccepter)

    int offers() const { return m_offers; }
    void setAccepting(bool accepting) { m_accepting = accepting; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show) {
            auto *box = qobject_cast<QMessageBox *>(watched);
            if (box && m_accepting && box->text() == noPrinterQuestion()) {
                ++m_offers;
                QMetaObject::invokeMethod(
                    box, [box] { box->button(QMessageBox::Save)->click(); }, Qt::QueuedConnection);
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    int m_offers = 0;
    bool m_accepting = true;
};

} // namespace quillet::test
