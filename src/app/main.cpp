#include "startup.h"

#include <QApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (!quillet::haveDisplay()) {
        std::fputs("Quillet needs a display: run it on a desktop, or start one with "
                   "'Xvfb :1 & export DISPLAY=:1'.\n",
                   stderr);
        return 1;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillet"));
    QApplication::setStyle(QStringLiteral("Fusion"));
    return quillet::runQuillet();
}
