#pragma once

#include "mainlayout.h"

#include <QIcon>
#include <QPixmap>

namespace quillet {

// The small pictures above the command bar captions, drawn in code at the
// button's picture size.
QPixmap commandPicture(MainLayout::Command command, QSize size);
// The greyed picture a disabled button shows.
QPixmap greyedPicture(const QPixmap &picture);
// The icon of a command button: its picture, and the greyed one when the
// button has one.
QIcon commandIcon(const MainLayout::CommandSpec &layout);
// The window icon (32 and 16 pixels).
QIcon quilletIcon();

} // namespace quillet
