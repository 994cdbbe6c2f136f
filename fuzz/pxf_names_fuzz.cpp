// The PXF name lookups on arbitrary bytes: constant names, structure-type names and field
// names. A name is what comes before the first blank or NUL, compared without regard to
// case; whatever is found must be found again under another case and with blank padding,
// the three constant routines must agree, and a field found must give back what was stored.
// Input: a selector byte (structure type and accessor), then the name.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include "posix/instances.h"
#include <tarvo/posix.h>

namespace {

// The name as another Fortran caller might write it: letters in the other case, blank padded.
std::string recased(const std::string& name) {
    std::string s = name.substr(0, name.find_first_of(std::string(" \0", 2)));
    for (char& c : s)
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) c = static_cast<char>(c ^ 0x20);
    return s + "    ";
}

// A heap block of exactly the name's bytes, so that reading past the hidden length is caught.
struct Text {
    char* p;
    std::size_t n;
    explicit Text(const std::string& s) : p(static_cast<char*>(std::malloc(s.size() + 1))), n(s.size()) {
        std::memcpy(p, s.data(), s.size());
    }
    ~Text() { std::free(p); }
};

void check_constant(const std::string& name) {
    const Text t(name);
    std::int32_t value = 0, error = 0;
    pxfconst_(t.p, &value, &error, t.n);
    const bool found = error == 0;
    FUZZ_CHECK(found || (error == TARVO_ENONAME && value == -1));
    FUZZ_CHECK(pxfisconst_(t.p, t.n) == (found ? TARVO_TRUE : TARVO_FALSE));
    FUZZ_CHECK(ipxfconst_(t.p, t.n) == (found ? value : -1));
    if (!found) return;
    const Text again(recased(name));
    std::int32_t value2 = 0, error2 = 0;
    pxfconst_(again.p, &value2, &error2, again.n);
    FUZZ_CHECK(error2 == 0 && value2 == value);
}

void check_structure(const std::string& name) {
    const Text t(name);
    std::int32_t handle = 0, error = 0;
    pxfstructcreate_(t.p, &handle, &error, t.n);
    if (error != 0) {
        FUZZ_CHECK(error == TARVO_ENONAME);
        return;
    }
    const Text again(recased(name));
    std::int32_t copy = 0, copy_error = 0;
    pxfstructcreate_(again.p, &copy, &copy_error, again.n);
    FUZZ_CHECK(copy_error == 0);
    pxfstructcopy_(again.p, &handle, &copy, &copy_error, again.n);
    FUZZ_CHECK(copy_error == 0);
    pxfstructfree_(&copy, &copy_error);
    pxfstructfree_(&handle, &error);
    FUZZ_CHECK(error == 0 && copy_error == 0 && handle == 0);
}

// One instance of every structure type, made once.
std::int32_t instance_of(std::size_t type) {
    static std::int32_t handles[std::size(posix::kStructTypes)] = {};
    if (handles[type] == 0) {
        const char* name = posix::kStructTypes[type].name;
        std::int32_t error = 0;
        pxfstructcreate_(name, &handles[type], &error, std::strlen(name));
        FUZZ_CHECK(error == 0);
    }
    return handles[type];
}

// Stores a number in the field NAME (t) and reads it back under the other spelling (again):
// either the field is unknown (ENONAME) or the number comes back.
template <class T, class Set, class Get>
void round_trip(Set set, Get get, std::int32_t handle, const Text& t, const Text& again, T stored) {
    std::int32_t error = 0;
    set(&handle, t.p, &stored, &error, t.n);
    if (error != 0) {
        FUZZ_CHECK(error == TARVO_ENONAME);
        return;
    }
    T read = 0;
    get(&handle, again.p, &read, &error, again.n);
    FUZZ_CHECK(error == 0 && read == stored);
}

void check_field(std::size_t type, unsigned accessor, const std::string& name) {
    const std::int32_t handle = instance_of(type);
    const Text t(name);
    const Text again(recased(name));
    std::int32_t error = 0;
    switch (accessor) {
    case 0: return round_trip(pxfintset_, pxfintget_, handle, t, again, std::int32_t{0x1234567});
    case 1: return round_trip(pxfint8set_, pxfint8get_, handle, t, again, std::int64_t{-0x1234567});  // fits 4-byte fields too
    default: {
        const std::int32_t length = 3;
        pxfstrset_(&handle, t.p, "abc", &length, &error, t.n, 3);
        if (error != 0) {
            FUZZ_CHECK(error == TARVO_ENONAME);
            return;
        }
        char read[8];
        std::int32_t read_length = 0;
        pxfstrget_(&handle, again.p, read, &read_length, &error, again.n, sizeof read);
        FUZZ_CHECK(error == 0 && read_length == 3 && std::memcmp(read, "abc     ", 8) == 0);
        return;
    }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1 || size > 64) return 0;
    const std::string name(reinterpret_cast<const char*>(data + 1), size - 1);
    check_constant(name);
    check_structure(name);
    const std::size_t types = std::size(posix::kStructTypes);
    check_field(data[0] % types, (data[0] / types) % 3, name);
    return 0;
}
