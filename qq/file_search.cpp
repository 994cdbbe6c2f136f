// File search and file information: the wildcard rule, exact-name lookup in a directory
// and along a directory list, and the enumeration of GETFILEINFOQQ.
#include <dirent.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "base/lock.h"
#include "base/memory.h"
#include "base/fstring.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace qq {
namespace {

// Whether the next `length` characters of the name equal the segment, "?" matching any.
bool segment_matches(const char* name, const char* segment, std::size_t length) noexcept {
    for (std::size_t i = 0; i < length; ++i)
        if (segment[i] != '?' && segment[i] != name[i]) return false;
    return true;
}

}  // namespace

// The rule: characters and "?" match one for one up to the first "*". A "*" then takes
// each following "*" and "?" as one character each (a further "*" takes one only while
// the name lasts, so "a**b" needs one more character than "a*b": the established rule),
// and then any run of characters before the next segment. The last segment must end the
// name; every other segment is matched at its leftmost place, which is never worse than a
// later one because a later start leaves a subset of the choices. So no backtracking into
// earlier segments is needed: time is at most name length times pattern length.
int patternMatch(const char* name, const char* pattern) noexcept {
    const char* p = pattern;
    const char* s = name;
    for (; *p != '*'; ++p, ++s) {
        if (*p == '\0') return *s == '\0' ? 0 : 1;
        if (*s == '\0' || (*p != '?' && *p != *s)) return 1;
    }
    std::size_t left = std::strlen(s);
    for (;;) {
        for (++p; *p == '*' || *p == '?'; ++p) {
            if (left == 0) {
                if (*p == '?') return 1;
                continue;
            }
            ++s;
            --left;
        }
        if (*p == '\0') return 0;
        const char* end = p;
        while (*end != '\0' && *end != '*') ++end;
        const auto length = static_cast<std::size_t>(end - p);
        if (length > left) return 1;
        if (*end == '\0') return segment_matches(s + left - length, p, length) ? 0 : 1;
        std::size_t skip = 0;
        while (!segment_matches(s + skip, p, length))
            if (++skip + length > left) return 1;
        s += skip + length;
        left -= skip + length;
        p = end;
    }
}

namespace {

constexpr std::intptr_t kStart = TARVO_FILE_FIRST;
constexpr std::intptr_t kEnded = TARVO_FILE_LAST;
constexpr std::intptr_t kFailed = TARVO_FILE_ERROR;

// Directory streams of the searches in progress. A handle is a positive number naming one
// of them and is never given twice, so a stale or invented handle finds nothing instead of
// reaching a closed stream. A search the caller abandons stays here, open: the handle it holds may still
// be passed back later.
struct Search {
    std::intptr_t handle;
    DIR* stream;
    Search* next;
};
Search* searches = nullptr;
std::intptr_t last_handle = 0;
// Guards the searches and both routines' search states: threads may search at once.
base::TableLock search_lock;

std::intptr_t keep_search(DIR* stream) noexcept {
    auto* search = static_cast<Search*>(base::allocate(sizeof(Search)));
    if (search == nullptr) return 0;
    last_handle = last_handle == INTPTR_MAX ? 1 : last_handle + 1;
    *search = {last_handle, stream, searches};
    searches = search;
    return last_handle;
}

DIR* stream_of(std::intptr_t handle) noexcept {
    for (Search* search = searches; search != nullptr; search = search->next)
        if (search->handle == handle) return search->stream;
    return nullptr;
}

void close_search(std::intptr_t handle) noexcept {
    for (Search** link = &searches; *link != nullptr; link = &(*link)->next) {
        Search* search = *link;
        if (search->handle != handle) continue;
        *link = search->next;
        closedir(search->stream);
        base::release(search);
        return;
    }
}

std::int32_t fail_search(std::intptr_t* handle, int code) noexcept {
    close_search(*handle);
    *handle = kFailed;
    return qq::fail(code);
}

// What the searches of one routine look for: the directory ("pPath", kept with a "/"
// after it so that an entry's full name is one copy away) and the name pattern
// ("pNamePattern"). Each routine has its own; a new search replaces both for every
// search of that routine still open.
struct SearchState {
    char full[kJoinedSize];
    std::size_t path_length;
    char pattern[kNameMax + 1];
};
SearchState info_state;
SearchState info_state_i8;

bool start_search(SearchState& state, const char* files, std::size_t files_len,
                  std::intptr_t* handle) noexcept {
    auto text = base::c_string(files, files_len);
    if (!text) {
        fail_search(handle, ENOMEM);
        return false;
    }
    const PathParts parts = split_at_last_slash(text.get());
    state.path_length = copy_bounded(state.full, parts.dir != nullptr ? parts.dir : ".", kDirMax);
    copy_bounded(state.pattern, parts.name, kNameMax);
    DIR* stream = opendir(state.full);
    state.full[state.path_length] = '/';
    const std::intptr_t kept = stream != nullptr ? keep_search(stream) : 0;
    if (kept == 0) {
        if (stream != nullptr) closedir(stream);
        fail_search(handle, stream != nullptr ? ENOMEM : ENOENT);
        return false;
    }
    *handle = kept;
    return true;
}

std::int32_t low32(std::int64_t value) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

std::int32_t kind_of(mode_t mode) noexcept {
    if (S_ISDIR(mode)) return TARVO_FILE_DIR;
    if (S_ISCHR(mode) || S_ISBLK(mode) || S_ISFIFO(mode)) return TARVO_FILE_DEVICE;
    return 0;
}

// The two records differ on purpose: the 4-byte one leaves creation alone and never
// reports read-only files.
void fill(tarvo_file_info& record, const struct stat& st) noexcept {
    record.lastwrite = low32(st.st_mtime);
    record.lastaccess = low32(st.st_atime);
    record.length = low32(st.st_size);
    record.permit = kind_of(st.st_mode);
}

void fill(tarvo_file_info_i8& record, const struct stat& st) noexcept {
    record.creation = low32(st.st_ctime);
    record.lastwrite = low32(st.st_mtime);
    record.lastaccess = low32(st.st_atime);
    record.length = st.st_size;
    const std::int32_t kind = kind_of(st.st_mode);
    record.permit = kind != 0 ? kind : ((st.st_mode & S_IWUSR) != 0 ? 0 : TARVO_FILE_READONLY);
}

template <class Record>
std::int32_t next_file_info(SearchState& state, const char* files, std::size_t files_len,
                            Record* record, std::intptr_t* handle) noexcept {
    if (handle == nullptr) return qq::fail(EINVAL);
    if (record == nullptr) return fail_search(handle, EINVAL);
    if (*handle == kStart && !start_search(state, files, files_len, handle)) return 0;
    DIR* stream = stream_of(*handle);
    if (stream == nullptr) return fail_search(handle, EBADF);
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(stream);
        if (entry == nullptr) {
            const int error = errno;
            close_search(*handle);
            *handle = error == 0 || error == ENOENT ? kEnded : kFailed;
            state.pattern[0] = '\0';
            return qq::fail(ENOENT);
        }
        if (patternMatch(entry->d_name, state.pattern) != 0) continue;
        const base::flen length = base::CstrToFstr(record->name, entry->d_name, kNameMax, base::unlimited);
        copy_bounded(state.full + state.path_length + 1, entry->d_name, kNameMax);
        struct stat st;
        if (stat(state.full, &st) != 0) return fail_search(handle, ENOENT);
        fill(*record, st);
        return static_cast<std::int32_t>(length);
    }
}

}  // namespace
}  // namespace qq

using namespace qq;

// Exact-name lookup in one directory, for callers with terminated strings.
extern "C" TARVO_API int search_path(char* out, const char* name, const char* dir) noexcept {
    if (out == nullptr || name == nullptr || dir == nullptr) return 0;
    DIR* stream = opendir(dir);
    if (stream == nullptr) return 0;
    while (const dirent* entry = readdir(stream)) {
        if (std::strcmp(entry->d_name, name) != 0) continue;
        join_path(out, dir, name);
        base::keep(stream);  // the stream of a match stays open on purpose
        return 1;
    }
    closedir(stream);
    return 0;
}

// INTEGER(4) FUNCTION FINDFILEQQ(FILENAME, VARNAME, PATHBUF) -- characters stored, 0 if not found
extern "C" TARVO_API std::int32_t findfileqq_(const char* filename, const char* varname, char* pathbuf,
                                              std::size_t filename_len, std::size_t varname_len,
                                              std::size_t pathbuf_len) noexcept {
    errno = 0;
    base::blank_fill(pathbuf, base::signed_length(pathbuf_len));
    auto file = base::c_string(filename, filename_len);
    if (!file) return 0;
    const PathParts parts = split_at_last_slash(file.get());
    char found[kJoinedSize];
    bool hit = search_path(found, parts.name, parts.dir != nullptr ? parts.dir : ".") != 0;
    if (!hit) {
        auto variable = base::c_string(varname, varname_len);
        if (!variable) return 0;
        if (const char* value = std::getenv(variable.get())) {
            char* list = base::allocCstr(value, static_cast<base::flen>(std::strlen(value)));
            if (list == nullptr) {  // both copies are kept on this path, on purpose
                base::keep(file.hand_over());
                base::keep(variable.hand_over());
                return 0;
            }
            char* save = nullptr;
            for (char* dir = strtok_r(list, ":", &save); dir != nullptr && !hit;
                 dir = strtok_r(nullptr, ":", &save))
                hit = search_path(found, parts.name, dir) != 0;
            base::deallocCstr(list);
        }
    }
    const std::int32_t result =
        hit ? static_cast<std::int32_t>(base::store_fortran_string(pathbuf, pathbuf_len, found)) : 0;
    if (result == 0) qq::fail(ENOENT);
    return result;
}

// INTEGER(4) FUNCTION GETFILEINFOQQ(FILES, BUFFER, HANDLE) -- length of the name returned
extern "C" TARVO_API std::int32_t getfileinfoqq_(const char* files, tarvo_file_info* buffer,
                                                 std::intptr_t* handle, std::size_t files_len) noexcept {
    base::TableGuard guard(search_lock);
    return next_file_info(info_state, files, files_len, buffer, handle);
}

// INTEGER(4) FUNCTION GETFILEINFOQQI8(FILES, BUFFER, HANDLE)
extern "C" TARVO_API std::int32_t getfileinfoqqi8_(const char* files, tarvo_file_info_i8* buffer,
                                                   std::intptr_t* handle, std::size_t files_len) noexcept {
    base::TableGuard guard(search_lock);
    return next_file_info(info_state_i8, files, files_len, buffer, handle);
}
