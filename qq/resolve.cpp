// Path resolution: the one place where the QQ routines make a name absolute and canonical,
// also for names that do not exist (their existing leading part is canonicalised and the
// rest appended as written, then "." and ".." are removed textually).
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace qq {
namespace {

// The working directory, asked for at most once per resolution, and only when a relative
// name needs it: every relative name in one resolution is taken against the same answer.
class WorkingDirectory {
public:
    const char* get() noexcept {
        if (!asked_) {
            asked_ = true;
            known_ = getcwd(text_, sizeof text_) != nullptr;
        }
        return known_ ? text_ : nullptr;
    }

    // The last relative name that did not resolve: a name that fails as a whole is walked
    // again as its own leading part, and the answer cannot differ within one resolution.
    bool failed_before(const char* path) const noexcept { return failed_[0] != '\0' && std::strcmp(path, failed_) == 0; }
    void remember_failure(const char* path) noexcept { copy_bounded(failed_, path, sizeof failed_ - 1); }

private:
    char text_[PATH_MAX];
    char failed_[PATH_MAX] = {};
    bool asked_ = false;
    bool known_ = false;
};

// After a component: the rest is "/", "/." or "/.." (with any number of slashes), or has a
// ".." next, so that the component must be a directory.
bool needs_directory(const char* rest) noexcept {
    while (*rest == '/') {
        while (*rest == '/') ++rest;
        if (*rest == '\0') return true;
        if (*rest++ != '.') return false;
        if (*rest == '\0' || (*rest == '.' && (rest[1] == '\0' || rest[1] == '/'))) return true;
    }
    return false;
}

// Drops the last component of a canonical name ("/a/b" to "/a", "/a" to "/").
std::size_t drop_last(char* name, std::size_t used) noexcept {
    while (used > 1 && name[used - 1] != '/') --used;
    if (used > 1) --used;
    name[used] = '\0';
    return used;
}

constexpr int kLinkLimit = 40;
enum class Walk { done, failed, too_long };

// What realpath makes of a relative name, walked from a canonical directory instead of a
// new query of the working directory: each component is read with readlink, a link's text
// replaces it (at most kLinkLimit times), "." and ".." act on the canonical result, and a
// component followed by "/", "/." or "/.." must be a directory.
Walk walk_from(const char* base, const char* path, char* out) noexcept {
    char rest[PATH_MAX], next[PATH_MAX], link[PATH_MAX];
    std::size_t used = std::strlen(base);
    if (used >= PATH_MAX || std::strlen(path) >= PATH_MAX) return Walk::too_long;
    std::memcpy(out, base, used + 1);
    std::strcpy(rest, path);
    const char* p = rest;
    for (int links = 0;;) {
        while (*p == '/') ++p;
        if (*p == '\0') return Walk::done;
        const char* end = p;
        while (*end != '\0' && *end != '/') ++end;
        const auto length = static_cast<std::size_t>(end - p);
        if (length == 1 && p[0] == '.') {
            p = end;
            continue;
        }
        if (length == 2 && p[0] == '.' && p[1] == '.') {
            used = drop_last(out, used);
            p = end;
            continue;
        }
        const std::size_t start = used;
        if (out[used - 1] != '/') out[used++] = '/';
        if (used + length >= PATH_MAX) return Walk::too_long;
        std::memcpy(out + used, p, length);
        used += length;
        out[used] = '\0';
        const ssize_t n = readlink(out, link, sizeof link);
        if (n >= 0) {
            const std::size_t tail = std::strlen(end);
            if (++links > kLinkLimit) return Walk::failed;
            if (static_cast<std::size_t>(n) + tail >= PATH_MAX) return Walk::too_long;
            std::memcpy(next, link, static_cast<std::size_t>(n));
            std::memcpy(next + n, end, tail + 1);
            std::memcpy(rest, next, static_cast<std::size_t>(n) + tail + 1);
            p = rest;
            used = link[0] == '/' ? 1 : (start > 1 ? start : 1);
            out[used] = '\0';
            if (used == 1) out[0] = '/';
            continue;
        }
        struct stat st {};
        if (needs_directory(end) ? !(stat(out, &st) == 0 && S_ISDIR(st.st_mode)) : errno != EINVAL)
            return Walk::failed;
        p = end;
    }
}

// realpath, a relative name taken against the working directory already known. Without a
// known directory, or for a name too long to walk here, realpath gets the name as it is.
char* real_path(const char* path, char* out, WorkingDirectory& cwd) noexcept {
    if (path[0] == '/' || path[0] == '\0') return realpath(path, out);
    const char* dir = cwd.get();
    if (dir == nullptr) return realpath(path, out);
    if (cwd.failed_before(path)) return nullptr;
    switch (walk_from(dir, path, out)) {
    case Walk::done: return out;
    case Walk::failed: cwd.remember_failure(path); return nullptr;
    case Walk::too_long: break;
    }
    return realpath(path, out);
}

// Appends at most 1024 - strlen(resolved) characters of text.
void append(char* resolved, const char* text) noexcept {
    const std::size_t used = std::strlen(resolved);
    if (used < kDirMax) copy_bounded(resolved + used, text, kDirMax - used);
}

// Adds a component to a canonical name without doubling a "/".
void add_component(char* canonical, const char* component, std::size_t length) noexcept {
    std::size_t used = std::strlen(canonical);
    if (used > 0 && canonical[used - 1] != '/' && used < PATH_MAX - 1) canonical[used++] = '/';
    const std::size_t room = PATH_MAX - 1 - used;
    std::memcpy(canonical + used, component, length < room ? length : room);
    canonical[used + (length < room ? length : room)] = '\0';
}

// When a name does not resolve: the canonical form of its longest leading part that does,
// followed by the component that failed, whatever the reason (missing, not a directory,
// a symbolic-link loop, no permission). A link that leads nowhere is kept by its own name.
void resolve_leading_part(const char* path, char* canonical, WorkingDirectory& cwd) noexcept {
    char prefix[PATH_MAX];
    char trial[PATH_MAX];
    const bool absolute = path[0] == '/';
    if (real_path(absolute ? "/" : ".", canonical, cwd) == nullptr) canonical[0] = '\0';
    std::size_t component = absolute ? 1 : 0;
    for (std::size_t i = component;; ++i) {
        if (path[i] != '/' && path[i] != '\0') continue;
        if (i > component) {
            const bool fits = i < PATH_MAX;
            if (fits) {
                std::memcpy(prefix, path, i);
                prefix[i] = '\0';
            }
            if (!fits || real_path(prefix, trial, cwd) == nullptr) {
                add_component(canonical, path + component, i - component);
                return;
            }
            std::strcpy(canonical, trial);
        }
        if (path[i] == '\0') return;
        component = i + 1;
    }
}

// realpath with a PATH_MAX scratch buffer, its result cut to 1024 characters in resolved.
// On failure resolved holds the text described at resolve_leading_part.
bool resolve_existing(const char* path, char* resolved, WorkingDirectory& cwd) noexcept {
    char canonical[PATH_MAX];
    const bool ok = real_path(path, canonical, cwd) != nullptr;
    if (!ok) resolve_leading_part(path, canonical, cwd);
    copy_bounded(resolved, canonical, kDirMax);
    return ok;
}

// The working directory (at most 1024 bytes), "/" and the name. A failing query leaves
// what the host put in the buffer, and the rest works on that text.
void working_directory_and(char* resolved, const char* path, WorkingDirectory& cwd) noexcept {
    resolved[0] = '\0';
    resolved[kDirMax] = '\0';
    const char* dir = cwd.get();
    if (dir != nullptr && std::strlen(dir) < kDirMax) std::strcpy(resolved, dir);
    else (void)getcwd(resolved, kDirMax);
    const std::size_t n = std::strlen(resolved);
    resolved[n] = '/';
    resolved[n + 1] = '\0';
    append(resolved, path);
}

// Removes "." and ".." components textually. "/a/.." stays "/a": the established rule,
// which callers' expected results depend on.
void normalise(char* resolved) noexcept {
    char* cursor = resolved;
    for (;;) {
        char* dot = std::strstr(cursor, "/.");
        if (dot == nullptr) return;
        const char* after = dot + 2;
        if (*after == '\0') {  // "/." at the end; when nothing precedes it, the root remains
            dot[dot == resolved ? 1 : 0] = '\0';
            return;
        }
        if (*after == '/') {  // "/./" becomes "/"
            std::memmove(dot + 1, after + 1, std::strlen(after + 1) + 1);
            cursor = dot;
            continue;
        }
        if (*after == '.' && (after[1] == '\0' || after[1] == '/')) {  // "/.." or "/../"
            const bool at_end = after[1] == '\0';
            *dot = '\0';
            char* previous = std::strrchr(resolved, '/');
            if (previous == nullptr) {
                std::strcpy(resolved, "/");
                return;
            }
            if (at_end) {
                if (previous == resolved) {
                    cursor = dot;
                    continue;
                }
                *previous = '\0';
                return;
            }
            std::memmove(previous + 1, after + 2, std::strlen(after + 2) + 1);
            cursor = previous;
            continue;
        }
        cursor = dot + 2;  // "/.name" and "/..name" are kept
    }
}

// After a leading part that resolved to "/" or nothing, the rest starts past its "/".
const char* rest_after(const char* slash, const char* resolved) noexcept {
    return std::strlen(resolved) <= 1 ? slash + 1 : slash;
}

}  // namespace
}  // namespace qq

using namespace qq;

extern "C" TARVO_API void __lodrik_resolve_unix_path(const char* path, char* resolved) noexcept {
    if (resolved == nullptr) return;
    if (path == nullptr) path = "";
    WorkingDirectory cwd;
    if (resolve_existing(path, resolved, cwd)) {
        const std::size_t n = std::strlen(resolved);
        if (path[0] != '\0' && path[std::strlen(path) - 1] == '/' && n >= 2 && n <= kDirMax)
            append(resolved, "/");
        return;
    }
    const char* slash = std::strchr(path, '/');
    if (slash == nullptr) {
        working_directory_and(resolved, path, cwd);
        normalise(resolved);
        return;
    }
    if (slash == path) {
        slash = std::strchr(path + 1, '/');
        if (slash == nullptr) {  // "/component": copied as it stands
            copy_bounded(resolved, path, kDirMax);
            return;
        }
    }
    char part[kDirMax + 1];
    int resolved_parts = 0;
    const char* rest = slash;
    for (;;) {
        const auto length = static_cast<std::size_t>(slash - path);
        // The bounded copy of a leading part ends the process when the part is too long:
        // the checked copy refuses to go on with a cut directory name.
        if (length > kDirMax) std::abort();
        std::memcpy(part, path, length);
        part[length] = '\0';
        resolved[0] = '\0';
        if (!resolve_existing(part, resolved, cwd)) break;
        ++resolved_parts;
        const char* next = slash[1] == '\0' ? nullptr : std::strchr(slash + 1, '/');
        if (next == nullptr) {
            rest = rest_after(slash, resolved);
            break;
        }
        slash = rest = next;
    }
    if (resolved_parts == 0) {
        if (path[0] == '/') copy_bounded(resolved, path, kDirMax);
        else working_directory_and(resolved, path, cwd);
    } else {
        append(resolved, rest);
    }
    normalise(resolved);
}
