#pragma once

// What every fuzz target shares: the check of a property that must hold for
// every input, and the locales to try.

#include <QFile>
#include <QLocale>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace quillet::fuzz {

// The input being run, for the reports of failed properties.
inline const unsigned char *currentData = nullptr;
inline std::size_t currentSize = 0;

// Marks the input a target runs, for as long as it runs.
class CurrentInput
{
public:
    CurrentInput(const unsigned char *data, std::size_t size)
    {
        currentData = data;
        currentSize = size;
    }
    ~CurrentInput() { currentData = nullptr; }
    CurrentInput(const CurrentInput &) = delete;
    CurrentInput &operator=(const CurrentInput &) = delete;
};

// A setup that cannot go on.
[[noreturn]] inline void fatal(const QString &what)
{
    std::fprintf(stderr, "FUZZ SETUP FAILED: %s\n", qUtf8Printable(what));
    std::abort();
}

// A property that does not hold stops the run, so that libFuzzer keeps the
// input. With QUILLET_FUZZ_KEEP_GOING naming a folder, the run goes on
// instead: the first inputs that broke a property are written there
// (property-HASH) and every failure is counted on standard error, so that
// one known defect does not hide the others during a long run.
inline void fail(const QString &what)
{
    static int reported = 0;
    constexpr int MaxReports = 50;
    const char *folder = std::getenv("QUILLET_FUZZ_KEEP_GOING");
    if (reported < MaxReports || !folder || !*folder)
        std::fprintf(stderr, "PROPERTY FAILED: %s\n", qUtf8Printable(what));
    if (!folder || !*folder)
        std::abort();
    if (reported++ >= MaxReports || !currentData)
        return;
    // FNV-1a names the input after its bytes, so a repeat overwrites itself.
    std::uint64_t hash = 14695981039346656037ull;
    for (std::size_t k = 0; k < currentSize; ++k)
        hash = (hash ^ currentData[k]) * 1099511628211ull;
    const QString path = QStringLiteral("%1/property-%2")
                             .arg(QString::fromLocal8Bit(folder))
                             .arg(hash, 16, 16, QLatin1Char('0'));
    if (std::FILE *file = std::fopen(QFile::encodeName(path).constData(), "wb")) {
        std::fwrite(currentData, 1, currentSize, file);
        std::fclose(file);
    }
}

inline void check(bool holds, const QString &what)
{
    if (!holds)
        fail(what);
}

// The locales the targets pick from: the tests' own, and ones that write
// numbers differently (separators, digits, direction marks, currency after
// the figure).
inline QLocale pickLocale(unsigned char selector)
{
    static const char *const names[] = {"en_US", "de_DE", "fr_FR", "he_IL", "fa_IR",
                                        "ar_EG", "hi_IN", "de_CH", "ja_JP", "C"};
    constexpr unsigned count = sizeof names / sizeof names[0];
    return QLocale(QString::fromLatin1(names[selector % count]));
}

} // namespace quillet::fuzz
