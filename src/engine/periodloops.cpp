#include "periodloops.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace quillet {

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr std::uint64_t SignBit = std::uint64_t(1) << 63;
constexpr std::uint64_t MantissaMask = (std::uint64_t(1) << 52) - 1;
constexpr std::uint64_t InfinityBits = 0x7ff0000000000000;

// Periods run in hardware between two looks at the state (settled, not
// finite, small enough to carry in integers).
constexpr long long Block = 256;

// Below 2^-1021 every double is a whole multiple of the smallest subnormal,
// 2^-1074 (a "unit"), and its bit pattern without the sign is that multiple.
// Sums of such values that stay below 2^53 units are exact, so in that range
// the loops' additions are plain integer additions, and a product is the
// exact product rounded to the nearest unit, ties to even.
constexpr std::int64_t TinyLimit = std::int64_t(1) << 53;

bool isTiny(std::int64_t units)
{
    return units > -TinyLimit && units < TinyLimit;
}

// The value in units; false when it is too large to carry. Minus zero reads
// as zero: only callers to whom its sign makes no difference may use it.
bool unitsOf(double value, std::int64_t &units)
{
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t magnitude = bits & ~SignBit;
    if (magnitude >= std::uint64_t(TinyLimit))
        return false;
    units = (bits & SignBit) ? -std::int64_t(magnitude) : std::int64_t(magnitude);
    return true;
}

// As unitsOf, refusing minus zero, so that the value reads back bit for bit.
bool exactUnitsOf(double value, std::int64_t &units)
{
    return std::bit_cast<std::uint64_t>(value) != SignBit && unitsOf(value, units);
}

double fromUnits(std::int64_t units)
{
    const std::uint64_t magnitude = units < 0 ? std::uint64_t(-units) : std::uint64_t(units);
    return std::bit_cast<double>((units < 0 ? SignBit : 0) | magnitude);
}

// A finite rate as mantissa x 2^-shift, ready to multiply amounts in units.
struct TinyRate
{
    std::uint64_t mantissa = 0;
    int shift = 1;
    bool negative = false;
    bool usable = false;
};

TinyRate tinyRateOf(double rate)
{
    TinyRate tiny;
    if (!std::isfinite(rate))
        return tiny;
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(rate);
    const int exponent = int((bits >> 52) & 0x7ff);
    tiny.negative = (bits & SignBit) != 0;
    tiny.mantissa =
        exponent == 0 ? (bits & MantissaMask) : ((bits & MantissaMask) | (MantissaMask + 1));
    tiny.shift = exponent == 0 ? 1074 : 1075 - exponent;
    // A rate of 2^52 and more makes products leave the tiny range at once.
    tiny.usable = tiny.shift >= 1;
    return tiny;
}

bool bothFinite(double a, double b)
{
    return std::isfinite(a) && std::isfinite(b);
}

// balance > 0, decided on the bits: comparisons of subnormals are slow.
bool isPositive(double value)
{
    return std::bit_cast<std::uint64_t>(value) - 1 < InfinityBits;
}

// An integer that orders doubles as < does, for values that are not NaN
// (minus zero below plus zero, which no caller compares).
std::int64_t orderOf(double value)
{
    const std::int64_t bits = std::bit_cast<std::int64_t>(value);
    return bits ^ ((bits >> 63) & INT64_MAX);
}

bool sameBits(double a, double b)
{
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The product of a balance in units and a rate, rounded to the nearest unit
// with ties to even, as the hardware rounds a product whose exact value is
// below 2^53 units. Exact halves are rare, so they take a branch and the
// usual case stays short.
class TinyProduct
{
public:
    // Multiplies by mantissa x 2^-shift, shift from 1 to 106.
    TinyProduct(std::uint64_t mantissa, int shift)
        : m_mantissa(mantissa), m_shift(shift), m_highShift(shift > 64 ? shift - 64 : 0)
    {}

    // False when the rounded product is not below 2^53 units.
    bool operator()(std::uint64_t magnitude, std::uint64_t &product) const
    {
        const Wide exact = Wide(magnitude) * m_mantissa;
        if (m_highShift > 0) {
            // The rounding bit lies in the high half: shift that half alone.
            const std::uint64_t raised =
                std::uint64_t(exact >> 64) + (std::uint64_t(1) << (m_highShift - 1));
            product = raised >> m_highShift;
            if (std::uint64_t(exact) == 0 &&
                (raised & ((std::uint64_t(1) << m_highShift) - 1)) == 0) [[unlikely]]
                product &= ~std::uint64_t(1);
        } else {
            const Wide raised = exact + (Wide(1) << (m_shift - 1));
            const Wide rounded = raised >> m_shift;
            if (rounded >= Wide(TinyLimit))
                return false;
            product = std::uint64_t(rounded);
            if ((raised & ((Wide(1) << m_shift) - 1)) == 0) [[unlikely]]
                product &= ~std::uint64_t(1);
        }
        return product < std::uint64_t(TinyLimit);
    }

private:
    std::uint64_t m_mantissa;
    int m_shift;
    int m_highShift;
};

// The product of an amount below 2^53 units and a rate whose mantissa is
// shifted down by `shift` bits: beyond 106 bits the exact product is under
// half a unit, which rounds to zero, as a zero mantissa gives.
TinyProduct productBy(const TinyRate &rate, int shift)
{
    if (shift > 106 || rate.mantissa == 0)
        return TinyProduct(0, 1);
    return TinyProduct(rate.mantissa, shift);
}

// Loan periods on tiny values, in integers. Returns true when the state
// settled; otherwise stops where the loop ends or where the next period would
// leave the tiny range, with the state of the periods run so far.
template <bool NegativeRate>
bool tinyLoanPeriods(LoanRun &run, const TinyRate &rate, std::int64_t payment, long long limit)
{
    std::int64_t balance = 0;
    std::int64_t total = 0;
    if (!exactUnitsOf(run.balance, balance) || !exactUnitsOf(run.total, total))
        return false;
    const TinyProduct product = productBy(rate, rate.shift);
    double periods = run.periods;
    long long done = run.done;
    bool settled = false;
    while (done < limit && periods > 0 && balance > 0) {
        std::uint64_t magnitude = 0;
        if (!product(std::uint64_t(balance), magnitude))
            break;
        // The sign of a zero interest or principal changes nothing below:
        // the principal is only compared with and taken from a positive
        // balance, and the total never holds minus zero.
        const std::int64_t interest =
            NegativeRate ? -std::int64_t(magnitude) : std::int64_t(magnitude);
        const std::int64_t principal = payment - interest;
        // A principal above the balance is cut to it, leaving zero.
        const std::int64_t nextBalance = std::max<std::int64_t>(balance - principal, 0);
        const std::int64_t nextTotal = total + interest;
        if (!isTiny(principal) || !isTiny(nextBalance) || !isTiny(nextTotal))
            break;
        periods = periods - 1;
        ++done;
        settled = nextBalance == balance && nextTotal == total;
        balance = nextBalance;
        total = nextTotal;
        if (settled)
            break;
    }
    run.computed += done - run.done;
    run.done = done;
    run.periods = periods;
    run.balance = fromUnits(balance);
    run.total = fromUnits(total);
    return settled;
}

// Loan periods on a balance of 2^53 units and more (whose binade it keeps)
// with a tiny interest and payment: the interest, a subnormal product that
// is slow in hardware, is rounded in integers from the balance's mantissa,
// and the balance moves on its binade's grid of 2^exponent units, rounded
// to nearest, ties to even, as the hardware subtraction rounds it. The total
// is added in hardware. Returns true when the state settled; otherwise stops
// where the loop ends or where the next period cannot be carried so.
template <bool NegativeRate>
bool binadeLoanPeriods(LoanRun &run, const TinyRate &rate, std::int64_t payment, long long limit)
{
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(run.balance);
    const std::uint64_t exponentField = bits >> 52;
    // A positive normal balance of 2^53 units and more, below 2^115 units.
    if (exponentField < 2 || exponentField > 63)
        return false;
    const int exponent = int(exponentField) - 1; // balance = mantissa x 2^exponent units
    const int shift = rate.shift - exponent;
    if (shift < 1 && rate.mantissa != 0)
        return false;
    constexpr std::int64_t Low = std::int64_t(1) << 52;
    const TinyProduct product = productBy(rate, shift);
    const std::int64_t half = std::int64_t(1) << (exponent - 1);
    const std::int64_t below = (std::int64_t(1) << exponent) - 1;

    std::int64_t mantissa = std::int64_t((bits & MantissaMask) | (MantissaMask + 1));
    double total = run.total;
    double periods = run.periods;
    long long done = run.done;
    bool settled = false;
    while (done < limit && periods > 0) {
        std::uint64_t magnitude = 0;
        if (!product(std::uint64_t(mantissa), magnitude))
            break;
        const std::int64_t interest =
            NegativeRate ? -std::int64_t(magnitude) : std::int64_t(magnitude);
        const std::int64_t principal = payment - interest;
        if (!isTiny(principal))
            break;
        // A tiny principal is never above a balance of 2^53 units. The exact
        // balance - principal is (kept + remainder / 2^exponent) grid steps.
        const std::int64_t change = -principal;
        const std::int64_t kept = mantissa + (change >> exponent);
        if (kept < Low || kept >= TinyLimit)
            break; // the exact result leaves the binade
        const std::int64_t remainder = change & below;
        const std::int64_t next =
            kept + ((remainder > half || (remainder == half && (kept & 1))) ? 1 : 0);
        if (next >= TinyLimit)
            break;
        const double nextTotal = total + fromUnits(interest);
        periods = periods - 1;
        ++done;
        settled = next == mantissa && sameBits(nextTotal, total);
        mantissa = next;
        total = nextTotal;
        if (settled)
            break;
    }
    run.computed += done - run.done;
    run.done = done;
    run.periods = periods;
    run.balance =
        std::bit_cast<double>((exponentField << 52) | (std::uint64_t(mantissa) & MantissaMask));
    run.total = total;
    return settled;
}

// The integer-carried periods that fit the state, if any. Returns true when
// the state settled.
bool carriedLoanPeriods(LoanRun &run, const TinyRate &rate, std::int64_t payment, long long limit)
{
    if (rate.negative) {
        return tinyLoanPeriods<true>(run, rate, payment, limit) ||
               binadeLoanPeriods<true>(run, rate, payment, limit);
    }
    return tinyLoanPeriods<false>(run, rate, payment, limit) ||
           binadeLoanPeriods<false>(run, rate, payment, limit);
}

// Up to Block loan periods in hardware. Returns true when the last period
// left balance and total exactly as they were.
bool hardwareLoanPeriods(LoanRun &run, double rate, double payment, long long limit)
{
    double balance = run.balance;
    double total = run.total;
    double periods = run.periods;
    long long done = run.done;
    const long long end = std::min(limit, done + Block);
    double lastBalance = balance;
    double lastTotal = total;
    while (done < end && periods > 0 && isPositive(balance)) {
        lastBalance = balance;
        lastTotal = total;
        const double interest = rate * balance;
        double principal = payment - interest;
        // Compared as integers: NaN cannot occur before a value overflows,
        // and from then on the run is not finite whatever is compared.
        if (orderOf(principal) > orderOf(balance))
            principal = balance;
        balance = balance - principal;
        total = total + interest;
        periods = periods - 1;
        ++done;
    }
    run.computed += done - run.done;
    const bool ranAny = done > run.done;
    run.balance = balance;
    run.total = total;
    run.periods = periods;
    run.done = done;
    return ranAny && sameBits(balance, lastBalance) && sameBits(total, lastTotal);
}

// With a fused multiply-add, a product below 2^-1023 comes out on the
// subnormal grid without a slow subnormal multiplication: fma(rate, balance,
// C), C = 1.5 x 2^-1022, is C plus the product rounded once to a multiple of
// 2^-1074 (the grid of C's binade, where the sum stays; C's last bit is even,
// so an exact half rounds as it would alone), and subtracting C leaves that
// rounded product exactly. Only its sign of zero may differ from rate *
// balance, which changes nothing in the loan (see tinyLoanPeriods).
constexpr double FusedOffset = 0x1.8p-1022;

// Balances below this keep rate * balance under 2^-1023 (zero when the rate
// is zero or not finite, when products are fast anyway).
double fusedBalanceLimit(double rate)
{
    const double magnitude = std::abs(rate);
    if (!(magnitude > 0) || !std::isfinite(magnitude))
        return 0;
    return 0x1p-1023 / magnitude * (1 - 0x1p-40);
}

// hardwareLoanPeriods with the interest of balances below balanceLimit taken
// from a fused multiply-add; stops at the first balance that is not below.
__attribute__((target("fma"))) bool fusedLoanPeriods(LoanRun &run, double rate, double payment,
                                                     long long limit, double balanceLimit)
{
    double balance = run.balance;
    double total = run.total;
    double periods = run.periods;
    long long done = run.done;
    const long long end = std::min(limit, done + Block);
    double lastBalance = balance;
    double lastTotal = total;
    while (done < end && periods > 0 && isPositive(balance) && balance < balanceLimit) {
        lastBalance = balance;
        lastTotal = total;
        const double interest = __builtin_fma(rate, balance, FusedOffset) - FusedOffset;
        double principal = payment - interest;
        if (orderOf(principal) > orderOf(balance))
            principal = balance;
        balance = balance - principal;
        total = total + interest;
        periods = periods - 1;
        ++done;
    }
    run.computed += done - run.done;
    const bool ranAny = done > run.done;
    run.balance = balance;
    run.total = total;
    run.periods = periods;
    run.done = done;
    return ranAny && sameBits(balance, lastBalance) && sameBits(total, lastTotal);
}

// A settled loan: every further period leaves balance and total as they are,
// so only the periods counter moves, until it runs out or the limit is
// reached.
void skipSettledPeriods(LoanRun &run, long long limit)
{
    run.end = LoopEnd::Settled;
    constexpr double ExactCounting = 4503599627370496.0; // 2^52
    if (!(run.periods > 0) || run.done >= limit)
        return;
    if (run.periods < ExactCounting) {
        // Below 2^52 each step of periods - 1 is exact until the last, which
        // rounds as periods - steps does.
        const double steps = std::ceil(run.periods);
        const double left = double(limit - run.done);
        if (steps <= left) {
            run.periods = run.periods - steps;
            run.done += static_cast<long long>(steps);
        } else {
            run.periods = run.periods - left;
            run.done = limit;
        }
        return;
    }
    while (run.done < limit && run.periods > 0) {
        run.periods = run.periods - 1;
        ++run.done;
    }
}

} // namespace

GrowthRun runGrowth(double balance, double rate, double payment, long long count)
{
    GrowthRun run;
    run.balance = balance;
    while (run.computed < count) {
        const long long periods = std::min(Block, count - run.computed);
        double next = run.balance;
        double last = next;
        for (long long k = 0; k < periods; ++k) {
            last = next;
            next = next + next * rate + payment;
        }
        run.computed += periods;
        run.balance = next;
        // Not finite stays not finite, and a balance equal to the next stays
        // so, so looking once a block finds what each period would have.
        if (!std::isfinite(next)) {
            run.end = LoopEnd::NotFinite;
            return run;
        }
        if (next == last) {
            run.end = LoopEnd::Settled;
            return run;
        }
    }
    return run;
}

LoanRun runLoanInterest(double balance, double rate, double payment, double periods,
                        long long limit)
{
    LoanRun run;
    run.balance = balance;
    run.periods = periods;
    const TinyRate tinyRate = tinyRateOf(rate);
    std::int64_t tinyPayment = 0;
    const bool tinyTerms = tinyRate.usable && unitsOf(payment, tinyPayment);
    const double fusedLimit = __builtin_cpu_supports("fma") ? fusedBalanceLimit(rate) : 0;

    while (run.done < limit && run.periods > 0 && isPositive(run.balance)) {
        if (!bothFinite(run.balance, run.total))
            break;
        bool settled = false;
        if (tinyTerms)
            settled = carriedLoanPeriods(run, tinyRate, tinyPayment, limit);
        if (!settled) {
            settled = run.balance < fusedLimit
                          ? fusedLoanPeriods(run, rate, payment, limit, fusedLimit)
                          : hardwareLoanPeriods(run, rate, payment, limit);
        }
        if (settled && bothFinite(run.balance, run.total)) {
            skipSettledPeriods(run, limit);
            return run;
        }
    }
    if (!bothFinite(run.balance, run.total))
        run.end = LoopEnd::NotFinite;
    return run;
}

} // namespace quillet
