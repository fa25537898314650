#pragma once

namespace quillet {

// The two period-by-period loops of the solvers, run exactly as written
// (every value bit for bit what the plain loop gives) but fast for any input:
// tiny amounts, whose subnormal arithmetic is slow in hardware, are carried
// as whole multiples of the smallest double in integers, or their products
// taken from a fused multiply-add where the processor has one; a state that
// no longer changes is not computed again.

// How a run of periods ended.
enum class LoopEnd {
    Finished,  // every period it was asked for ran (or the loan ended)
    Settled,   // the state stopped changing; the rest would change nothing
    NotFinite, // a value overflowed or became not a number
};

struct GrowthRun
{
    double balance = 0;
    long long computed = 0; // periods actually computed
    LoopEnd end = LoopEnd::Finished;
};

// `count` periods of balance = balance + balance * rate + payment, stopping
// at a balance that equals the next one (it would stay so to the end) or at
// one that is not finite. The payment is not zero (the investment loop runs
// only with one), so a zero balance never equals the next.
GrowthRun runGrowth(double balance, double rate, double payment, long long count);

struct LoanRun
{
    double balance = 0;
    double total = 0;
    double periods = 0;     // the periods counter after the last period run
    long long done = 0;     // periods run, as the plain loop counts them
    long long computed = 0; // periods actually computed
    LoopEnd end = LoopEnd::Finished;
};

// The loan loop: while periods > 0 and balance > 0, and at most `limit`
// periods: interest = rate * balance; principal = payment - interest, cut to
// the balance; balance = balance - principal; total = total + interest;
// periods = periods - 1. Ends NotFinite when the balance or the total stops
// being finite at any period (its other values are then of no use). Settled
// periods (balance and total unchanged) are counted in `done` without being
// computed again.
LoanRun runLoanInterest(double balance, double rate, double payment, double periods,
                        long long limit);

} // namespace quillet
