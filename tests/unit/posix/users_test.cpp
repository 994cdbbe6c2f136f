// User and group lookups and the identity calls, compared with what the host reports.
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "base/memory.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;

// A lookup by NAME with ILEN and NAME's declared length `hidden`: IERROR, starting from -99.
template <class F>
std::int32_t by_name(F routine, const std::string& name, std::int32_t ilen, std::int32_t handle,
                     std::size_t hidden = std::string::npos) {
    return ierror_of(routine, name.data(), &ilen, &handle, kIerror, std::min(hidden, name.size()));
}

using Group = tuple<std::string, std::int32_t, std::vector<std::string>>;  // name, gid, members

// The host's first group with members, or else its first group.
Group host_group() {
    Group found;
    setgrent();
    while (const group* g = getgrent()) {
        if (!std::get<0>(found).empty() && g->gr_mem[0] == nullptr) continue;
        found = {g->gr_name, static_cast<std::int32_t>(g->gr_gid), {}};
        for (char** m = g->gr_mem; *m != nullptr; ++m) std::get<2>(found).emplace_back(*m);
        if (!std::get<2>(found).empty()) break;
    }
    endgrent();
    return found;
}

// What a "group" instance holds, read as a Fortran program reads it.
Group group_of(std::int32_t handle) {
    std::int32_t gid = -1, count = -1;
    get(handle, "gr_gid", gid);
    get(handle, "gr_nmem", count);
    Group g{text_of(handle, "gr_name"), gid, {}};
    for (std::int32_t k = 1; k <= count; ++k) std::get<2>(g).push_back(member(handle, k));
    return g;
}

TEST(Groups, EqualTheHostsEntryByIdAndByTrimmedName) {
    const Group expected = host_group();
    Instance by_id("group"), group("group");
    std::int32_t gid = std::get<1>(expected), nobody = 0x7ffffff0;
    EXPECT_EQ(VALUES(ierror_of(pxfgetgrgid_, &gid, &by_id.handle, kIerror), group_of(by_id.handle)),
              tuple(-99, expected));  // IERROR left alone on success
    EXPECT_EQ(VALUES(by_name(pxfgetgrnam_, std::get<0>(expected) + " \t ", 0, group.handle), group_of(group.handle)),
              tuple(-99, expected));
    // A missing entry is IERROR 0 and leaves the instance as it was.
    EXPECT_EQ(VALUES(ierror_of(pxfgetgrgid_, &nobody, &group.handle, kIerror),
                     by_name(pxfgetgrnam_, "no-such-group", 0, group.handle), group_of(group.handle)),
              tuple(0, 0, expected));
}

TEST(Users, EqualTheHostsEntryWithUnterminatedTexts) {
    const passwd* host = getpwuid(0);
    ASSERT_NE(host, nullptr);
    Instance user("passwd");
    const auto read = [&] {
        std::int32_t uid = -1, gid = -1;
        get(user.handle, "pw_uid", uid);
        get(user.handle, "pw_gid", gid);
        return tuple(text_of(user.handle, "pw_name"), text_of(user.handle, "pw_dir"), text_of(user.handle, "pw_shell"),
                     uid, gid);
    };
    const auto expected = tuple(std::string(host->pw_name), std::string(host->pw_dir), std::string(host->pw_shell),
                                static_cast<std::int32_t>(host->pw_uid), static_cast<std::int32_t>(host->pw_gid));
    std::int32_t root = 0, none = 0;
    EXPECT_EQ(VALUES(ierror_of(pxfgetpwuid_, &root, &user.handle, kIerror), read()), tuple(-99, expected));
    EXPECT_EQ(static_cast<posix::PasswdInstance*>(instance_of(user.handle))->pw_name.length, strlen(host->pw_name));
    EXPECT_EQ(VALUES(by_name(pxfgetpwnam_, std::string(host->pw_name) + "   ", 0, user.handle), read()),
              tuple(-99, expected));
    // ILEN beyond NAME's declared length is EINVAL before the handle is looked at.
    errno = 0;
    EXPECT_EQ(VALUES(by_name(pxfgetpwnam_, "root", 5, none, 4), errno), tuple(EINVAL, EINVAL));
    EXPECT_EQ(VALUES(by_name(pxfgetpwnam_, "root", 0, none), by_name(pxfgetpwnam_, "ro", 0, user.handle), read()),
              tuple(TARVO_ENOHANDLE, 0, expected));
}

// Refills never leak (the leak checker runs at the end of the test's process), and a fill
// that runs out of memory at any step leaves nothing that points to freed memory.
TEST(Fills, RefillsAndAllocationFailuresLeaveNothingBehind) {
    const Group expected = host_group();
    Instance group("group"), user("passwd");
    std::int32_t gid = std::get<1>(expected), root = 0;
    for (int i = 0; i < 3000; ++i) {
        pxfgetgrgid_(&gid, &group.handle, &root);
        pxfgetpwuid_(&root, &user.handle, &root);
    }
    for (long successes = 0; successes < 12; ++successes) {
        base::testing::fail_allocations_after(successes);
        const std::int32_t g = ierror_of(pxfgetgrgid_, &gid, &group.handle, kIerror);
        base::testing::fail_allocations_after(successes);
        const std::int32_t u = ierror_of(pxfgetpwuid_, &root, &user.handle, kIerror);
        base::testing::allow_allocations();
        EXPECT_TRUE((g == ENOMEM || g == -99) && (u == ENOMEM || u == -99)) << successes;
        group_of(group.handle);  // every pointer left is null or valid
        text_of(user.handle, "pw_name") + text_of(user.handle, "pw_dir") + text_of(user.handle, "pw_shell");
    }
    EXPECT_EQ(VALUES(ierror_of(pxfgetgrgid_, &gid, &group.handle, kIerror), group_of(group.handle)),
              tuple(-99, expected));
}

}  // namespace
