// DELFILESQQ, the directory and rename routines, file times and the drive routines.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <set>
#include <string>

#include "frame/memory.h"
#include "runtime/errsns.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::FString;

std::set<std::string> entries(const std::string& dir) {
    std::set<std::string> names;
    DIR* stream = opendir(dir.c_str());
    while (const dirent* e = readdir(stream)) names.insert(e->d_name);
    closedir(stream);
    return names;
}

std::string cwd() {
    char buf[4096];
    return getcwd(buf, sizeof buf) != nullptr ? buf : "";
}

std::int32_t call(std::int32_t (*routine)(const char*, std::size_t), const std::string& name) {
    return routine(name.data(), name.size());
}

class Maintenance : public tarvo_test::ScratchDirTest {};

TEST_F(Maintenance, DelfilesDeletesExactlyTheMatchingRegularFiles) {
    ASSERT_EQ(mkdir("many", 0755), 0);
    std::set<std::string> kept = {".", "..", "sub.tmp", "dlink.tmp", "p.tmp"};
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
    EXPECT_EQ(cwd(), dir());
    ASSERT_EQ(chdir("many"), 0);
    EXPECT_EQ(call(delfilesqq_, "*"), 5000);
    EXPECT_EQ(entries("."), (std::set<std::string>{".", "..", "sub.tmp", "dlink.tmp", "p.tmp"}));
    // Failures delete nothing and leave the working directory where it was.
    write_file("many/x.tmp", "");
    for (const char* files : {"missing/*", "/x.tmp", "p.tmp/*"}) EXPECT_EQ(call(delfilesqq_, files), 0) << files;
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(call(delfilesqq_, "*"), 0);
    frame::testing::allow_allocations();
    EXPECT_EQ(cwd(), path("many"));
    EXPECT_EQ(entries(".").count("x.tmp"), 1u);
}

TEST_F(Maintenance, DirectoriesAndRenames) {
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(call(makedirqq_, "d  "), 1);
    EXPECT_EQ(mode_of("d"), 0755u);
    EXPECT_EQ(call(makedirqq_, "d"), 0);
    EXPECT_EQ(runtime::last_recorded_error(), 0);  // MAKEDIRQQ records nothing
    EXPECT_EQ(call(changedirqq_, "d"), 1);
    EXPECT_EQ(cwd(), path("d"));
    EXPECT_EQ(call(changedirqq_, "nope"), 0);
    EXPECT_EQ(runtime::last_recorded_error(), ENOENT);
    EXPECT_EQ(call(changedirqq_, ".."), 1);
    EXPECT_EQ(renamefileqq_("d", "e", 1, 1), 1);
    EXPECT_EQ(renamefileqq_("d", "e", 1, 1), 0);
    EXPECT_EQ(runtime::last_recorded_error(), ENOENT);
    EXPECT_EQ(call(deldirqq_, "e"), 1);
    EXPECT_EQ(call(deldirqq_, "e"), 0);
    for (long successes : {0L, 1L}) {
        frame::testing::fail_allocations_after(successes);
        EXPECT_EQ(renamefileqq_("a", "b", 1, 1), 0);
        frame::testing::allow_allocations();
        EXPECT_EQ(runtime::last_recorded_error(), ENOMEM);
    }
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(call(changedirqq_, "x"), 0);
    EXPECT_EQ(call(makedirqq_, "x"), 0);
    frame::testing::allow_allocations();
    EXPECT_EQ(runtime::last_recorded_error(), ENOMEM);
}

TEST_F(Maintenance, FileTimes) {
    write_file("f", "");
    struct stat st {};
    for (std::int32_t when : {0, 1234567890}) {
        EXPECT_EQ(setfiletimeqq_("f", &when, 1), 1);
        ASSERT_EQ(stat("f", &st), 0);
        EXPECT_TRUE(st.st_mtime == when && st.st_atime == when) << when;
    }
    const std::int32_t now = -1;
    EXPECT_EQ(setfiletimeqq_("f", &now, 1), 1);
    ASSERT_EQ(stat("f", &st), 0);
    EXPECT_LE(std::time(nullptr) - st.st_mtime, 5);
    EXPECT_EQ(setfiletimeqq_("g", &now, 1), 0);
    EXPECT_EQ(runtime::last_recorded_error(), ENOENT);
    EXPECT_EQ(setfiletimeqq_("f", nullptr, 1), 0);
}

TEST_F(Maintenance, DriveRoutinesReportNoDrives) {
    FString named("C:", 10), blank(200, ' '), tiny(3, ' ');
    EXPECT_EQ(getdrivedirqq_(named.data(), named.size()), 0);
    EXPECT_EQ(named.trimmed(), "C:");
    EXPECT_EQ(getdrivedirqq_(blank.data(), blank.size()), static_cast<std::int32_t>(dir().size()));
    EXPECT_EQ(blank.trimmed(), dir());
    EXPECT_EQ(getdrivedirqq_(tiny.data(), tiny.size()), 0);  // too short: unchanged
    EXPECT_EQ(tiny.text, "   ");
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(getdrivedirqq_(named.data() + 2, 8), 0);
    frame::testing::allow_allocations();
    EXPECT_EQ(runtime::last_recorded_error(), ENOMEM);
    FString drives(26, 'x');
    getdrivesqq_(drives.data(), drives.size());
    EXPECT_EQ(drives.text, std::string(26, ' '));
    std::int64_t total = 7, avail = 8;
    EXPECT_EQ(getdrivesizeqq_("C", &total, &avail, 1), 0);
    EXPECT_EQ(getdrivesizeqqi8_("C", &total, &avail, 1), 0);
    EXPECT_TRUE(total == 7 && avail == 8);
    EXPECT_EQ(changedriveqq_("C", 1), 0);
    const std::int32_t access = 0;
    EXPECT_EQ(setfileaccessqq_("f", &access, 1), 0);
    EXPECT_EQ(runtime::last_recorded_error(), EINVAL);
}

}  // namespace
