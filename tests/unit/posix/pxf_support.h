// Calls of the structure and field routines as a Fortran caller makes them, returning IERROR.
#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "frame/handles.h"
#include "base/memory.h"
#include "posix/instances.h"
#include "support/support.h"
#include <tarvo/posix.h>

// Several results compared at once, read left to right (a braced list fixes the order), so a
// call's output arguments can follow the call: VALUES(get(h, f, v), v).
#define VALUES(...) (std::tuple{__VA_ARGS__})

namespace pxf_test {

// Stands for IERROR among the arguments given to ierror_of.
struct IerrorArgument {};
inline constexpr IerrorArgument kIerror{};

// ROUTINE(ARGS...) with kIerror standing for IERROR: the IERROR the routine stores.
template <class F, class... A>
std::int32_t ierror_of(F routine, A... args) {
    std::int32_t ierror = -99;
    const auto pass = [&ierror](auto arg) {
        if constexpr (std::is_same_v<decltype(arg), IerrorArgument>) return &ierror;
        else return arg;
    };
    routine(pass(args)...);
    return ierror;
}

inline std::int32_t create(const std::string& type, std::int32_t& handle) {
    return ierror_of(pxfstructcreate_, type.data(), &handle, kIerror, type.size());
}

inline std::int32_t free_instance(std::int32_t& handle) { return ierror_of(pxfstructfree_, &handle, kIerror); }

inline std::int32_t copy(const std::string& type, std::int32_t from, std::int32_t to) {
    return ierror_of(pxfstructcopy_, type.data(), &from, &to, kIerror, type.size());
}

// An instance for the length of a scope.
struct Instance {
    std::int32_t handle = 0;
    explicit Instance(const std::string& type) { EXPECT_EQ(create(type, handle), 0) << type; }
    ~Instance() { EXPECT_EQ(handle == 0 ? 0 : free_instance(handle), 0); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
};

// ROUTINE(HANDLE, FIELD, VALUE..., IERROR) with FIELD's hidden length.
template <class F, class... V>
std::int32_t field_call(F routine, std::int32_t handle, const std::string& field, V... value) {
    return ierror_of(routine, &handle, field.data(), value..., kIerror, field.size());
}

// The integer fields, in either kind.
inline std::int32_t get(std::int32_t handle, const std::string& field, std::int32_t& value) {
    return field_call(pxfintget_, handle, field, &value);
}
inline std::int32_t get(std::int32_t handle, const std::string& field, std::int64_t& value) {
    return field_call(pxfint8get_, handle, field, &value);
}
inline std::int32_t set(std::int32_t handle, const std::string& field, std::int32_t value) {
    return field_call(pxfintset_, handle, field, &value);
}
inline std::int32_t set(std::int32_t handle, const std::string& field, std::int64_t value) {
    return field_call(pxfint8set_, handle, field, &value);
}

inline std::int32_t get_text(std::int32_t handle, const std::string& field, tarvo_test::FString& value,
                             std::int32_t& ilen) {
    return ierror_of(pxfstrget_, &handle, field.data(), value.data(), &ilen, kIerror, field.size(), value.size());
}

inline std::int32_t set_text(std::int32_t handle, const std::string& field, const std::string& value,
                             std::int32_t ilen = 0) {
    return ierror_of(pxfstrset_, &handle, field.data(), value.data(), &ilen, kIerror, field.size(), value.size());
}

// A text read into VALUE: its first ILEN characters, or "<ierror>" when it could not be read.
inline std::string text_or_error(std::int32_t ierror, const tarvo_test::FString& value, const std::int32_t& ilen) {
    return ierror == 0 ? value.text.substr(0, static_cast<std::size_t>(ilen)) : "<" + std::to_string(ierror) + ">";
}

inline std::string text_of(std::int32_t handle, const std::string& field) {
    tarvo_test::FString value(4096);
    std::int32_t ilen = -1;
    return text_or_error(get_text(handle, field, value, ilen), value, ilen);
}

inline void* instance_of(std::int32_t handle) {
    return frame::get_address_from_handle(handle, frame::HandleTable::allocatable);
}

// Fills a "group" instance with a name and members, as the group lookups leave it.
inline void fill_group(std::int32_t handle, const std::vector<std::string>& members) {
    auto& group = *static_cast<posix::GroupInstance*>(instance_of(handle));
    ASSERT_EQ(set_text(handle, "gr_name", "staff"), 0);
    posix::release_members(group);
    group.gr_mem = static_cast<char**>(base::allocate_zeroed(members.size(), sizeof(char*)));
    group.members = group.gr_nmem = static_cast<std::int32_t>(members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
        posix::OwnedText text{};
        ASSERT_TRUE(posix::copy_text(text, members[i].data(), members[i].size()));
        group.gr_mem[i] = text.text;
    }
}

// Member INDEX of a "group" instance read into VALUE; the text alone, or "<ierror>".
inline std::int32_t member(std::int32_t handle, std::int32_t index, tarvo_test::FString& value, std::int32_t& ilen) {
    return ierror_of(pxfestrget_, &handle, "gr_mem", &index, value.data(), &ilen, kIerror, 6, value.size());
}
inline std::string member(std::int32_t handle, std::int32_t index) {
    tarvo_test::FString value(64);
    std::int32_t ilen = -1;
    return text_or_error(member(handle, index, value, ilen), value, ilen);
}

}  // namespace pxf_test
