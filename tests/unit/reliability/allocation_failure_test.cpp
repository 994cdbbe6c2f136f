// Every kind of block the library allocates, refused in turn: a representative routine of
// each runs with its N-th allocation failing, N = 0, 1, 2, ... until it succeeds. Each
// failure must end in the routine's documented error, never in a crash, and nothing may
// leak (the leak checker runs when the test's process ends, and in the exec child).
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "base/memory.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/portlib.h>
#include <tarvo/posix.h>
#include <tarvo/qq.h>
#include <tarvo/records.h>

namespace {

using tarvo_test::FString;

constexpr int kDone = 0;

// A routine's answer reduced to one number: kDone on success, otherwise what the routine
// reported (its result, IERROR or the recorded error, as its reference page says).
struct Case {
    const char* routine;
    std::vector<int> failures;  // the documented answer when allocation 1, 2, ... fails; the last repeats
    std::function<int()> call;  // releases whatever a success produced
};

int recorded() { return base::testing::last_recorded_error(); }

int instance(const char* type) {
    std::int32_t handle = 0, ierror = 0;
    pxfstructcreate_(type, &handle, &ierror, std::strlen(type));
    return handle;
}

void release_instance(std::int32_t handle) {
    std::int32_t ierror = 0;
    pxfstructfree_(&handle, &ierror);
}

// The exec vectors are built in a child, which becomes /bin/true when they are complete and
// otherwise exits through the leak checker with IERROR.
int exec_in_child() {
    const int status = tarvo_test::run_in_child([] {
        const char argv[2][16] = {"true", "--ignored"};
        const std::int32_t lengths[2] = {4, 9}, count = 2, path_len = 9;
        std::int32_t ierror = -1;
        pxfexecv_("/bin/true", &path_len, argv[0], lengths, &count, &ierror, 9, 16);
        std::exit(ierror);
        return 0;
    });
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + status;
}

class AllocationFailure : public tarvo_test::ScratchDirTest {};

TEST_F(AllocationFailure, EveryFailureEndsInTheDocumentedErrorWithNothingLeaked) {
    write_file("data", "text");
    const std::int32_t group = instance("group"), user = instance("passwd");
    ASSERT_NE(group * user, 0);

    const Case cases[] = {
        {"ACCESS (terminated copy)", {ENOMEM}, [] { return access_("data", "r", 4, 1); }},
        {"GETCWD", {ENOMEM}, [] {
             FString dir(4096);
             return getcwd_(dir.data(), dir.size());
         }},
        {"RINDEX", {ENOMEM}, [] { return rindex_("abcabc", "c", 6, 1) == 6 ? kDone : recorded(); }},
        {"CHANGEDIRQQ", {ENOMEM}, [] { return changedirqq_(".", 1) != 0 ? kDone : recorded(); }},
        {"GETDRIVEDIRQQ", {ENOMEM}, [] {
             FString dir(256);
             return getdrivedirqq_(dir.data(), dir.size()) > 0 ? kDone : recorded();
         }},
        {"FULLPATHQQ", {-1}, [] {
             FString out(512);
             return fullpathqq_("data", out.data(), 4, out.size()) > 0 ? kDone : -1;
         }},
        {"RUNQQ", {ENOMEM}, [] { return runqq_("true", " ", 4, 1) == 0 ? kDone : recorded(); }},
        {"PXFSTRUCTCREATE (instance)", {TARVO_ENOHANDLE}, [] {
             std::int32_t handle = 0, ierror = 0;
             pxfstructcreate_("stat", &handle, &ierror, 4);
             if (ierror == 0) release_instance(handle);
             return ierror;
         }},
        {"PXFOPENDIR (path copy, directory stream)", {ENOMEM, TARVO_ENOHANDLE}, [] {
             std::int32_t id = -1, ierror = 0, length = 1;
             pxfopendir_(".", &length, &id, &ierror, 1);
             if (ierror == 0) pxfclosedir_(&id, &ierror);
             return ierror;
         }},
        {"PXFGETGRGID (group fill)", {ENOMEM}, [&] {
             std::int32_t ierror = -99, gid = 0;
             pxfgetgrgid_(&gid, &group, &ierror);
             return ierror == -99 ? kDone : ierror;
         }},
        {"PXFGETPWNAM (passwd fill)", {ENOMEM}, [&] {
             std::int32_t ierror = -99, length = 0;
             pxfgetpwnam_("root", &length, &user, &ierror, 4);
             return ierror == -99 ? kDone : ierror;
         }},
        {"PXFSTRSET (field text)", {ENOMEM}, [&] {
             const std::int32_t length = 0;
             std::int32_t ierror = -1;
             pxfstrset_(&user, "pw_name", "someone", &length, &ierror, 7, 7);
             return ierror;
         }},
        {"PXFSETENV", {ENOMEM}, [] {
             const std::int32_t name_len = 0, value_len = 0, overwrite = 1;
             std::int32_t ierror = -1;
             pxfsetenv_("TARVO_ALLOCATION_TEST", &name_len, "set", &value_len, &overwrite, &ierror, 21, 3);
             return ierror;
         }},
        {"PXFEXECV (exec vectors)", {ENOMEM}, exec_in_child},
        {"SORTQQ (CHARACTER buffer)", {ENOMEM}, [] {
             char words[3][5] = {{'p', 'e', 'a', 'r', 's'}, {'a', 'p', 'p', 'l', 'e'}, {'f', 'i', 'g', 's', ' '}};
             std::intptr_t address = reinterpret_cast<std::intptr_t>(words), count = 3;
             const std::int32_t size = 5;
             sortqq_(&address, &count, &size);
             if (count == 0) return recorded();
             return std::string(words[0], 15) == "applefigs pears" ? kDone : -1;
         }},
        // The radix sort's buffers are optional: without them the Shell sort runs, so every
        // attempt succeeds, with the same order.
        {"SORTQQ (INTEGER(4) radix buffers)", {-1}, [] {
             std::vector<std::int32_t> keys(1000);
             for (std::size_t i = 0; i < keys.size(); ++i) keys[i] = static_cast<std::int32_t>((i * 7919) % 1000) - 500;
             std::intptr_t address = reinterpret_cast<std::intptr_t>(keys.data()), count = 1000;
             const std::int32_t code = TARVO_SRT_INTEGER4;
             for (std::size_t n = 0; n <= 3; ++n) {  // refused from the n-th allocation on
                 base::testing::fail_allocations_after(static_cast<long>(n));
                 std::vector<std::int32_t> copy = keys;
                 address = reinterpret_cast<std::intptr_t>(copy.data());
                 sortqq_(&address, &count, &code);
                 base::testing::allow_allocations();
                 if (count != 1000 || !std::is_sorted(copy.begin(), copy.end())) return -1;
             }
             return kDone;
         }},
        {"GETFILEINFOQQ (wildcard search)", {ENOMEM}, [] {
             tarvo_file_info info{};
             std::intptr_t handle = TARVO_FILE_FIRST;
             int found = 0;
             do {  // to the end of the search, so that it keeps nothing
                 found += getfileinfoqq_("d*", &info, &handle, 2) > 0 && handle >= 0;
             } while (handle >= 0);
             return handle == TARVO_FILE_ERROR ? recorded() : (found == 1 ? kDone : -1);
         }},
    };

    int sites = 0;
    for (const Case& c : cases) {
        int n = 0;
        for (;; ++n) {
            ASSERT_LT(n, 64) << c.routine << " never succeeds";
            base::testing::fail_allocations_after(n);
            const int answer = c.call();
            base::testing::allow_allocations();
            if (answer == kDone) break;
            EXPECT_EQ(answer, c.failures[std::min<std::size_t>(n, c.failures.size() - 1)]) << c.routine << " with allocation " << n + 1 << " refused";
        }
        sites += n;
        std::printf("%-34s %d allocation(s)\n", c.routine, n);
    }
    std::printf("%d allocations refused in turn over %zu routines\n", sites, std::size(cases));
    EXPECT_GE(sites, static_cast<int>(std::size(cases)));
    release_instance(group);
    release_instance(user);
    unsetenv("TARVO_ALLOCATION_TEST");
}

}  // namespace
