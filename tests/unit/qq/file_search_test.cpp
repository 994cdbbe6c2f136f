// The wildcard rule, FINDFILEQQ and the GETFILEINFOQQ search protocol.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <random>
#include <string>

#include "base/memory.h"
#include "literal_pattern.h"
#include "qq/qq.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

long open_descriptors() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

void expect_same_verdict(const std::string& name, const std::string& pattern) {
    ASSERT_EQ(qq::patternMatch(name.c_str(), pattern.c_str()), literal_pattern_match(name.c_str(), pattern.c_str()))
        << '"' << name << "\" ~ \"" << pattern << '"';
}

TEST(PatternMatch, AgreesWithTheLiteralRule) {
    // The stated verdicts as "name|pattern", "+" first when it matches; they anchor the reference.
    for (const char* c : {"+|", "a|", "+|*", "+any|*", "|?", "+ab|a*b", "+axxb|a*b", "+abab|a*b", "aba|a*b",
                          "+a|a**", "ab|a**b", "+axb|a**b", "a|a*?", "Ab|a*"}) {
        const std::string text = c[0] == '+' ? c + 1 : c, name = text.substr(0, text.find('|'));
        EXPECT_EQ(literal_pattern_match(name.c_str(), text.c_str() + name.size() + 1), c[0] == '+' ? 0 : 1) << c;
        expect_same_verdict(name, text.substr(name.size() + 1));
    }
    std::mt19937 random(6);
    auto draw = [&](const char* alphabet, std::size_t most) {
        std::string s(random() % (most + 1), ' ');
        for (char& ch : s) ch = alphabet[random() % std::strlen(alphabet)];
        return s;
    };
    for (int i = 0; i < 300000; ++i) expect_same_verdict(draw("ab", 12), draw("ab?*", 10));
    // Many stars over one repeated letter: the literal rule explores every split.
    for (std::size_t n = 0; n <= 18; ++n)
        for (const char* pattern : {"*a*a*a*a*b", "*a*a*a*a*a", "a*?*a*", "*?**a?*a", "**a*a**"})
            expect_same_verdict(std::string(n, 'a') + (n % 3 == 0 ? "b" : ""), pattern);
    // Full-length name and pattern: answered at once, where the literal rule would not end.
    const std::string all_a(255, 'a'), pattern = "*" + std::string(126, 'a') + "b*";
    EXPECT_EQ(qq::patternMatch(all_a.c_str(), pattern.c_str()), 1);
    EXPECT_EQ(qq::patternMatch((all_a.substr(128) + "b").c_str(), pattern.c_str()), 0);
}

template <class Record>
using Search = std::int32_t (*)(const char*, Record*, std::intptr_t*, std::size_t);

// Runs a search (at most `most` calls); the records by name, and the final handle.
template <class Record>
std::map<std::string, Record> run(Search<Record> search, const std::string& files, std::intptr_t& handle,
                                  int most = 100) {
    std::map<std::string, Record> found;
    for (handle = -1; most-- > 0;) {
        Record record;
        std::memset(&record, 0x77, sizeof record);
        const std::int32_t n = search(files.data(), &record, &handle, files.size());
        if (handle < 0) break;
        EXPECT_EQ(record.name[n], ' ');
        found[std::string(record.name, n)] = record;
    }
    return found;
}

class FileInfo : public tarvo_test::ScratchDirTest {
protected:
    void SetUp() override {
        ScratchDirTest::SetUp();
        for (const char* name : {"b.dat", "c.txt"}) write_file(name, "");
        write_file("a.dat", "12345", 0444);
        ASSERT_EQ(mkdir("d.dat", 0755), 0);
        descriptors_ = open_descriptors();
    }
    long descriptors_ = 0;
    std::intptr_t handle_ = 0;
};

TEST_F(FileInfo, RecordsOfBothFormsAndTheEnd) {
    struct stat st {};
    ASSERT_EQ(stat("a.dat", &st), 0);
    auto four = run<tarvo_file_info>(getfileinfoqq_, "*.dat", handle_);
    EXPECT_TRUE(handle_ == -2 && base::testing::last_recorded_error() == ENOENT && four.size() == 3);
    const tarvo_file_info& a = four["a.dat"];  // creation untouched, read-only not reported
    EXPECT_TRUE(a.creation == 0x77777777 && a.length == 5 && a.lastwrite == st.st_mtime &&
                a.lastaccess == st.st_atime && a.permit == 0 && four["d.dat"].permit == TARVO_FILE_DIR);
    auto eight = run<tarvo_file_info_i8>(getfileinfoqqi8_, dir() + "/*.dat", handle_);
    const tarvo_file_info_i8& a8 = eight["a.dat"];
    EXPECT_TRUE(handle_ == -2 && a8.creation == st.st_ctime && a8.length == 5 &&
                a8.permit == TARVO_FILE_READONLY && eight["b.dat"].permit == 0);
    EXPECT_EQ(run<tarvo_file_info_i8>(getfileinfoqqi8_, "/dev/null", handle_)["null"].permit, TARVO_FILE_DEVICE);
    auto all = run<tarvo_file_info>(getfileinfoqq_, "*", handle_);
    EXPECT_TRUE(all.count(".") == 1 && all.count("..") == 1 && all.size() == 6);
    EXPECT_TRUE(run<tarvo_file_info>(getfileinfoqq_, "d.dat/", handle_).empty() && handle_ == -2);
    EXPECT_EQ(open_descriptors(), descriptors_);
}

TEST_F(FileInfo, FailuresEndTheSearch) {
    tarvo_file_info record;
    for (const auto& [files, start, error] : {std::tuple<const char*, std::intptr_t, int>{"missing/*", -1, ENOENT},
                                              {"*", 12345, EBADF}, {"*", -2, EBADF}, {"*", 0, EBADF}}) {
        handle_ = start;
        EXPECT_EQ(getfileinfoqq_(files, &record, &handle_, std::strlen(files)), 0);
        EXPECT_TRUE(handle_ == -3 && base::testing::last_recorded_error() == error) << files << ' ' << start;
    }
    handle_ = -1;
    EXPECT_EQ(getfileinfoqq_("*", nullptr, &handle_, 1) + getfileinfoqq_("*", nullptr, nullptr, 1), 0);
    EXPECT_EQ(handle_, -3);
    base::testing::fail_allocations_after(0);
    run<tarvo_file_info>(getfileinfoqq_, "*", handle_);
    base::testing::allow_allocations();
    EXPECT_TRUE(handle_ == -3 && base::testing::last_recorded_error() == ENOMEM);
    ASSERT_EQ(symlink("nowhere", "z.dat"), 0);  // a match whose status cannot be read
    run<tarvo_file_info>(getfileinfoqq_, "*.dat", handle_);
    EXPECT_TRUE(handle_ == -3 && base::testing::last_recorded_error() == ENOENT);
    EXPECT_EQ(open_descriptors(), descriptors_);
}

TEST_F(FileInfo, AbandonedAndInterleavedSearches) {
    std::intptr_t other = 0;
    run<tarvo_file_info>(getfileinfoqq_, "*.dat", handle_, 1);  // abandoned after one entry
    EXPECT_EQ(open_descriptors(), descriptors_ + 1);
    // The other routine keeps its own pattern: the first search goes on unharmed.
    EXPECT_EQ(run<tarvo_file_info_i8>(getfileinfoqqi8_, "*.txt", other).size(), 1u);
    tarvo_file_info record;
    ASSERT_GT(getfileinfoqq_("", &record, &handle_, 0), 0);
    EXPECT_EQ(std::string(record.name + 1, 3), ".da");
    // A search of the same routine run to its end empties the pattern the first one uses.
    EXPECT_EQ(run<tarvo_file_info>(getfileinfoqq_, "*.txt", other).size(), 1u);
    EXPECT_TRUE(getfileinfoqq_("", &record, &handle_, 0) == 0 && handle_ == -2);
    EXPECT_EQ(open_descriptors(), descriptors_);
}

TEST_F(FileInfo, FindFileHereAndAlongAVariable) {
    ASSERT_EQ(mkdir("sub", 0755), 0);
    write_file("sub/far.txt", "");
    tarvo_test::FString found(40, 'x');
    auto find = [&](const std::string& file, const std::string& variable) {
        return findfileqq_(file.data(), variable.data(), found.data(), file.size(), variable.size(), found.size());
    };
    EXPECT_TRUE(find("c.txt", "TARVO_UNSET_VARIABLE") == 7 && found.trimmed() == "./c.txt");
    EXPECT_EQ(open_descriptors(), descriptors_ + 1);  // the stream stays open after a match
    ASSERT_EQ(setenv("TARVO_SEARCH", ":/nonexistent-tarvo::.:sub:", 1), 0);
    EXPECT_TRUE(find("elsewhere/far.txt", "TARVO_SEARCH") == 11 && found.trimmed() == "sub/far.txt");
    const long before_miss = open_descriptors();
    EXPECT_EQ(find("none.txt", "TARVO_SEARCH") + find("none.txt", "TARVO_UNSET_VARIABLE"), 0);
    unsetenv("TARVO_SEARCH");
    EXPECT_TRUE(found.text == std::string(40, ' ') && base::testing::last_recorded_error() == ENOENT);
    EXPECT_EQ(open_descriptors(), before_miss);
}

}  // namespace
