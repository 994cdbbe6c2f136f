// Calls of the structure and field routines as a Fortran caller makes them, returning IERROR.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/handles.h"
#include "frame/memory.h"
#include "posix/instances.h"
#include "support/support.h"
#include <tarvo/posix.h>

namespace pxf_test {

inline std::int32_t create(const std::string& type, std::int32_t& handle) {
    std::int32_t ierror = -99;
    pxfstructcreate_(type.data(), &handle, &ierror, type.size());
    return ierror;
}

inline std::int32_t free_instance(std::int32_t& handle) {
    std::int32_t ierror = -99;
    pxfstructfree_(&handle, &ierror);
    return ierror;
}

inline std::int32_t copy(const std::string& type, std::int32_t from, std::int32_t to) {
    std::int32_t ierror = -99;
    pxfstructcopy_(type.data(), &from, &to, &ierror, type.size());
    return ierror;
}

// An instance for the length of a scope.
struct Instance {
    std::int32_t handle = 0;
    explicit Instance(const std::string& type) { EXPECT_EQ(create(type, handle), 0) << type; }
    ~Instance() {
        if (handle != 0) {
            EXPECT_EQ(free_instance(handle), 0);
        }
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
};

template <class T>
std::int32_t get(std::int32_t handle, const std::string& field, T& value) {
    std::int32_t ierror = -99;
    if constexpr (sizeof(T) == 8) pxfint8get_(&handle, field.data(), &value, &ierror, field.size());
    else pxfintget_(&handle, field.data(), &value, &ierror, field.size());
    return ierror;
}

template <class T>
std::int32_t set(std::int32_t handle, const std::string& field, T value) {
    std::int32_t ierror = -99;
    if constexpr (sizeof(T) == 8) pxfint8set_(&handle, field.data(), &value, &ierror, field.size());
    else pxfintset_(&handle, field.data(), &value, &ierror, field.size());
    return ierror;
}

inline std::int32_t get_text(std::int32_t handle, const std::string& field, tarvo_test::FString& value,
                             std::int32_t& ilen) {
    std::int32_t ierror = -99;
    pxfstrget_(&handle, field.data(), value.data(), &ilen, &ierror, field.size(), value.size());
    return ierror;
}

inline std::int32_t set_text(std::int32_t handle, const std::string& field, const std::string& value,
                             std::int32_t ilen = 0) {
    std::int32_t ierror = -99;
    pxfstrset_(&handle, field.data(), value.data(), &ilen, &ierror, field.size(), value.size());
    return ierror;
}

// The text a field holds, or "<ierror>" when it cannot be read.
inline std::string text_of(std::int32_t handle, const std::string& field) {
    tarvo_test::FString value(4096);
    std::int32_t ilen = -1;
    const std::int32_t ierror = get_text(handle, field, value, ilen);
    return ierror == 0 ? value.text.substr(0, static_cast<std::size_t>(ilen)) : "<" + std::to_string(ierror) + ">";
}

inline void* instance_of(std::int32_t handle) {
    return frame::get_address_from_handle(handle, frame::HandleTable::allocatable);
}

// Fills a "group" instance with a name and members, as the group lookups leave it.
inline void fill_group(std::int32_t handle, const std::vector<std::string>& members) {
    auto& group = *static_cast<posix::GroupInstance*>(instance_of(handle));
    ASSERT_EQ(set_text(handle, "gr_name", "staff"), 0);
    posix::release_members(group);
    group.gr_mem = static_cast<char**>(frame::allocate_zeroed(members.size(), sizeof(char*)));
    group.members = group.gr_nmem = static_cast<std::int32_t>(members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
        posix::OwnedText text{};
        ASSERT_TRUE(posix::copy_text(text, members[i].data(), members[i].size()));
        group.gr_mem[i] = text.text;
    }
}

// Member INDEX of a "group" instance read into a variable of `length` characters.
inline std::int32_t member(std::int32_t handle, std::int32_t index, tarvo_test::FString& value, std::int32_t& ilen) {
    std::int32_t ierror = -1;
    pxfestrget_(&handle, "gr_mem", &index, value.data(), &ilen, &ierror, 6, value.size());
    return ierror;
}
inline std::string member(std::int32_t handle, std::int32_t index) {
    tarvo_test::FString value(64);
    std::int32_t ilen = -1;
    const std::int32_t ierror = member(handle, index, value, ilen);
    return ierror == 0 ? value.trimmed() : "<" + std::to_string(ierror) + ">";
}

}  // namespace pxf_test
