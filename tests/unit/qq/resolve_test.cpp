// The path resolver on existing, missing, unreadable and odd names.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <string>

#include "support/support.h"
#include <tarvo/qq.h>

namespace {

std::string resolve(const std::string& name) {
    char out[1032];
    std::memset(out, 'x', sizeof out);
    __lodrik_resolve_unix_path(name.c_str(), out);
    return out;
}

class Resolve : public tarvo_test::ScratchDirTest {};

TEST_F(Resolve, NamesExistingMissingAndBroken) {
    ASSERT_EQ(mkdir("sub", 0755), 0);
    write_file("f", "");
    ASSERT_EQ(symlink("/nonexistent-tarvo/target", "dangling"), 0);
    ASSERT_EQ(symlink("loop", "loop"), 0);
    const std::string d = dir();
    const struct {
        const char* name;
        std::string want;
    } cases[] = {
        {"f", d + "/f"},
        {"sub/", d + "/sub/"},
        {"f/", d + "/f/"},  // not a directory: the trailing "/" stays
        {"/", "/"},
        {"newfile", d + "/newfile"},
        {"", d + "/"},
        {"/nonexistent-tarvo", "/nonexistent-tarvo"},
        {"sub/missing/file", d + "/sub/missing/file"},
        {"f/x/y", d + "/f/x/y"},                 // ENOTDIR inside the name
        {"./dangling/x", d + "/dangling/x"},     // the link is kept by its own name
        {"sub/../loop/x", d + "/loop/x"},        // ELOOP inside the name
        {"./new/../f2", d + "/f2"},
        {"C:\\work\\f.dat", d + "/C:\\work\\f.dat"},
        {"/nonexistent-tarvo/./b", "/nonexistent-tarvo/b"},
        {"/nonexistent-tarvo/b/../c", "/nonexistent-tarvo/c"},
        {"/nonexistent-tarvo/b/..", "/nonexistent-tarvo"},
        {"/nonexistent-tarvo/..", "/nonexistent-tarvo"},  // kept on purpose, not "/"
        {"/nonexistent-tarvo/.", "/nonexistent-tarvo"},
        {"/nonexistent-tarvo/./././b", "/nonexistent-tarvo/b"},
        {"/nonexistent-tarvo/..x", "/nonexistent-tarvo/..x"},
        {"/nonexistent-tarvo/.x", "/nonexistent-tarvo/.x"},
    };
    for (const auto& c : cases) EXPECT_EQ(resolve(c.name), c.want) << '"' << c.name << '"';
}

TEST_F(Resolve, LongNamesStayWithinTheBuffer) {
    const std::string component(1100, 'n');
    EXPECT_EQ(resolve(component).size(), 1024u);
    EXPECT_EQ(resolve("/" + component).size(), 1024u);
    // A leading part over 1024 characters ends the process, as the bounded copy always has.
    const int status = tarvo_test::run_in_child([&] { return resolve(component + "/x").empty() ? 1 : 2; });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
}

}  // namespace
