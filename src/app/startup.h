#pragma once

#include <QString>

class QWidget;

namespace quillet {

// True when a window system is there to show windows on; Qt would abort
// without one.
bool haveDisplay();

// Runs Quillet in the current directory until its window is closed. A second
// Quillet in the same directory is explained in a message box and ends it
// without touching the files; a list file that cannot be written or read is
// explained, and the window opens all the same.
int runQuillet();

// The lock file that keeps a second Quillet out of a directory.
QString lockFileName();

} // namespace quillet
