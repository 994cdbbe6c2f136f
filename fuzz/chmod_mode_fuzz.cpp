// CHMOD's mode strings against an independent model: the permission bits a file has
// afterwards, and the result (0, or 22 for a mode that is not one), on one file in a
// temporary directory. Input: two bytes of starting mode, then the mode as a Fortran string.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include <tarvo/portlib.h>

namespace {

const std::string& target_file() {
    static const std::string name = [] {
        std::string dir = temporary_directory("tarvo-chmod-fuzz");
        std::string file = dir + "/f";
        FILE* f = std::fopen(file.c_str(), "w");
        FUZZ_CHECK(f != nullptr);
        std::fclose(f);
        return file;
    }();
    return name;
}

// The mode as the routine sees it: trailing blanks dropped, ended by the first NUL.
std::string mode_text(const std::string& fortran) {
    std::size_t n = fortran.size();
    while (n > 0 && fortran[n - 1] == ' ') --n;
    return std::string(fortran.c_str(), std::strlen(fortran.substr(0, n).c_str()));
}

// The permission bits after the call, or -1 when the mode is refused.
long expected_bits(const std::string& m, mode_t current) {
    if (!m.empty() && m[0] >= '0' && m[0] <= '9') {
        unsigned long long value = 0;
        std::size_t i = 0;
        for (; i < m.size() && m[i] >= '0' && m[i] <= '7'; ++i)
            value = value > (0x7FFFFFFFFFFFFFFFull >> 3) ? 0x7FFFFFFFFFFFFFFFull : value * 8 + (m[i] - '0');
        if (i < m.size() || value == 0) return -1;
        return static_cast<long>(static_cast<mode_t>(value) & 07777);
    }
    static const std::string who_letters = "ugoa";
    std::size_t i = 0;
    unsigned who = 0;
    bool who_given = false;
    for (; i < m.size() && who_letters.find(m[i]) != std::string::npos; ++i) {
        who_given = true;
        who = m[i] == 'a' ? 0777 : who | (0700u >> (3 * who_letters.find(m[i])));
    }
    if (i == m.size() || (m[i] != '+' && m[i] != '-' && m[i] != '=')) return -1;
    const char op = m[i++];
    unsigned perm = 0;
    for (; i < m.size(); ++i) {
        switch (m[i]) {
            case 'r': perm |= 0444; break;
            case 'w': perm |= 0222; break;
            case 'x': perm |= 0111; break;
            case 's': perm |= 06000; who |= 06000; break;
            case 't': case 'X': break;
            default: return -1;
        }
    }
    const unsigned bits = perm & (who_given ? who : 0777u);
    if (op == '=') return bits;
    return op == '+' ? (current | bits) : (current & ~bits & 07777);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 64) return 0;
    const std::string& file = target_file();
    // Owner read and write stay, so the file remains ours to change.
    const auto start = static_cast<mode_t>(((data[0] << 8 | data[1]) & 07777) | 0600);
    FUZZ_CHECK(::chmod(file.c_str(), start) == 0);
    const std::string fortran(reinterpret_cast<const char*>(data + 2), size - 2);
    char* mode = static_cast<char*>(std::malloc(fortran.size() + 1));  // exactly sized, but never null
    std::memcpy(mode, fortran.data(), fortran.size());
    const long want = expected_bits(mode_text(fortran), start);
    const std::int32_t result = chmod_(file.c_str(), mode, file.size(), fortran.size());
    std::free(mode);
    struct stat st {};
    FUZZ_CHECK(stat(file.c_str(), &st) == 0);
    const long now = st.st_mode & 07777;
    FUZZ_CHECK(want < 0 ? (result == 22 && now == start) : (result == 0 && now == want));
    return 0;
}
