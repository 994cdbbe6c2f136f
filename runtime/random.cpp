// The shared random generator. The state walks a Weyl sequence (adding an odd constant
// visits all 2^32 states before repeating) and each step is passed through an invertible
// 32-bit mixing function, so consecutive outputs are decorrelated while the state stays
// one INTEGER(4). The state is an atomic: threads drawing at once each get a step of their own.
#include "runtime/random.h"

#include <atomic>

namespace runtime {
namespace {

constexpr std::uint32_t kStep = 0x9E3779B9u;  // odd: the sequence has the full period 2^32

std::atomic<std::uint32_t> state{static_cast<std::uint32_t>(kInitialSeed)};

std::uint32_t mix(std::uint32_t x) noexcept {
    x ^= x >> 16;
    x *= 0x7FEB352Du;
    x ^= x >> 15;
    x *= 0x846CA68Bu;
    x ^= x >> 16;
    return x;
}

// Advances the sequence by one step and returns 32 random bits.
std::uint32_t next() noexcept {
    return mix(state.fetch_add(kStep, std::memory_order_relaxed) + kStep);
}

}  // namespace

float __FFfrand() noexcept { return static_cast<float>(next() >> 8) * 0x1p-24f; }

double __FFdrand() noexcept {
    const std::uint64_t high = next() >> 5, low = next() >> 6;  // 27 + 26 bits
    return static_cast<double>((high << 26) | low) * 0x1p-53;
}

std::int32_t __FFirand() noexcept { return static_cast<std::int32_t>(next() >> 1); }

void __FFsetseed(std::int32_t seed) noexcept {
    state.store(static_cast<std::uint32_t>(seed), std::memory_order_relaxed);
}

void __FFresetseed() noexcept { __FFsetseed(kInitialSeed); }

void __FFgetseed(std::int32_t* seed) noexcept {
    *seed = static_cast<std::int32_t>(state.load(std::memory_order_relaxed));
}

}  // namespace runtime
