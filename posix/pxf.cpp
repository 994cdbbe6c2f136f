// The steps every PXF routine shares: names, IERROR, handles, text results.
#include "posix/pxf.h"

#include <cstring>

#include "frame/handles.h"
#include "frame/strings.h"

namespace posix {

Name pxf_name(const char* s, std::size_t hidden_length) noexcept {
    const frame::flen limit = frame::signed_length(hidden_length);
    std::size_t n = 0;
    if (s != nullptr)
        while (static_cast<frame::flen>(n) < limit && s[n] != ' ' && s[n] != '\0') ++n;
    return {s, n};
}

bool same_name(Name name, const char* text) noexcept {
    for (std::size_t i = 0; i < name.length; ++i)
        if (text[i] == '\0' || fold(name.text[i]) != fold(text[i])) return false;
    return text[name.length] == '\0';
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
