// The PXF constant table, looked up as Fortran callers look it up.
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>

#include "support/support.h"
#include <tarvo/posix.h>

namespace {

struct Answer {
    std::int32_t ival;
    std::int32_t ierror;
};

Answer lookup(const std::string& name, std::size_t padded = 32) {
    tarvo_test::FString text(name, std::max(padded, name.size()));
    Answer a{12345, 12345};
    pxfconst_(text.data(), &a.ival, &a.ierror, text.size());
    return a;
}

void expect_value(const std::string& name, std::int32_t value) {
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const std::string& form : {name, lower}) {
        const Answer a = lookup(form);
        EXPECT_EQ(a.ierror, 0) << form;
        EXPECT_EQ(a.ival, value) << form;
        EXPECT_EQ(ipxfconst_(form.data(), form.size()), value) << form;
        EXPECT_EQ(pxfisconst_(form.data(), form.size()), TARVO_TRUE) << form;
    }
}

void expect_unknown(const std::string& name, std::size_t hidden) {
    std::int32_t ival = 7, ierror = 7;
    errno = 0;
    pxfconst_(name.data(), &ival, &ierror, hidden);
    EXPECT_EQ(ierror, TARVO_ENONAME) << name;
    EXPECT_EQ(ival, -1) << name;
    EXPECT_EQ(errno, 0) << name;  // an unknown name is not a system error
    EXPECT_EQ(ipxfconst_(name.data(), hidden), -1) << name;
    EXPECT_EQ(pxfisconst_(name.data(), hidden), TARVO_FALSE) << name;
}

TEST(ConstantTable, EveryRowAnswersItsValueInEitherCase) {
    int rows = 0;
#define PXF_HOST(NAME) ++rows, expect_value(#NAME, static_cast<std::int32_t>((std::intptr_t)(NAME)));
#define PXF_OWN(NAME, VALUE) ++rows, expect_value(#NAME, VALUE);
#define PXF_UNREACHABLE(TEXT, VALUE) ++rows, expect_unknown(TEXT, sizeof TEXT - 1);
#include "posix/constants.def"
#undef PXF_HOST
#undef PXF_OWN
#undef PXF_UNREACHABLE
    EXPECT_EQ(rows, 265);  // the three names Linux lacks drop out
}

TEST(ConstantTable, MinusOneAndTheTopBit) {
    // -1 is also the answer for an unknown name: only PXFCONST tells them apart.
    EXPECT_EQ(ipxfconst_("EEND", 4), -1);
    EXPECT_EQ(ipxfconst_("SIG_ERR", 7), -1);
    EXPECT_EQ(lookup("ENONAME").ival, 126);  // the binding's codes are fixed, not the host's
    EXPECT_EQ(ipxfconst_("CRTSCTS", 7), INT32_MIN);  // 0x80000000 read as signed
}

TEST(ConstantTable, NameIsCutAtItsFirstBlank) {
    expect_value("sig_block", SIG_BLOCK);
    EXPECT_EQ(lookup("O_WRONLY and more").ival, O_WRONLY);
    EXPECT_EQ(lookup("O_WRONLY and more").ierror, 0);
    const char embedded[] = "O_RDWR\0xyz";
    Answer a{};
    pxfconst_(embedded, &a.ival, &a.ierror, sizeof embedded - 1);
    EXPECT_EQ(a.ierror, 0);
    EXPECT_EQ(a.ival, O_RDWR);
    pxfconst_("O_RDWRX", &a.ival, &a.ierror, 6);  // the hidden length ends the name
    EXPECT_EQ(a.ival, O_RDWR);
}

TEST(ConstantTable, UnknownNamesGiveEnoname) {
    for (const char* name : {"", "      ", " O_RDONLY", "O_RDONL", "O_RDONLYX", "ENAMETOOLONG", "ENAMETOOLONG   ",
                             "_SC_COLL_WEIGHTS_MAXIMUM_AND_THEN_SOME", "O_RDONLY_", "\xC3\x89IO"})
        expect_unknown(name, std::char_traits<char>::length(name));
    expect_unknown("SIGHUP", 0);
    expect_unknown("SIGHUP", static_cast<std::size_t>(-4));
    expect_unknown(std::string(), 0);
    std::int32_t ival, ierror;
    pxfconst_(nullptr, &ival, &ierror, 6);
    EXPECT_EQ(ierror, TARVO_ENONAME);
#ifndef SIGEMT
    expect_unknown("SIGEMT", 6);
#endif
#ifndef SIGINFO
    expect_unknown("SIGINFO", 7);
#endif
#ifndef _SYS_NAMELEN
    expect_unknown("_SYS_NAMELEN", 12);
#endif
}

}  // namespace
