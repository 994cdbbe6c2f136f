// Random numbers: RAN, whose whole state is the caller's seed, and thin entries over the
// run-time's shared generator; RANF alone reads the C library's rand().
#include <cstdint>
#include <cstdlib>

#include "base/export.h"
#include "runtime/random.h"
#include <tarvo/portlib.h>

namespace {

// A REAL seed truncated toward zero; beyond the INTEGER(4) range it stops at the nearest
// end, and NaN gives 0.
std::int32_t truncated_seed(double seed) noexcept {
    if (!(seed == seed)) return 0;
    if (seed >= 2147483647.0) return 2147483647;
    if (seed <= -2147483648.0) return -2147483647 - 1;
    return static_cast<std::int32_t>(seed);
}

// The flag every drawing entry takes: 1 restarts the shared sequence from its initial
// seed, 0 (or an absent flag) leaves it alone, any other value becomes the new seed.
void apply_flag(const std::int32_t* flag) noexcept {
    if (flag == nullptr || *flag == 0) return;
    if (*flag == 1)
        runtime::__FFresetseed();
    else
        runtime::__FFsetseed(*flag);
}

}  // namespace

// REAL(4) FUNCTION RAN(SEED) -- Lehmer generator modulo 2^31 - 1, value in (0, 1]
extern "C" TARVO_API float ran_(std::int32_t* seed) noexcept {
    constexpr std::int32_t m = 2147483647, a = 48271, q = 44488, r = 3399;  // m = a q + r
    std::int32_t s = *seed;
    if (s < 0) s += m;
    std::int32_t t = (s % q) * a - (s / q) * r;  // Schrage: never overflows 32 bits
    if (t < 1) t += m;
    // Seeds 0 and 1 are left in place on purpose: such a seed gives the same value every call.
    if (*seed != 0 && *seed != 1) *seed = t;
    return static_cast<float>(t) * 0x1p-31f;
}

// REAL(4) FUNCTION RAND([FLAG])
extern "C" TARVO_API float rand_(const std::int32_t* flag) noexcept {
    apply_flag(flag);
    return runtime::__FFfrand();
}

// REAL(4) FUNCTION RANDOM(FLAG) -- the compatibility module's RANDOM, exported only under
// a name that Fortran source cannot spell (the label is declared in the public header)
extern "C" TARVO_API float quenvatix_random(const std::int32_t* flag) noexcept {
    apply_flag(flag);
    return runtime::__FFfrand();
}

// REAL(8) FUNCTION DRAND(FLAG)
extern "C" TARVO_API double drand_(const std::int32_t* flag) noexcept {
    apply_flag(flag);
    return runtime::__FFdrand();
}

// REAL(8) FUNCTION DRANDM(FLAG) -- the same routine under its second name
extern "C" TARVO_API double drandm_(const std::int32_t* flag) noexcept __attribute__((alias("drand_")));

// INTEGER(4) FUNCTION IRAND([FLAG]) -- without FLAG the value is reduced to -32767..32767,
// with it the drawn integer is returned whole; callers of either form rely on that
extern "C" TARVO_API std::int32_t irand_(const std::int32_t* flag) noexcept {
    apply_flag(flag);
    const std::int32_t value = runtime::__FFirand();
    return flag == nullptr ? value % 32768 : value;
}

// INTEGER(4) FUNCTION IRANDM(FLAG)
extern "C" TARVO_API std::int32_t irandm_(const std::int32_t* flag) noexcept {
    apply_flag(flag);
    return runtime::__FFirand();
}

// SUBROUTINE SRAND(SEED) -- seeds the shared sequence and the C library's rand() for RANF
extern "C" TARVO_API void srand_(const std::int32_t* seed) noexcept {
    runtime::__FFsetseed(*seed);
    std::srand(static_cast<unsigned>(*seed));
}

// SUBROUTINE RANSET(SEED) -- REAL(4) seed, truncated toward zero
extern "C" TARVO_API void ranset_(const float* seed) noexcept {
    runtime::__FFsetseed(truncated_seed(*seed));
}

// SUBROUTINE DRANSET(SEED) -- REAL(8) seed, truncated toward zero
extern "C" TARVO_API void dranset_(const double* seed) noexcept {
    runtime::__FFsetseed(truncated_seed(*seed));
}

// SUBROUTINE IRANSET(SEED)
extern "C" TARVO_API void iranset_(const std::int32_t* seed) noexcept { runtime::__FFsetseed(*seed); }

// SUBROUTINE RANGET(SEED) -- the current seed; IRANSET(SEED) later continues from here
extern "C" TARVO_API void ranget_(std::int32_t* seed) noexcept { runtime::__FFgetseed(seed); }

// SUBROUTINE IRANGET(SEED) -- the same routine under its second name
extern "C" TARVO_API void iranget_(std::int32_t* seed) noexcept __attribute__((alias("ranget_")));

// REAL(4) FUNCTION RANF() -- rand() as a REAL, unscaled: 0 to RAND_MAX
extern "C" TARVO_API float ranf_() noexcept { return static_cast<float>(std::rand()); }
