// Environment variables and the command line, as a Fortran caller reaches them.
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

// IERROR, LENVAL, VALUE and errno of PXFGETENV.
tuple<std::int32_t, std::int32_t, string, int> getenv_of(const string& name, std::int32_t lenname, std::size_t room = 8) {
    FString value(room, 'x');
    std::int32_t lenval = -1;
    const std::int32_t ierror =
        ierror_of(pxfgetenv_, name.data(), &lenname, value.data(), &lenval, kIerror, name.size(), value.size());
    return {ierror, lenval, value.text, errno};
}

// IERROR of PXFSETENV, and the variable's value afterwards ("-" when not set).
tuple<std::int32_t, string> setenv_of(const string& name, std::int32_t lenname, const string& value,
                                      std::int32_t lennew, std::int32_t overwrite = 1) {
    const std::int32_t ierror = ierror_of(pxfsetenv_, name.data(), &lenname, value.data(), &lennew, &overwrite,
                                          kIerror, name.size(), value.size());
    const char* now = std::getenv("TARVO_E");
    return {ierror, now != nullptr ? now : "-"};
}

TEST(Environment, NamesAreTrimmedByTheirLength) {
    ::setenv("TARVO_E", "plain", 1);
    ::setenv("  TARVO_E", "indented", 1);
    EXPECT_EQ(getenv_of("  TARVO_E  ", 0), (tuple{0, 5, string("plain   "), 0}));
    EXPECT_EQ(getenv_of("  TARVO_E  ", 11), (tuple{0, 8, string("indented"), 0}));
    EXPECT_EQ(getenv_of("TARVO_E\t  ", 50), (tuple{0, 5, string("plain   "), 0}));  // clipped to 10
    EXPECT_EQ(getenv_of("TARVO_NONE", 0), (tuple{EINVAL, -1, string(8, ' '), EINVAL}));
    EXPECT_EQ(getenv_of("TARVO_E", 0, 3), (tuple{TARVO_ETRUNC, 5, string("pla"), TARVO_ETRUNC}));
    ::unsetenv("TARVO_E");
    ::unsetenv("  TARVO_E");
}

TEST(Environment, SetTrimsAndHonoursOverwrite) {
    ::unsetenv("TARVO_E");
    EXPECT_EQ(setenv_of(" TARVO_E ", 0, "  some value  ", 0), (tuple{0, string("some value")}));
    EXPECT_EQ(setenv_of("TARVO_E", 7, "other", 5, 0), (tuple{0, string("some value")}));
    EXPECT_EQ(setenv_of("TARVO_E", 7, "  kept  ", 6), (tuple{0, string("  kept")}));
    EXPECT_EQ(setenv_of("TARVO_E", 0, "      ", 0), (tuple{0, string("")}));
    EXPECT_EQ(VALUES(setenv_of("TARVO_E", 8, "v", 0), errno), (tuple{tuple{EINVAL, string("")}, EINVAL}));
    EXPECT_EQ(setenv_of("TARVO_E", 0, "v", -1), (tuple{EINVAL, string("")}));
    ::unsetenv("TARVO_E");
}

TEST(Environment, ClearRemovesEveryEntry) {
    EXPECT_EQ(tarvo_test::run_in_child([] {
                  ::setenv(string(150, 'L').c_str(), "a name longer than the first buffer", 1);
                  std::int32_t first = -1, second = -1;
                  pxfclearenv_(&first);
                  const bool host_list_empty = environ[0] == nullptr;
                  // Entries unsetenv cannot take out: no "=", an empty name.
                  static char odd[] = "NO_EQUALS_SIGN", empty[] = "=value";
                  static char* entries[] = {odd, empty, nullptr};
                  environ = entries;
                  pxfclearenv_(&second);
                  return first == 0 && second == 0 && host_list_empty && environ[0] == nullptr ? 0 : 1;
              }),
              0);
}

// Argument 0 is the command name; the run-time's own behaviour is tested with the run-time.
TEST(CommandLine, CutAndMissingArguments) {
    FString tiny(2);
    std::int32_t ilen = -1, m = 0, name_length = static_cast<std::int32_t>(string(program_invocation_name).size());
    errno = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfgetarg_, &m, tiny.data(), &ilen, kIerror, tiny.size()), errno, tiny.text, ilen),
              (tuple{TARVO_ETRUNC, 0, string(program_invocation_name, 2), name_length}));
    m = ipxfargc_() + 1;
    EXPECT_EQ(VALUES(ierror_of(pxfgetarg_, &m, tiny.data(), &ilen, kIerror, tiny.size()), ilen, errno),
              (tuple{EINVAL, 0, EINVAL}));
}

}  // namespace
