// The wildcard rule, FINDFILEQQ and the GETFILEINFOQQ search protocol.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <map>
#include <random>
#include <string>

#include "frame/memory.h"
#include "literal_pattern.h"
#include "qq/qq.h"
#include "runtime/errsns.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::FString;

int open_descriptors() {
    int n = 0;
    DIR* fds = opendir("/proc/self/fd");
    while (readdir(fds) != nullptr) ++n;
    closedir(fds);
    return n;
}

TEST(PatternMatch, AgreesWithTheLiteralRule) {
    const struct {
        const char* name;
        const char* pattern;
        int want;
    } stated[] = {
        {"", "", 0},      {"a", "", 1},      {"", "*", 0},       {"any", "*", 0},      {"", "?", 1},
        {"ab", "a*b", 0}, {"axxb", "a*b", 0}, {"abab", "a*b", 0}, {"aba", "a*b", 1},    {"a", "a**", 0},
        {"ab", "a**b", 1}, {"axb", "a**b", 0}, {"a", "a*?", 1},    {"Ab", "a*", 1},      {"x.dat", "*.dat", 0},
    };
    for (const auto& c : stated) {
        EXPECT_EQ(qq::patternMatch(c.name, c.pattern), c.want) << c.name << " ~ " << c.pattern;
        EXPECT_EQ(literal_pattern_match(c.name, c.pattern), c.want) << c.name << " ~ " << c.pattern;
    }
    std::mt19937 random(6);
    auto draw = [&](const char* alphabet, std::size_t letters, std::size_t most) {
        std::string s(random() % (most + 1), ' ');
        for (char& ch : s) ch = alphabet[random() % letters];
        return s;
    };
    for (int i = 0; i < 300000; ++i) {
        const std::string name = draw("ab", 2, 12), pattern = draw("ab?*", 4, 10);
        ASSERT_EQ(qq::patternMatch(name.c_str(), pattern.c_str()),
                  literal_pattern_match(name.c_str(), pattern.c_str())) << name << " ~ " << pattern;
    }
    // Many stars over a long run of one letter: the literal rule explores every split.
    for (std::size_t n = 0; n <= 18; ++n)
        for (const char* pattern : {"*a*a*a*a*b", "*a*a*a*a*a", "a*?*a*", "*?**a?*a", "**a*a**"}) {
            const std::string name = std::string(n, 'a') + (n % 3 == 0 ? "b" : "");
            ASSERT_EQ(qq::patternMatch(name.c_str(), pattern), literal_pattern_match(name.c_str(), pattern))
                << name << " ~ " << pattern;
        }
    // Full-length names and patterns: answered at once, where the literal rule would not end.
    std::string pattern;
    while (pattern.size() < 253) pattern += "*a";
    const std::string all_a(255, 'a');
    EXPECT_EQ(qq::patternMatch(all_a.c_str(), (pattern + "b").c_str()), 1);
    EXPECT_EQ(qq::patternMatch((all_a.substr(1) + "b").c_str(), (pattern + "b").c_str()), 0);
}

template <class Record>
using Search = std::int32_t (*)(const char*, Record*, std::intptr_t*, std::size_t);

// Runs a search to its end; the records by name, and the handle it ended with.
template <class Record>
std::map<std::string, Record> run_search(Search<Record> search, const std::string& files,
                                         std::intptr_t& handle, int most = 100) {
    std::map<std::string, Record> found;
    for (handle = -1; most-- > 0;) {
        Record record;
        std::memset(&record, 0x77, sizeof record);
        const std::int32_t n = search(files.data(), &record, &handle, files.size());
        if (handle < 0) {
            EXPECT_EQ(n, 0);
            break;
        }
        EXPECT_EQ(record.name[n], ' ');
        found[std::string(record.name, n)] = record;
    }
    return found;
}

class FileInfo : public tarvo_test::ScratchDirTest {
protected:
    void SetUp() override {
        ScratchDirTest::SetUp();
        write_file("a.dat", "12345", 0444);
        write_file("b.dat", "");
        write_file("c.txt", "x");
        ASSERT_EQ(mkdir("d.dat", 0755), 0);
        descriptors_ = open_descriptors();
    }
    int descriptors_ = 0;
};

TEST_F(FileInfo, RecordsOfBothFormsAndTheEnd) {
    struct stat st {};
    ASSERT_EQ(stat("a.dat", &st), 0);
    std::intptr_t handle = 0;
    auto four = run_search<tarvo_file_info>(getfileinfoqq_, "*.dat", handle);
    EXPECT_EQ(handle, -2);
    EXPECT_EQ(runtime::last_recorded_error(), ENOENT);
    ASSERT_EQ(four.size(), 3u);
    EXPECT_EQ(four["a.dat"].creation, 0x77777777);  // never written
    EXPECT_EQ(four["a.dat"].length, 5);
    EXPECT_EQ(four["a.dat"].lastwrite, st.st_mtime);
    EXPECT_EQ(four["a.dat"].lastaccess, st.st_atime);
    EXPECT_EQ(four["a.dat"].permit, 0);  // read-only is not reported in this form
    EXPECT_EQ(four["d.dat"].permit, TARVO_FILE_DIR);

    auto eight = run_search<tarvo_file_info_i8>(getfileinfoqqi8_, dir() + "/*.dat", handle);
    EXPECT_EQ(handle, -2);
    EXPECT_EQ(eight["a.dat"].creation, st.st_ctime);
    EXPECT_EQ(eight["a.dat"].length, 5);
    EXPECT_EQ(eight["a.dat"].permit, TARVO_FILE_READONLY);
    EXPECT_EQ(eight["b.dat"].permit, 0);
    EXPECT_EQ(run_search<tarvo_file_info_i8>(getfileinfoqqi8_, "/dev/null", handle)["null"].permit,
              TARVO_FILE_DEVICE);

    auto all = run_search<tarvo_file_info>(getfileinfoqq_, "*", handle);
    EXPECT_TRUE(all.count(".") == 1 && all.count("..") == 1 && all.size() == 6);
    EXPECT_EQ(open_descriptors(), descriptors_);
}

TEST_F(FileInfo, FailuresEndTheSearch) {
    std::intptr_t handle = 0;
    EXPECT_TRUE(run_search<tarvo_file_info>(getfileinfoqq_, "d.dat/", handle).empty());
    EXPECT_EQ(handle, -2);  // empty name part: nothing matches
    const struct {
        const char* files;
        std::intptr_t start;
        int error;
    } cases[] = {{"missing/*", -1, ENOENT}, {"*", 12345, EBADF}, {"*", -2, EBADF}, {"*", 0, EBADF}};
    for (const auto& c : cases) {
        tarvo_file_info record;
        handle = c.start;
        EXPECT_EQ(getfileinfoqq_(c.files, &record, &handle, std::strlen(c.files)), 0);
        EXPECT_EQ(handle, -3) << c.files << ' ' << c.start;
        EXPECT_EQ(runtime::last_recorded_error(), c.error) << c.files << ' ' << c.start;
    }
    handle = -1;
    EXPECT_EQ(getfileinfoqq_("*", nullptr, &handle, 1), 0);
    EXPECT_EQ(handle, -3);
    EXPECT_EQ(getfileinfoqq_("*", nullptr, nullptr, 1), 0);
    frame::testing::fail_allocations_after(0);
    run_search<tarvo_file_info>(getfileinfoqq_, "*", handle);
    frame::testing::allow_allocations();
    EXPECT_EQ(handle, -3);
    EXPECT_EQ(runtime::last_recorded_error(), ENOMEM);
    ASSERT_EQ(symlink("nowhere", "z.dat"), 0);  // a match whose status cannot be read
    run_search<tarvo_file_info>(getfileinfoqq_, "*.dat", handle);
    EXPECT_EQ(handle, -3);
    EXPECT_EQ(runtime::last_recorded_error(), ENOENT);
    EXPECT_EQ(open_descriptors(), descriptors_);
}

TEST_F(FileInfo, AbandonedAndInterleavedSearches) {
    std::intptr_t first = 0, other = 0;
    run_search<tarvo_file_info>(getfileinfoqq_, "*.dat", first, 1);  // abandoned after one
    EXPECT_GT(first, 0);
    EXPECT_EQ(open_descriptors(), descriptors_ + 1);
    // The other routine keeps its own pattern: the first search goes on unharmed.
    EXPECT_EQ(run_search<tarvo_file_info_i8>(getfileinfoqqi8_, "*.txt", other).size(), 1u);
    tarvo_file_info record;
    ASSERT_GT(getfileinfoqq_("", &record, &first, 0), 0);
    EXPECT_EQ(std::string(record.name, 4).substr(1), ".da");
    // A search of the same routine run to its end empties the pattern the first one uses.
    EXPECT_EQ(run_search<tarvo_file_info>(getfileinfoqq_, "*.txt", other).size(), 1u);
    EXPECT_EQ(getfileinfoqq_("", &record, &first, 0), 0);
    EXPECT_EQ(first, -2);
    EXPECT_EQ(open_descriptors(), descriptors_);
}

TEST_F(FileInfo, FindFileHereAndAlongAVariable) {
    ASSERT_EQ(mkdir("sub", 0755), 0);
    write_file("sub/far.txt", "");
    FString found(40, 'x');
    auto find = [&](const std::string& file, const std::string& variable) {
        return findfileqq_(file.data(), variable.data(), found.data(), file.size(), variable.size(), found.size());
    };
    EXPECT_EQ(find("c.txt", "TARVO_UNSET_VARIABLE"), 7);
    EXPECT_EQ(found.trimmed(), "./c.txt");
    EXPECT_EQ(open_descriptors(), descriptors_ + 1);  // the stream stays open after a match
    ASSERT_EQ(setenv("TARVO_SEARCH", ":/nonexistent-tarvo::.:sub:", 1), 0);
    EXPECT_EQ(find("elsewhere/far.txt", "TARVO_SEARCH"), 11);
    EXPECT_EQ(found.trimmed(), "sub/far.txt");
    const int before_miss = open_descriptors();
    EXPECT_EQ(find("none.txt", "TARVO_SEARCH"), 0);
    EXPECT_EQ(find("none.txt", "TARVO_UNSET_VARIABLE"), 0);
    unsetenv("TARVO_SEARCH");
    EXPECT_EQ(found.text, std::string(40, ' '));
    EXPECT_EQ(runtime::last_recorded_error(), ENOENT);
    EXPECT_EQ(open_descriptors(), before_miss);
    char out[qq::kJoinedSize];
    EXPECT_EQ(search_path(out, "far.txt", "sub"), 1);
    EXPECT_STREQ(out, "sub/far.txt");
    EXPECT_EQ(search_path(out, "far.txt", "."), 0);
}

}  // namespace
