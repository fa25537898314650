#pragma once

// What every fuzz target shares: a failed property stops the run with a
// message, so libFuzzer keeps the input that broke it.

#include <QLocale>
#include <QString>

#include <cstdio>
#include <cstdlib>

namespace quillet::fuzz {

[[noreturn]] inline void fail(const QString &what)
{
    std::fprintf(stderr, "PROPERTY FAILED: %s\n", qUtf8Printable(what));
    std::abort();
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
