// Steps shared by the QQ routines (which report failures through qq/report.h): path limits,
// splitting and joining names, and the wildcard rule.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "base/fstring.h"
#include "qq/report.h"
#include <tarvo/qq.h>

namespace qq {

constexpr std::size_t kDirMax = 1024;        // a directory, or a whole resolved name
constexpr std::size_t kNameMax = 255;        // one name within a directory
// The joined-name limit of the QQ routines; join_path uses at most 1281 bytes of it
// (1024 + "/" + 255 + terminator).
constexpr std::size_t kJoinedSize = 1283;
static_assert(kDirMax + 1 + kNameMax + 1 <= kJoinedSize);
// The buffer the resolver writes: a whole resolved name and its terminator.
constexpr std::size_t kResolvedSize = TARVO_RESOLVED_SIZE;
static_assert(kResolvedSize == kDirMax + 1);

// Cuts a name at its last "/" (overwritten by a terminator): the directory before it and
// the name after it. Without a "/", dir is null and name is the whole text.
struct PathParts {
    const char* dir;
    const char* name;
};
inline PathParts split_at_last_slash(char* text) noexcept {
    char* slash = std::strrchr(text, '/');
    if (slash == nullptr) return {nullptr, text};
    *slash = '\0';
    return {text, slash + 1};
}

// Copies at most `limit` characters of text into out and terminates it; the length copied.
inline std::size_t copy_bounded(char* out, const char* text, std::size_t limit) noexcept {
    const std::size_t n = strnlen(text, limit);
    std::memcpy(out, text, n);
    out[n] = '\0';
    return n;
}

// dir (at most 1024 characters), "/" and name (at most 255) into out (kJoinedSize bytes).
inline void join_path(char* out, const char* dir, const char* name) noexcept {
    const std::size_t n = copy_bounded(out, dir, kDirMax);
    out[n] = '/';
    copy_bounded(out + n + 1, name, kNameMax);
}

// 0 when name matches the wildcard pattern ("?" one character, "*" any run), else 1.
int patternMatch(const char* name, const char* pattern) noexcept;

}  // namespace qq
