// Path splitting and full paths: both describe the absolute, canonical form of a name.
#include <cerrno>
#include <cstring>

#include "base/export.h"
#include "base/fstring.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace {

std::int32_t store(char* dst, std::size_t dst_len, const char* text) noexcept {
    return static_cast<std::int32_t>(base::store_fortran_string(dst, dst_len, text));
}

}  // namespace

// INTEGER(4) FUNCTION FULLPATHQQ(NAME, PATHBUF) -- characters stored, 0 on failure
extern "C" TARVO_API std::int32_t fullpathqq_(const char* name, char* pathbuf, std::size_t name_len,
                                              std::size_t pathbuf_len) noexcept {
    if (name == nullptr || pathbuf == nullptr) return qq::fail(EINVAL);
    // The copy is never released: callers of long standing may hold on to what the
    // routine saw, so the block stays.
    const char* text = base::allocCstr(name, base::signed_length(name_len));
    if (text == nullptr) return 0;
    base::keep(text);
    char resolved[qq::kResolvedSize];
    __lodrik_resolve_unix_path(text, resolved);
    return store(pathbuf, pathbuf_len, resolved);
}

// INTEGER(4) FUNCTION SPLITPATHQQ(PATH, DRIVE, DIR, NAME, EXT) -- length of the directory
extern "C" TARVO_API std::int32_t splitpathqq_(const char* path, char* drive, char* dir, char* name,
                                               char* ext, std::size_t path_len, std::size_t drive_len,
                                               std::size_t dir_len, std::size_t name_len,
                                               std::size_t ext_len) noexcept {
    base::blank_fill(drive, base::signed_length(drive_len));
    base::blank_fill(dir, base::signed_length(dir_len));
    base::blank_fill(name, base::signed_length(name_len));
    base::blank_fill(ext, base::signed_length(ext_len));
    auto text = base::c_string(path, path_len);
    if (!text || text.get()[0] == '\0') return 0;
    char resolved[qq::kResolvedSize];
    __lodrik_resolve_unix_path(text.get(), resolved);
    if (std::strlen(resolved) == 1) {  // the root: "/" goes straight into DIR
        if (dir != nullptr && base::signed_length(dir_len) >= 1) dir[0] = resolved[0];
        return 1;
    }
    char* slash = std::strrchr(resolved, '/');
    if (slash == nullptr) {
        store(name, name_len, resolved);
        return 0;
    }
    char* base = slash + 1;
    // A leading dot (".profile") or a lone final dot ("name.") is part of the name.
    char* dot = std::strrchr(base, '.');
    if (dot != nullptr && dot != base && dot[1] != '\0') {
        store(ext, ext_len, dot);
        *dot = '\0';
    }
    store(name, name_len, base);
    *base = '\0';
    store(dir, dir_len, resolved);
    return static_cast<std::int32_t>(base - resolved);
}
