// Environment, host and process routines, called as Fortran calls them.
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "runtime/errsns.h"
#include "support/support.h"
#include <tarvo/portlib.h>

extern char** environ;

namespace {

using tarvo_test::FString;

std::string getenv_value(const std::string& name, std::size_t length) {
    FString value(length, 'x');
    getenv_(name.data(), value.data(), name.size(), value.size());
    return value.text;
}

TEST(Getenv, NameEndsAtItsFirstBlankAndValueIsCutOrPadded) {
    setenv("TARVO_T", "value", 1);
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(getenv_value("TARVO_T   ", 8), "value   ");
    EXPECT_EQ(getenv_value("TARVO_T X", 8), "value   ");
    EXPECT_EQ(getenv_value("TARVO_T", 3), "val");  // cut without a report
    EXPECT_EQ(getenv_value("TARVO_NOT_SET", 4), "    ");
    EXPECT_EQ(getenv_value(" TARVO_T", 4), "    ");  // a leading blank ends the name at once
    EXPECT_EQ(getenv_value("", 4), "    ");
    EXPECT_EQ(runtime::last_recorded_error(), 0);
    FString value(4, 'x');
    getenv_(nullptr, value.data(), 7, value.size());
    EXPECT_EQ(value.text, "    ");
}

// SCANENV over an environment the test controls, entry by entry.
class Scanenv : public ::testing::Test {
protected:
    void TearDown() override { environ = saved_; }
    void use(std::vector<const char*> entries) {
        entries_ = std::move(entries);
        entries_.push_back(nullptr);
        environ = const_cast<char**>(entries_.data());
    }
    std::pair<std::string, std::string> next(const std::string& pattern, std::size_t name_len = 8) {
        FString name(name_len, 'x'), value(6, 'x');
        scanenv_(pattern.data(), name.data(), value.data(), pattern.size(), name.size(), value.size());
        return {name.text, value.text};
    }
    using Result = std::pair<std::string, std::string>;

private:
    char** saved_ = environ;
    std::vector<const char*> entries_;
};

TEST_F(Scanenv, ReturnsEveryMatchOnceInOrderThenBlanks) {
    use({"TVA=1", "XX=2", "TVB=", "TVAC", "TV=x", "T=no", "PTV=no"});
    const Result blank{"        ", "      "};
    EXPECT_EQ(next(std::string("  TV \0 ", 7)), Result("TVA     ", "1     "));  // blanks and NULs trimmed
    EXPECT_EQ(next(""), blank);                                // no pattern: no effect on the scan
    EXPECT_EQ(next("TV"), Result("TVB     ", "      "));
    EXPECT_EQ(next("TV"), Result("TVAC    ", "      "));  // an entry without "="
    EXPECT_EQ(next("TV", 1), Result("T", "x     "));       // the name cut to its length
    EXPECT_EQ(next("TV"), blank);
    EXPECT_EQ(next("TV"), blank);  // stays at the end until the pattern changes
    EXPECT_EQ(next("XX"), Result("XX      ", "2     "));
    EXPECT_EQ(next("TVA"), Result("TVA     ", "1     "));
}

TEST_F(Scanenv, RestartsWhenTheEnvironmentChangesUnderTheScan) {
    use({"TVA=1", "TVB=2", "TVC=3", "TVD=4"});
    EXPECT_EQ(next("TV").first, "TVA     ");
    EXPECT_EQ(next("TV").first, "TVB     ");
    use({"TVA=1", "OTHER=2", "TVC=3", "TVD=4"});  // the entry last returned is gone
    EXPECT_EQ(next("TV").first, "TVA     ");
    EXPECT_EQ(next("TV").first, "TVC     ");
    EXPECT_EQ(next("TV").first, "TVD     ");
    use({"TVE=5"});  // shorter than the scan position: never read past its end
    EXPECT_EQ(next("TV").first, "TVE     ");
    use({});
    EXPECT_EQ(next("TV").first, "        ");
    environ = nullptr;
    EXPECT_EQ(next("TV").first, "        ");
}

TEST(Host, IdentitiesAndNamesMatchTheSystem) {
    EXPECT_EQ(getpid_(), getpid());
    EXPECT_EQ(getuid_(), static_cast<std::int32_t>(getuid()));
    EXPECT_EQ(getgid_(), static_cast<std::int32_t>(getgid()));
    FString login(64, 'x');
    getlog_(login.data(), login.size());
    EXPECT_EQ(login.trimmed(), getpwuid(getuid())->pw_name);

    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    const std::string name = host;
    FString wide(name.size() + 3, 'x'), exact(name.size(), 'x'), tiny(1, 'x');
    EXPECT_EQ(hostnm_(wide.data(), wide.size()), 0);
    EXPECT_EQ(wide.text, name + "   ");
    EXPECT_EQ(hostnam_(exact.data(), exact.size()), 0);
    EXPECT_EQ(exact.text, name);
    EXPECT_EQ(hostnm_(tiny.data(), tiny.size()), -1);
    EXPECT_EQ(tiny.text, name.substr(0, 1));
    EXPECT_EQ(hostnm_(tiny.data(), 0), -1);
}

TEST(Process, SystemKillAndSleepPassTheHostResultsThrough) {
    EXPECT_EQ(system_("exit 3    ", 10), 3 << 8);  // a wait status, not the exit code
    EXPECT_EQ(system_(nullptr, 4), -1);
    const std::int32_t self = getpid(), none = 0, bad = 999, gone = 0x7ffffff0;
    EXPECT_EQ(kill_(&self, &none), 0);
    EXPECT_EQ(kill_(&self, &bad), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(kill_(&gone, &none), -1);
    EXPECT_EQ(errno, ESRCH);
    const std::int32_t negative = -1, zero = 0;
    const std::time_t before = std::time(nullptr);
    sleep_(&negative);
    sleep_(nullptr);
    sleep_(&zero);
    EXPECT_LE(std::time(nullptr) - before, 1);
}

TEST(ProcessEnd, AbortPrintsAtMost240CharactersOfTheMessage) {
    const std::string message = std::string(240, 'a') + std::string(60, 'b');
    EXPECT_EXIT(abort_(message.data(), message.size()), ::testing::KilledBySignal(SIGABRT),
                "^abort: a{240}\n$");
    EXPECT_EXIT(abort_(nullptr, 12345), ::testing::KilledBySignal(SIGABRT), "^abort: Fortran Abort Called\n$");
    EXPECT_EXIT(abort_("", 0), ::testing::KilledBySignal(SIGABRT), "^abort: \n$");
}

TEST(ProcessEnd, ExitEndsWithTheStatus) {
    const std::int32_t status = 7;
    EXPECT_EXIT(exit_(&status), ::testing::ExitedWithCode(7), "");
    EXPECT_EXIT(exit_(nullptr), ::testing::ExitedWithCode(0), "");
}

}  // namespace
