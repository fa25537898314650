#include "startup.h"

#include "fonts.h"
#include "mainwindow.h"
#include "messages.h"
#include "schedulewindows.h"
#include "session.h"
#include "signalcloser.h"

#include <QApplication>
#include <QDir>
#include <QLockFile>

namespace quillet {

namespace {

void showStartupProblem(const QString &message)
{
    showMessage(nullptr, message, QMessageBox::Warning);
}

} // namespace

bool haveDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

QString lockFileName()
{
    return QStringLiteral(".quillet.lock");
}

int runQuillet()
{
    installFontSubstitutions();

    // Two copies on the same lists would overwrite each other's changes.
    QLockFile lock(QDir::current().filePath(lockFileName()));
    lock.setStaleLockTime(0);
    if (!lock.tryLock(0)) {
        showStartupProblem(
            QStringLiteral("Quillet is already open in the folder %1. Use that window: a second "
                           "one would overwrite the changes made in the other.")
                .arg(QDir::toNativeSeparators(QDir::currentPath())));
        return 1;
    }

    Session session;
    MainWindow window(session);
    ScheduleWindows schedules(session, &window);
    window.setScheduleOpener(
        [&schedules](ListKind list, int record) { schedules.open(list, record); });
    window.Form_Load();
    window.show();
    // A logout or shutdown closes the window as the user would.
    SignalCloser closer;
    return QApplication::exec();
}

} // namespace quillet
