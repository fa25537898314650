#pragma once

#include <QString>

class QWidget;

namespace quillet {

// True when a window system is there to show windows on; Qt would abort
// without one.
bool haveDisplay();

// Runs Quillet in the current directory until its window is closed. A second
// Quillet in the same directory, or list files that cannot be opened, are
// explained in a message box and end it without touching the files.
int runQuillet();

// The lock file that keeps a second Quillet out of a directory.
QString lockFileName();

} // namespace quillet
