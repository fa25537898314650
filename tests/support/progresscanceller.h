#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QObject>
#include <QProgressDialog>

namespace quillet::test {

// Cancels a progress dialog as soon as it shows, as a person pressing Cancel.
class ProgressCanceller final : public QObject
{
public:
    ProgressCanceller() { qApp->installEventFilter(this); }
    ~ProgressCanceller() override { qApp->removeEventFilter(this); }
    Q_DISABLE_COPY_MOVE(ProgressCanceller)

    int shown = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show) {
            if (auto *dialog = qobject_cast<QProgressDialog *>(watched)) {
                ++shown;
                QMetaObject::invokeMethod(dialog, &QProgressDialog::cancel, Qt::QueuedConnection);
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace quillet::test
