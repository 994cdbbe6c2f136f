// Error state, diagnostics and version identification.
#include <cerrno>
#include <climits>
#include <regex>

#include "frame/errors.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using tarvo_test::CapturedOutput;
using tarvo_test::FString;

class ErrorRecording : public tarvo_test::ScratchDirTest {};

TEST_F(ErrorRecording, LastClassicFailureIsKeptAcrossSuccesses) {
    EXPECT_EQ(ierrno_(), 0);
    EXPECT_EQ(chdir_("missing", 7), ENOENT);
    EXPECT_EQ(ierrno_(), ENOENT);
    EXPECT_EQ(base::testing::last_recorded_error(), ENOENT);
    EXPECT_EQ(chdir_(".", 1), 0);
    EXPECT_EQ(ierrno_(), ENOENT);
}

TEST(ThreadErrno, GetLastErrorReadsErrnoUnderBothNames) {
    errno = EPERM;
    EXPECT_EQ(getlasterror_(), EPERM);
    errno = ENOSPC;
    EXPECT_EQ(getlasterrorqq_(), ENOSPC);
}

TEST(ThreadErrno, SystemErrorDummyAddsOne) {
    EXPECT_EQ(for_getsystemerror_dummy(5), 6);
    EXPECT_EQ(for_getsystemerror_dummy(-1), 0);
    EXPECT_EQ(for_getsystemerror_dummy(INT32_MAX), INT32_MIN);
}

TEST(Diagnostics, WarningPrintsOneLineAndGoesOn) {
    CapturedOutput err;
    const int written = __tarvo_lib_warn(1006);
    const int error = errno;
    const std::string text = err.text();
    EXPECT_EQ(text, "*** W - 1006 - Output was truncated, buffer provided was too small\n");
    EXPECT_EQ(written, static_cast<int>(text.size()));
    EXPECT_EQ(error, 1006);
}

TEST(Diagnostics, TextsKeepTheirExactForm) {
    CapturedOutput err;
    __tarvo_lib_warn(1000);
    __tarvo_lib_warn(1002);
    __tarvo_lib_warn(1004);
    __tarvo_lib_warn(1010);  // a code without a text
    __tarvo_lib_warn(INT32_MIN + 5);  // far outside the table: no overflow on the way
    EXPECT_EQ(err.text(),
              "*** W - 1000 -  \n"
              "*** W - 1002 - Logical unit number is invalid or not open.\n"
              "*** W - 1004 - Only signal KILL (9) is supported on Windows* OS\n"
              "*** W - 1010 - (null)\n"
              "*** W - -2147483643 - (null)\n");
}

TEST(Diagnostics, FatalErrorEndsTheProcessWithTheCode) {
    EXPECT_EXIT(__tarvo_lib_err(1008), ::testing::ExitedWithCode(1008 % 256),
                "\\*\\*\\* E - 1008 - Portability function 'ALARM' can't work without 'lpthread' library");
}

TEST(Version, IdentificationStringHasItsFixedShape) {
    const std::regex shape(
        "@\\(#\\)Tarvo Fortran portability library\tV[0-9]{2}\\.[0-9]-[0-9]{3}\t"
        "(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [1-9][0-9]? [0-9]{4}");
    EXPECT_TRUE(std::regex_match(for__portlib_version_string, shape)) << for__portlib_version_string;
}

TEST(Version, LodrikVersionCutsAndPads) {
    FString ten(10, 'x');
    EXPECT_EQ(for_lodrik_version_(ten.data(), ten.size()), 3);
    EXPECT_EQ(ten.text, "Tarvo Fort");

    FString wide(80, 'x');
    EXPECT_EQ(for_lodrik_version_(wide.data(), wide.size()), 3);
    const std::string expected = std::string(for__portlib_version_string + 4);
    EXPECT_EQ(wide.text.substr(0, expected.size()), expected);
    EXPECT_EQ(wide.text.find_first_not_of(' ', expected.size()), std::string::npos);

    EXPECT_EQ(for_lodrik_version_(nullptr, 0), 3);
}


}  // namespace
