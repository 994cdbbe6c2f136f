// SORTQQ against the literal Shell sort: the same bytes for every type code, on element
// bytes as given or, to reach the long and tie-laden arrays where the faster sorts run,
// with each input byte standing for one element from a palette of awkward values.
// Input: code selector, form, then the element bytes. Refused codes leave the array alone.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "check.h"
#include "unit/qq/literal_shell_sort.h"
#include <tarvo/qq.h>

namespace {

using namespace literal_sort;

constexpr std::int32_t kRefused[] = {0, -1, 0x70000, 32767, 0x90000};

// Elements of the palette form: zeros of both signs, NaNs of both signs, infinities,
// denormals, tiny integers, and for wider elements a few bit patterns of their own.
void palette_element(unsigned char* e, const Code& c, unsigned char pick) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const double values[] = {0.0, -0.0, std::nan(""), -std::nan(""), kInf, -kInf, 5e-320, -5e-320,
                             1.0, -1.0, 2.0, -2.0, 0.5, 1e300, -1e300, 3.0};
    const double v = values[pick & 15];
    const bool raw = (pick & 0x80) != 0;  // the byte itself, repeated over the element
    if (raw) {
        std::memset(e, pick & 0x7F, c.width);
        if (pick & 0x40) e[c.width - 1] |= 0x80;
    } else if (c.code == TARVO_SRT_REAL4) {
        const float f = v == 5e-320 ? 1e-40f : v == -5e-320 ? -1e-40f : static_cast<float>(v);
        std::memcpy(e, &f, 4);
    } else if (c.code == TARVO_SRT_REAL8) {
        std::memcpy(e, &v, 8);
    } else if (c.code == TARVO_SRT_REAL16) {
        const __float128 q = v;
        std::memcpy(e, &q, 16);
        if (pick & 0x40) e[0] ^= 1;  // NaN payloads and neighbouring fractions
    } else {
        std::memset(e, 0, c.width);
        e[c.width - 1] = static_cast<unsigned char>((pick & 3) == 3 ? 0xFF : pick & 3);
        e[0] = static_cast<unsigned char>(e[0] | ((pick >> 2) & 3));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    constexpr std::size_t kCodeCount = std::size(kCodes);
    const std::size_t choice = data[0] % (kCodeCount + std::size(kRefused));
    const bool palette = (data[1] & 1) != 0;
    data += 2;
    size -= 2;
    if (choice >= kCodeCount) {
        std::int32_t code = kRefused[choice - kCodeCount];
        Bytes array(data, data + size);
        std::intptr_t address = reinterpret_cast<std::intptr_t>(array.data());
        std::intptr_t count = static_cast<std::intptr_t>(size);
        sortqq_(&address, &count, &code);
        FUZZ_CHECK(count == 0 && std::memcmp(array.data(), data, size) == 0);
        return 0;
    }
    const Code& c = kCodes[choice];
    const std::size_t n = palette ? size : size / c.width;
    if (n == 0) return 0;
    Bytes want(n * c.width);
    if (palette) {
        for (std::size_t i = 0; i < n; ++i) palette_element(&want[i * c.width], c, data[i]);
    } else {
        std::memcpy(want.data(), data, want.size());
    }
    // An exactly sized heap block, so that any access beyond the last element is caught.
    auto* array = static_cast<unsigned char*>(std::malloc(want.size()));
    std::memcpy(array, want.data(), want.size());
    shell_reference(want, c);
    std::intptr_t address = reinterpret_cast<std::intptr_t>(array);
    std::intptr_t count = static_cast<std::intptr_t>(n);
    std::int32_t code = c.code;
    sortqq_(&address, &count, &code);
    FUZZ_CHECK(count == static_cast<std::intptr_t>(n) && std::memcmp(array, want.data(), want.size()) == 0);
    std::free(array);
    return 0;
}
