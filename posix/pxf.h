// The recurring steps of the PXF routines: reading a PXF name or a path, resolving a structure handle to an instance of the expected type, and storing a
// text result with the ETRUNC rule.
#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "base/fstring.h"
#include "posix/instances.h"
#include "posix/report.h"

namespace posix {

// A constant, structure-type or field name as a Fortran caller gives it: the characters
// before the first blank, at most the hidden length. A NUL ends it too, as it would end
// a terminated copy. Names are compared where they stand, so no lookup ever allocates.
struct Name {
    const char* text;
    std::size_t length;
};
Name pxf_name(const char* s, std::size_t hidden_length) noexcept;

// ASCII case folding, the comparison of every PXF name.
constexpr char fold(char c) noexcept { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
// True when the name equals the whole terminated text, ignoring case. A name holds no NUL
// (pxf_name ends it there), so the text's terminator never matches one of its characters.
// Inline: the field and type lookups call it once per table row.
inline bool same_name(Name name, const char* text) noexcept {
    for (std::size_t i = 0; i < name.length; ++i)
        if (fold(name.text[i]) != fold(text[i])) return false;
    return text[name.length] == '\0';
}

// A path as a terminated heap copy, owned for the length of a scope. A copy that cannot
// be made is empty and leaves errno set: EINVAL for a null address or a negative length,
// ENOMEM when no memory is left.
using Path = base::Owned<char>;
// Exactly `length` characters of `text` (a NUL among them ends the path the host sees).
Path path_copy(const char* text, base::flen length) noexcept;
// The path argument of the PXF path routines: with ILEN not 0, the first ILEN characters
// of PATH, whatever its declared length; with ILEN 0, the declared length (its low 32
// bits) less trailing white space by the private classifier, but never below one
// character, so an all-blank PATH is a path of one blank.
Path path_arg(const char* path, const std::int32_t* ilen, std::size_t path_len) noexcept;

// Runs a host call on the path argument (path_arg) and reports its result: IERROR is
// errno when no copy can be made or the call returns -1, else 0.
template <class Call>
void on_path(const char* path, const std::int32_t* ilen, std::size_t path_len, std::int32_t* ierror,
             Call call) noexcept {
    const Path p = path_arg(path, ilen, path_len);
    if (!p) return report(ierror, errno);
    report_host(ierror, call(p.c_str()));
}

// The instance an allocatable handle names, whatever its type, or null when the handle
// names nothing (IERROR = ENOHANDLE, errno = EINVAL).
void* resolve_handle(const std::int32_t* handle, std::int32_t* ierror) noexcept;

// The instance of type I that JHANDLE names. Null after reporting when the handle names
// nothing (IERROR = ENOHANDLE, errno = EINVAL) or an instance of another type (IERROR
// and errno = EINVAL). IERROR is left alone on success.
template <class I>
I* resolve_instance(const std::int32_t* handle, std::int32_t* ierror) noexcept {
    void* block = resolve_handle(handle, ierror);
    if (block == nullptr) return nullptr;
    if (tag_of(block) != I::kTag) {
        report(ierror, EINVAL, EINVAL);
        return nullptr;
    }
    return static_cast<I*>(block);
}

// Stores a text of `length` bytes into a Fortran CHARACTER result: ILEN = the full length;
// when it exceeds the variable, IERROR = ETRUNC, errno = ERANGE and the variable receives
// the first characters; otherwise the text padded with blanks and IERROR = 0.
void store_text(const char* text, std::size_t length, char* value, std::size_t value_len,
                std::int32_t* ilen, std::int32_t* ierror) noexcept;

}  // namespace posix
