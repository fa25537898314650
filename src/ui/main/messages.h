#pragma once

#include <QMessageBox>
#include <QString>

class QWidget;

namespace quillet {

// Every message Quillet shows: a box with an OK button, titled "Quillet".
void showMessage(QWidget *parent, const QString &text,
                 QMessageBox::Icon icon = QMessageBox::NoIcon);

} // namespace quillet
