// The steps every PXF routine shares: names, IERROR, handles, text results.
#include "posix/pxf.h"

#include <cstring>

#include "frame/handles.h"
#include "base/memory.h"
#include "base/fstring.h"

namespace posix {

Name pxf_name(const char* s, std::size_t hidden_length) noexcept {
    const base::flen limit = base::signed_length(hidden_length);
    std::size_t n = 0;
    if (s != nullptr)
        while (static_cast<base::flen>(n) < limit && s[n] != ' ' && s[n] != '\0') ++n;
    return {s, n};
}

namespace {
// The ILEN 0 rule: the declared length less trailing white space, at least one character.
base::flen declared_path_length(const char* path, std::size_t path_len) noexcept {
    base::flen n = base::low32_length(path_len);
    if (n <= 0 || path == nullptr) return 0;
    // Blanks, by far the usual padding, are white space in every locale: they are passed
    // over eight at a time, and one at a time without asking the classifier.
    constexpr std::uint64_t kEightBlanks = 0x2020202020202020;
    for (std::uint64_t word; n > 8; n -= 8) {
        std::memcpy(&word, path + n - 8, sizeof word);
        if (word != kEightBlanks) break;
    }
    while (n > 1 && (path[n - 1] == ' ' || base::isspace(static_cast<unsigned char>(path[n - 1])))) --n;
    return n;
}
}  // namespace

Path path_copy(const char* text, base::flen length) noexcept {
    if (text == nullptr || length < 0) {
        errno = EINVAL;
        return Path();
    }
    return base::c_copy(text, static_cast<std::size_t>(length));
}

Path path_arg(const char* path, const std::int32_t* ilen, std::size_t path_len) noexcept {
    return path_copy(path, ilen != nullptr && *ilen != 0 ? *ilen : declared_path_length(path, path_len));
}

void* resolve_handle(const std::int32_t* handle, std::int32_t* ierror) noexcept {
    void* block = handle != nullptr ? frame::get_address_from_handle(*handle, frame::HandleTable::allocatable)
                                    : nullptr;
    if (block == nullptr) report(ierror, TARVO_ENOHANDLE, EINVAL);
    return block;
}

void store_text(const char* text, std::size_t length, char* value, std::size_t value_len, std::int32_t* ilen,
                std::int32_t* ierror) noexcept {
    *ilen = static_cast<std::int32_t>(length);
    const base::flen room = value != nullptr ? base::signed_length(value_len) : 0;
    if (static_cast<base::flen>(length) > room) {
        if (room > 0) std::memcpy(value, text, static_cast<std::size_t>(room));
        report(ierror, TARVO_ETRUNC, ERANGE);
        return;
    }
    base::store(value, room, text, length);
    *ierror = 0;
}

}  // namespace posix
