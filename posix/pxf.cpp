// The steps every PXF routine shares: names, IERROR, handles, text results.
#include "posix/pxf.h"

#include <cstring>

#include "frame/handles.h"
#include "frame/memory.h"
#include "frame/strings.h"

namespace posix {

Name pxf_name(const char* s, std::size_t hidden_length) noexcept {
    const frame::flen limit = frame::signed_length(hidden_length);
    std::size_t n = 0;
    if (s != nullptr)
        while (static_cast<frame::flen>(n) < limit && s[n] != ' ' && s[n] != '\0') ++n;
    return {s, n};
}

namespace {
// The ILEN 0 rule: the declared length less trailing white space, at least one character.
frame::flen declared_path_length(const char* path, std::size_t path_len) noexcept {
    frame::flen n = frame::low32_length(path_len);
    if (n <= 0 || path == nullptr) return 0;
    // Blanks, by far the usual padding, are white space in every locale: they are passed
    // over eight at a time, and one at a time without asking the classifier.
    constexpr std::uint64_t kEightBlanks = 0x2020202020202020;
    for (std::uint64_t word; n > 8; n -= 8) {
        std::memcpy(&word, path + n - 8, sizeof word);
        if (word != kEightBlanks) break;
    }
    while (n > 1 && (path[n - 1] == ' ' || frame::isspace(static_cast<unsigned char>(path[n - 1])))) --n;
    return n;
}
}  // namespace

Path::Path(const char* text, frame::flen length) noexcept : p_(nullptr) {
    if (text == nullptr || length < 0) {
        errno = EINVAL;
        return;
    }
    p_ = static_cast<char*>(frame::allocate(static_cast<std::size_t>(length) + 1));
    if (p_ == nullptr) {
        errno = ENOMEM;
        return;
    }
    std::memcpy(p_, text, static_cast<std::size_t>(length));
    p_[length] = '\0';
}

Path::Path(const char* path, const std::int32_t* ilen, std::size_t path_len) noexcept
    : Path(path, ilen != nullptr && *ilen != 0 ? *ilen : declared_path_length(path, path_len)) {}

Path::~Path() { frame::release(p_); }

void* resolve_handle(const std::int32_t* handle, std::int32_t* ierror) noexcept {
    void* block = handle != nullptr ? frame::get_address_from_handle(*handle, frame::HandleTable::allocatable)
                                    : nullptr;
    if (block == nullptr) report(ierror, TARVO_ENOHANDLE, EINVAL);
    return block;
}

void store_text(const char* text, std::size_t length, char* value, std::size_t value_len, std::int32_t* ilen,
                std::int32_t* ierror) noexcept {
    *ilen = static_cast<std::int32_t>(length);
    const frame::flen room = value != nullptr ? frame::signed_length(value_len) : 0;
    if (static_cast<frame::flen>(length) > room) {
        if (room > 0) std::memcpy(value, text, static_cast<std::size_t>(room));
        report(ierror, TARVO_ETRUNC, ERANGE);
        return;
    }
    if (length > 0) std::memcpy(value, text, length);
    frame::blank_fill(value + length, room - static_cast<frame::flen>(length));
    *ierror = 0;
}

}  // namespace posix
