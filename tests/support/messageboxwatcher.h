#pragma once

#include <QApplication>
#include <QEvent>
#include <QMessageBox>
#include <QObject>
#include <QStringList>

namespace quillet::test {

// Answers every message box the moment it is shown, so a test never hangs on
// one, and remembers what each said. A test states which boxes it expects;
// any other is a failure the test reports through unexpected().
class MessageBoxWatcher final : public QObject
{
public:
    MessageBoxWatcher() { qApp->installEventFilter(this); }
    ~MessageBoxWatcher() override { qApp->removeEventFilter(this); }
    Q_DISABLE_COPY_MOVE(MessageBoxWatcher)

    void expect(int count = 1) { m_expected += count; }
    const QStringList &texts() const { return m_texts; }
    const QStringList &titles() const { return m_titles; }
    const QStringList &unexpected() const { return m_unexpected; }
    void clear()
    {
        m_texts.clear();
        m_titles.clear();
        m_unexpected.clear();
        m_expected = 0;
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show) {
            if (auto *box = qobject_cast<QMessageBox *>(watched)) {
                m_texts << box->text();
                m_titles << box->windowTitle();
                if (m_expected > 0)
                    --m_expected;
                else
                    m_unexpected << box->text();
                // Closed from its own event loop, as a person pressing OK.
                QMetaObject::invokeMethod(
                    box, [box] { box->done(QMessageBox::Ok); }, Qt::QueuedConnection);
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    int m_expected = 0;
    QStringList m_texts;
    QStringList m_titles;
    QStringList m_unexpected;
};

} // namespace quillet::test
