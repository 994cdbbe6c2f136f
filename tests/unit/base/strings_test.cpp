// Fortran string conversion: terminated copies, results, trimming, unsigned comparison.
#include <cerrno>
#include <cstring>

#include "base/memory.h"
#include "base/fstring.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/frame.h>

namespace {

using base::allocCstr;
using base::CstrToFstr;

struct Cstr {
    char* p;
    Cstr(const char* s, base::flen n) : p(allocCstr(s, n)) {}
    ~Cstr() { base::deallocCstr(p); }
};

TEST(Conversion, DropsOnlyTrailingBlanksAndKeepsTheSpareBytes) {
    struct Case { const char* text; base::flen len; const char* want; };
    const Case cases[] = {{"ab  ", 4, "ab"}, {"  ab", 4, "  ab"}, {"ab\t", 3, "ab\t"},
                          {"    ", 4, ""},   {"abc", 0, ""},      {"abc", -5, ""}};
    for (const Case& c : cases) {
        Cstr copy(c.text, c.len);
        ASSERT_NE(copy.p, nullptr);
        EXPECT_STREQ(copy.p, c.want) << '"' << c.text << "\" " << c.len;
        copy.p[std::strlen(c.want) + 22] = 'x';  // the block is 23 bytes longer (ASan checks)
    }
    const char nul_inside[] = {'a', '\0', 'b', ' '};
    Cstr copy(nul_inside, 4);
    EXPECT_EQ(std::memcmp(copy.p, "a\0b\0", 4), 0);
}

TEST(Conversion, FailuresRecordTheirErrorNumber) {
    errno = 0;
    EXPECT_EQ(allocCstr(nullptr, 4), nullptr);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(base::testing::last_recorded_error(), EINVAL);
    base::testing::fail_allocations_after(0);
    const char* p = allocCstr("abc", 3);
    base::testing::allow_allocations();
    EXPECT_EQ(p, nullptr);
    EXPECT_EQ(errno, ENOMEM);
    EXPECT_EQ(base::testing::last_recorded_error(), ENOMEM);
}

TEST(Results, CopyPadAndTruncation) {
    struct Case { const char* src; base::flen dlen, smax; const char* want; base::flen copied; bool cut; };
    const Case cases[] = {
        {"abc", 6, 100, "abc   ", 3, false}, {"abc", 3, 100, "abc", 3, false},
        {"abc", 2, 100, "ab", 2, true},       {"abc", 2, 2, "ab", 2, true},  // looks past smax
        {"abc", 5, 2, "ab   ", 2, false},     {nullptr, 4, 10, "    ", 0, false},
        {"abc", 4, 0, "    ", 0, false},      {"abc", 4, -1, "    ", 0, false},
        {"", 0, 10, "", 0, false},            {"a", 0, 10, "", 0, true},
    };
    for (const Case& c : cases) {
        char dst[8];
        std::memset(dst, 'x', sizeof dst);
        errno = 0;
        const base::flen copied = CstrToFstr(dst, c.src, c.dlen, c.smax);
        const int error = errno;
        EXPECT_EQ(copied, c.copied) << c.dlen << ' ' << c.smax;
        EXPECT_EQ(std::string(dst, static_cast<std::size_t>(c.dlen)), c.want);
        EXPECT_EQ(dst[c.dlen], 'x');
        EXPECT_EQ(error, c.cut ? EINVAL : 0) << c.dlen << ' ' << c.smax;
    }
    EXPECT_EQ(CstrToFstr(nullptr, "abc", 4, 10), 0);
    EXPECT_EQ(errno, EINVAL);
}

TEST(Trimming, LastNonBlank) {
    EXPECT_EQ(lnblnk_("a b  ", 5), 3);
    EXPECT_EQ(lnblnk_("abc", 0), 0);
    EXPECT_EQ(lnblnk_("     ", 5), 0);
    EXPECT_EQ(lnblnk_("x\t ", 3), 2);
    EXPECT_EQ(lnblnk_("abc", static_cast<std::size_t>(-1)), 0);  // a negative length
    EXPECT_EQ(lnblnk_(nullptr, 4), 0);
    EXPECT_EQ(ipxflentrim_("a b  ", 5), 3);
    if (sizeof(std::size_t) == 8) {  // only the low 32 bits of the length count
        EXPECT_EQ(ipxflentrim_("ab ", static_cast<std::size_t>(0x100000003ull)), 2);
        EXPECT_EQ(ipxflentrim_("ab ", static_cast<std::size_t>(0x1FFFFFFFFull)), 0);
    }
}

TEST(UnsignedCompare, OrdersAsUnsignedAndWrapsTheDifference) {
    struct Case { std::int32_t a, b, cmp, diff; };
    const Case cases[] = {{1, -1, -1, 2}, {-1, 1, 1, 2}, {1, 1, 0, 0}, {0, INT32_MIN, -1, INT32_MIN}};
    for (const Case& c : cases) {
        std::int32_t cmp = 9, diff = 9;
        EXPECT_EQ(pxfucompare_(&c.a, &c.b, &cmp, &diff), c.diff);
        EXPECT_EQ(cmp, c.cmp) << c.a << ' ' << c.b;
        EXPECT_EQ(diff, c.diff);
    }
}

TEST(WhiteSpace, PrivateClassifier) {
    for (int c : {' ', '\t', '\n', '\v', '\f', '\r'}) EXPECT_EQ(base::isspace(c), 1) << c;
    for (int c : {int{'a'}, 0, 0xE9}) EXPECT_EQ(base::isspace(c), 0) << c;
}

}  // namespace
