#pragma once

#include "scenariorecord.h"
#include "status.h"

#include <QString>

#include <vector>

namespace quillet::report {

// A list file read whole, the way the program counts and decodes it, but
// only ever opened for reading: a missing file is an error, never created.
class ReadOnlyListFile final
{
public:
    Status load(const QString &path);

    const std::vector<ScenarioRecord> &records() const { return m_records; }
    int count() const { return static_cast<int>(m_records.size()); }
    // The file's name without its directory, for messages.
    QString fileName() const { return m_fileName; }

private:
    QString m_fileName;
    std::vector<ScenarioRecord> m_records;
};

} // namespace quillet::report
