#pragma once

#include "scenariorecord.h"

#include <array>

namespace quillet {

// One change that can be taken back: the whole record as it was before.
struct UndoEntry
{
    ScenarioRecord record;
    qint16 RecNo = 0;
    qint16 TopRow = 0;
    qint16 SelRow = 0;
    qint16 Deleted = 0; // nonzero for a deleted record
};

// The last changes of one list, newest in slot 1. Kept in memory only.
class UndoHistory final
{
public:
    static constexpr int Capacity = 10;

    // Records a change. The counter stops at Capacity: older entries are
    // dropped, so every counted entry can be undone.
    void PushUndo(const UndoEntry &entry);
    // Slot 1; only valid while UndoCount() > 0.
    const UndoEntry &newest() const { return UndoStack[1]; }
    // Forgets slot 1 once it has been undone.
    void dropNewest();
    // Two records of the list have swapped places: the changes recorded for
    // them follow them.
    void swapRecords(int first, int second);

    int UndoCount() const { return m_undoCount; }
    const UndoEntry &slot(int i) const { return UndoStack.at(i); }

private:
    // Slot 0 is never used, so slots are numbered as the user counts changes.
    std::array<UndoEntry, Capacity + 1> UndoStack;
    qint16 m_undoCount = 0;
};

} // namespace quillet
