#pragma once

#include "gridcell.h"
#include "mainwindow.h"
#include "messageboxwatcher.h"
#include "session.h"
#include "testfiles.h"

#include <QLocale>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QToolButton>

#include <memory>
#include <vector>

namespace quillet::test {

// An investment of 1000 at 12 % for 10 years with 100 paid in monthly; its
// future value is left blank, so it is solved and shown bold.
inline ScenarioRecord retirement(const QString &desc = QStringLiteral("Retirement"))
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, desc);
    record.InitialAmount = 1000;
    record.IRate = 0.12;
    record.Years = 10;
    record.Payment = 100;
    record.PerYear = 12;
    return record;
}

// A loan of 100,000 at 6 % over 30 years paid monthly, payment left blank.
inline ScenarioRecord mortgage(const QString &desc = QStringLiteral("House"))
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, desc);
    record.InitialAmount = 100000;
    record.IRate = 0.06;
    record.Years = 30;
    record.PerYear = 12;
    return record;
}

inline QByteArray recordsBytes(const std::vector<ScenarioRecord> &records)
{
    QByteArray bytes;
    for (const ScenarioRecord &record : records)
        bytes += encodeRecord(record);
    return bytes;
}

inline std::vector<ScenarioRecord> numberedRecords(int count)
{
    std::vector<ScenarioRecord> records;
    for (int n = 1; n <= count; ++n)
        records.push_back(retirement(QStringLiteral("Plan %1").arg(n)));
    return records;
}

// The main window over list files written for the test, in a fresh
// temporary directory, shown and active.
class MainWindowFixture
{
public:
    bool start(const std::vector<ScenarioRecord> &investments,
               const std::vector<ScenarioRecord> &loans = {})
    {
        if (!m_dir.isValid())
            return false;
        if (!writeBytes(QStringLiteral("In.dat"), recordsBytes(investments)) ||
            !writeBytes(QStringLiteral("Ln.dat"), recordsBytes(loans)))
            return false;
        return startWithFiles();
    }

    bool startWithFiles()
    {
        m_window = std::make_unique<MainWindow>(m_session);
        m_window->Form_Load();
        m_window->show();
        m_window->activateWindow();
        return QTest::qWaitForWindowActive(m_window.get());
    }

    MainWindow &window() { return *m_window; }
    Session &session() { return m_session; }
    MessageBoxWatcher &boxes() { return m_boxes; }

    template <typename Widget = QWidget> Widget *find(const QString &name)
    {
        return m_window->findChild<Widget *>(name);
    }
    GridCell *cell(const QString &column, int row)
    {
        return find<GridCell>(QStringLiteral("%1(%2)").arg(column).arg(row));
    }
    QPushButton *sel(int row) { return find<QPushButton>(QStringLiteral("Sel(%1)").arg(row)); }
    QToolButton *command(const QString &name) { return find<QToolButton>(name); }
    QScrollBar *scrollBar() { return find<QScrollBar>(QStringLiteral("VScroll1")); }

    QByteArray fileBytes(const QString &name) { return test::fileBytes(name); }

private:
    ScratchDirectory m_dir;
    MessageBoxWatcher m_boxes;
    Session m_session;
    std::unique_ptr<MainWindow> m_window;
};

inline const QStringList &gridColumns()
{
    static const QStringList columns = {
        QStringLiteral("Desc"),       QStringLiteral("InitialAmount"), QStringLiteral("Yield"),
        QStringLiteral("Years"),      QStringLiteral("Payment"),       QStringLiteral("PerYear"),
        QStringLiteral("FutureValue")};
    return columns;
}

} // namespace quillet::test
