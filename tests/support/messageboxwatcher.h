#pragma once

#include <QApplication>
#include <QEvent>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QSet>
#include <QStringList>

namespace quillet::test {

// Answers every message box the moment it is shown, so a test never hangs on
// one, and remembers what each said. A test states which boxes it expects;
// any other is unexpected. Unexpected boxes are also kept in a ledger for the
// whole test executable, which every GUI suite checks in cleanup() through
// takeUnexpectedMessageBoxes(), so no box goes by unnoticed even when the
// test itself forgets to look.
//
// Watchers nest: only the most recently created one that is still alive
// answers a box. A suite keeps one for its whole run (a member of the
// test object) to answer boxes shown while no test watcher is alive.
class MessageBoxWatcher final : public QObject
{
public:
    MessageBoxWatcher()
    {
        alive().append(this);
        qApp->installEventFilter(this);
    }
    ~MessageBoxWatcher() override
    {
        qApp->removeEventFilter(this);
        alive().removeOne(this);
    }
    Q_DISABLE_COPY_MOVE(MessageBoxWatcher)

    // The next `count` boxes, whatever they say, are expected; the test then
    // compares texts() word for word.
    void expect(int count = 1) { m_expected += count; }
    // Any number of boxes saying exactly one of these texts is expected.
    void allow(const QStringList &texts)
    {
        m_allowed.unite(QSet<QString>(texts.begin(), texts.end()));
    }

    const QStringList &texts() const { return m_texts; }
    const QStringList &titles() const { return m_titles; }
    const QStringList &unexpected() const { return m_unexpected; }
    void clear()
    {
        m_texts.clear();
        m_titles.clear();
        m_unexpected.clear();
        m_allowed.clear();
        m_expected = 0;
    }

    // Every unexpected box since the last call, by title and text; empties
    // the ledger.
    static QStringList takeUnexpectedMessageBoxes()
    {
        QStringList boxes;
        boxes.swap(ledger());
        return boxes;
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show && alive().constLast() == this) {
            if (auto *box = qobject_cast<QMessageBox *>(watched)) {
                m_texts << box->text();
                m_titles << box->windowTitle();
                if (m_expected > 0) {
                    --m_expected;
                } else if (!m_allowed.contains(box->text())) {
                    m_unexpected << box->text();
                    ledger() << QStringLiteral("[%1] %2").arg(box->windowTitle(), box->text());
                }
                // Closed from its own event loop, as a person pressing OK.
                QMetaObject::invokeMethod(
                    box, [box] { box->done(QMessageBox::Ok); }, Qt::QueuedConnection);
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    static QList<MessageBoxWatcher *> &alive()
    {
        static QList<MessageBoxWatcher *> watchers;
        return watchers;
    }
    static QStringList &ledger()
    {
        static QStringList boxes;
        return boxes;
    }

    int m_expected = 0;
    QSet<QString> m_allowed;
    QStringList m_texts;
    QStringList m_titles;
    QStringList m_unexpected;
};

// For a suite's cleanup(): fails the test that just ran when a message box
// it did not expect was shown.
#define QUILLET_VERIFY_NO_UNEXPECTED_MESSAGE_BOX()                                                 \
    do {                                                                                           \
        const QStringList unexpectedBoxes =                                                        \
            ::quillet::test::MessageBoxWatcher::takeUnexpectedMessageBoxes();                      \
        QVERIFY2(unexpectedBoxes.isEmpty(),                                                        \
                 qPrintable(QStringLiteral("unexpected message box: ") +                           \
                            unexpectedBoxes.join(QStringLiteral(" | "))));                         \
    } while (false)

} // namespace quillet::test
