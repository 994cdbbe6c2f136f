// Environment variables and the command line, as a Fortran caller reaches them.
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "posix/pxf_support.h"

namespace {

using pxf_test::ierror_of;
using pxf_test::kIerror;
using std::string;
using std::tuple;
using tarvo_test::FString;

// IERROR, LENVAL and VALUE of PXFGETENV on a name of NAME's length.
tuple<std::int32_t, std::int32_t, string> getenv_of(const string& name, std::int32_t lenname, std::size_t room = 16) {
    FString value(room, 'x');
    std::int32_t lenval = -1;
    const std::int32_t ierror = ierror_of(pxfgetenv_, name.data(), &lenname, value.data(), &lenval, kIerror,
                                          name.size(), value.size());
    return {ierror, lenval, value.text};
}

std::int32_t setenv_of(const string& name, std::int32_t lenname, const string& value, std::int32_t lennew,
                       std::int32_t overwrite = 1) {
    return ierror_of(pxfsetenv_, name.data(), &lenname, value.data(), &lennew, &overwrite, kIerror, name.size(),
                     value.size());
}

class Environment : public ::testing::Test {
protected:
    void TearDown() override {
        for (const char* name : {"TARVO_E", "  TARVO_E", "TARVO_LONG"}) ::unsetenv(name);
    }
};

TEST_F(Environment, NamesAreTrimmedByTheirLength) {
    ::setenv("TARVO_E", "plain", 1);
    ::setenv("  TARVO_E", "indented", 1);
    EXPECT_EQ(getenv_of("  TARVO_E  ", 0), (tuple{0, 5, string("plain" + string(11, ' '))}));
    EXPECT_EQ(std::get<2>(getenv_of("  TARVO_E  ", 11)), "indented" + string(8, ' '));
    // A length beyond the declared 10 characters is clipped, not refused.
    EXPECT_EQ(VALUES(getenv_of("TARVO_E\t  ", 50), errno), (tuple{tuple{0, 5, "plain" + string(11, ' ')}, 0}));
    EXPECT_EQ(VALUES(getenv_of("TARVO_NONE", 0), errno), (tuple{tuple{EINVAL, -1, string(16, ' ')}, EINVAL}));
    EXPECT_EQ(VALUES(getenv_of("TARVO_E", 0, 3), errno), (tuple{tuple{TARVO_ETRUNC, 5, string("pla")}, TARVO_ETRUNC}));
}

TEST_F(Environment, SetTrimsAndHonoursOverwrite) {
    EXPECT_EQ(setenv_of(" TARVO_E ", 0, "  some value  ", 0), 0);
    EXPECT_STREQ(std::getenv("TARVO_E"), "some value");
    EXPECT_EQ(setenv_of("TARVO_E", 7, "other", 5, 0), 0);
    EXPECT_STREQ(std::getenv("TARVO_E"), "some value");
    EXPECT_EQ(setenv_of("TARVO_E", 7, "  kept  ", 6), 0);
    EXPECT_STREQ(std::getenv("TARVO_E"), "  kept");
    EXPECT_EQ(setenv_of("TARVO_E", 0, "      ", 0), 0);
    EXPECT_STREQ(std::getenv("TARVO_E"), "");
    EXPECT_EQ(VALUES(setenv_of("TARVO_E", 8, "v", 0), errno), (tuple{EINVAL, EINVAL}));
    EXPECT_EQ(VALUES(setenv_of("TARVO_E", 0, "v", -1), errno), (tuple{EINVAL, EINVAL}));
    EXPECT_EQ(setenv_of("A=B", 0, "v", 0), EINVAL);  // the host refuses
}

TEST_F(Environment, ClearRemovesEveryEntry) {
    const int status = tarvo_test::run_in_child([] {
        ::setenv(string(150, 'L').c_str(), "long name", 1);
        // Entries the host's unsetenv cannot take out: no "=", and an empty name.
        static char odd[] = "NO_EQUALS_SIGN", empty[] = "=value";
        static char* entries[] = {odd, empty, nullptr};
        std::int32_t ierror = -1;
        pxfclearenv_(&ierror);
        const bool cleared_host = ierror == 0 && environ[0] == nullptr;
        environ = entries;
        pxfclearenv_(&ierror);
        return cleared_host && ierror == 0 && environ[0] == nullptr ? 0 : 1;
    });
    EXPECT_EQ(status, 0);
}

TEST(CommandLine, ArgumentsAndTheirCount) {
    FString word(512), tiny(2);
    std::int32_t ilen = -1, m = 0;
    EXPECT_EQ(ierror_of(pxfgetarg_, &m, word.data(), &ilen, kIerror, word.size()), 0);
    EXPECT_EQ(VALUES(word.trimmed(), ilen), (tuple{string(program_invocation_name), static_cast<std::int32_t>(word.trimmed().size())}));
    errno = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfgetarg_, &m, tiny.data(), &ilen, kIerror, tiny.size()), errno, tiny.text),
              (tuple{TARVO_ETRUNC, 0, string(program_invocation_name, 2)}));
    m = ipxfargc_() + 1;
    EXPECT_EQ(VALUES(ierror_of(pxfgetarg_, &m, word.data(), &ilen, kIerror, word.size()), ilen, errno),
              (tuple{EINVAL, 0, EINVAL}));
    m = ipxfargc_();
    EXPECT_EQ(ierror_of(pxfgetarg_, &m, word.data(), &ilen, kIerror, word.size()), 0);
}

}  // namespace
