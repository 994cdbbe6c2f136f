// FULLPATHQQ and SPLITPATHQQ, called as Fortran calls them.
#include <cerrno>
#include <string>

#include "runtime/errsns.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::FString;

struct Split {
    std::int32_t result;
    std::string drive, dir, name, ext;
};

Split split(const std::string& path, std::size_t dir_len = 300) {
    FString drive(3, 'x'), dir(dir_len, 'x'), name(40, 'x'), ext(10, 'x');
    const std::int32_t result = splitpathqq_(path.data(), drive.data(), dir.data(), name.data(), ext.data(),
                                             path.size(), drive.size(), dir.size(), name.size(), ext.size());
    return {result, drive.text, dir.trimmed(), name.trimmed(), ext.trimmed()};
}

class Paths : public tarvo_test::ScratchDirTest {};

TEST_F(Paths, SplitGivesDirectoryNameAndExtension) {
    const struct {
        const char* path;
        Split want;
    } cases[] = {
        {"/usr/lib/libx.a", {9, "   ", "/usr/lib/", "libx", ".a"}},
        {"/tmp/archive.tar.gz  ", {5, "   ", "/tmp/", "archive.tar", ".gz"}},
        {"/tmp/.hidden", {5, "   ", "/tmp/", ".hidden", ""}},
        {"/tmp/name.", {5, "   ", "/tmp/", "name.", ""}},
        {"/", {1, "   ", "/", "", ""}},
        {"    ", {0, "   ", "", "", ""}},
    };
    for (const auto& c : cases) {
        const Split got = split(c.path);
        EXPECT_EQ(got.result, c.want.result) << c.path;
        EXPECT_EQ(got.drive, c.want.drive) << c.path;
        EXPECT_EQ(got.dir, c.want.dir) << c.path;
        EXPECT_EQ(got.name, c.want.name) << c.path;
        EXPECT_EQ(got.ext, c.want.ext) << c.path;
    }
    const Split relative = split("f.txt");
    EXPECT_EQ(relative.dir, dir() + "/");
    EXPECT_EQ(relative.result, static_cast<std::int32_t>(dir().size() + 1));
    EXPECT_EQ(relative.name + relative.ext, "f.txt");
}

TEST_F(Paths, ShortOutputsAreCutButTheDirectoryLengthIsReturned) {
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    const Split cut = split("/usr/lib/libx.a", 4);
    EXPECT_EQ(cut.result, 9);
    EXPECT_EQ(cut.dir, "/usr");
    EXPECT_EQ(runtime::last_recorded_error(), EINVAL);
    EXPECT_EQ(split("/", 0).result, 1);  // no room for "/": nothing written, no crash
}

TEST_F(Paths, FullPath) {
    FString buf(200, 'x');
    EXPECT_EQ(fullpathqq_("a/../b.dat ", buf.data(), 11, buf.size()), static_cast<std::int32_t>(dir().size() + 6));
    EXPECT_EQ(buf.trimmed(), dir() + "/b.dat");
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    FString shorter(5, 'x');
    EXPECT_EQ(fullpathqq_("b.dat", shorter.data(), 5, shorter.size()), 5);
    EXPECT_EQ(shorter.text, dir().substr(0, 5));
    EXPECT_EQ(runtime::last_recorded_error(), EINVAL);
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(fullpathqq_(nullptr, buf.data(), 1, buf.size()), 0);
    EXPECT_EQ(fullpathqq_("b", nullptr, 1, 5), 0);
    EXPECT_EQ(runtime::last_recorded_error(), EINVAL);
}

}  // namespace
