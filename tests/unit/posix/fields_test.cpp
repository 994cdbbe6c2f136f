// Field access by name: integers, arrays, elements, texts, stubs and procedure handles.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "frame/memory.h"
#include "frame/handles.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using tarvo_test::FString;

// Every field a caller can reach, with the width it must hold (in bytes for integers, in
// characters plus terminator for texts kept inside the instance, 0 for owned texts).
enum class Kind { int4, int8, text, owned };
struct Expected {
    const char* type;
    Kind kind;
    std::vector<const char*> fields;
    std::size_t capacity = 0;
};
const Expected kFields[] = {
    {"sigaction", Kind::int4, {"sa_handler", "sa_mask", "sa_flags"}},
    {"tms", Kind::int8, {"tms_utime", "tms_stime", "tms_cutime", "tms_cstime"}},
    {"stat", Kind::int4, {"st_mode", "st_uid", "st_gid"}},
    {"stat", Kind::int8, {"st_ino", "st_dev", "st_nlink", "st_size", "st_atime", "st_mtime", "st_ctime"}},
    {"utimbuf", Kind::int4, {"actime", "modtime"}},
    {"flock", Kind::int4, {"l_type", "l_whence", "l_pid"}},
    {"flock", Kind::int8, {"l_start", "l_len"}},
    {"termios", Kind::int4, {"c_iflag", "c_oflag", "c_cflag", "c_lflag"}},
    {"group", Kind::int4, {"gr_gid", "gr_nmem"}},
    {"passwd", Kind::int4, {"pw_uid", "pw_gid"}},
    {"utsname", Kind::text, {"sysname", "nodename", "release", "version", "machine"}, sizeof(utsname::sysname)},
    {"dirent", Kind::text, {"d_name"}, sizeof(dirent::d_name)},
    {"group", Kind::owned, {"gr_name"}},
    {"passwd", Kind::owned, {"pw_name", "pw_dir", "pw_shell"}},
};

// A value that fills the field's whole width and differs from field to field.
std::int64_t pattern(Kind kind, std::size_t i) {
    const auto n = static_cast<std::int64_t>(i + 1);
    return kind == Kind::int8 ? INT64_MIN + n * 0x0102030405060708 : INT32_MIN + n * 0x01020304;
}

// A text that fills an inline field to its last character, or a long one for owned texts.
std::string text_pattern(const Expected& e, std::size_t i) {
    std::string text(e.kind == Kind::text ? e.capacity - 1 : 1000 + i, ' ');
    for (std::size_t k = 0; k < text.size(); ++k) text[k] = static_cast<char>('!' + (k * 7 + i) % 90);
    return text;
}

TEST(FieldValues, EveryFieldRoundTripsAtFullWidth) {
    for (const Expected& e : kFields) {
        Instance instance(e.type);
        const std::int32_t h = instance.handle;
        // Set every field first, then read them all: a field that overlaps another shows.
        for (std::size_t i = 0; i < e.fields.size(); ++i) {
            const char* f = e.fields[i];
            const std::int32_t ierror =
                e.kind == Kind::int8   ? set(h, f, pattern(e.kind, i))
                : e.kind == Kind::int4 ? set(h, f, static_cast<std::int32_t>(pattern(e.kind, i)))
                                       : set_text(h, f, text_pattern(e, i));
            ASSERT_EQ(ierror, 0) << f;
        }
        for (std::size_t i = 0; i < e.fields.size(); ++i) {
            const char* f = e.fields[i];
            std::int64_t v8 = 0;
            std::int32_t v4 = 7;
            if (e.kind == Kind::text || e.kind == Kind::owned) {
                EXPECT_EQ(text_of(h, f), text_pattern(e, i)) << f;
            }
            if (e.kind == Kind::int8) {
                EXPECT_EQ(get(h, f, v8), 0) << f;
                EXPECT_EQ(v8, pattern(e.kind, i)) << f;
                EXPECT_EQ(get(h, f, v4), ERANGE) << f;  // does not fit INTEGER(4): untouched
                EXPECT_EQ(v4, 7) << f;
                EXPECT_EQ(set(h, f, std::int32_t{-2}), 0) << f;  // INTEGER(4) in: sign kept
                EXPECT_EQ(get(h, f, v8), 0) << f;
                EXPECT_EQ(v8, -2) << f;
            }
            if (e.kind == Kind::int4) {
                EXPECT_EQ(get(h, f, v4), 0) << f;
                EXPECT_EQ(v4, pattern(e.kind, i)) << f;
                EXPECT_EQ(get(h, f, v8), 0) << f;  // widened with its sign
                EXPECT_EQ(v8, pattern(e.kind, i)) << f;
                errno = 0;
                EXPECT_EQ(set(h, f, std::int64_t{INT32_MAX} + 1), ERANGE) << f;  // refused, not cut
                EXPECT_EQ(errno, ERANGE);
                EXPECT_EQ(get(h, f, v8), 0) << f;
                EXPECT_EQ(v8, pattern(e.kind, i)) << f;
            }
        }
    }
}

TEST(FieldNames, OnlyTheInstancesOwnFieldsOfTheAccessorsKind) {
    Instance tms("tms"), termios("termios"), group("group"), sigset("sigset");
    std::int32_t v = 0, ilen = 0, index = 1, ialen = 1;
    std::int32_t ierror = 0;
    errno = 0;
    EXPECT_EQ(get(tms.handle, "st_mode", v), TARVO_ENONAME);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(get(tms.handle, "TMS_UTIME  ignored", v), 0);  // name cut, case ignored
    EXPECT_EQ(get(termios.handle, "c_cc", v), TARVO_ENONAME);               // an array, not an integer
    EXPECT_EQ(get(termios.handle, "c_if", v), TARVO_ENONAME);
    EXPECT_EQ(get(sigset.handle, "sa_mask", v), TARVO_ENONAME);             // a set has no fields
    pxfaintget_(&termios.handle, "c_iflag", &v, &ialen, &ierror, 7);
    EXPECT_EQ(ierror, TARVO_ENONAME);
    EXPECT_EQ(text_of(group.handle, "gr_gid"), "<126>");
    EXPECT_EQ(text_of(group.handle, "gr_mem"), "<126>");
    FString value(8);
    pxfestrget_(&group.handle, "gr_name", &index, value.data(), &ilen, &ierror, 7, value.size());
    EXPECT_EQ(ierror, TARVO_ENONAME);
    pxfstrset_(&group.handle, "gr_nmem", "x", &ilen, &ierror, 7, 1);
    EXPECT_EQ(ierror, TARVO_ENONAME);
}

TEST(FieldNames, HandlesThatNameNothing) {
    std::vector<std::int32_t> bad = {0};
#if TARVO_HANDLE_TABLES
    bad.insert(bad.end(), {1, 256, 0x7F01});
#endif
    for (std::int32_t h : bad) {
        std::int32_t v = 0;
        errno = 0;
        EXPECT_EQ(get(h, "st_mode", v), TARVO_ENOHANDLE);
        EXPECT_EQ(errno, EINVAL);
        EXPECT_EQ(member(h, 1), "<127>");
    }
}

TEST(FieldArrays, LengthAndIndexRules) {
    Instance termios("termios");
    std::int32_t h = termios.handle, ierror = -1, ialen = NCCS + 1;
    std::int32_t in[NCCS + 1], out[NCCS + 1];
    for (int i = 0; i <= NCCS; ++i) in[i] = 0x1000 + i, out[i] = -7;
    pxfaintset_(&h, "c_cc", in, &ialen, &ierror, 4);
    EXPECT_EQ(ierror, TARVO_EARRAYLEN);  // cut to NCCS, and the values still go in
    EXPECT_EQ(ialen, NCCS);
    ialen = NCCS + 5;
    pxfaintget_(&h, "c_cc", out, &ialen, &ierror, 4);
    EXPECT_EQ(ierror, TARVO_EARRAYLEN);
    EXPECT_EQ(ialen, NCCS);
    EXPECT_EQ(std::memcmp(in, out, sizeof(std::int32_t) * NCCS), 0);
    EXPECT_EQ(out[NCCS], -7);
    ialen = 0;  // nothing moves
    pxfaintget_(&h, "c_cc", out + NCCS, &ialen, &ierror, 4);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(out[NCCS], -7);
    std::int64_t wide[NCCS] = {};
    ialen = 3;
    pxfaint8get_(&h, "c_cc", wide, &ialen, &ierror, 4);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(wide[2], 0x1002);
    wide[1] = std::int64_t{1} << 40;  // one value that does not fit: nothing is stored
    pxfaint8set_(&h, "c_cc", wide, &ialen, &ierror, 4);
    EXPECT_EQ(ierror, ERANGE);
    for (std::int32_t index : {0, NCCS + 1, -1, 1, NCCS}) {
        const bool within = index == 1 || index == NCCS;
        std::int32_t value = 5 * index;
        errno = 0;
        pxfeintset_(&h, "c_cc", &index, &value, &ierror, 4);
        EXPECT_EQ(ierror, within ? 0 : TARVO_EARRAYLEN) << index;
        value = -7;
        pxfeintget_(&h, "c_cc", &index, &value, &ierror, 4);
        EXPECT_EQ(ierror, within ? 0 : TARVO_EARRAYLEN) << index;
        EXPECT_EQ(value, within ? 5 * index : -7) << index;
        EXPECT_EQ(errno, 0);  // EARRAYLEN leaves errno alone
    }
    ialen = 2;
    pxfaintget_(&h, "c_cc", out, &ialen, &ierror, 4);
    EXPECT_EQ(out[0], 5);
    EXPECT_EQ(out[1], 0x1001);  // untouched by the refused 64-bit store
}

TEST(FieldTexts, TruncationAndLengths) {
    Instance uts("utsname");
    ASSERT_EQ(set_text(uts.handle, "sysname", "Linux"), 0);
    FString two(2), five(5, '#'), wide(10, '#');
    std::int32_t ilen = 0;
    errno = 0;
    EXPECT_EQ(get_text(uts.handle, "SYSNAME", two, ilen), TARVO_ETRUNC);
    EXPECT_EQ(errno, ERANGE);
    EXPECT_EQ(two.text, "Li");
    EXPECT_EQ(ilen, 5);
    EXPECT_EQ(get_text(uts.handle, "sysname", five, ilen), 0);  // an exact fit is no truncation
    EXPECT_EQ(five.text, "Linux");
    EXPECT_EQ(get_text(uts.handle, "sysname", wide, ilen), 0);
    EXPECT_EQ(wide.text, "Linux     ");

    // What PXFSTRSET takes: ILEN characters, or the text without its trailing blanks.
    const struct {
        std::string value;
        std::int32_t ilen;
        std::int32_t ierror;
        std::string stored;
    } cases[] = {
        {"abc   ", 0, 0, "abc"},       {"  ab  ", 0, 0, "  ab"},  {"abcdef", 3, 0, "abc"},
        {"ab    ", 4, 0, "ab  "},      {"      ", 0, 0, ""},      {"abc", 4, EINVAL, "abc"},
        {"abc", -1, EINVAL, "abc"},    {std::string(64, 'x'), 0, 0, std::string(64, 'x')},
        {std::string(70, 'y') + "  ", 0, TARVO_ETRUNC, std::string(64, 'y')},
    };
    for (const auto& c : cases) {
        ASSERT_EQ(set_text(uts.handle, "nodename", "abc"), 0);
        EXPECT_EQ(set_text(uts.handle, "nodename", c.value, c.ilen), c.ierror) << c.value << c.ilen;
        EXPECT_EQ(text_of(uts.handle, "nodename"), c.stored) << c.value << c.ilen;
    }
    std::int32_t three = 3, ierror = 0;
    pxfstrset_(&uts.handle, "nodename", nullptr, &three, &ierror, 8, 5);  // no VALUE at all
    EXPECT_EQ(ierror, EINVAL);
}

TEST(FieldTexts, OwnedTextsWithoutTerminatorOrMemory) {
    Instance passwd("passwd");
    auto& instance = *static_cast<posix::PasswdInstance*>(instance_of(passwd.handle));
    // The user lookups store exactly the characters; reading goes by the stored length.
    ASSERT_TRUE(posix::copy_text(instance.pw_dir, "/home/ann", 9, false));
    EXPECT_EQ(text_of(passwd.handle, "pw_dir"), "/home/ann");
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(set_text(passwd.handle, "pw_dir", "/elsewhere"), ENOMEM);
    frame::testing::allow_allocations();
    EXPECT_EQ(text_of(passwd.handle, "pw_dir"), "/home/ann");
}

TEST(FieldTexts, GroupMembersFromOneUpToTheCount) {
    Instance group("group");
    fill_group(group.handle, {"operator", "gone"});
    auto& instance = *static_cast<posix::GroupInstance*>(instance_of(group.handle));
    frame::release(instance.gr_mem[1]);
    instance.gr_mem[1] = nullptr;  // an absent member reads as empty
    FString four(4, '#');
    std::int32_t ilen = 0;
    EXPECT_EQ(member(group.handle, 1, four, ilen), TARVO_ETRUNC);
    EXPECT_EQ(four.text, "oper");
    EXPECT_EQ(ilen, 8);
    EXPECT_EQ(member(group.handle, 2, four, ilen), 0);
    EXPECT_EQ(four.text, "    ");
    EXPECT_EQ(ilen, 0);
    EXPECT_EQ(member(group.handle, 0), "<125>");
    EXPECT_EQ(member(group.handle, 3), "<125>");
    ASSERT_EQ(set(group.handle, "gr_nmem", std::int32_t{1000}), 0);  // reaches no further than held
    EXPECT_EQ(member(group.handle, 3), "<125>");
    ASSERT_EQ(set(group.handle, "gr_nmem", std::int32_t{1}), 0);
    EXPECT_EQ(member(group.handle, 2), "<125>");
}

class HostFills : public tarvo_test::ScratchDirTest {};

TEST_F(HostFills, StatOfALargeFileAndADirectoryEntry) {
    const int fd = ::open("big", O_CREAT | O_WRONLY, 0640);
    ASSERT_GE(fd, 0);
    const off_t size = off_t{3} << 30;
    ASSERT_EQ(ftruncate(fd, size), 0);
    close(fd);
    struct stat host {};
    ASSERT_EQ(::stat("big", &host), 0);
    Instance stat("stat");
    std::int32_t ierror = 0, v4 = 0;
    std::int64_t v8 = 0;
    posix::store_stat(*posix::resolve_instance<posix::StatInstance>(&stat.handle, &ierror), host);
    EXPECT_EQ(get(stat.handle, "st_size", v4), ERANGE);
    EXPECT_EQ(get(stat.handle, "st_size", v8), 0);
    EXPECT_EQ(v8, size);
    EXPECT_EQ(get(stat.handle, "st_mode", v4), 0);
    EXPECT_EQ(v4, S_IFREG | 0640);
    EXPECT_EQ(get(stat.handle, "st_mtime", v8), 0);
    EXPECT_EQ(v8, host.st_mtime);
    dirent entry{};
    std::strcpy(entry.d_name, "x.dat");
    Instance name("dirent");
    posix::store_dirent(*posix::resolve_instance<posix::DirentInstance>(&name.handle, &ierror), entry);
    EXPECT_EQ(text_of(name.handle, "d_name"), "x.dat");
}

TEST(FieldStubs, EveryStubAnswersEnonameWhateverItIsGiven) {
    std::int32_t handle = 0x7FFFFFFF, index = 1, ialen = 1, ilen = 1, ierror;
    char text[8];
    float f;
    double d;
    std::int32_t i4;
    std::int64_t i8;
    int stubs = 0;
#define ARGS_SINGLE(p) &handle, "x", p, &ierror, 1
#define ARGS_ARRAY(p) &handle, "x", p, &ialen, &ierror, 1
#define ARGS_ELEMENT(p) &handle, "x", &index, p, &ierror, 1
#define ARGS_CHAR_SINGLE(p) ARGS_SINGLE(p), sizeof text
#define ARGS_CHAR_ARRAY(p) ARGS_ARRAY(p), sizeof text
#define ARGS_CHAR_ELEMENT(p) ARGS_ELEMENT(p), sizeof text
#define ARGS_TEXT_ARRAY(p) &handle, "x", p, &ilen, &ialen, &ierror, 1, sizeof text
#define ARGS_TEXT_ELEMENT(p) &handle, "x", &index, p, &ilen, &ierror, 1, sizeof text
#define POINTER_float &f
#define POINTER_double &d
#define POINTER_int32_t &i4
#define POINTER_int64_t &i8
#define POINTER_char text
#define CALL_STUB(name, form, T)                      \
    ierror = 0, errno = 0;                            \
    name(ARGS_##form(POINTER_##T));            \
    EXPECT_EQ(ierror, TARVO_ENONAME) << #name;        \
    EXPECT_EQ(errno, EINVAL) << #name;                \
    ++stubs;
    TARVO_PXF_STUB_ACCESSORS(CALL_STUB)
    EXPECT_EQ(stubs, 29);
}

// A Fortran INTEGER FUNCTION F(IVAL) as the handle routines see it.
std::int32_t twice(std::int32_t* ival) {
    *ival *= 2;
    return *ival + 1;
}
std::int32_t other(std::int32_t*) { return 0; }

TEST(SubHandles, SameProcedureSameHandleAndCallsThrough) {
    std::int32_t h1 = 0, h2 = 0, h3 = 0, ierror = -1;
    pxfgetsubhandle_(reinterpret_cast<void (*)()>(&twice), &h1, &ierror);
    EXPECT_EQ(ierror, 0);
    pxfgetsubhandle_(reinterpret_cast<void (*)()>(&other), &h2, &ierror);
    pxfgetsubhandle_(reinterpret_cast<void (*)()>(&twice), &h3, &ierror);
    EXPECT_EQ(h1, h3);
    EXPECT_NE(h1, h2);
#if TARVO_HANDLE_TABLES
    EXPECT_EQ(h1, 16);  // the first static handle
#endif
    std::int32_t ival = 20;
    EXPECT_EQ(pxfcallsubhandle_(&h1, &ival, &ierror), 41);
    EXPECT_EQ(ierror, 0);
    EXPECT_EQ(ival, 40);
    std::vector<std::int32_t> bad = {0};
#if TARVO_HANDLE_TABLES
    bad.insert(bad.end(), {1, 15, 99, 256});  // reserved, reserved, never given, no slot
#endif
    for (std::int32_t h : bad) {
        errno = 0;
        EXPECT_EQ(pxfcallsubhandle_(&h, &ival, &ierror), 0);
        EXPECT_EQ(ierror, TARVO_ENOHANDLE) << h;
        EXPECT_EQ(errno, EINVAL);
    }
    pxfgetsubhandle_(nullptr, &h1, &ierror);
    EXPECT_EQ(ierror, TARVO_ENOHANDLE);
    EXPECT_EQ(h1, 0);
}

}  // namespace
