// Path resolution: the one place where the QQ routines make a name absolute and canonical,
// also for names that do not exist (their existing leading part is canonicalised and the
// rest appended as written, then "." and ".." are removed textually).
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace qq {
namespace {

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
void resolve_leading_part(const char* path, char* canonical) noexcept {
    char prefix[PATH_MAX];
    char trial[PATH_MAX];
    const bool absolute = path[0] == '/';
    if (realpath(absolute ? "/" : ".", canonical) == nullptr) canonical[0] = '\0';
    std::size_t component = absolute ? 1 : 0;
    for (std::size_t i = component;; ++i) {
        if (path[i] != '/' && path[i] != '\0') continue;
        if (i > component) {
            const bool fits = i < PATH_MAX;
            if (fits) {
                std::memcpy(prefix, path, i);
                prefix[i] = '\0';
            }
            if (!fits || realpath(prefix, trial) == nullptr) {
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
bool resolve_existing(const char* path, char* resolved) noexcept {
    char canonical[PATH_MAX];
    const bool ok = realpath(path, canonical) != nullptr;
    if (!ok) resolve_leading_part(path, canonical);
    copy_bounded(resolved, canonical, kDirMax);
    return ok;
}

// The working directory (at most 1024 bytes), "/" and the name. A failing query leaves
// what the host put in the buffer, and the rest works on that text.
void working_directory_and(char* resolved, const char* path) noexcept {
    resolved[0] = '\0';
    resolved[kDirMax] = '\0';
    (void)getcwd(resolved, kDirMax);
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
        if (*after == '\0') {  // "/." at the end
            *dot = '\0';
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
    if (resolve_existing(path, resolved)) {
        const std::size_t n = std::strlen(resolved);
        if (path[0] != '\0' && path[std::strlen(path) - 1] == '/' && n >= 2 && n <= kDirMax)
            append(resolved, "/");
        return;
    }
    const char* slash = std::strchr(path, '/');
    if (slash == nullptr) {
        working_directory_and(resolved, path);
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
        if (!resolve_existing(part, resolved)) break;
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
        else working_directory_and(resolved, path);
    } else {
        append(resolved, rest);
    }
    normalise(resolved);
}
