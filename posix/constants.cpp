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
#include <cstdint>
#include <cstring>

#include "frame/api.h"
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

// The lookup index: every name folded to lower case and zero-padded to a fixed width, so
// that one comparison is a plain byte compare, sorted at compile time and searched by
// halving. Equal folded names (there are none, see below) would keep their table order,
// so the first row in table order would win as the linear scan it replaces.
constexpr std::size_t kWidth = 24;

struct Key {
    std::array<char, kWidth> text{};
    std::uint16_t row = 0;
};

constexpr int compare_text(const std::array<char, kWidth>& a, const std::array<char, kWidth>& b) {
    for (std::size_t i = 0; i < kWidth; ++i)
        if (a[i] != b[i]) return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]) ? -1 : 1;
    return 0;
}

constexpr std::array<Key, kRows> build_index() {
    std::array<Key, kRows> keys{};
    for (std::size_t row = 0; row < kRows; ++row) {
        keys[row].row = static_cast<std::uint16_t>(row);
        for (std::size_t i = 0; kNames[row][i] != '\0'; ++i) keys[row].text[i] = fold(kNames[row][i]);
    }
    std::sort(keys.begin(), keys.end(), [](const Key& a, const Key& b) {
        const int order = compare_text(a.text, b.text);
        return order != 0 ? order < 0 : a.row < b.row;
    });
    return keys;
}

constexpr bool names_fit() {
    for (const char* name : kNames) {
        std::size_t length = 0;
        while (name[length] != '\0') ++length;
        if (length >= kWidth) return false;
    }
    return true;
}
static_assert(names_fit(), "a constant name is too long for the lookup index");

constexpr std::array<Key, kRows> kIndex = build_index();

constexpr bool names_distinct() {
    for (std::size_t i = 1; i < kRows; ++i)
        if (compare_text(kIndex[i - 1].text, kIndex[i].text) == 0) return false;
    return true;
}
static_assert(names_distinct(), "two constant names are equal without regard to case");

bool find_constant(Name name, std::int32_t& value) noexcept {
    if (name.length == 0 || name.length >= kWidth) return false;
    std::array<char, kWidth> key{};
    for (std::size_t i = 0; i < name.length; ++i) key[i] = fold(name.text[i]);
    const Key* hit = std::lower_bound(kIndex.begin(), kIndex.end(), key, [](const Key& entry, const auto& k) {
        return std::memcmp(entry.text.data(), k.data(), kWidth) < 0;
    });
    if (hit == kIndex.end() || std::memcmp(hit->text.data(), key.data(), kWidth) != 0) return false;
    value = _name_val_table[hit->row].value;
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
