#include "messages.h"

#include <QWidget>

namespace quillet {

void showMessage(QWidget *parent, const QString &text, QMessageBox::Icon icon)
{
    QMessageBox box(icon, QStringLiteral("Quillet"), text, QMessageBox::Ok, parent);
    box.exec();
    // Without a window manager nothing hands the keyboard back to the window
    // the message interrupted; typing must go on where it was.
    if (parent && parent->isVisible())
        parent->window()->activateWindow();
}

} // namespace quillet
