#include "messages.h"

namespace quillet {

void showMessage(QWidget *parent, const QString &text, QMessageBox::Icon icon)
{
    QMessageBox box(icon, QStringLiteral("Quillet"), text, QMessageBox::Ok, parent);
    box.exec();
}

} // namespace quillet
