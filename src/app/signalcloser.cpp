#include "signalcloser.h"

#include <QApplication>
#include <QSocketNotifier>

#include <array>
#include <csignal>

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quillet {

namespace {

constexpr std::array<int, 3> ClosingSignals = {SIGTERM, SIGHUP, SIGINT};

// A signal handler may do almost nothing: it only wakes the event loop
// through this socket pair, the one place where the handler and the program
// meet.
int signalSockets[2] = {-1, -1};

void onSignal(int signal)
{
    const char byte = static_cast<char>(signal);
    (void)::write(signalSockets[0], &byte, 1);
}

} // namespace

SignalCloser::SignalCloser(QObject *parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalSockets) != 0)
        return;
    ::fcntl(signalSockets[0], F_SETFL, O_NONBLOCK);
    m_notifier = new QSocketNotifier(signalSockets[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &SignalCloser::closeWindows);

    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int signal : ClosingSignals)
        ::sigaction(signal, &action, nullptr);
}

SignalCloser::~SignalCloser()
{
    for (const int signal : ClosingSignals)
        ::signal(signal, SIG_DFL);
    delete m_notifier;
    for (int &socket : signalSockets) {
        if (socket >= 0)
            ::close(socket);
        socket = -1;
    }
}

void SignalCloser::closeWindows()
{
    char byte = 0;
    (void)::read(signalSockets[1], &byte, 1);
    // Keys and clicks that arrived before the signal are the user's too.
    QCoreApplication::processEvents();
    QApplication::closeAllWindows();
    QCoreApplication::exit(0);
}

} // namespace quillet
