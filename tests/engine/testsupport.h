#pragma once

#include <QByteArray>
#include <QLocale>
#include <QMetaType>
#include <QTest>

#include <bit>
#include <cmath>

#include "scenariorecord.h"
#include "solver.h"

Q_DECLARE_METATYPE(quillet::Field)
Q_DECLARE_METATYPE(quillet::ScenarioRecord)

namespace quillet::test {

inline constexpr double Blank = BlankValue;

inline quint64 bitsOf(double value)
{
    return std::bit_cast<quint64>(value);
}

// A double as 17 significant digits and its bit pattern, for failure messages.
inline QByteArray describe(double value)
{
    return QByteArray::number(value, 'g', 17) + " (0x" + QByteArray::number(bitsOf(value), 16) +
           ")";
}

inline QByteArray mismatch(double actual, double expected)
{
    return "actual " + describe(actual) + ", expected " + describe(expected);
}

inline QByteArray distance(double actual, double expected, double tolerance)
{
    return "actual " + describe(actual) + ", expected " + describe(expected) + " within " +
           QByteArray::number(tolerance, 'g', 17);
}

inline bool isNear(double actual, double expected, double tolerance)
{
    return std::abs(actual - expected) <= tolerance;
}

// A fresh record with every field blank, then the given quantities stored.
inline ScenarioRecord scenario(double initialAmount, double rate, double years, double payment,
                               qint16 perYear, double futureValue)
{
    ScenarioRecord record;
    record.makeBlank();
    record.InitialAmount = initialAmount;
    record.IRate = rate;
    record.Years = years;
    record.Payment = payment;
    record.PerYear = perYear;
    record.FutureValue = futureValue;
    return record;
}

// The double field of a record that a field name stands for; Desc and PerYear
// are no doubles and give FutureValue.
inline double &valueField(ScenarioRecord &record, Field field)
{
    switch (field) {
    case Field::InitialAmount:
        return record.InitialAmount;
    case Field::IRate:
        return record.IRate;
    case Field::Years:
        return record.Years;
    case Field::Payment:
        return record.Payment;
    case Field::Desc:
    case Field::PerYear:
    case Field::FutureValue:
        break;
    }
    return record.FutureValue;
}

inline const QLocale &unitedStates()
{
    static const QLocale locale(QLocale::English, QLocale::UnitedStates);
    return locale;
}

inline const QLocale &germany()
{
    static const QLocale locale(QLocale::German, QLocale::Germany);
    return locale;
}

// Makes a locale the default for one test and puts United States back after.
class DefaultLocale final
{
public:
    explicit DefaultLocale(const QLocale &locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(unitedStates()); }
    Q_DISABLE_COPY_MOVE(DefaultLocale)
};

} // namespace quillet::test

// Doubles compared bit for bit (QCOMPARE on doubles is fuzzy).
#define QUILLET_COMPARE_EXACT(actual, expected)                                                    \
    do {                                                                                           \
        const double actualValue_ = (actual);                                                      \
        const double expectedValue_ = (expected);                                                  \
        QVERIFY2(quillet::test::bitsOf(actualValue_) == quillet::test::bitsOf(expectedValue_),     \
                 quillet::test::mismatch(actualValue_, expectedValue_).constData());               \
    } while (false)

#define QUILLET_COMPARE_NEAR(actual, expected, tolerance)                                          \
    do {                                                                                           \
        const double actualValue_ = (actual);                                                      \
        const double expectedValue_ = (expected);                                                  \
        QVERIFY2(quillet::test::isNear(actualValue_, expectedValue_, (tolerance)),                 \
                 quillet::test::distance(actualValue_, expectedValue_, (tolerance)).constData());  \
    } while (false)
