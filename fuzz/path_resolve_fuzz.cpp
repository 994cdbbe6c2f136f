// FULLPATHQQ and SPLITPATHQQ on arbitrary names, inside a small tree of directories, a
// file and symbolic links (one to a directory, one to its parent, a loop, one that leads
// nowhere) that is the working directory. Invariants: the result is absolute, at most
// 1024 characters, holds no "." or ".." component; resolving it again gives it back when
// the name has no ".." (".." is removed textually and may step out of a link), up to doubled
// slashes; the parts SPLITPATHQQ gives put the same name together again.
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include <tarvo/qq.h>

namespace {

void make_tree() {
    FUZZ_CHECK(chdir(temporary_directory("tarvo-path-fuzz").c_str()) == 0);
    FUZZ_CHECK(mkdir("a", 0755) == 0 && mkdir("a/b", 0755) == 0 && mkdir("a/.d", 0755) == 0);
    FILE* f = std::fopen("a/f.txt", "w");
    FUZZ_CHECK(f != nullptr);
    std::fclose(f);
    FUZZ_CHECK(symlink("a", "link") == 0 && symlink("..", "a/up") == 0 && symlink("loop", "loop") == 0 &&
            symlink("missing/x", "dangling") == 0);
}

constexpr std::size_t kLimit = 1024;
constexpr std::size_t kRoom = 2048;

std::string fullpath(const std::string& name) {
    char* text = static_cast<char*>(std::malloc(name.size() + 1));  // exactly sized, never null
    std::memcpy(text, name.data(), name.size());
    char out[kRoom];
    const std::int32_t n = fullpathqq_(text, out, name.size(), kRoom);
    std::free(text);
    FUZZ_CHECK(n >= 0 && static_cast<std::size_t>(n) <= kLimit);
    for (std::size_t i = static_cast<std::size_t>(n); i < kRoom; ++i) FUZZ_CHECK(out[i] == ' ');
    return std::string(out, static_cast<std::size_t>(n));
}

bool has_dot_component(const std::string& path) {
    return path.find("/./") != std::string::npos || path.find("/../") != std::string::npos ||
           (path.size() >= 2 && path.compare(path.size() - 2, 2, "/.") == 0);
}

std::string single_slashes(std::string s) {
    for (std::size_t at; (at = s.find("//")) != std::string::npos;) s.erase(at, 1);
    return s;
}

std::string trimmed(const std::string& s) { return s.substr(0, s.find_last_not_of(' ') + 1); }

void check_split(const std::string& name, const std::string& full) {
    char drive[8], dir[kRoom], base[kRoom], ext[kRoom];
    const std::int32_t length = splitpathqq_(name.c_str(), drive, dir, base, ext, name.size(), sizeof drive,
                                             sizeof dir, sizeof base, sizeof ext);
    FUZZ_CHECK(std::string(drive, sizeof drive) == std::string(sizeof drive, ' '));
    const std::string d = trimmed(std::string(dir, sizeof dir)), b = trimmed(std::string(base, sizeof base)),
                      e = trimmed(std::string(ext, sizeof ext));
    if (full.find(' ') != std::string::npos) return;  // blanks inside the parts cannot be told from padding
    FUZZ_CHECK(static_cast<std::size_t>(length) == d.size());
    FUZZ_CHECK(d + b + e == full);
    FUZZ_CHECK(e.empty() || (e[0] == '.' && e.size() > 1 && e.find('.', 1) == std::string::npos && !b.empty()));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    make_tree();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A leading part of more than 1024 characters ends the process by design.
    if (size > kLimit) return 0;
    const std::string name(reinterpret_cast<const char*>(data), size);
    const std::string as_seen(name.c_str(), std::strlen(name.substr(0, name.find_last_not_of(' ') + 1).c_str()));
    const std::string full = fullpath(name);
    if (as_seen.empty()) return 0;
    FUZZ_CHECK(!full.empty() && full[0] == '/');
    FUZZ_CHECK(!has_dot_component(full));
    // A result ending in a blank loses it as a Fortran argument. Doubled slashes after the
    // existing part are kept as written, except that a part ending in one fails as a whole
    // once more on the second pass; so the two are compared with runs of slashes as one.
    if (full.size() < kLimit && as_seen.find("..") == std::string::npos && full.back() != ' ')
        FUZZ_CHECK(single_slashes(fullpath(full)) == single_slashes(full));
    check_split(name, full);
    return 0;
}
