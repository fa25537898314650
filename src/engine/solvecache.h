#pragma once

#include "displaytext.h"
#include "scenariorecord.h"
#include "solver.h"

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <unordered_map>

namespace quillet {

// Remembers the fields solved for recently drawn records, so that drawing a
// row again whose record did not change costs no solving: the longest
// solves run a million periods. A result depends only on the five
// quantities, the payments a year, the list and the search tolerance, so the
// cache can never answer for a changed record.
class SolveCache final
{
public:
    static constexpr std::size_t Capacity = 1024;

    SolveResult solve(const ScenarioRecord &record, Field field, bool investments,
                      quint16 stateFlags);
    FieldDisplay fieldText(const ScenarioRecord &record, Field field, bool investments,
                           quint16 stateFlags);
    std::size_t size() const { return m_results.size(); }

private:
    struct Key
    {
        std::array<quint64, 5> quantities{};
        qint16 perYear = 0;
        Field field = Field::Desc;
        bool investments = false;
        bool fineTolerance = false;

        friend bool operator==(const Key &, const Key &) = default;
    };
    struct KeyHash
    {
        std::size_t operator()(const Key &key) const noexcept;
    };

    std::unordered_map<Key, SolveResult, KeyHash> m_results;
};

} // namespace quillet
