#include "undohistory.h"

#include <algorithm>

namespace quillet {

void UndoHistory::PushUndo(const UndoEntry &entry)
{
    const int kept = std::min<int>(m_undoCount, Capacity - 1);
    for (int i = kept; i >= 1; --i)
        UndoStack.at(i + 1) = UndoStack.at(i);
    UndoStack.at(1) = entry;
    m_undoCount = static_cast<qint16>(std::min(m_undoCount + 1, Capacity));
}

void UndoHistory::dropNewest()
{
    if (m_undoCount == 0)
        return;
    for (int i = 2; i <= m_undoCount; ++i)
        UndoStack.at(i - 1) = UndoStack.at(i);
    --m_undoCount;
}

void UndoHistory::swapRecords(int first, int second)
{
    // Entries are kept in the record numbers of their own time: going from
    // the newest to older ones, each deleted record was still in the list,
    // one place before the records that followed it.
    for (int i = 1; i <= m_undoCount; ++i) {
        UndoEntry &entry = UndoStack.at(i);
        if (entry.Deleted != 0) {
            if (first >= entry.RecNo)
                ++first;
            if (second >= entry.RecNo)
                ++second;
        } else if (entry.RecNo == first) {
            entry.RecNo = static_cast<qint16>(second);
        } else if (entry.RecNo == second) {
            entry.RecNo = static_cast<qint16>(first);
        }
    }
}

} // namespace quillet
