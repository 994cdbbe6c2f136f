// Environment, host and process routines, called as Fortran calls them.
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

#include "base/record.h"
#include "support/support.h"
#include <tarvo/portlib.h>

extern char** environ;

namespace {

using tarvo_test::FString;

TEST(Getenv, NameEndsAtItsFirstBlankAndValueIsCutOrPadded) {
    setenv("TARVO_T", "value", 1);
    const auto get = [](const std::string& name, std::size_t length) {
        FString value(length, 'x');
        getenv_(name.empty() ? nullptr : name.data(), value.data(), name.size(), value.size());
        return value.text;
    };
    EXPECT_EQ(get("TARVO_T   ", 8) + get("TARVO_T X", 8) + get("TARVO_T", 3), "value   value   val");  // cut silently
    EXPECT_EQ(get("TARVO_UNSET", 2) + get(" TARVO_T", 2) + get("", 2), "      ");
    EXPECT_EQ(base::testing::last_recorded_error(), 0);
}

// SCANENV over an environment the test builds, entry by entry.
class Scanenv : public ::testing::Test {
protected:
    void TearDown() override { environ = saved_; }
    void use(std::vector<const char*> entries) {
        entries_ = std::move(entries);
        entries_.push_back(nullptr);
        environ = const_cast<char**>(entries_.data());
    }
    // NAME|VALUE of each call in turn.
    std::string next(std::initializer_list<std::string> patterns, std::size_t name_len = 5) {
        std::string all;
        for (const std::string& p : patterns) {
            FString name(name_len, 'x'), value(3, 'x');
            scanenv_(p.data(), name.data(), value.data(), p.size(), name.size(), value.size());
            all += name.text + "|" + value.text;
        }
        return all;
    }

private:
    char** saved_ = environ;
    std::vector<const char*> entries_;
};

TEST_F(Scanenv, ReturnsEveryMatchOnceInOrderThenBlanks) {
    use({"TVA=1", "XX=2", "TVB=", "TVAC", "TV=x", "T=no", "PTV=no"});
    EXPECT_EQ(next({std::string("  TV \0 ", 7)}), "TVA  |1  ");  // blanks and NULs trimmed
    EXPECT_EQ(next({"  "}), "     |   ");                         // no pattern: the scan is left alone
    EXPECT_EQ(next({"TV"}), "TVB  |   ");
    EXPECT_EQ(next({"TV"}), "TVAC |   ");  // an entry without "="
    EXPECT_EQ(next({"TV"}, 1), "T|x  ");   // the name cut to its length
    EXPECT_EQ(next({"TV", "TV"}), "     |        |   ");  // and blanks until the pattern changes
    EXPECT_EQ(next({"XX", "TVA"}), "XX   |2  TVA  |1  ");
}

TEST_F(Scanenv, RestartsWhenTheEnvironmentChangesUnderTheScan) {
    use({"TVA=1", "TVB=2", "TVC=3"});
    EXPECT_EQ(next({"TV", "TV"}), "TVA  |1  TVB  |2  ");
    use({"TVA=1", "OTHER=2", "TVC=3"});  // the entry last returned is gone
    EXPECT_EQ(next({"TV", "TV"}), "TVA  |1  TVC  |3  ");
    use({"TVE=5"});  // shorter than the scan position: never read past its end
    EXPECT_EQ(next({"TV"}), "TVE  |5  ");
    environ = nullptr;
    EXPECT_EQ(next({"TV"}), "     |   ");
}

TEST(Host, IdentitiesAndNamesMatchTheSystem) {
    EXPECT_EQ(std::tuple(getpid_(), getuid_(), getgid_()), std::tuple(getpid(), int(getuid()), int(getgid())));
    FString login(64, 'x');
    getlog_(login.data(), login.size());
    EXPECT_EQ(login.trimmed(), getpwuid(getuid())->pw_name);
    char host[256] = {};
    ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
    const std::string name = host;
    FString wide(name.size() + 3, 'x'), exact(name.size(), 'x'), tiny(1, 'x');
    EXPECT_EQ(hostnm_(wide.data(), wide.size()), 0);
    EXPECT_EQ(hostnam_(exact.data(), exact.size()), 0);
    EXPECT_EQ(hostnm_(tiny.data(), tiny.size()), -1);
    EXPECT_EQ(wide.text + exact.text + tiny.text, name + "   " + name + name[0]);
}

TEST(Process, SystemKillAndSleepPassTheHostResultsThrough) {
    EXPECT_EQ(system_("exit 3    ", 10), 3 << 8);  // a wait status, not the exit code
    EXPECT_EQ(system_(nullptr, 4), -1);
    const std::int32_t self = getpid(), none = 0, bad = 999, negative = -1;
    EXPECT_EQ((std::tuple{kill_(&self, &none), kill_(&self, &bad), errno}), std::tuple(0, -1, EINVAL));
    const std::time_t before = std::time(nullptr);
    sleep_(&negative);
    sleep_(nullptr);
    EXPECT_LE(std::time(nullptr) - before, 1);
}

TEST(ProcessEnd, AbortAndExit) {
    const std::string message = std::string(240, 'a') + std::string(60, 'b');
    const auto aborted = ::testing::KilledBySignal(SIGABRT);
    EXPECT_EXIT(abort_(message.data(), message.size()), aborted, "^abort: a{240}\n$");
    EXPECT_EXIT(abort_(nullptr, 12345), aborted, "^abort: Fortran Abort Called\n$");
    const std::int32_t status = 7;
    EXPECT_EXIT(exit_(&status), ::testing::ExitedWithCode(7), "");
    EXPECT_EXIT(exit_(nullptr), ::testing::ExitedWithCode(0), "");
}

}  // namespace
