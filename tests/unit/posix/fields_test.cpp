// Field access by name: integers, arrays, elements, texts, stubs and procedure handles.
#include <cerrno>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <vector>

#include "posix/pxf.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;
using tarvo_test::FString;

// Every field a caller can reach, with the width it must hold (in bytes for integers, in
// characters plus terminator for texts kept inside the instance, 0 for owned texts).
enum class Kind { int4, int8, text, owned };
struct Expected { const char* type; Kind kind; std::vector<const char*> fields; std::size_t capacity = 0; };
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
        const bool text = e.kind == Kind::text || e.kind == Kind::owned, wide = e.kind == Kind::int8;
        // Set every field first, then read them all: a field that overlaps another shows.
        for (std::size_t i = 0; i < e.fields.size(); ++i) {
            const std::int64_t v = pattern(e.kind, i);
            ASSERT_EQ(text ? set_text(h, e.fields[i], text_pattern(e, i))
                      : wide ? set(h, e.fields[i], v) : set(h, e.fields[i], static_cast<std::int32_t>(v)), 0);
        }
        for (std::size_t i = 0; i < e.fields.size(); ++i) {
            const char* f = e.fields[i];
            if (text) {
                EXPECT_EQ(text_of(h, f), text_pattern(e, i)) << f;
                continue;
            }
            std::int64_t v8 = 0;
            std::int32_t v4 = 7;
            // INTEGER(8) reads every value; INTEGER(4) reads a narrow one with its sign and
            // leaves the variable alone when a wide one does not fit.
            EXPECT_EQ(VALUES(get(h, f, v8), v8), tuple(0, pattern(e.kind, i))) << f;
            EXPECT_EQ(VALUES(get(h, f, v4), v4), wide ? tuple(ERANGE, 7) : tuple(0, int(pattern(e.kind, i)))) << f;
            // INTEGER(4) in keeps its sign in a wide field; a narrow one refuses, not cuts, a wide value.
            errno = 0;
            EXPECT_EQ(wide ? set(h, f, std::int32_t{-2}) : set(h, f, std::int64_t{INT32_MAX} + 1), wide ? 0 : ERANGE);
            EXPECT_EQ(errno, wide ? 0 : ERANGE) << f;
            EXPECT_EQ(VALUES(get(h, f, v8), v8), tuple(0, wide ? -2 : pattern(e.kind, i))) << f;
        }
    }
}

TEST(FieldNames, OnlyTheInstancesOwnFieldsOfTheAccessorsKind) {
    Instance tms("tms"), termios("termios"), group("group"), sigset("sigset");
    std::int32_t v = 0, ilen = 0, index = 1, ialen = 1;
    errno = 0;
    EXPECT_EQ(VALUES(get(tms.handle, "st_mode", v), errno), tuple(TARVO_ENONAME, EINVAL));
    EXPECT_EQ(get(tms.handle, "TMS_UTIME  ignored", v), 0);  // name cut, case ignored
    EXPECT_EQ(get(termios.handle, "c_cc", v), TARVO_ENONAME);  // an array, not an integer
    EXPECT_EQ(get(termios.handle, "c_if", v), TARVO_ENONAME);
    EXPECT_EQ(get(sigset.handle, "sa_mask", v), TARVO_ENONAME);  // a set has no fields
    EXPECT_EQ(field_call(pxfaintget_, termios.handle, "c_iflag", &v, &ialen), TARVO_ENONAME);
    EXPECT_EQ(text_of(group.handle, "gr_gid") + text_of(group.handle, "gr_mem"), "<126><126>");
    char value[8];
    EXPECT_EQ(ierror_of(pxfestrget_, &group.handle, "gr_name", &index, value, &ilen, kIerror, 7, 8), TARVO_ENONAME);
    EXPECT_EQ(ierror_of(pxfstrset_, &group.handle, "gr_nmem", "x", &ilen, kIerror, 7, 1), TARVO_ENONAME);
    // Handles that name nothing.
    std::vector<std::int32_t> bad = {0};
#if TARVO_HANDLE_TABLES
    bad.insert(bad.end(), {99, 256, 0x7F01});  // never given, no slot, no block
#endif
    for (std::int32_t h : bad) {
        errno = 0;
        EXPECT_EQ(VALUES(get(h, "st_mode", v), errno), tuple(TARVO_ENOHANDLE, EINVAL)) << h;
        EXPECT_EQ(member(h, 1), "<127>");
    }
}

TEST(FieldArrays, LengthAndIndexRules) {
    Instance termios("termios");
    const std::int32_t h = termios.handle;
    std::int32_t ialen = NCCS + 1, in[NCCS + 1], out[NCCS + 1];
    for (int i = 0; i <= NCCS; ++i) in[i] = 0x1000 + i, out[i] = -7;
    // IALEN beyond NCCS is cut to it and reported, and the values still move.
    EXPECT_EQ(VALUES(field_call(pxfaintset_, h, "c_cc", in, &ialen), ialen), tuple(TARVO_EARRAYLEN, NCCS));
    ialen = NCCS + 5;
    EXPECT_EQ(VALUES(field_call(pxfaintget_, h, "c_cc", out, &ialen), ialen), tuple(TARVO_EARRAYLEN, NCCS));
    EXPECT_EQ(std::memcmp(in, out, sizeof(std::int32_t) * NCCS), 0);
    ialen = 0;  // nothing moves
    EXPECT_EQ(VALUES(field_call(pxfaintget_, h, "c_cc", out + NCCS, &ialen), out[NCCS]), tuple(0, -7));
    std::int64_t wide[NCCS] = {};
    ialen = 3;
    EXPECT_EQ(VALUES(field_call(pxfaint8get_, h, "c_cc", wide, &ialen), wide[2]), tuple(0, 0x1002));
    wide[1] = std::int64_t{1} << 40;  // one value that does not fit: nothing is stored
    EXPECT_EQ(field_call(pxfaint8set_, h, "c_cc", wide, &ialen), ERANGE);
    for (std::int32_t index : {0, NCCS + 1, -1, 1, NCCS}) {
        const bool within = index == 1 || index == NCCS;
        std::int32_t value = 5 * index;
        const auto ierror = within ? 0 : TARVO_EARRAYLEN;
        errno = 0;  // EARRAYLEN leaves errno alone
        EXPECT_EQ(field_call(pxfeintset_, h, "c_cc", &index, &value), ierror) << index;
        value = -7;
        EXPECT_EQ(VALUES(field_call(pxfeintget_, h, "c_cc", &index, &value), value, errno),
                  tuple(ierror, within ? 5 * index : -7, 0))
            << index;
    }
    ialen = 2;
    field_call(pxfaintget_, h, "c_cc", out, &ialen);
    EXPECT_EQ(tuple(out[0], out[1]), tuple(5, 0x1001));  // untouched by the refused 64-bit store
}

TEST(FieldTexts, TruncationAndLengths) {
    Instance uts("utsname");
    ASSERT_EQ(set_text(uts.handle, "sysname", "Linux"), 0);
    const tuple<int, std::int32_t, const char*> reads[] = {
        {2, TARVO_ETRUNC, "Li"}, {5, 0, "Linux"}, {10, 0, "Linux     "}};  // an exact fit is no truncation
    for (const auto& [length, ierror, text] : reads) {
        FString value(length, '#');
        std::int32_t ilen = 0;
        errno = 0;
        EXPECT_EQ(VALUES(get_text(uts.handle, "SYSNAME", value, ilen), ilen, value.text), tuple(ierror, 5, text));
        EXPECT_EQ(errno, ierror ? ERANGE : 0);
    }
    // What PXFSTRSET takes: ILEN characters, or the text without its trailing blanks.
    const struct { std::string value; std::int32_t ilen, ierror; std::string stored; } cases[] = {
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
    std::int32_t three = 3;
    EXPECT_EQ(ierror_of(pxfstrset_, &uts.handle, "nodename", nullptr, &three, kIerror, 8, 5), EINVAL);  // no VALUE

    // The user lookups store exactly the characters; reading goes by the stored length.
    Instance passwd("passwd");
    auto& user = *static_cast<posix::PasswdInstance*>(instance_of(passwd.handle));
    ASSERT_TRUE(posix::copy_text(user.pw_dir, "/home/ann/x", 9));
    EXPECT_EQ(text_of(passwd.handle, "pw_dir"), "/home/ann");
    user.pw_dir.length = 5;
    EXPECT_EQ(text_of(passwd.handle, "pw_dir"), "/home");
    user.pw_dir.length = 9;
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(set_text(passwd.handle, "pw_dir", "/elsewhere"), ENOMEM);
    base::testing::allow_allocations();
    EXPECT_EQ(text_of(passwd.handle, "pw_dir"), "/home/ann");
}

TEST(FieldTexts, GroupMembersFromOneUpToTheCount) {
    Instance group("group");
    fill_group(group.handle, {"operator", "gone"});
    auto& instance = *static_cast<posix::GroupInstance*>(instance_of(group.handle));
    base::release(instance.gr_mem[1]);
    instance.gr_mem[1] = nullptr;  // an absent member reads as empty
    FString four(4, '#');
    std::int32_t ilen = 0;
    EXPECT_EQ(VALUES(member(group.handle, 1, four, ilen), four.text, ilen), tuple(TARVO_ETRUNC, "oper", 8));
    EXPECT_EQ(VALUES(member(group.handle, 2, four, ilen), four.text, ilen), tuple(0, "    ", 0));
    EXPECT_EQ(member(group.handle, 0) + member(group.handle, 3), "<125><125>");
    ASSERT_EQ(set(group.handle, "gr_nmem", std::int32_t{1000}), 0);  // reaches no further than held
    EXPECT_EQ(member(group.handle, 3), "<125>");
    ASSERT_EQ(set(group.handle, "gr_nmem", std::int32_t{1}), 0);
    EXPECT_EQ(member(group.handle, 2), "<125>");
}

// Calls a stub with one zeroed buffer for every pointer argument, IERROR among them, and 1
// for every hidden length; answers what it left at the buffer's start, and errno.
template <class... P>
tuple<std::int32_t, int> stub_result(void (*stub)(P...) noexcept) {
    alignas(8) std::int32_t buffer[8] = {};
    errno = 0;
    stub([&] {
        if constexpr (std::is_pointer_v<P>) return reinterpret_cast<P>(buffer);
        else return P{1};
    }()...);
    return {buffer[0], errno};
}

TEST(FieldStubs, EveryStubAnswersEnonameWhateverItIsGiven) {
    int stubs = 0;
#define EXPECT_STUB(name, form, T) \
    ++stubs;                       \
    EXPECT_EQ(stub_result(name), tuple(TARVO_ENONAME, EINVAL)) << #name;
    TARVO_PXF_STUB_ACCESSORS(EXPECT_STUB)
#undef EXPECT_STUB
    EXPECT_EQ(stubs, 29);
}

// A Fortran INTEGER FUNCTION F(IVAL) as the handle routines see it.
std::int32_t twice(std::int32_t* ival) {
    *ival *= 2;
    return *ival + 1;
}
std::int32_t other(std::int32_t*) { return 0; }

// PXFGETSUBHANDLE of a procedure: IERROR and the handle.
tuple<std::int32_t, std::int32_t> sub_handle(std::int32_t (*procedure)(std::int32_t*)) {
    std::int32_t handle = -1, ierror = -1;
    pxfgetsubhandle_(reinterpret_cast<void (*)()>(procedure), &handle, &ierror);
    return {ierror, handle};
}

TEST(SubHandles, SameProcedureSameHandleAndCallsThrough) {
    const std::int32_t h = std::get<1>(sub_handle(twice));
    EXPECT_EQ(sub_handle(twice), tuple(0, h));
    EXPECT_NE(std::get<1>(sub_handle(other)), h);
    EXPECT_EQ(sub_handle(nullptr), tuple(TARVO_ENOHANDLE, 0));
    std::vector<std::int32_t> bad = {0};
#if TARVO_HANDLE_TABLES
    EXPECT_EQ(h, 16);  // the first static handle
    bad.insert(bad.end(), {1, 15, 99, 256});  // reserved, reserved, never given, no slot
#endif
    std::int32_t ierror = -1, ival = 20;
    EXPECT_EQ(VALUES(pxfcallsubhandle_(&h, &ival, &ierror), ierror, ival), tuple(41, 0, 40));
    for (std::int32_t b : bad) {
        errno = 0;
        EXPECT_EQ(VALUES(pxfcallsubhandle_(&b, &ival, &ierror), ierror, errno), tuple(0, TARVO_ENOHANDLE, EINVAL)) << b;
    }
}

}  // namespace
