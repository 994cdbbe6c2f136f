// PXF field access: the fields of structure instances read and written by name, and
// procedures turned into handles and called back through them.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/export.h"
#include "frame/handles.h"
#include "base/fstring.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

// The field kinds an accessor reaches; any other field is ENONAME to it.
enum class Reach { integer, array, text, member };

constexpr bool reaches(FieldKind kind, Reach reach) {
    switch (reach) {
        case Reach::integer: return kind == FieldKind::integer;
        case Reach::array: return kind == FieldKind::integer_array;
        case Reach::text: return kind == FieldKind::inline_text || kind == FieldKind::owned_text;
        case Reach::member: return kind == FieldKind::member_list;
    }
    return false;
}

struct Target {
    void* instance;
    const Field* field;
    char* at() const { return static_cast<char*>(instance) + field->offset; }
};

// The common start of every accessor: resolve JHANDLE, then find COMPNAME among the fields
// of the instance's type that this accessor reaches. False after reporting.
bool find_field(const std::int32_t* jhandle, const char* compname, std::size_t compname_len, Reach reach,
                std::int32_t* ierror, Target& target) noexcept {
    void* instance = resolve_handle(jhandle, ierror);
    if (instance == nullptr) return false;
    const Name name = pxf_name(compname, compname_len);
    *ierror = 0;
    if (const StructType* type = type_of(instance))
        for (const Field& field : type->fields)
            if (reaches(field.kind, reach) && same_name(name, field.name)) {
                target = {instance, &field};
                return true;
            }
    report(ierror, TARVO_ENONAME, EINVAL);
    return false;
}

// --- integers: a field is a run of 4- or 8-byte signed elements ------------------------

constexpr std::size_t kElement = 4;  // the width of an array field's elements

std::int64_t load(const char* at, std::size_t width) noexcept {
    if (width == 8) {
        std::int64_t v;
        std::memcpy(&v, at, 8);
        return v;
    }
    std::int32_t v;
    std::memcpy(&v, at, 4);
    return v;
}

void store(char* at, std::size_t width, std::int64_t value) noexcept {
    if (width == 8) return static_cast<void>(std::memcpy(at, &value, 8));
    const auto v = static_cast<std::int32_t>(value);
    std::memcpy(at, &v, 4);
}

constexpr bool fits(std::int64_t value, std::size_t width) {
    return width == 8 || (value >= INT32_MIN && value <= INT32_MAX);
}

// Copies `count` elements from element `first` on into VALUE; ERANGE (VALUE untouched from
// that element on) when one does not fit the caller's kind.
template <class T>
void get_elements(const Target& target, std::size_t width, std::size_t first, std::size_t count, T* values,
                  std::int32_t* ierror) noexcept {
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t v = load(target.at() + (first + i) * width, width);
        if (!fits(v, sizeof(T))) return report(ierror, ERANGE, ERANGE);
        values[i] = static_cast<T>(v);
    }
}

// Stores `count` elements of VALUE from element `first` on; when one does not fit the
// field, ERANGE and nothing is stored.
template <class T>
void set_elements(const Target& target, std::size_t width, std::size_t first, std::size_t count, const T* values,
                  std::int32_t* ierror) noexcept {
    for (std::size_t i = 0; i < count; ++i)
        if (!fits(values[i], width)) return report(ierror, ERANGE, ERANGE);
    for (std::size_t i = 0; i < count; ++i) store(target.at() + (first + i) * width, width, values[i]);
}

std::size_t elements_of(const Target& target) noexcept { return target.field->width / kElement; }

// IALEN of the array forms: above the field's length it is cut to that length with
// EARRAYLEN, and the transfer goes on; below 1 nothing moves.
std::size_t array_length(const Target& target, std::int32_t* ialen, std::int32_t* ierror) noexcept {
    const auto count = static_cast<std::int32_t>(elements_of(target));
    if (*ialen > count) {
        *ialen = count;
        *ierror = TARVO_EARRAYLEN;
    }
    return *ialen < 1 ? 0 : static_cast<std::size_t>(*ialen);
}

// INDEX of the element forms, counted from 1: false (EARRAYLEN, errno unchanged) outside 1..count.
bool index_within(std::int32_t index, std::int64_t count, std::int32_t* ierror) noexcept {
    if (index >= 1 && index <= count) return true;
    report(ierror, TARVO_EARRAYLEN);
    return false;
}

template <class T>
void get_integer(const std::int32_t* jhandle, const char* compname, std::size_t compname_len, T* value,
                 std::int32_t* ierror) noexcept {
    Target target;
    if (find_field(jhandle, compname, compname_len, Reach::integer, ierror, target))
        get_elements(target, target.field->width, 0, 1, value, ierror);
}

template <class T>
void set_integer(const std::int32_t* jhandle, const char* compname, std::size_t compname_len, const T* value,
                 std::int32_t* ierror) noexcept {
    Target target;
    if (find_field(jhandle, compname, compname_len, Reach::integer, ierror, target))
        set_elements(target, target.field->width, 0, 1, value, ierror);
}

template <class T>
void get_array(const std::int32_t* jhandle, const char* compname, std::size_t compname_len, T* values,
               std::int32_t* ialen, std::int32_t* ierror) noexcept {
    Target target;
    if (find_field(jhandle, compname, compname_len, Reach::array, ierror, target))
        get_elements(target, kElement, 0, array_length(target, ialen, ierror), values, ierror);
}

template <class T>
void set_array(const std::int32_t* jhandle, const char* compname, std::size_t compname_len, const T* values,
               std::int32_t* ialen, std::int32_t* ierror) noexcept {
    Target target;
    if (find_field(jhandle, compname, compname_len, Reach::array, ierror, target))
        set_elements(target, kElement, 0, array_length(target, ialen, ierror), values, ierror);
}

// --- texts ------------------------------------------------------------------------------

struct Text {
    const char* text;
    std::size_t length;
};

Text text_of(const Target& target) noexcept {
    if (target.field->kind == FieldKind::inline_text) return {target.at(), strnlen(target.at(), target.field->width)};
    const auto& owned = *reinterpret_cast<const OwnedText*>(target.at());
    return {owned.text, owned.length};
}

// The characters of VALUE that pxfstrset_ stores: the first ILEN, or VALUE less its
// trailing blanks when ILEN is 0. -1 for an ILEN below 0 or beyond VALUE.
base::flen length_to_set(const char* value, std::size_t value_len, std::int32_t ilen) noexcept {
    const base::flen declared = value != nullptr ? base::signed_length(value_len) : 0;
    if (ilen == 0) return base::trimmed_length(value, declared);
    return ilen < 0 || ilen > declared ? -1 : ilen;
}

void set_text(const Target& target, const char* value, std::size_t length, std::int32_t* ierror) noexcept {
    if (target.field->kind == FieldKind::owned_text) {
        if (!copy_text(*reinterpret_cast<OwnedText*>(target.at()), value, length)) report(ierror, errno);
        return;
    }
    // An inline field keeps room for its terminator; a longer text is cut, as on reading.
    const std::size_t room = target.field->width - 1u;
    if (length > room) {
        length = room;
        report(ierror, TARVO_ETRUNC, ERANGE);
    }
    std::memset(target.at(), 0, target.field->width);
    if (length > 0) std::memcpy(target.at(), value, length);
}

}  // namespace
}  // namespace posix

using posix::Reach;
using posix::Target;

// SUBROUTINE PXFINTGET(JHANDLE, COMPNAME, VALUE, IERROR)
extern "C" TARVO_API void pxfintget_(const std::int32_t* jhandle, const char* compname, std::int32_t* value,
                                     std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::get_integer(jhandle, compname, compname_len, value, ierror);
}

// SUBROUTINE PXFINTSET(JHANDLE, COMPNAME, VALUE, IERROR)
extern "C" TARVO_API void pxfintset_(const std::int32_t* jhandle, const char* compname, const std::int32_t* value,
                                     std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::set_integer(jhandle, compname, compname_len, value, ierror);
}

// SUBROUTINE PXFINT8GET(JHANDLE, COMPNAME, VALUE, IERROR) -- VALUE INTEGER(8)
extern "C" TARVO_API void pxfint8get_(const std::int32_t* jhandle, const char* compname, std::int64_t* value,
                                      std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::get_integer(jhandle, compname, compname_len, value, ierror);
}

// SUBROUTINE PXFINT8SET(JHANDLE, COMPNAME, VALUE, IERROR) -- VALUE INTEGER(8)
extern "C" TARVO_API void pxfint8set_(const std::int32_t* jhandle, const char* compname, const std::int64_t* value,
                                      std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::set_integer(jhandle, compname, compname_len, value, ierror);
}

// SUBROUTINE PXFAINTGET(JHANDLE, COMPNAME, VALUE, IALEN, IERROR)
extern "C" TARVO_API void pxfaintget_(const std::int32_t* jhandle, const char* compname, std::int32_t* value,
                                      std::int32_t* ialen, std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::get_array(jhandle, compname, compname_len, value, ialen, ierror);
}

// SUBROUTINE PXFAINTSET(JHANDLE, COMPNAME, VALUE, IALEN, IERROR)
extern "C" TARVO_API void pxfaintset_(const std::int32_t* jhandle, const char* compname, const std::int32_t* value,
                                      std::int32_t* ialen, std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::set_array(jhandle, compname, compname_len, value, ialen, ierror);
}

// SUBROUTINE PXFAINT8GET(JHANDLE, COMPNAME, VALUE, IALEN, IERROR) -- VALUE INTEGER(8)
extern "C" TARVO_API void pxfaint8get_(const std::int32_t* jhandle, const char* compname, std::int64_t* value,
                                       std::int32_t* ialen, std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::get_array(jhandle, compname, compname_len, value, ialen, ierror);
}

// SUBROUTINE PXFAINT8SET(JHANDLE, COMPNAME, VALUE, IALEN, IERROR) -- VALUE INTEGER(8)
extern "C" TARVO_API void pxfaint8set_(const std::int32_t* jhandle, const char* compname, const std::int64_t* value,
                                       std::int32_t* ialen, std::int32_t* ierror, std::size_t compname_len) noexcept {
    posix::set_array(jhandle, compname, compname_len, value, ialen, ierror);
}

// SUBROUTINE PXFEINTGET(JHANDLE, COMPNAME, INDEX, VALUE, IERROR)
extern "C" TARVO_API void pxfeintget_(const std::int32_t* jhandle, const char* compname, const std::int32_t* index,
                                      std::int32_t* value, std::int32_t* ierror, std::size_t compname_len) noexcept {
    Target target;
    if (posix::find_field(jhandle, compname, compname_len, Reach::array, ierror, target) &&
        posix::index_within(*index, static_cast<std::int64_t>(posix::elements_of(target)), ierror))
        posix::get_elements(target, posix::kElement, static_cast<std::size_t>(*index - 1), 1, value, ierror);
}

// SUBROUTINE PXFEINTSET(JHANDLE, COMPNAME, INDEX, VALUE, IERROR)
extern "C" TARVO_API void pxfeintset_(const std::int32_t* jhandle, const char* compname, const std::int32_t* index,
                                      const std::int32_t* value, std::int32_t* ierror,
                                      std::size_t compname_len) noexcept {
    Target target;
    if (posix::find_field(jhandle, compname, compname_len, Reach::array, ierror, target) &&
        posix::index_within(*index, static_cast<std::int64_t>(posix::elements_of(target)), ierror))
        posix::set_elements(target, posix::kElement, static_cast<std::size_t>(*index - 1), 1, value, ierror);
}

// SUBROUTINE PXFSTRGET(JHANDLE, COMPNAME, VALUE, ILEN, IERROR)
extern "C" TARVO_API void pxfstrget_(const std::int32_t* jhandle, const char* compname, char* value,
                                     std::int32_t* ilen, std::int32_t* ierror, std::size_t compname_len,
                                     std::size_t value_len) noexcept {
    Target target;
    if (!posix::find_field(jhandle, compname, compname_len, Reach::text, ierror, target)) return;
    const posix::Text text = posix::text_of(target);
    posix::store_text(text.text, text.length, value, value_len, ilen, ierror);
}

// SUBROUTINE PXFSTRSET(JHANDLE, COMPNAME, VALUE, ILEN, IERROR)
extern "C" TARVO_API void pxfstrset_(const std::int32_t* jhandle, const char* compname, const char* value,
                                     const std::int32_t* ilen, std::int32_t* ierror, std::size_t compname_len,
                                     std::size_t value_len) noexcept {
    Target target;
    if (!posix::find_field(jhandle, compname, compname_len, Reach::text, ierror, target)) return;
    const base::flen length = posix::length_to_set(value, value_len, *ilen);
    if (length < 0) return posix::report(ierror, EINVAL, EINVAL);
    posix::set_text(target, value, static_cast<std::size_t>(length), ierror);
}

// SUBROUTINE PXFESTRGET(JHANDLE, COMPNAME, INDEX, VALUE, ILEN, IERROR) -- gr_mem, INDEX from 1
extern "C" TARVO_API void pxfestrget_(const std::int32_t* jhandle, const char* compname, const std::int32_t* index,
                                      char* value, std::int32_t* ilen, std::int32_t* ierror,
                                      std::size_t compname_len, std::size_t value_len) noexcept {
    Target target;
    if (!posix::find_field(jhandle, compname, compname_len, Reach::member, ierror, target)) return;
    const auto& group = *static_cast<const posix::GroupInstance*>(target.instance);
    // A gr_nmem set above the members held does not reach past them.
    if (!posix::index_within(*index, std::min(group.gr_nmem, group.members), ierror)) return;
    const char* member = group.gr_mem[*index - 1];
    if (member == nullptr) member = "";
    posix::store_text(member, std::strlen(member), value, value_len, ilen, ierror);
}

// SUBROUTINE PXFGETSUBHANDLE(SUB, JHANDLE, IERROR)
extern "C" TARVO_API void pxfgetsubhandle_(void (*sub)(), std::int32_t* jhandle, std::int32_t* ierror) noexcept {
    *jhandle = sub != nullptr ? frame::get_handle_from_static_address(reinterpret_cast<void*>(sub)) : 0;
    if (*jhandle == 0) return posix::report(ierror, TARVO_ENOHANDLE, EINVAL);
    *ierror = 0;
}

// SUBROUTINE PXFCALLSUBHANDLE(JHANDLE, IVAL, IERROR) -- the procedure's result is returned
extern "C" TARVO_API std::int32_t pxfcallsubhandle_(const std::int32_t* jhandle, std::int32_t* ival,
                                                    std::int32_t* ierror) noexcept {
    void* address = frame::get_address_from_handle(*jhandle, frame::HandleTable::fixed);
    // The reserved slots of the table read as the all-ones address: nothing to call there.
    if (address == nullptr || address == reinterpret_cast<void*>(~std::uintptr_t{0})) {
        posix::report(ierror, TARVO_ENOHANDLE, EINVAL);
        return 0;
    }
    const std::int32_t result = reinterpret_cast<std::int32_t (*)(std::int32_t*)>(address)(ival);
    *ierror = 0;
    return result;
}

// The accessors of kinds no structure has: every one answers ENONAME, whatever it is given.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
#define TARVO_DEFINE_STUB(name, form, T)                                       \
    extern "C" TARVO_API void name(TARVO_PXF_FORM_##form(T)) noexcept {        \
        posix::report(ierror, TARVO_ENONAME, EINVAL);                          \
    }
TARVO_PXF_STUB_ACCESSORS(TARVO_DEFINE_STUB)
#undef TARVO_DEFINE_STUB
#pragma GCC diagnostic pop
