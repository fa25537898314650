#pragma once

#include "scenariofile.h"
#include "scenariorecord.h"
#include "status.h"
#include "undohistory.h"

#include <QString>

#include <array>

namespace quillet {

// What the program knows about one list: its open file (FileNum, NumRecs),
// the record in the top grid row, the selected record (0 for none) and the
// changes that can be undone.
struct ListState
{
    ScenarioFile file;
    qint16 TopRow = 1;
    qint16 SelRow = 0;
    UndoHistory undo;

    int NumRecs() const { return file.count(); }
};

// The program's state, shared by all its windows: both lists, which one is
// shown, the working record through which every read and write of a list
// file passes, and the engine's and schedule windows' counters.
class Session final
{
public:
    static inline const QString InvestmentsFileName = QStringLiteral("In.dat");
    static inline const QString LoansFileName = QStringLiteral("Ln.dat");

    Session() = default;
    Q_DISABLE_COPY_MOVE(Session)

    // Opens In.dat and Ln.dat in the directory, creating them when missing.
    // A list that cannot be written opens read-only, one that cannot be read
    // as an empty list; the failure then explains which and why.
    Status openDataFiles(const QString &directory);

    ListState &list(ListKind kind) { return m_lists.at(listIndex(kind)); }
    const ListState &list(ListKind kind) const { return m_lists.at(listIndex(kind)); }
    ListState &current() { return list(CurList); }
    const ListState &current() const { return list(CurList); }

    // Record n of the list shown into, or out of, the working record.
    Status readRecord(int n);
    Status writeRecord(int n);

    // Records a change of the list shown, with its top row and selection.
    void PushUndo(const ScenarioRecord &record, qint16 recNo, qint16 deleted);
    // Takes back the newest change of the list shown. On failure nothing
    // is changed, the history included.
    Status PopUndo();
    // Deletes the selected record of the list shown and makes the deletion
    // undoable; does nothing without a selection.
    Status deleteSelected();
    // Swaps two records of the list shown; the working record is left
    // holding the scenario that was at `neighbour`, now at `selected`. On
    // failure the file is as it was.
    Status swapRecords(int neighbour, int selected);

    ListKind CurList = ListKind::Investments;
    bool InvMode = false;
    quint16 StateFlags = 0;
    ScenarioRecord WorkingRecord;
    qint16 FirstPeriod = 0;
    qint16 PeriodCount = 0;

private:
    std::array<ListState, 2> m_lists;
};

} // namespace quillet
