#pragma once

#include "recordingsurface.h"
#include "scenariorecord.h"

#include <QString>
#include <QTest>

#include <vector>

namespace quillet::test {

using Mark = RecordingSurface::Mark;

// One expected text of a printed page.
struct ExpectedText
{
    int page;
    double x;
    double y;
    QString text;
    bool bold;
};

inline QString describe(const Mark &mark)
{
    return QStringLiteral("page %1 (%2, %3) \"%4\"%5")
        .arg(mark.page)
        .arg(mark.x, 0, 'f', 4)
        .arg(mark.y, 0, 'f', 4)
        .arg(mark.text, mark.bold ? QStringLiteral(" bold") : QString());
}

inline QString describe(const ExpectedText &expected)
{
    return QStringLiteral("page %1 (%2, %3) \"%4\"%5")
        .arg(expected.page)
        .arg(expected.x, 0, 'f', 4)
        .arg(expected.y, 0, 'f', 4)
        .arg(expected.text, expected.bold ? QStringLiteral(" bold") : QString());
}

// Positions agree to a thousandth of a twip: the printouts compute some in
// single precision.
inline bool samePlace(double a, double b)
{
    return qAbs(a - b) < 0.001;
}

inline bool matches(const Mark &mark, const ExpectedText &expected)
{
    return mark.kind == Mark::Kind::Text && mark.page == expected.page &&
           samePlace(mark.x, expected.x) && samePlace(mark.y, expected.y) &&
           mark.text == expected.text && mark.bold == expected.bold;
}

inline ScenarioRecord blankRecord(const QString &desc)
{
    ScenarioRecord record;
    record.makeBlank();
    setDescText(record, desc);
    return record;
}

} // namespace quillet::test

// Compares printed texts one by one from `first`, naming the first that differs.
#define COMPARE_TEXTS(marks, first, expectedList)                                                  \
    do {                                                                                           \
        const std::vector<quillet::test::ExpectedText> expected_ = expectedList;                   \
        const auto &marks_ = (marks);                                                              \
        QVERIFY2(marks_.size() >= (first) + expected_.size(),                                      \
                 "fewer texts printed than expected");                                             \
        for (std::size_t k_ = 0; k_ < expected_.size(); ++k_) {                                    \
            const auto &mark_ = marks_[(first) + k_];                                              \
            QVERIFY2(quillet::test::matches(mark_, expected_[k_]),                                 \
                     qPrintable(QStringLiteral("text %1: printed %2, expected %3")                 \
                                    .arg((first) + k_)                                             \
                                    .arg(quillet::test::describe(mark_),                           \
                                         quillet::test::describe(expected_[k_]))));                \
        }                                                                                          \
    } while (false)
