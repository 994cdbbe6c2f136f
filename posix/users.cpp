// Users, groups and identity of the POSIX binding: the group and user database lookups that
// fill "group" and "passwd" instances, the login name, and the process identity calls.
//
// The lookups use the host's reentrant calls: the entry lands in a buffer of this call,
// from which the instance receives copies it owns. A fill frees what the instance owned
// before; whatever a failed fill frees on the way is left null, never dangling.
//
// On success the four lookups do not write IERROR: callers preset it, and rely on it
// keeping their value.
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "base/export.h"
#include "base/memory.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

static_assert(sizeof(gid_t) == sizeof(std::int32_t), "group lists are INTEGER arrays the host fills");

// An entry of the group or user database, in storage of its own.
template <class Record>
struct Entry {
    Record record;
    Record* found = nullptr;  // &record, or null when the database has no such entry
    base::Owned<char> storage;
};

// Runs a reentrant lookup with a buffer that grows while the host asks for more. The
// host's error number: 0 also when the entry does not exist (then `found` is null).
template <class Record, class Lookup>
int look_up(Entry<Record>& entry, Lookup lookup) noexcept {
    constexpr std::size_t kLargest = std::size_t{1} << 24;
    for (std::size_t size = 1024;; size *= 2) {
        entry.storage = base::Owned<char>::with_room_for(size);
        if (!entry.storage) return ENOMEM;
        const int error = lookup(&entry.record, entry.storage.get(), size, &entry.found);
        if (error != ERANGE || size >= kLargest) return error;
    }
}

// A passwd text: exactly its characters, with no terminator (the reader takes the length
// from the OwnedText). An empty text owns nothing.
bool copy_characters(OwnedText& owned, const char* text) noexcept {
    const std::size_t length = std::strlen(text);
    if (length == 0) return true;
    auto* copy = static_cast<char*>(base::allocate(length));
    if (copy == nullptr) {
        errno = ENOMEM;
        return false;
    }
    std::memcpy(copy, text, length);
    owned = {copy, length};
    return true;
}

// The member copies of a group entry. False (errno ENOMEM) after releasing the name copy
// and every member made so far.
bool copy_members(GroupInstance& group, char* const* members) noexcept {
    std::int32_t count = 0;
    while (members[count] != nullptr) ++count;
    group.gr_nmem = count;
    if (count == 0) return true;  // no member array: it would hold nothing
    group.gr_mem = static_cast<char**>(base::allocate_zeroed(static_cast<std::size_t>(count), sizeof(char*)));
    bool complete = group.gr_mem != nullptr;
    if (complete) group.members = count;
    for (std::int32_t i = 0; complete && i < count; ++i) {
        OwnedText member{};
        complete = copy_text(member, members[i], std::strlen(members[i]));
        group.gr_mem[i] = member.text;
    }
    if (complete) return true;
    errno = ENOMEM;
    release_members(group);
    release_text(group.gr_name);
    return false;
}

void fill(GroupInstance& group, const struct group& host, std::int32_t* ierror) noexcept {
    release_text(group.gr_name);
    if (!copy_text(group.gr_name, host.gr_name, std::strlen(host.gr_name))) return report(ierror, errno);
    group.gr_gid = static_cast<std::int32_t>(host.gr_gid);
    release_members(group);
    if (!copy_members(group, host.gr_mem)) report(ierror, errno);
}

void fill(PasswdInstance& user, const passwd& host, std::int32_t* ierror) noexcept {
    release_owned(&user);
    if (!copy_characters(user.pw_name, host.pw_name)) return report(ierror, errno);
    user.pw_uid = static_cast<std::int32_t>(host.pw_uid);
    user.pw_gid = static_cast<std::int32_t>(host.pw_gid);
    if (!copy_characters(user.pw_dir, host.pw_dir)) return report(ierror, errno);
    if (!copy_characters(user.pw_shell, host.pw_shell)) report(ierror, ENOMEM, ENOMEM);
}

// Looks the entry up and fills the instance with it. An entry that does not exist gives
// IERROR = the host's error number, 0 (errno untouched); the instance keeps its contents.
template <class Record, class Instance, class Lookup>
void fill_from(Instance& instance, std::int32_t* ierror, Lookup lookup) noexcept {
    Entry<Record> entry;
    const int error = look_up(entry, lookup);
    if (entry.found != nullptr) return fill(instance, entry.record, ierror);
    if (error != 0) errno = error;
    report(ierror, error);
}

// A host lookup by key in the reentrant form: key, record, buffer, size, result.
template <class Key, class Record>
using HostLookup = int (*)(Key, Record*, char*, std::size_t, Record**);

template <class Instance, class Key, class Record>
void fill_by_id(const std::int32_t* handle, Key id, std::int32_t* ierror, HostLookup<Key, Record> host) noexcept {
    auto* instance = resolve_instance<Instance>(handle, ierror);
    if (instance == nullptr) return;
    fill_from<Record>(*instance, ierror, [&](Record* record, char* buffer, std::size_t size, Record** result) {
        return host(id, record, buffer, size, result);
    });
}

// The handle is checked before the name is read; the name follows the ILEN rule of paths.
template <class Instance, class Record>
void fill_by_name(const char* name, const std::int32_t* ilen, std::size_t name_len, const std::int32_t* handle,
                  std::int32_t* ierror, HostLookup<const char*, Record> host) noexcept {
    auto* instance = resolve_instance<Instance>(handle, ierror);
    if (instance == nullptr) return;
    const Path key = path_arg(name, ilen, name_len);
    if (!key) return report(ierror, errno);
    fill_from<Record>(*instance, ierror, [&](Record* record, char* buffer, std::size_t size, Record** result) {
        return host(key.c_str(), record, buffer, size, result);
    });
}

}  // namespace
}  // namespace posix

using posix::report;
using posix::report_host;

// --- database lookups -------------------------------------------------------------------

// SUBROUTINE PXFGETGRGID(IGID, JGROUP, IERROR) -- IERROR untouched on success
extern "C" TARVO_API void pxfgetgrgid_(const std::int32_t* igid, const std::int32_t* jgroup,
                                       std::int32_t* ierror) noexcept {
    posix::fill_by_id<posix::GroupInstance>(jgroup, static_cast<gid_t>(*igid), ierror, ::getgrgid_r);
}

// SUBROUTINE PXFGETGRNAM(NAME, ILEN, JGROUP, IERROR) -- IERROR untouched on success
extern "C" TARVO_API void pxfgetgrnam_(const char* name, const std::int32_t* ilen, const std::int32_t* jgroup,
                                       std::int32_t* ierror, std::size_t name_len) noexcept {
    posix::fill_by_name<posix::GroupInstance>(name, ilen, name_len, jgroup, ierror, ::getgrnam_r);
}

// SUBROUTINE PXFGETPWUID(IUID, JPASSWD, IERROR) -- IERROR untouched on success
extern "C" TARVO_API void pxfgetpwuid_(const std::int32_t* iuid, const std::int32_t* jpasswd,
                                       std::int32_t* ierror) noexcept {
    posix::fill_by_id<posix::PasswdInstance>(jpasswd, static_cast<uid_t>(*iuid), ierror, ::getpwuid_r);
}

// SUBROUTINE PXFGETPWNAM(NAME, ILEN, JPASSWD, IERROR) -- IERROR untouched on success
extern "C" TARVO_API void pxfgetpwnam_(const char* name, const std::int32_t* ilen, const std::int32_t* jpasswd,
                                       std::int32_t* ierror, std::size_t name_len) noexcept {
    // Unlike the group lookup, ILEN is held against NAME's declared length, before the handle.
    if (*ilen > base::low32_length(name_len)) return report(ierror, EINVAL, EINVAL);
    posix::fill_by_name<posix::PasswdInstance>(name, ilen, name_len, jpasswd, ierror, ::getpwnam_r);
}

// SUBROUTINE PXFGETLOGIN(S, ILEN, IERROR)
extern "C" TARVO_API void pxfgetlogin_(char* s, std::int32_t* ilen, std::int32_t* ierror, std::size_t s_len) noexcept {
    char name[LOGIN_NAME_MAX + 1];
    const int error = ::getlogin_r(name, sizeof name);  // the error number, not -1
    if (error != 0) {
        base::blank_fill(s, base::signed_length(s_len));
        return report(ierror, error, error);
    }
    posix::store_text(name, std::strlen(name), s, s_len, ilen, ierror);
    // Intended: errno follows IERROR here, ETRUNC for a cut name and 0 otherwise.
    errno = *ierror;
}

// --- identity ---------------------------------------------------------------------------

// SUBROUTINE PXFGETPID(IPID, IERROR)
extern "C" TARVO_API void pxfgetpid_(std::int32_t* ipid, std::int32_t* ierror) noexcept {
    *ipid = ::getpid();
    *ierror = 0;
}

// SUBROUTINE PXFGETPPID(IPID, IERROR)
extern "C" TARVO_API void pxfgetppid_(std::int32_t* ipid, std::int32_t* ierror) noexcept {
    *ipid = ::getppid();
    *ierror = 0;
}

// SUBROUTINE PXFGETUID(IUID, IERROR)
extern "C" TARVO_API void pxfgetuid_(std::int32_t* iuid, std::int32_t* ierror) noexcept {
    *iuid = static_cast<std::int32_t>(::getuid());
    *ierror = 0;
}

// SUBROUTINE PXFGETEUID(IUID, IERROR)
extern "C" TARVO_API void pxfgeteuid_(std::int32_t* iuid, std::int32_t* ierror) noexcept {
    *iuid = static_cast<std::int32_t>(::geteuid());
    *ierror = 0;
}

// SUBROUTINE PXFGETGID(IGID, IERROR)
extern "C" TARVO_API void pxfgetgid_(std::int32_t* igid, std::int32_t* ierror) noexcept {
    *igid = static_cast<std::int32_t>(::getgid());
    *ierror = 0;
}

// SUBROUTINE PXFGETEGID(IGID, IERROR)
extern "C" TARVO_API void pxfgetegid_(std::int32_t* igid, std::int32_t* ierror) noexcept {
    *igid = static_cast<std::int32_t>(::getegid());
    *ierror = 0;
}

// SUBROUTINE PXFSETUID(IUID, IERROR)
extern "C" TARVO_API void pxfsetuid_(const std::int32_t* iuid, std::int32_t* ierror) noexcept {
    report_host(ierror, ::setuid(static_cast<uid_t>(*iuid)));
}

// SUBROUTINE PXFSETGID(IGID, IERROR)
extern "C" TARVO_API void pxfsetgid_(const std::int32_t* igid, std::int32_t* ierror) noexcept {
    report_host(ierror, ::setgid(static_cast<gid_t>(*igid)));
}

// SUBROUTINE PXFGETGROUPS(IGIDSETSIZE, IGROUPLIST, INGROUPS, IERROR)
extern "C" TARVO_API void pxfgetgroups_(const std::int32_t* igidsetsize, std::int32_t* igrouplist,
                                        std::int32_t* ingroups, std::int32_t* ierror) noexcept {
    report_host(ierror, *ingroups = ::getgroups(*igidsetsize, reinterpret_cast<gid_t*>(igrouplist)));
}

// SUBROUTINE PXFGETPGRP(IPGRP, IERROR)
extern "C" TARVO_API void pxfgetpgrp_(std::int32_t* ipgrp, std::int32_t* ierror) noexcept {
    report_host(ierror, *ipgrp = ::getpgrp());
}

// SUBROUTINE PXFSETSID(ISID, IERROR)
extern "C" TARVO_API void pxfsetsid_(std::int32_t* isid, std::int32_t* ierror) noexcept {
    report_host(ierror, *isid = ::setsid());
}

// SUBROUTINE PXFSETPGID(IPID, IPGID, IERROR)
extern "C" TARVO_API void pxfsetpgid_(const std::int32_t* ipid, const std::int32_t* ipgid,
                                      std::int32_t* ierror) noexcept {
    report_host(ierror, ::setpgid(*ipid, *ipgid));
}
