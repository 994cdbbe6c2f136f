// PXF structure instances: create, copy and free, and the texts "group" and "passwd" own.
#include <cerrno>
#include <cstring>

#include "base/export.h"
#include "frame/handles.h"
#include "base/memory.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

namespace posix {

bool copy_text(OwnedText& owned, const char* text, std::size_t length) noexcept {
    base::Owned<char> copy = base::c_copy(text, length);
    if (!copy) return false;
    release_text(owned);
    owned = {copy.hand_over(), length};
    return true;
}

void release_text(OwnedText& owned) noexcept {
    base::release(owned.text);
    owned = {nullptr, 0};
}

void release_members(GroupInstance& group) noexcept {
    for (std::int32_t i = 0; group.gr_mem != nullptr && i < group.members; ++i) base::release(group.gr_mem[i]);
    base::release(group.gr_mem);
    group.gr_mem = nullptr;
    group.members = 0;
}

void release_owned(void* instance) noexcept {
    const StructType* type = type_of(instance);
    if (type == nullptr) return;
    for (const Field& field : type->fields) {
        void* at = static_cast<char*>(instance) + field.offset;
        if (field.kind == FieldKind::owned_text) release_text(*static_cast<OwnedText*>(at));
        if (field.kind == FieldKind::member_list) release_members(*static_cast<GroupInstance*>(instance));
    }
}

void store_stat(StatInstance& instance, const struct stat& host) noexcept {
    instance.st_mode = static_cast<std::int32_t>(host.st_mode);
    instance.st_uid = static_cast<std::int32_t>(host.st_uid);
    instance.st_gid = static_cast<std::int32_t>(host.st_gid);
    instance.st_ino = static_cast<std::int64_t>(host.st_ino);
    instance.st_dev = static_cast<std::int64_t>(host.st_dev);
    instance.st_nlink = static_cast<std::int64_t>(host.st_nlink);
    instance.st_size = host.st_size;
    instance.atime = host.st_atime;
    instance.mtime = host.st_mtime;
    instance.ctime = host.st_ctime;
}

void store_dirent(DirentInstance& instance, const struct dirent& host) noexcept {
    const std::size_t length = strnlen(host.d_name, sizeof instance.d_name - 1);
    std::memcpy(instance.d_name, host.d_name, length);
    std::memset(instance.d_name + length, 0, sizeof instance.d_name - length);
}

namespace {

// The type a caller names, or null.
const StructType* type_named(Name name) noexcept {
    for (const StructType& type : kStructTypes)
        if (same_name(name, type.name)) return &type;
    return nullptr;
}

bool copy_members(GroupInstance& to, const GroupInstance& from) noexcept {
    if (from.members <= 0) return true;
    to.gr_mem = static_cast<char**>(base::allocate_zeroed(static_cast<std::size_t>(from.members), sizeof(char*)));
    if (to.gr_mem == nullptr) {
        errno = ENOMEM;
        return false;
    }
    to.members = from.members;
    for (std::int32_t i = 0; i < from.members; ++i) {
        if (from.gr_mem[i] == nullptr) continue;
        OwnedText member{};
        if (!copy_text(member, from.gr_mem[i], std::strlen(from.gr_mem[i]))) return false;
        to.gr_mem[i] = member.text;
    }
    return true;
}

// The copy of pxfstructcopy_: every field, the owned texts as fresh copies. The target's
// old texts go first; when memory runs out the copy stops where it is, and whatever was
// not yet duplicated reads as empty.
bool copy_instance(void* to, const void* from, const StructType& type) noexcept {
    release_owned(to);
    std::memcpy(to, from, type.size);
    for (const Field& field : type.fields) {  // drop the pointers shared with `from`
        if (field.kind == FieldKind::owned_text)
            *reinterpret_cast<OwnedText*>(static_cast<char*>(to) + field.offset) = {nullptr, 0};
        if (field.kind == FieldKind::member_list) {
            static_cast<GroupInstance*>(to)->gr_mem = nullptr;
            static_cast<GroupInstance*>(to)->members = 0;
        }
    }
    for (const Field& field : type.fields) {
        if (field.kind == FieldKind::owned_text) {
            const auto& text = *reinterpret_cast<const OwnedText*>(static_cast<const char*>(from) + field.offset);
            auto& target = *reinterpret_cast<OwnedText*>(static_cast<char*>(to) + field.offset);
            if (text.text != nullptr && !copy_text(target, text.text, text.length)) return false;
        }
        if (field.kind == FieldKind::member_list &&
            !copy_members(*static_cast<GroupInstance*>(to), *static_cast<const GroupInstance*>(from)))
            return false;
    }
    return true;
}

}  // namespace
}  // namespace posix

// SUBROUTINE PXFSTRUCTCREATE(STRUCTNAME, JHANDLE, IERROR)
extern "C" TARVO_API void pxfstructcreate_(const char* structname, std::int32_t* jhandle, std::int32_t* ierror,
                                           std::size_t structname_len) noexcept {
    const posix::StructType* type = posix::type_named(posix::pxf_name(structname, structname_len));
    if (type == nullptr) return posix::report(ierror, TARVO_ENONAME);
    void* block = base::allocate_zeroed(1, type->size);
    if (block == nullptr) return posix::report(ierror, TARVO_ENOHANDLE);
    std::memcpy(block, &type->tag, sizeof type->tag);
    *jhandle = frame::get_handle_from_alloc_address(block);
    if (*jhandle == 0) {
        base::release(block);  // nobody could ever reach it
        return posix::report(ierror, TARVO_ENOHANDLE);
    }
    *ierror = 0;
}

// SUBROUTINE PXFSTRUCTCOPY(STRUCTNAME, JHANDLE1, JHANDLE2, IERROR) -- JHANDLE1 into JHANDLE2
extern "C" TARVO_API void pxfstructcopy_(const char* structname, const std::int32_t* jhandle1,
                                         const std::int32_t* jhandle2, std::int32_t* ierror,
                                         std::size_t structname_len) noexcept {
    const void* from = posix::resolve_handle(jhandle1, ierror);
    void* to = from != nullptr ? posix::resolve_handle(jhandle2, ierror) : nullptr;
    if (to == nullptr) return;
    if (posix::tag_of(from) != posix::tag_of(to)) return posix::report(ierror, EINVAL, EINVAL);
    const posix::StructType* type = posix::type_named(posix::pxf_name(structname, structname_len));
    if (type == nullptr || type->tag != posix::tag_of(to)) return posix::report(ierror, TARVO_ENONAME);
    *ierror = 0;
    // An instance copied onto itself already holds the copy (and must keep its texts).
    if (from != to && !posix::copy_instance(to, from, *type)) *ierror = errno;
}

// SUBROUTINE PXFSTRUCTFREE(JHANDLE, IERROR) -- JHANDLE becomes 0
extern "C" TARVO_API void pxfstructfree_(std::int32_t* jhandle, std::int32_t* ierror) noexcept {
    void* instance = posix::resolve_handle(jhandle, ierror);
    if (instance == nullptr) return;
    if (posix::type_of(instance) == nullptr) return posix::report(ierror, TARVO_ENONAME, EINVAL);
    posix::release_owned(instance);
    base::release(instance);
    frame::free_alloc_handle(*jhandle);
    *jhandle = 0;
    *ierror = 0;
}
