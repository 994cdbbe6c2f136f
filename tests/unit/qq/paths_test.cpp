// FULLPATHQQ and SPLITPATHQQ, called as Fortran calls them.
#include <cerrno>

#include "base/record.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::FString;

// SPLITPATHQQ's result and its four outputs joined by "|".
std::string split(const std::string& path, std::size_t dir_len = 300) {
    FString drive(3, 'x'), dir(dir_len, 'x'), name(40, 'x'), ext(10, 'x');
    const std::int32_t result = splitpathqq_(path.data(), drive.data(), dir.data(), name.data(), ext.data(),
                                             path.size(), drive.size(), dir.size(), name.size(), ext.size());
    return std::to_string(result) + "|" + drive.text + "|" + dir.trimmed() + "|" + name.trimmed() + "|" + ext.trimmed();
}

class Paths : public tarvo_test::ScratchDirTest {};

TEST_F(Paths, SplitAndFullPath) {
    for (const auto& [path, want] : {std::pair<std::string, std::string>{"/usr/lib/libx.a", "9|   |/usr/lib/|libx|.a"},
                                     {"/tmp/archive.tar.gz  ", "5|   |/tmp/|archive.tar|.gz"},
                                     {"/tmp/.hidden", "5|   |/tmp/|.hidden|"}, {"/tmp/name.", "5|   |/tmp/|name.|"},
                                     {"/", "1|   |/||"}, {"    ", "0|   |||"},
                                     {"f.txt", std::to_string(dir().size() + 1) + "|   |" + dir() + "/|f|.txt"}})
        EXPECT_EQ(split(path), want) << path;
    EXPECT_EQ(split("/", 0), "1|   |||");  // no room for "/": nothing written
    FString buf(200, 'x'), shorter(5, 'x');
    EXPECT_EQ(fullpathqq_("a/../b.dat ", buf.data(), 11, buf.size()), static_cast<std::int32_t>(dir().size() + 6));
    EXPECT_EQ(buf.trimmed(), dir() + "/b.dat");
    // Cut outputs keep their leading characters and report the full length, with 22 recorded.
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(split("/usr/lib/libx.a", 4), "9|   |/usr|libx|.a");
    EXPECT_EQ(base::testing::last_recorded_error(), EINVAL);
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_TRUE(fullpathqq_("b", shorter.data(), 1, 5) == 5 && shorter.text == dir().substr(0, 5));
    EXPECT_EQ(base::testing::last_recorded_error(), EINVAL);
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(fullpathqq_(nullptr, buf.data(), 1, buf.size()) + fullpathqq_("b", nullptr, 1, 5), 0);
    EXPECT_EQ(base::testing::last_recorded_error(), EINVAL);
}

}  // namespace
