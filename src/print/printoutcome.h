#pragma once

#include <QString>

#include <functional>

namespace quillet {

// Told after every printed line how many of how many are done; answers false
// to stop the printout (the user cancelled it).
using PrintProgress = std::function<bool(int done, int total)>;

struct PrintOutcome
{
    enum class Result {
        Printed,   // the whole document was sent or written
        Empty,     // nothing to print: no document was begun
        Cancelled, // stopped on request: nothing printed, no file left
        Failed     // the printer or the file failed, or a record could not be read
    };
    Result result = Result::Printed;
    QString message; // why it failed

    bool printed() const { return result == Result::Printed; }
};

} // namespace quillet
