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

} // namespace quillet
