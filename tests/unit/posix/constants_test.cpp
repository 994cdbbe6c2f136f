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
#include <tuple>

#include "support/support.h"
#include <tarvo/posix.h>

namespace {

// What PXFCONST (IVAL, IERROR and the errno it leaves), IPXFCONST and PXFISCONST answer.
using Answer = std::tuple<std::int32_t, std::int32_t, int, std::int32_t, std::int32_t>;

Answer lookup(const char* name, std::size_t length) {
    std::int32_t ival = 12345, ierror = 12345;
    errno = 0;
    pxfconst_(name, &ival, &ierror, length);
    return {ival, ierror, errno, ipxfconst_(name, length), pxfisconst_(name, length)};
}

Answer known(std::int32_t value) { return {value, 0, 0, value, TARVO_TRUE}; }
const Answer kUnknown{-1, TARVO_ENONAME, 0, -1, TARVO_FALSE};  // an unknown name is no system error

// NAME padded with blanks and in lower case, exactly as long as it is.
void expect_value(const std::string& name, std::int32_t value) {
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const std::string& form : {tarvo_test::FString(name, name.size() + 20).text, lower})
        EXPECT_EQ(lookup(form.data(), form.size()), known(value)) << form;
}

TEST(ConstantTable, EveryRowAnswersItsValueInEitherCase) {
    int rows = 0;
#define PXF_HOST(NAME) ++rows, expect_value(#NAME, static_cast<std::int32_t>((std::intptr_t)(NAME)));
#define PXF_OWN(NAME, VALUE) ++rows, expect_value(#NAME, VALUE);
#define PXF_UNREACHABLE(TEXT, VALUE) ++rows; EXPECT_EQ(lookup(TEXT, sizeof TEXT - 1), kUnknown) << TEXT;
#include "posix/constants.def"
#undef PXF_HOST
#undef PXF_OWN
#undef PXF_UNREACHABLE
    EXPECT_EQ(rows, 265);  // the three names Linux lacks drop out
}

TEST(ConstantTable, NamesEndAtABlankOrTheirLengthAndMatchWhole) {
    const struct { const char* text; std::size_t length; Answer answer; } cases[] = {
        {"O_WRONLY and more", 17, known(O_WRONLY)}, {"O_RDWR\0xyz", 10, known(O_RDWR)},
        {"O_RDWRX", 6, known(O_RDWR)},  // the hidden length ends the name
        {"EEND", 4, known(-1)}, {"SIG_ERR", 7, known(-1)},  // -1 also means unknown to IPXFCONST
        {"ENONAME", 7, known(126)},                         // the binding's codes are fixed, not the host's
        {"CRTSCTS", 7, known(INT32_MIN)},                   // 0x80000000 read as signed
        {"", 0, kUnknown}, {"      ", 6, kUnknown}, {" O_RDONLY", 9, kUnknown}, {"O_RDONL", 7, kUnknown},
        {"O_RDONLYX", 9, kUnknown}, {"O_RDONLY_", 9, kUnknown}, {"ENAMETOOLONG   ", 15, kUnknown},
        {"_SC_COLL_WEIGHTS_MAXIMUM_AND_THEN_SOME", 38, kUnknown}, {"\xC3\x89IO", 4, kUnknown},
        {"SIGHUP", 0, kUnknown}, {"SIGHUP", static_cast<std::size_t>(-4), kUnknown}, {nullptr, 6, kUnknown},
        {"SIGEMT", 6, kUnknown}, {"SIGINFO", 7, kUnknown}, {"_SYS_NAMELEN", 12, kUnknown},  // names Linux lacks
    };
    for (const auto& c : cases) EXPECT_EQ(lookup(c.text, c.length), c.answer) << (c.text ? c.text : "null");
}

}  // namespace
