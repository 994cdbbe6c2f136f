// The PXF constant table: POSIX names with the host's values and the binding's own codes,
// looked up by name without regard to case.
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "base/export.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

// _name_val_table in table order. A value goes through intptr_t because the SIG_DFL,
// SIG_IGN and SIG_ERR rows are handler addresses.
#define PXF_HOST(NAME) {#NAME, static_cast<std::int32_t>((std::intptr_t)(NAME))},
#define PXF_OWN(NAME, VALUE) {#NAME, VALUE},
#define PXF_UNREACHABLE(TEXT, VALUE) {TEXT, VALUE},
struct Row {
    const char* name;
    std::int32_t value;
};
const Row _name_val_table[] = {
#include "posix/constants.def"
};
#undef PXF_HOST
#undef PXF_OWN
#undef PXF_UNREACHABLE

#define PXF_HOST(NAME) #NAME,
#define PXF_OWN(NAME, VALUE) #NAME,
#define PXF_UNREACHABLE(TEXT, VALUE) TEXT,
constexpr const char* kNames[] = {
#include "posix/constants.def"
};
#undef PXF_HOST
#undef PXF_OWN
#undef PXF_UNREACHABLE

constexpr std::size_t kRows = std::size(kNames);
static_assert(std::size(_name_val_table) == kRows);

// The lookup index: every name folded to lower case, zero-padded to a fixed width and read
// as three machine words, so that one comparison is three integer comparisons; sorted at
// compile time and searched by halving. Rows with equal folded names (there are none, see
// below) would keep their table order, so the first in table order would win, as in a
// linear scan of the table.
constexpr std::size_t kWidth = 24;
using Words = std::array<std::uint64_t, kWidth / 8>;

// A folded name as words; names of kWidth characters or more get no key.
constexpr Words key_of(const char* text, std::size_t length) {
    std::array<char, kWidth> folded{};
    for (std::size_t i = 0; i < length; ++i) folded[i] = fold(text[i]);
    return std::bit_cast<Words>(folded);
}

constexpr std::size_t length_of(const char* text) {
    std::size_t length = 0;
    while (text[length] != '\0') ++length;
    return length;
}

struct Key {
    Words words{};
    std::uint16_t row = 0;
};

constexpr bool less(const Words& a, const Words& b) {
    return a[0] != b[0] ? a[0] < b[0] : a[1] != b[1] ? a[1] < b[1] : a[2] < b[2];
}

constexpr bool names_fit() {
    for (const char* name : kNames)
        if (length_of(name) >= kWidth) return false;
    return true;
}
static_assert(names_fit(), "a constant name is too long for the lookup index");

constexpr std::array<Key, kRows> build_index() {
    std::array<Key, kRows> keys{};
    for (std::size_t row = 0; row < kRows; ++row)
        keys[row] = {key_of(kNames[row], length_of(kNames[row])), static_cast<std::uint16_t>(row)};
    std::sort(keys.begin(), keys.end(),
              [](const Key& a, const Key& b) { return a.words != b.words ? less(a.words, b.words) : a.row < b.row; });
    return keys;
}
constexpr std::array<Key, kRows> kIndex = build_index();

constexpr bool names_distinct() {
    for (std::size_t i = 1; i < kRows; ++i)
        if (kIndex[i - 1].words == kIndex[i].words) return false;
    return true;
}
static_assert(names_distinct(), "two constant names are equal without regard to case");

bool find_constant(Name name, std::int32_t& value) noexcept {
    if (name.length == 0 || name.length >= kWidth) return false;
    const Words key = key_of(name.text, name.length);
    // Lower bound without data-dependent branches: halve the range, keeping the half that
    // must hold the first key not below the one asked for.
    const Key* first = kIndex.data();
    for (std::size_t n = kRows; n > 1; n -= n / 2)
        first = less(first[n / 2 - 1].words, key) ? first + n / 2 : first;
    if (less(first->words, key)) ++first;
    if (first == kIndex.data() + kRows || first->words != key) return false;
    value = _name_val_table[first->row].value;
    return true;
}

}  // namespace
}  // namespace posix

// SUBROUTINE PXFCONST(CONSTNAME, IVAL, IERROR)
extern "C" TARVO_API void pxfconst_(const char* constname, std::int32_t* ival, std::int32_t* ierror,
                                    std::size_t constname_len) noexcept {
    if (posix::find_constant(posix::pxf_name(constname, constname_len), *ival)) {
        *ierror = 0;
    } else {
        *ival = -1;
        *ierror = TARVO_ENONAME;
    }
}

// INTEGER FUNCTION IPXFCONST(CONSTNAME) -- -1 also for the constants whose value is -1
extern "C" TARVO_API std::int32_t ipxfconst_(const char* constname, std::size_t constname_len) noexcept {
    std::int32_t value = -1;
    return posix::find_constant(posix::pxf_name(constname, constname_len), value) ? value : -1;
}

// LOGICAL FUNCTION PXFISCONST(CONSTNAME)
extern "C" TARVO_API std::int32_t pxfisconst_(const char* constname, std::size_t constname_len) noexcept {
    std::int32_t value;
    return posix::find_constant(posix::pxf_name(constname, constname_len), value) ? TARVO_TRUE : TARVO_FALSE;
}
