// The path resolver on existing, missing, broken and odd names.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/support.h"
#include <tarvo/qq.h>

namespace {

std::string resolve(const std::string& name) {
    char out[1032];
    __lodrik_resolve_unix_path(name.c_str(), out);
    return out;
}

class Resolve : public tarvo_test::ScratchDirTest {};

TEST_F(Resolve, NamesExistingMissingAndBroken) {
    ASSERT_EQ(mkdir("sub", 0755) + symlink("/nonexistent-tarvo/target", "dangling") + symlink("loop", "loop"), 0);
    write_file("f", "");
    const std::string d = dir(), m = "/nonexistent-tarvo";
    const std::pair<std::string, std::string> cases[] = {
        {"f", d + "/f"}, {"sub/", d + "/sub/"}, {"f/", d + "/f/"}, {"/", "/"}, {"", d + "/"},
        {"newfile", d + "/newfile"}, {m, m}, {"sub/missing/file", d + "/sub/missing/file"},
        {"f/x/y", d + "/f/x/y"},              // ENOTDIR inside the name
        {"./dangling/x", d + "/dangling/x"},  // the link is kept by its own name
        {"sub/../loop/x", d + "/loop/x"},     // ELOOP inside the name
        {"./new/../f2", d + "/f2"}, {"C:\\work\\f.dat", d + "/C:\\work\\f.dat"},
        {m + "/./././b", m + "/b"}, {m + "/b/../c", m + "/c"}, {m + "/b/..", m}, {m + "/..", m},
        {m + "/.", m}, {m + "/..x/.y", m + "/..x/.y"},
        {m + "/../.", "/"}, {m + "/../x/../.", "/"},  // the removals reach the root, which stays
    };
    for (const auto& [name, want] : cases) EXPECT_EQ(resolve(name), want) << '"' << name << '"';
}

// Relative names follow the working directory of the moment, also through links and "..",
// and a directory that no longer exists leaves only the name.
TEST_F(Resolve, RelativeNamesFollowTheWorkingDirectory) {
    const std::string d = dir();
    ASSERT_EQ(mkdir("a", 0755) + mkdir("a/b", 0755) + symlink("a/b", "to_b") + symlink("../..", "a/b/up") +
                  symlink((d + "/a").c_str(), "abs") + symlink("to_b/f", "to_f"),
              0);
    write_file("a/b/f", "");
    const std::pair<std::string, std::string> cases[] = {
        {"new", "/new"}, {"f", "/f"}, {"up/a/x/y", "/up/a/x/y"}, {"a/../a/b/./f/", "/a/b/f/"},
        {"abs/b/up/abs/b/f", "/a/b/f"}, {"to_f", "/a/b/f"}, {"to_f/", "/a/b/f/"}, {"to_f/.", "/a/b/f"},
        {"abs/b/f/..", "/a/b"}, {"abs//b///up/./to_b/../b/f", "/a/b/f"}, {"to_b/..", "/a"},
    };
    for (const auto& [name, want] : cases) EXPECT_EQ(resolve(name), d + want) << '"' << name << '"';
    ASSERT_EQ(chdir("to_b"), 0);
    EXPECT_EQ(resolve("new"), d + "/a/b/new");
    EXPECT_EQ(resolve("f"), d + "/a/b/f");
    EXPECT_EQ(resolve("up/a/x/y"), d + "/a/x/y");
    EXPECT_EQ(resolve("up/to_b/f/"), d + "/a/b/f/");
    EXPECT_EQ(resolve("f/x"), d + "/a/b/f/x");
    ASSERT_EQ(mkdir("gone", 0755) + chdir("gone") + rmdir((d + "/a/b/gone").c_str()), 0);
    EXPECT_EQ(resolve("x"), "/x");
    EXPECT_EQ(resolve("x/y"), "/x/y");
}

TEST_F(Resolve, LongNamesStayWithinTheBuffer) {
    const std::string component(1100, 'n');
    EXPECT_TRUE(resolve(component).size() == 1024 && resolve("/" + component).size() == 1024);
    // A leading part over 1024 characters ends the process, as the bounded copy always has.
    const int status = tarvo_test::run_in_child([&] { return resolve(component + "/x").empty() ? 1 : 2; });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
}

}  // namespace
