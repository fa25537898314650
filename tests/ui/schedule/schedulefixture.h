#pragma once

#include "headerfield.h"
#include "investmentschedulewindow.h"
#include "loanschedulewindow.h"
#include "mainwindow.h"
#include "schedulecell.h"
#include "schedulewindows.h"
#include "session.h"
#include "testfiles.h"

#include <QDir>
#include <QFileInfo>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

#include <memory>
#include <vector>

namespace quillet::test {

inline const QString InDat = QStringLiteral("In.dat");
inline const QString LnDat = QStringLiteral("Ln.dat");

inline ScenarioRecord scenario(const QString &desc, double initial, double rate, double years,
                               double payment, int perYear, double futureValue = BlankValue)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, desc);
    record.InitialAmount = initial;
    record.IRate = rate;
    record.Years = years;
    record.Payment = payment;
    record.PerYear = static_cast<qint16>(perYear);
    record.FutureValue = futureValue;
    return record;
}

inline QByteArray recordsBytes(const std::vector<ScenarioRecord> &records)
{
    QByteArray bytes;
    for (const ScenarioRecord &record : records)
        bytes += encodeRecord(record);
    return bytes;
}

// Record n of a list file as it is on disk now.
inline ScenarioRecord recordOnDisk(const QString &fileName, int n)
{
    return decodeRecord(QByteArrayView(fileBytes(fileName)).sliced((n - 1) * 148, 148));
}

// Both schedule windows over list files written for the test, in a fresh
// temporary directory; the main window too, for the tests that open the
// schedules from it.
class ScheduleFixture
{
public:
    bool start(const std::vector<ScenarioRecord> &investments,
               const std::vector<ScenarioRecord> &loans = {})
    {
        if (!m_dir.isValid())
            return false;
        if (!writeBytes(InDat, recordsBytes(investments)) ||
            !writeBytes(LnDat, recordsBytes(loans)))
            return false;
        return m_session.openDataFiles(QDir::currentPath()).ok();
    }

    // The main window over the same session, shown and active, with the
    // schedule windows installed as its Amortize opener.
    bool startMainWindow()
    {
        m_main = std::make_unique<MainWindow>(m_session);
        m_main->Form_Load();
        m_windows = std::make_unique<ScheduleWindows>(m_session, m_main.get());
        m_main->setScheduleOpener(
            [this](ListKind list, int record) { m_windows->open(list, record); });
        m_main->show();
        m_main->activateWindow();
        return QTest::qWaitForWindowActive(m_main.get());
    }

    // Shows the schedule of record n of the list, without blocking, active.
    ScheduleWindow *open(ListKind list, int n)
    {
        if (!m_windows)
            m_windows = std::make_unique<ScheduleWindows>(m_session, nullptr);
        ScheduleWindow &window = m_windows->window(list);
        window.setRecord(n);
        window.show();
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            return nullptr;
        m_window = &window;
        return &window;
    }

    Session &session() { return m_session; }
    MainWindow &mainWindow() { return *m_main; }
    ScheduleWindows &windows() { return *m_windows; }

    template <typename Widget = QWidget> Widget *find(const QString &name)
    {
        return m_window->findChild<Widget *>(name);
    }
    HeaderField *field(const QString &name) { return find<HeaderField>(name); }
    ScheduleCell *cell(const QString &column, int row)
    {
        return find<ScheduleCell>(QStringLiteral("%1(%2)").arg(column).arg(row));
    }
    QString text(const QString &column, int row) { return cell(column, row)->text(); }
    QScrollBar *scrollBar() { return find<QScrollBar>(QStringLiteral("VScroll1")); }
    QPushButton *button(const QString &name) { return find<QPushButton>(name); }

private:
    ScratchDirectory m_dir;
    Session m_session;
    std::unique_ptr<MainWindow> m_main;
    std::unique_ptr<ScheduleWindows> m_windows;
    ScheduleWindow *m_window = nullptr;
};

// Clicks a header field, replaces its text by typing, and leaves it with
// Enter.
inline void typeInto(HeaderField *field, const QString &text)
{
    QTest::mouseClick(field, Qt::LeftButton);
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty())
        QTest::keyClick(field, Qt::Key_Delete);
    else
        QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

} // namespace quillet::test
