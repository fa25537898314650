#include "solvecache.h"

#include "rates.h"

#include <QHashFunctions>

#include <bit>

namespace quillet {

std::size_t SolveCache::KeyHash::operator()(const Key &key) const noexcept
{
    std::size_t seed =
        qHashMulti(0, key.perYear, static_cast<int>(key.field), key.investments, key.fineTolerance);
    for (const quint64 quantity : key.quantities)
        seed = qHashMulti(seed, quantity);
    return seed;
}

SolveResult SolveCache::solve(const ScenarioRecord &record, Field field, bool investments,
                              quint16 stateFlags)
{
    // Compared as bits: the blank marker and every other value exactly.
    const Key key{{std::bit_cast<quint64>(record.InitialAmount),
                   std::bit_cast<quint64>(record.IRate), std::bit_cast<quint64>(record.Years),
                   std::bit_cast<quint64>(record.Payment),
                   std::bit_cast<quint64>(record.FutureValue)},
                  record.PerYear,
                  field,
                  investments,
                  (stateFlags & FineToleranceFlag) != 0};
    if (const auto found = m_results.find(key); found != m_results.end())
        return found->second;
    // Bounded: when full it starts again rather than tracking ages.
    if (m_results.size() >= Capacity)
        m_results.clear();
    const SolveResult result = Solve(record, field, investments, stateFlags);
    m_results.emplace(key, result);
    return result;
}

FieldDisplay SolveCache::fieldText(const ScenarioRecord &record, Field field, bool investments,
                                   quint16 stateFlags)
{
    return displayOf(field, solve(record, field, investments, stateFlags));
}

} // namespace quillet
