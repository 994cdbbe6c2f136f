// User and group lookups and the identity calls, compared with what the host reports.
#include <grp.h>
#include <pwd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "base/memory.h"
#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;
using tarvo_test::FString;

// A lookup by name: IERROR, starting from -99, with NAME's declared length `hidden`.
template <class F>
std::int32_t by_name(F routine, const std::string& name, std::int32_t ilen, std::int32_t handle,
                     std::size_t hidden = std::string::npos) {
    return ierror_of(routine, name.data(), &ilen, &handle, kIerror, hidden == std::string::npos ? name.size() : hidden);
}

struct HostGroup {
    std::string name;
    gid_t gid;
    std::vector<std::string> members;
};

// The host's groups: the first one with members and the first one without (name empty if none).
std::pair<HostGroup, HostGroup> host_groups() {
    std::pair<HostGroup, HostGroup> found;
    setgrent();
    while (const group* g = getgrent()) {
        HostGroup entry{g->gr_name, g->gr_gid, {}};
        for (char** m = g->gr_mem; *m != nullptr; ++m) entry.members.emplace_back(*m);
        HostGroup& slot = entry.members.empty() ? found.second : found.first;
        if (slot.name.empty()) slot = entry;
    }
    endgrent();
    return found;
}

// What a "group" instance holds, read as a Fortran program reads it.
HostGroup group_of(std::int32_t handle) {
    std::int32_t gid = -1, count = -1;
    get(handle, "gr_gid", gid);
    get(handle, "gr_nmem", count);
    HostGroup g{text_of(handle, "gr_name"), static_cast<gid_t>(gid), {}};
    for (std::int32_t k = 1; k <= count; ++k) g.members.push_back(member(handle, k));
    return g;
}

bool operator==(const HostGroup& a, const HostGroup& b) {
    return a.name == b.name && a.gid == b.gid && a.members == b.members;
}

TEST(Groups, EqualTheHostsEntriesByIdAndByTrimmedName) {
    const auto [with, without] = host_groups();
    Instance group("group");
    for (const HostGroup& expected : {with, without}) {
        if (expected.name.empty()) continue;  // the host has no such group
        std::int32_t gid = static_cast<std::int32_t>(expected.gid);
        EXPECT_EQ(ierror_of(pxfgetgrgid_, &gid, &group.handle, kIerror), -99);  // IERROR left alone
        EXPECT_EQ(group_of(group.handle), expected) << expected.name;
        EXPECT_EQ(by_name(pxfgetgrnam_, expected.name + " \t ", 0, group.handle), -99);
        EXPECT_EQ(group_of(group.handle), expected) << expected.name;
    }
    // A missing entry is IERROR 0 and leaves the instance as it was.
    const HostGroup before = group_of(group.handle);
    std::int32_t nobody = 0x7ffffff0;
    EXPECT_EQ(ierror_of(pxfgetgrgid_, &nobody, &group.handle, kIerror), 0);
    EXPECT_EQ(by_name(pxfgetgrnam_, "no-such-group", 0, group.handle), 0);
    EXPECT_EQ(group_of(group.handle), before);
}

TEST(Users, EqualTheHostsEntryAndPasswdTextsHaveNoTerminator) {
    const passwd* host = getpwuid(0);
    ASSERT_NE(host, nullptr);
    const auto expected = tuple(std::string(host->pw_name), std::string(host->pw_dir), std::string(host->pw_shell),
                                static_cast<std::int32_t>(host->pw_uid), static_cast<std::int32_t>(host->pw_gid));
    Instance user("passwd");
    const auto read = [&] {
        std::int32_t uid = -1, gid = -1;
        get(user.handle, "pw_uid", uid);
        get(user.handle, "pw_gid", gid);
        return tuple(text_of(user.handle, "pw_name"), text_of(user.handle, "pw_dir"), text_of(user.handle, "pw_shell"),
                     uid, gid);
    };
    std::int32_t root = 0;
    EXPECT_EQ(ierror_of(pxfgetpwuid_, &root, &user.handle, kIerror), -99);
    EXPECT_EQ(read(), expected);
    const auto& owned = static_cast<posix::PasswdInstance*>(instance_of(user.handle))->pw_name;
    EXPECT_EQ(owned.length, std::strlen(host->pw_name));
    EXPECT_EQ(by_name(pxfgetpwnam_, std::string(host->pw_name) + "   ", 0, user.handle), -99);
    EXPECT_EQ(read(), expected);

    // ILEN beyond NAME's declared length: EINVAL before anything else, even a bad handle.
    std::int32_t none = 0;
    errno = 0;
    EXPECT_EQ(VALUES(by_name(pxfgetpwnam_, "root", 5, user.handle, 4), errno), tuple(EINVAL, EINVAL));
    EXPECT_EQ(by_name(pxfgetpwnam_, "root", 5, none, 4), EINVAL);
    EXPECT_EQ(by_name(pxfgetpwnam_, "root", 0, none), TARVO_ENOHANDLE);
    EXPECT_EQ(by_name(pxfgetpwnam_, "ro", 0, user.handle), 0);  // no user "ro"
    EXPECT_EQ(read(), expected);
}

TEST(Fills, WrongInstancesAreRefused) {
    Instance user("passwd"), group("group");
    std::int32_t id = 0;
    EXPECT_EQ(ierror_of(pxfgetgrgid_, &id, &user.handle, kIerror), EINVAL);
    EXPECT_EQ(ierror_of(pxfgetpwuid_, &id, &group.handle, kIerror), EINVAL);
    EXPECT_EQ(by_name(pxfgetgrnam_, "root", 0, user.handle), EINVAL);
}

// Refills never leak (the leak checker runs at the end of the test's process), and a fill
// that runs out of memory at any step leaves nothing that points to freed memory.
TEST(Fills, RefillsAndAllocationFailuresLeaveNothingBehind) {
    const auto [with, without] = host_groups();
    const HostGroup& rich = with.name.empty() ? without : with;
    Instance group("group"), user("passwd");
    std::int32_t gid = static_cast<std::int32_t>(rich.gid), root = 0;
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
        EXPECT_TRUE(g == ENOMEM || g == -99) << successes;
        EXPECT_TRUE(u == ENOMEM || u == -99) << successes;
        group_of(group.handle);  // every pointer left is null or valid
        text_of(user.handle, "pw_name");
        text_of(user.handle, "pw_shell");
    }
    EXPECT_EQ(ierror_of(pxfgetgrgid_, &gid, &group.handle, kIerror), -99);
    EXPECT_EQ(group_of(group.handle), rich);
}

TEST(Identity, WrappersReportTheHostsValues) {
    std::int32_t v[6] = {}, pgrp = 0, count = 0, list[256] = {}, size = 256;
    std::int32_t ierrors[] = {ierror_of(pxfgetpid_, &v[0], kIerror), ierror_of(pxfgetppid_, &v[1], kIerror),
                              ierror_of(pxfgetuid_, &v[2], kIerror), ierror_of(pxfgeteuid_, &v[3], kIerror),
                              ierror_of(pxfgetgid_, &v[4], kIerror), ierror_of(pxfgetegid_, &v[5], kIerror),
                              ierror_of(pxfgetpgrp_, &pgrp, kIerror),
                              ierror_of(pxfgetgroups_, &size, list, &count, kIerror)};
    for (std::int32_t e : ierrors) EXPECT_EQ(e, 0);
    EXPECT_EQ(std::vector<std::int32_t>(v, v + 6),
              (std::vector<std::int32_t>{getpid(), getppid(), static_cast<std::int32_t>(getuid()),
                                         static_cast<std::int32_t>(geteuid()), static_cast<std::int32_t>(getgid()),
                                         static_cast<std::int32_t>(getegid())}));
    EXPECT_EQ(pgrp, getpgrp());
    gid_t host[256];
    ASSERT_EQ(count, getgroups(256, host));
    for (std::int32_t i = 0; i < count; ++i) EXPECT_EQ(list[i], static_cast<std::int32_t>(host[i]));
    std::int32_t query = 0, negative = -1;
    const std::int32_t all = count;
    count = -7;
    EXPECT_EQ(VALUES(ierror_of(pxfgetgroups_, &query, list, &count, kIerror), count), tuple(0, all));
    EXPECT_EQ(VALUES(ierror_of(pxfgetgroups_, &negative, list, &count, kIerror), count), tuple(EINVAL, -1));
}

TEST(Identity, SessionsGroupsAndDroppedPrivilegesInAChild) {
    const int status = tarvo_test::run_in_child([] {
        std::int32_t sid = 0, zero = 0, nobody = 65534;
        if (ierror_of(pxfsetsid_, &sid, kIerror) != 0 || sid != getpid()) return 1;
        if (ierror_of(pxfsetsid_, &sid, kIerror) != EPERM || sid != -1) return 2;  // already a leader
        if (ierror_of(pxfsetpgid_, &zero, &zero, kIerror) != EPERM) return 3;     // a leader cannot move
        if (ierror_of(pxfsetgid_, &nobody, kIerror) != 0 || getgid() != 65534) return 4;
        if (ierror_of(pxfsetuid_, &nobody, kIerror) != 0 || getuid() != 65534) return 5;
        return ierror_of(pxfsetuid_, &zero, kIerror) == EPERM ? 0 : 6;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(Login, NameOrTheHostsErrorWithBlanks) {
    char host[300];
    const int error = getlogin_r(host, sizeof host);
    FString s(32, '#');
    std::int32_t ilen = -1;
    const std::int32_t ierror = ierror_of(pxfgetlogin_, s.data(), &ilen, kIerror, s.size());
    if (error != 0) {
        EXPECT_EQ(VALUES(ierror, s.trimmed(), ilen), tuple(error, std::string(), -1));
    } else {
        EXPECT_EQ(VALUES(ierror, s.trimmed(), errno), tuple(0, std::string(host), 0));
    }
}

}  // namespace
