// DELFILESQQ, the directory and rename routines, file times and the drive routines.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <set>
#include <string>

#include "base/memory.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::FString;

std::set<std::string> entries(const std::string& dir) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) names.insert(entry.path().filename());
    return names;
}

std::string cwd() { return std::filesystem::current_path(); }

std::int32_t call(std::int32_t (*routine)(const char*, std::size_t), const std::string& name) {
    return routine(name.data(), name.size());
}

class Maintenance : public tarvo_test::ScratchDirTest {};

TEST_F(Maintenance, DelfilesDeletesExactlyTheMatchingRegularFiles) {
    ASSERT_EQ(mkdir("many", 0755), 0);
    std::set<std::string> kept = {"sub.tmp", "dlink.tmp", "p.tmp"};
    for (int i = 0; i < 10000; ++i) {
        char name[16];
        std::snprintf(name, sizeof name, "f%05d.%s", i, i % 2 == 0 ? "tmp" : "dat");
        write_file(std::string("many/") + name, "");
        if (i % 2 != 0) kept.insert(name);
    }
    ASSERT_EQ(mkdir("many/sub.tmp", 0755), 0);
    ASSERT_EQ(symlink("f00001.dat", "many/link.tmp"), 0);  // counts by its target: deleted
    ASSERT_EQ(symlink("sub.tmp", "many/dlink.tmp"), 0);
    ASSERT_EQ(mkfifo("many/p.tmp", 0644), 0);
    EXPECT_EQ(call(delfilesqq_, "many/*.tmp"), 5001);
    EXPECT_EQ(entries("many"), kept);
    ASSERT_EQ(chdir("many"), 0);
    EXPECT_EQ(call(delfilesqq_, "*"), 5000);
    EXPECT_EQ(entries("."), (std::set<std::string>{"sub.tmp", "dlink.tmp", "p.tmp"}));
    // Failures delete nothing; no path leaves the working directory elsewhere.
    write_file("many/x.tmp", "");
    for (const char* files : {"missing/*", "/x.tmp", "p.tmp/*"}) EXPECT_EQ(call(delfilesqq_, files), 0) << files;
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(call(delfilesqq_, "*"), 0);
    base::testing::allow_allocations();
    EXPECT_TRUE(cwd() == path("many") && entries(".").count("x.tmp") == 1);
}

TEST_F(Maintenance, DirectoriesRenamesAndTimes) {
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_TRUE(call(makedirqq_, "d  ") == 1 && mode_of("d") == 0755u && call(makedirqq_, "d") == 0);
    EXPECT_EQ(base::testing::last_recorded_error(), 0);  // MAKEDIRQQ records nothing
    EXPECT_TRUE(call(changedirqq_, "d") == 1 && cwd() == path("d") && call(changedirqq_, "..") == 1);
    EXPECT_TRUE(call(changedirqq_, "nope") == 0 && base::testing::last_recorded_error() == ENOENT);
    EXPECT_TRUE(renamefileqq_("d", "e", 1, 1) == 1 && renamefileqq_("d", "e", 1, 1) == 0);
    EXPECT_EQ(base::testing::last_recorded_error(), ENOENT);
    EXPECT_TRUE(call(deldirqq_, "e") == 1 && call(deldirqq_, "e") == 0);
    for (long successes : {0L, 1L}) {  // either name without memory
        base::testing::fail_allocations_after(successes);
        EXPECT_EQ(renamefileqq_("a", "b", 1, 1) + call(changedirqq_, "x") + call(makedirqq_, "x"), 0);
        base::testing::allow_allocations();
        EXPECT_EQ(base::testing::last_recorded_error(), ENOMEM);
    }
    write_file("f", "");
    struct stat st {};
    for (const std::int32_t when : {0, 1234567890, -1}) {  // -1 last: now, after a time long past
        EXPECT_EQ(setfiletimeqq_("f", &when, 1), 1);
        ASSERT_EQ(stat("f", &st), 0);
        // The file system stamps "now" from the precise clock, which can be a second ahead
        // of time()'s coarse one at a second boundary.
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        const std::time_t want = when == -1 ? now.tv_sec : when;
        EXPECT_TRUE(want - st.st_mtime <= 2 && want - st.st_atime <= 2 && st.st_mtime <= want) << when;
    }
    const std::int32_t zero = 0;
    EXPECT_TRUE(setfiletimeqq_("g", &zero, 1) == 0 && base::testing::last_recorded_error() == ENOENT);
    EXPECT_EQ(setfiletimeqq_("f", nullptr, 1), 0);
}

TEST_F(Maintenance, DriveRoutinesReportNoDrives) {
    FString named("C:", 10), blank(200, ' '), tiny(3, ' '), drives(26, 'x');
    EXPECT_TRUE(getdrivedirqq_(named.data(), named.size()) == 0 && named.trimmed() == "C:");
    EXPECT_EQ(getdrivedirqq_(blank.data(), blank.size()), static_cast<std::int32_t>(dir().size()));
    EXPECT_EQ(blank.trimmed(), dir());
    EXPECT_TRUE(getdrivedirqq_(tiny.data(), tiny.size()) == 0 && tiny.text == "   ");  // too short
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(getdrivedirqq_(named.data() + 2, 8), 0);
    base::testing::allow_allocations();
    EXPECT_EQ(base::testing::last_recorded_error(), ENOMEM);
    getdrivesqq_(drives.data(), drives.size());
    EXPECT_EQ(drives.text, std::string(26, ' '));
}

}  // namespace
