#include <QApplication>
#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>
#include <memory>

#include "reportcommand.h"

namespace {

// The tool speaks on standard error in one line of its own per problem; the
// graphics stack's chatter (a missing XDG_RUNTIME_DIR, font notes) would
// only bury it. Critical and fatal messages still go through.
void quietMessages(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(message));
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList arguments;
    for (int k = 0; k < argc; ++k)
        arguments.append(QString::fromLocal8Bit(argv[k]));

    // A chart is drawn with widgets' graphics but never shown: the offscreen
    // platform needs no display, so the tool draws the same with or without.
    std::unique_ptr<QCoreApplication> app;
    if (quillet::report::needsGraphics(arguments)) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler(quietMessages);
        app = std::make_unique<QApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    QCoreApplication::setApplicationName(quillet::report::ProgramName);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));

    QTextStream out(stdout);
    QTextStream err(stderr);
    return quillet::report::runReport(QCoreApplication::arguments(), out, err);
}
