// Calls of the structure and field routines as a Fortran caller makes them, returning IERROR.
#pragma once

#include <cstdint>
#include <string>

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

}  // namespace pxf_test
