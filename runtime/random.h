// The shared random generator: one process-wide sequence behind every classic random
// routine except RAN (which keeps its state in the caller's seed) and RANF (the C library's).
// The whole state is the INTEGER(4) seed, so storing it with __FFgetseed and giving it back
// to __FFsetseed continues the sequence exactly where it was.
#pragma once

#include <cstdint>

namespace runtime {

// The seed the sequence starts from, and returns to on __FFresetseed.
constexpr std::int32_t kInitialSeed = 1;

float __FFfrand() noexcept;          // uniform in [0, 1), 24 random bits
double __FFdrand() noexcept;         // uniform in [0, 1), 53 random bits (two steps)
std::int32_t __FFirand() noexcept;   // uniform in 0 to 2147483647
void __FFsetseed(std::int32_t seed) noexcept;
void __FFresetseed() noexcept;
void __FFgetseed(std::int32_t* seed) noexcept;

}  // namespace runtime
