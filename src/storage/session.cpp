#include "session.h"

#include <QDir>
#include <QStringList>

#include <utility>

namespace quillet {

Status Session::openDataFiles(const QString &directory)
{
    const QDir dir(directory);
    // Each list opens as far as it can, so a problem with one never keeps
    // the other from being used.
    QStringList problems;
    for (const auto &[kind, name] : {std::pair(ListKind::Investments, InvestmentsFileName),
                                     std::pair(ListKind::Loans, LoansFileName)}) {
        if (const Status status = list(kind).file.OpenDataFile(dir.filePath(name)); !status.ok())
            problems << status.message();
    }
    if (problems.isEmpty())
        return {};
    return Status::failure(problems.join(QStringLiteral("\n\n")));
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

Status Session::swapRecords(int neighbour, int selected)
{
    ScenarioFile &file = current().file;
    ScenarioRecord moving;
    if (Status status = file.read(selected, moving); !status.ok())
        return status;
    if (Status status = readRecord(neighbour); !status.ok())
        return status;
    const ScenarioRecord displaced = WorkingRecord;
    if (Status status = file.write(neighbour, moving); !status.ok())
        return status;
    if (Status status = file.write(selected, displaced); !status.ok()) {
        // Put the first record back rather than leave it in the list twice.
        (void)file.write(neighbour, displaced);
        return status;
    }
    // The changes recorded for the two scenarios follow them to their new
    // places, so an undo never writes one scenario over the other.
    current().undo.swapRecords(neighbour, selected);
    return {};
}

} // namespace quillet
