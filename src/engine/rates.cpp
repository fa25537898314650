#include "rates.h"

#include <cmath>

namespace quillet {

double PeriodicRate(double yearlyRate, double perYear)
{
    if (perYear > 0)
        return std::pow(1.0 + yearlyRate, 1.0 / perYear) - 1.0;
    return yearlyRate;
}

double roundHalfEven(double value)
{
    // The program never changes the rounding mode, so nearbyint rounds to
    // nearest with ties to even.
    return std::nearbyint(value);
}

} // namespace quillet
