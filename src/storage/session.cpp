#include "session.h"

#include <QDir>

namespace quillet {

Status Session::openDataFiles(const QString &directory)
{
    const QDir dir(directory);
    if (Status status =
            list(ListKind::Investments).file.OpenDataFile(dir.filePath(InvestmentsFileName));
        !status.ok())
        return status;
    return list(ListKind::Loans).file.OpenDataFile(dir.filePath(LoansFileName));
}

Status Session::readRecord(int n)
{
    return current().file.read(n, WorkingRecord);
}

Status Session::writeRecord(int n)
{
    return current().file.write(n, WorkingRecord);
}

void Session::PushUndo(const ScenarioRecord &record, qint16 recNo, qint16 deleted)
{
    ListState &state = current();
    state.undo.PushUndo({record, recNo, state.TopRow, state.SelRow, deleted});
}

Status Session::PopUndo()
{
    ListState &state = current();
    if (state.undo.UndoCount() == 0)
        return {};
    const UndoEntry &entry = state.undo.newest();
    // A deleted record goes back into its place; a changed one is overwritten.
    const int before = state.NumRecs();
    Status status = entry.Deleted != 0 ? state.file.insert(entry.RecNo, entry.record)
                                       : state.file.write(entry.RecNo, entry.record);
    // A rewrite that failed only when reopening the file has still happened.
    const bool applied = status.ok() || (entry.Deleted != 0 && state.NumRecs() != before);
    if (!applied)
        return status;
    state.SelRow = entry.SelRow;
    state.TopRow = entry.TopRow;
    state.undo.dropNewest();
    return status;
}

Status Session::deleteSelected()
{
    ListState &state = current();
    const int selected = state.SelRow;
    if (selected == 0)
        return {};
    const int lastBefore = state.NumRecs();
    ScenarioRecord removed;
    Status status = state.file.remove(selected, &removed);
    // A rewrite that failed only when reopening the file has still happened,
    // and the deleted record must stay undoable.
    if (state.NumRecs() == lastBefore)
        return status;
    PushUndo(removed, static_cast<qint16>(selected), -1);
    state.SelRow = 0;
    if (!status.ok())
        return status;
    // Copying every record through the working record leaves the last one in it.
    if (selected == lastBefore) {
        WorkingRecord = removed;
        return {};
    }
    return readRecord(state.NumRecs());
}

} // namespace quillet
