#pragma once

#include "scenariorecord.h"

#include <QtGlobal>

namespace quillet {

// Bits of the session's StateFlags. Only FineTolerance decides anything: it
// selects the finer tolerance of the rate searches. Nothing sets it today.
enum StateFlag : quint16 {
    BusyFlag = 1,         // grid rows are being drawn
    EditingFlag = 2,      // a grid cell is being edited
    FineToleranceFlag = 4 // rate searches refine to 1e-9 instead of 1e-6
};

// True when a double field holds a value rather than the blank marker.
inline bool IsSet(double value)
{
    return value != BlankValue;
}

inline double ValueOr(double value, double fallback)
{
    return IsSet(value) ? value : fallback;
}

inline int PerYearOr(qint16 perYear, int fallback)
{
    return perYear == BlankPerYear ? fallback : perYear;
}

// The effective rate per period of an investment: (1 + r)^(1/ppy) - 1, so
// that ppy periods compound to the yearly rate. ppy <= 0 leaves r as it is.
double PeriodicRate(double yearlyRate, double perYear);

// A loan's rate is nominal: the yearly rate divided by the payments a year.
inline double LoanPeriodicRate(double yearlyRate, double perYear)
{
    return yearlyRate / perYear;
}

// Rounds to the nearest whole number, a half to the even neighbour.
double roundHalfEven(double value);

} // namespace quillet
