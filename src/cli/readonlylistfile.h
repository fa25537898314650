#pragma once

#include "scenariorecord.h"
#include "status.h"

#include <QString>

#include <vector>

namespace quillet::report {

// A list file read the way the program counts and decodes it, but only ever
// opened for reading: a missing file is an error, never created. The size is
// checked before a byte is read, so memory stays bounded by the largest list
// (32,767 records) whatever the file's size.
class ReadOnlyListFile final
{
public:
    // Reads the list file `fileName` of `directory`. A failure names the
    // real cause: a directory that is missing, is no directory or cannot be
    // entered, a file that is missing, unreadable, a dangling or looping
    // symbolic link, or too large for a list.
    Status load(const QString &directory, const QString &fileName);

    const std::vector<ScenarioRecord> &records() const { return m_records; }
    int count() const { return static_cast<int>(m_records.size()); }
    // The file's name without its directory, for messages.
    QString fileName() const { return m_fileName; }

private:
    QString m_fileName;
    std::vector<ScenarioRecord> m_records;
};

} // namespace quillet::report
