#pragma once

#include <QObject>

class QSocketNotifier;
class QWidget;

namespace quillet {

// Turns SIGTERM, SIGHUP and SIGINT (a logout, a shutdown, Ctrl+C in a
// terminal) into closing the windows, as the user would: the cell being
// edited is saved and the lock on the folder released before Quillet exits.
class SignalCloser final : public QObject
{
    Q_OBJECT

public:
    explicit SignalCloser(QObject *parent = nullptr);
    ~SignalCloser() override;
    Q_DISABLE_COPY_MOVE(SignalCloser)

    bool isListening() const { return m_notifier != nullptr; }

private:
    void closeWindows();

    QSocketNotifier *m_notifier = nullptr;
};

} // namespace quillet
