#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

#include "reportcommand.h"

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(quillet::report::ProgramName);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));

    QTextStream out(stdout);
    QTextStream err(stderr);
    return quillet::report::runReport(QCoreApplication::arguments(), out, err);
}
