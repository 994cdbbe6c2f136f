// PXF structure instances: the layout of each of the eleven types, their field tables, and
// the texts that "group" and "passwd" instances own.
//
// Every instance is one zero-filled heap block that begins with its 32-bit type tag and is
// registered in the allocatable handle table. Routines that fill instances resolve the
// handle with posix::resolve_instance<T> (pxf.h) and write the members below; the field
// accessors reach the same members through the field tables. Widths are those the Fortran
// caller sees: where the host's record has the same widths the instance wraps it ("sigset",
// "utsname"), elsewhere the instance has members of its own and the fill converts.
//
// Any other block kept in the allocatable table must also begin with a 32-bit tag outside
// 1..11, so that a handle of the wrong kind is told apart by its tag: a directory stream is
// registered as a small block tagged kDirectoryStreamTag that holds the host's stream.
#pragma once

#include <dirent.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <termios.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include <tarvo/records.h>

namespace posix {

constexpr std::int32_t kDirectoryStreamTag = 0x44495253;  // not a structure type

// What a directory-stream handle names: the host's stream behind a tag of its own.
struct DirectoryStream {
    std::int32_t tag;  // kDirectoryStreamTag
    DIR* stream;
};

// A text owned by a "group" or "passwd" instance: `length` characters at `text`, or
// nothing (null, 0). Readers always take the length from here, never from a terminator:
// the "passwd" lookups store exactly the characters, every other writer adds a NUL.
struct OwnedText {
    char* text;
    std::size_t length;
};

struct SigsetInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_SIGSET;
    std::int32_t tag;
    sigset_t set;  // the host's set, handed to the host calls as it is
};

struct SigactionInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_SIGACTION;
    std::int32_t tag;
    std::int32_t handler;  // sa_handler: SIG_DFL, SIG_IGN or a procedure's static handle
    std::int32_t mask;     // sa_mask: the handle of a "sigset" instance, or 0
    std::int32_t flags;    // sa_flags: the host's flag bits
};

struct UtsnameInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_UTSNAME;
    std::int32_t tag;
    struct utsname host;  // filled by uname as it is
};

struct TmsInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_TMS;
    std::int32_t tag;
    std::int64_t tms_utime, tms_stime, tms_cutime, tms_cstime;  // clock_t widened
};

struct DirentInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_DIRENT;
    std::int32_t tag;
    char d_name[sizeof(dirent::d_name)];  // NUL-terminated
};

struct StatInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_STAT;
    std::int32_t tag;
    std::int32_t st_mode, st_uid, st_gid;
    std::int64_t st_ino, st_dev, st_nlink, st_size;
    std::int64_t atime, mtime, ctime;  // whole seconds (the host's names are macros)
};

struct UtimbufInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_UTIMBUF;
    std::int32_t tag;
    std::int32_t actime, modtime;
};

struct FlockInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_FLOCK;
    std::int32_t tag;
    std::int32_t l_type, l_whence, l_pid;  // type and whence go to the host as 16 bits
    std::int64_t l_start, l_len;
};

struct TermiosInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_TERMIOS;
    std::int32_t tag;
    std::int32_t c_iflag, c_oflag, c_cflag, c_lflag;
    std::int32_t c_cc[NCCS];  // one control character per INTEGER
};

struct GroupInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_GROUP;
    std::int32_t tag;
    std::int32_t gr_gid;
    std::int32_t gr_nmem;  // the member count the caller sees
    std::int32_t members;  // the entries gr_mem holds; free and copy go by this count
    OwnedText gr_name;
    char** gr_mem;  // `members` NUL-terminated heap texts (null entries read as empty)
};

struct PasswdInstance {
    static constexpr std::int32_t kTag = TARVO_TAG_PASSWD;
    std::int32_t tag;
    std::int32_t pw_uid, pw_gid;
    OwnedText pw_name, pw_dir, pw_shell;
};

// --- field tables ---------------------------------------------------------------------

enum class FieldKind : std::uint8_t {
    integer,        // a signed 4- or 8-byte value
    integer_array,  // 4-byte elements
    inline_text,    // NUL-terminated characters inside the instance
    owned_text,     // an OwnedText
    member_list,    // gr_mem of a GroupInstance
};

struct Field {
    const char* name;
    std::uint16_t offset;
    std::uint16_t width;  // bytes inside the instance
    FieldKind kind;
};

#define TARVO_FIELD(Type, name, member, kind) \
    Field { name, offsetof(Type, member), sizeof(static_cast<Type*>(nullptr)->member), FieldKind::kind }

inline constexpr Field kSigactionFields[] = {
    TARVO_FIELD(SigactionInstance, "sa_handler", handler, integer),
    TARVO_FIELD(SigactionInstance, "sa_mask", mask, integer),
    TARVO_FIELD(SigactionInstance, "sa_flags", flags, integer),
};
inline constexpr Field kUtsnameFields[] = {
    TARVO_FIELD(UtsnameInstance, "sysname", host.sysname, inline_text),
    TARVO_FIELD(UtsnameInstance, "nodename", host.nodename, inline_text),
    TARVO_FIELD(UtsnameInstance, "release", host.release, inline_text),
    TARVO_FIELD(UtsnameInstance, "version", host.version, inline_text),
    TARVO_FIELD(UtsnameInstance, "machine", host.machine, inline_text),
};
inline constexpr Field kTmsFields[] = {
    TARVO_FIELD(TmsInstance, "tms_utime", tms_utime, integer),
    TARVO_FIELD(TmsInstance, "tms_stime", tms_stime, integer),
    TARVO_FIELD(TmsInstance, "tms_cutime", tms_cutime, integer),
    TARVO_FIELD(TmsInstance, "tms_cstime", tms_cstime, integer),
};
inline constexpr Field kDirentFields[] = {
    TARVO_FIELD(DirentInstance, "d_name", d_name, inline_text),
};
inline constexpr Field kStatFields[] = {
    TARVO_FIELD(StatInstance, "st_mode", st_mode, integer),
    TARVO_FIELD(StatInstance, "st_ino", st_ino, integer),
    TARVO_FIELD(StatInstance, "st_dev", st_dev, integer),
    TARVO_FIELD(StatInstance, "st_nlink", st_nlink, integer),
    TARVO_FIELD(StatInstance, "st_uid", st_uid, integer),
    TARVO_FIELD(StatInstance, "st_gid", st_gid, integer),
    TARVO_FIELD(StatInstance, "st_size", st_size, integer),
    TARVO_FIELD(StatInstance, "st_atime", atime, integer),
    TARVO_FIELD(StatInstance, "st_mtime", mtime, integer),
    TARVO_FIELD(StatInstance, "st_ctime", ctime, integer),
};
inline constexpr Field kUtimbufFields[] = {
    TARVO_FIELD(UtimbufInstance, "actime", actime, integer),
    TARVO_FIELD(UtimbufInstance, "modtime", modtime, integer),
};
inline constexpr Field kFlockFields[] = {
    TARVO_FIELD(FlockInstance, "l_type", l_type, integer),
    TARVO_FIELD(FlockInstance, "l_whence", l_whence, integer),
    TARVO_FIELD(FlockInstance, "l_pid", l_pid, integer),
    TARVO_FIELD(FlockInstance, "l_start", l_start, integer),
    TARVO_FIELD(FlockInstance, "l_len", l_len, integer),
};
inline constexpr Field kTermiosFields[] = {
    TARVO_FIELD(TermiosInstance, "c_iflag", c_iflag, integer),
    TARVO_FIELD(TermiosInstance, "c_oflag", c_oflag, integer),
    TARVO_FIELD(TermiosInstance, "c_cflag", c_cflag, integer),
    TARVO_FIELD(TermiosInstance, "c_lflag", c_lflag, integer),
    TARVO_FIELD(TermiosInstance, "c_cc", c_cc, integer_array),
};
inline constexpr Field kGroupFields[] = {
    TARVO_FIELD(GroupInstance, "gr_gid", gr_gid, integer),
    TARVO_FIELD(GroupInstance, "gr_nmem", gr_nmem, integer),
    TARVO_FIELD(GroupInstance, "gr_name", gr_name, owned_text),
    TARVO_FIELD(GroupInstance, "gr_mem", gr_mem, member_list),
};
inline constexpr Field kPasswdFields[] = {
    TARVO_FIELD(PasswdInstance, "pw_uid", pw_uid, integer),
    TARVO_FIELD(PasswdInstance, "pw_gid", pw_gid, integer),
    TARVO_FIELD(PasswdInstance, "pw_name", pw_name, owned_text),
    TARVO_FIELD(PasswdInstance, "pw_dir", pw_dir, owned_text),
    TARVO_FIELD(PasswdInstance, "pw_shell", pw_shell, owned_text),
};

#undef TARVO_FIELD

// --- structure types ------------------------------------------------------------------

struct StructType {
    const char* name;
    std::int32_t tag;
    std::size_t size;
    std::span<const Field> fields;
};

// In tag order, which is also the order names are matched in.
inline constexpr StructType kStructTypes[] = {
    {"sigset", SigsetInstance::kTag, sizeof(SigsetInstance), {}},
    {"sigaction", SigactionInstance::kTag, sizeof(SigactionInstance), kSigactionFields},
    {"utsname", UtsnameInstance::kTag, sizeof(UtsnameInstance), kUtsnameFields},
    {"tms", TmsInstance::kTag, sizeof(TmsInstance), kTmsFields},
    {"dirent", DirentInstance::kTag, sizeof(DirentInstance), kDirentFields},
    {"stat", StatInstance::kTag, sizeof(StatInstance), kStatFields},
    {"utimbuf", UtimbufInstance::kTag, sizeof(UtimbufInstance), kUtimbufFields},
    {"flock", FlockInstance::kTag, sizeof(FlockInstance), kFlockFields},
    {"termios", TermiosInstance::kTag, sizeof(TermiosInstance), kTermiosFields},
    {"group", GroupInstance::kTag, sizeof(GroupInstance), kGroupFields},
    {"passwd", PasswdInstance::kTag, sizeof(PasswdInstance), kPasswdFields},
};

inline std::int32_t tag_of(const void* instance) noexcept {
    std::int32_t tag;
    std::memcpy(&tag, instance, sizeof tag);
    return tag;
}

// The type an instance's tag names, or null for a tag outside 1..11.
inline const StructType* type_of(const void* instance) noexcept {
    const std::int32_t tag = tag_of(instance);
    return tag >= 1 && tag <= static_cast<std::int32_t>(std::size(kStructTypes)) ? &kStructTypes[tag - 1] : nullptr;
}

// --- owned texts ----------------------------------------------------------------------

// Replaces `owned` with a terminated heap copy of `length` characters. False (errno
// ENOMEM, `owned` unchanged) when no memory is left.
bool copy_text(OwnedText& owned, const char* text, std::size_t length) noexcept;
void release_text(OwnedText& owned) noexcept;
// Releases every member text and the member array; gr_mem null, members 0.
void release_members(GroupInstance& group) noexcept;
// Releases whatever a "group" or "passwd" instance owns, leaving null pointers; nothing
// for the other types.
void release_owned(void* instance) noexcept;

// The fills of "stat" and "dirent" instances from the host's records.
void store_stat(StatInstance& instance, const struct stat& host) noexcept;
void store_dirent(DirentInstance& instance, const struct dirent& host) noexcept;

}  // namespace posix
