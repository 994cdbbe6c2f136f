// The Shell sort SORTQQ's bytes must equal, written out literally with the comparison of
// each type code: the reference of the unit tests and of the fuzz target.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include <tarvo/qq.h>

namespace literal_sort {

using Bytes = std::vector<unsigned char>;
using Greater = bool (*)(const unsigned char*, const unsigned char*);

template <class T>
bool typed_greater(const unsigned char* a, const unsigned char* b) {
    T x, y;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    return x > y;
}
template <std::size_t W>
bool bytes_greater(const unsigned char* a, const unsigned char* b) { return std::memcmp(a, b, W) > 0; }

// Sign, then exponent, then the fraction words from the most significant, reversed when
// negative; where either exponent is all ones, binary128's own greater-than.
inline bool quad_greater(const unsigned char* a, const unsigned char* b) {
    const auto word = [](const unsigned char* p, int at, int bytes) {
        std::uint32_t w = 0;
        std::memcpy(&w, p + at, bytes);
        return w;
    };
    const std::uint32_t ea = word(a, 14, 2) & 0x7FFF, eb = word(b, 14, 2) & 0x7FFF;
    if (ea == 0x7FFF || eb == 0x7FFF) return typed_greater<__float128>(a, b);
    const bool na = a[15] & 0x80, nb = b[15] & 0x80;
    if (na != nb) return nb;
    const std::uint32_t fa[] = {ea, word(a, 12, 2), word(a, 8, 4), word(a, 4, 4), word(a, 0, 4)};
    const std::uint32_t fb[] = {eb, word(b, 12, 2), word(b, 8, 4), word(b, 4, 4), word(b, 0, 4)};
    for (int i = 0; i < 5; ++i)
        if (fa[i] != fb[i]) return na ? fa[i] < fb[i] : fa[i] > fb[i];
    return false;
}

struct Code {
    std::int32_t code;
    std::size_t width;
    Greater greater;
};
inline constexpr Code kCodes[] = {
    {TARVO_SRT_REAL4, 4, typed_greater<float>},          {TARVO_SRT_REAL8, 8, typed_greater<double>},
    {TARVO_SRT_INTEGER1, 1, typed_greater<std::int8_t>}, {TARVO_SRT_INTEGER2, 2, typed_greater<std::int16_t>},
    {TARVO_SRT_INTEGER4, 4, typed_greater<std::int32_t>}, {TARVO_SRT_INTEGER8, 8, typed_greater<std::int64_t>},
    {TARVO_SRT_REAL16, 16, quad_greater},                {1, 1, bytes_greater<1>},
    {2, 2, bytes_greater<2>},                            {4, 4, bytes_greater<4>},
    {5, 5, bytes_greater<5>},                            {8, 8, bytes_greater<8>},
    {16, 16, bytes_greater<16>},                         {17, 17, bytes_greater<17>},
};

// The Shell sort whose bytes SORTQQ keeps, element by element: gaps ..., 13, 4, 1; strictly-greater moves.
inline void shell_reference(Bytes& data, const Code& c) {
    const std::size_t w = c.width;
    const long n = static_cast<long>(data.size() / w);
    long h = 1;
    if (n >= 13) {
        while (h < n) h = 3 * h + 1;
        h = ((h - 1) / 3 - 1) / 3;
    }
    Bytes v(w);
    for (;; h = (h - 1) / 3) {
        for (long i = h; i < n; ++i) {
            std::memcpy(v.data(), &data[i * w], w);
            long j = i;
            for (; j >= h && c.greater(&data[(j - h) * w], v.data()); j -= h) std::memcpy(&data[j * w], &data[(j - h) * w], w);
            std::memcpy(&data[j * w], v.data(), w);
        }
        if (h == 1) break;
    }
}

}  // namespace literal_sort
