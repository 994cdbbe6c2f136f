// Structure instances: create, copy, free, handles and the texts "group" and "passwd" own.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;
using std::tuple;

TEST(Instances, EveryTypeByNameInAnyCase) {
    const char* names[] = {"sigset", "SIGACTION", "utsname ", "Tms", "dirent", "STAT   trailing words",
                           "utimbuf", "flock", "termios", "group", "passwd"};
    std::int32_t handles[11] = {};
    for (std::int32_t tag = 1; tag <= 11; ++tag) {
        ASSERT_EQ(create(names[tag - 1], handles[tag - 1]), 0) << names[tag - 1];
#if TARVO_HANDLE_TABLES
        EXPECT_EQ(handles[tag - 1], tag);  // the first instances get 1, 2, 3 ...
#endif
        const auto* block = static_cast<const unsigned char*>(instance_of(handles[tag - 1]));
        const std::size_t size = posix::kStructTypes[tag - 1].size;
        EXPECT_EQ(posix::tag_of(block), tag);
        EXPECT_EQ(std::count(block + 4, block + size, 0), static_cast<std::ptrdiff_t>(size - 4));  // zero-filled
    }
    for (std::int32_t& handle : handles) EXPECT_EQ(VALUES(free_instance(handle), handle), tuple(0, 0));
}

TEST(Instances, UnknownTypeNameOrNoMemoryLeavesTheHandleAlone) {
    for (const char* name : {"", "   ", "stats", "sta", "sig set", " stat"}) {
        std::int32_t handle = 42;
        errno = 0;  // not a system error
        EXPECT_EQ(VALUES(create(name, handle), handle, errno), tuple(TARVO_ENONAME, 42, 0)) << name;
    }
    std::int32_t handle = 42;
    EXPECT_EQ(ierror_of(pxfstructcreate_, nullptr, &handle, kIerror, 4), TARVO_ENONAME);
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(VALUES(create("stat", handle), handle), tuple(TARVO_ENOHANDLE, 42));
    base::testing::allow_allocations();
}

#if TARVO_HANDLE_TABLES
TEST(Instances, HandlesAreReusedLowestFirstAndThe256thIs257) {
    std::vector<std::int32_t> handles(300);
    for (auto& h : handles) ASSERT_EQ(create("flock", h), 0);
    EXPECT_EQ(tuple(handles[254], handles[255]), tuple(255, 257));  // the 256th: block 1, slot 0
    std::int32_t h7 = handles[6], h3 = handles[2];
    ASSERT_EQ(free_instance(h7) + free_instance(h3), 0);
    ASSERT_EQ(create("flock", handles[2]) + create("flock", handles[6]), 0);
    EXPECT_EQ(tuple(handles[2], handles[6]), tuple(3, 7));
    // When the chain cannot grow, the new instance gets handle 0 and is not kept.
    handles.resize(510);
    for (std::size_t i = 300; i < handles.size(); ++i) ASSERT_EQ(create("flock", handles[i]), 0);
    base::testing::fail_allocations_after(1);  // the instance, not the next table block
    std::int32_t refused = 42;
    EXPECT_EQ(VALUES(create("flock", refused), refused), tuple(TARVO_ENOHANDLE, 0));
    base::testing::allow_allocations();
    for (auto& h : handles) ASSERT_EQ(free_instance(h), 0);
}
#endif

TEST(Instances, FreeingWhatIsNoInstance) {
    std::int32_t handle = 0;
    ASSERT_EQ(create("stat", handle), 0);
    std::vector<std::int32_t> bad = {handle};  // freed twice: the first call set it to 0
#if TARVO_HANDLE_TABLES
    bad.insert(bad.end(), {handle, 256, 77, 0x7F01});  // freed, no slot, never issued, no block
#endif
    ASSERT_EQ(free_instance(bad[0]), 0);
    for (std::int32_t h : bad) {
        errno = 0;
        EXPECT_EQ(VALUES(free_instance(h), errno), tuple(TARVO_ENOHANDLE, EINVAL)) << h;
    }
    // A directory stream's handle names no instance: it is left alone.
    posix::DirectoryStream foreign{posix::kDirectoryStreamTag, nullptr};
    std::int32_t fh = frame::get_handle_from_alloc_address(&foreign);
    const std::int32_t kept = fh;
    errno = 0;
    EXPECT_EQ(VALUES(free_instance(fh), errno, fh), tuple(TARVO_ENONAME, EINVAL, kept));
    EXPECT_EQ(instance_of(fh), &foreign);
    frame::free_alloc_handle(fh);
}

TEST(Copies, TypeAndNameMustAgree) {
    Instance stat("stat"), tms("tms"), g1("group"), g2("group");
    errno = 0;
    EXPECT_EQ(VALUES(copy("stat", stat.handle, tms.handle), errno), tuple(EINVAL, EINVAL));  // whatever the name says
    errno = 0;
    EXPECT_EQ(VALUES(copy("passwd", g1.handle, g2.handle), copy("nothing", g1.handle, g2.handle), errno),
              tuple(TARVO_ENONAME, TARVO_ENONAME, 0));
    EXPECT_EQ(copy("GROUP", g1.handle, g2.handle), 0);
    EXPECT_EQ(VALUES(copy("stat", stat.handle, 0), errno), tuple(TARVO_ENOHANDLE, EINVAL));
    EXPECT_EQ(copy("stat", 0, stat.handle), TARVO_ENOHANDLE);
}

TEST(Copies, EveryFieldAndTheOwnedTextsDeeply) {
    Instance a("termios"), b("termios");
    std::int32_t cc[NCCS], ialen = NCCS;
    for (int i = 0; i < NCCS; ++i) cc[i] = 100 + i;
    ASSERT_EQ(field_call(pxfaintset_, a.handle, "c_cc", cc, &ialen) + set(a.handle, "c_lflag", std::int32_t{-5}), 0);
    ASSERT_EQ(copy("termios", a.handle, b.handle), 0);
    EXPECT_EQ(std::memcmp(instance_of(a.handle), instance_of(b.handle), sizeof(posix::TermiosInstance)), 0);

    Instance target_group("group"), target_passwd("passwd");
    fill_group(target_group.handle, {"old1", "old2", "old3"});  // released by the copies
    ASSERT_EQ(set_text(target_passwd.handle, "pw_dir", "/old"), 0);
    {
        Instance group("group"), passwd("passwd");
        fill_group(group.handle, {"ann", "bob"});
        ASSERT_EQ(set(group.handle, "gr_gid", std::int32_t{50}) + set(passwd.handle, "pw_uid", std::int32_t{1000}), 0);
        ASSERT_EQ(set_text(passwd.handle, "pw_name", "ann") + set_text(passwd.handle, "pw_shell", "/bin/sh"), 0);
        ASSERT_EQ(copy("group", group.handle, target_group.handle), 0);
        ASSERT_EQ(copy("passwd", passwd.handle, target_passwd.handle), 0);
        ASSERT_EQ(copy("group", group.handle, group.handle), 0);  // onto itself: unchanged
        EXPECT_EQ(member(group.handle, 2), "bob");
    }  // the sources are gone; the copies own their texts
    std::int32_t gid = 0, nmem = 0, uid = 0;
    const std::int32_t g = target_group.handle, p = target_passwd.handle;
    EXPECT_EQ(VALUES(get(g, "gr_gid", gid), gid, get(g, "gr_nmem", nmem), nmem, get(p, "pw_uid", uid), uid),
              tuple(0, 50, 0, 2, 0, 1000));
    EXPECT_EQ(text_of(g, "gr_name") + "," + member(g, 1) + "," + member(g, 2) + "," + member(g, 3),
              "staff,ann,bob,<125>");
    // The source had no pw_dir.
    EXPECT_EQ(text_of(p, "pw_name") + "," + text_of(p, "pw_dir") + "," + text_of(p, "pw_shell"), "ann,,/bin/sh");
}

TEST(Copies, RunningOutOfMemoryStopsWhereItIs) {
    Instance source("passwd"), target("passwd"), group("group"), group_copy("group");
    const std::int32_t s = source.handle, t = target.handle;
    ASSERT_EQ(set_text(s, "pw_name", "ann") + set_text(s, "pw_dir", "/home/ann") + set_text(s, "pw_shell", "/bin/sh"),
              0);
    base::testing::fail_allocations_after(1);
    EXPECT_EQ(copy("passwd", s, t), ENOMEM);
    base::testing::allow_allocations();
    EXPECT_EQ(text_of(t, "pw_name") + "," + text_of(t, "pw_dir") + "," + text_of(t, "pw_shell"), "ann,,");

    fill_group(group.handle, {"a", "b", "c"});
    base::testing::fail_allocations_after(2);  // the name, the member array, then none
    EXPECT_EQ(copy("group", group.handle, group_copy.handle), ENOMEM);
    base::testing::allow_allocations();
    EXPECT_EQ(member(group_copy.handle, 1) + member(group_copy.handle, 3), "");
}

// Threads of one program create, fill, read and free instances at once: every live handle
// is distinct and every instance keeps what its own thread stored.
TEST(Threads, EightThreadsNeverShareAHandleOrAnInstance) {
    constexpr int kThreads = 8, kRounds = 4000, kLive = 5;
    std::vector<std::vector<std::int32_t>> last_held(kThreads);
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            std::int32_t held[kLive] = {};
            for (int round = 0; round < kRounds; ++round) {
                for (int i = 0; i < kLive; ++i) {
                    std::int32_t ierror = 0;
                    pxfstructcreate_("stat", &held[i], &ierror, 4);
                    const std::int32_t mine = t * 100000 + round * kLive + i;
                    pxfintset_(&held[i], "st_uid", &mine, &ierror, 6);
                }
                for (int i = 0; i < kLive; ++i) {
                    std::int32_t ierror = 0, value = -1;
                    pxfintget_(&held[i], "st_uid", &value, &ierror, 6);
                    if (value != t * 100000 + round * kLive + i) ++mismatches[t];
                    if (round + 1 < kRounds) pxfstructfree_(&held[i], &ierror);
                }
            }
            last_held[t].assign(held, held + kLive);
        });
    for (auto& thread : threads) thread.join();
    std::set<std::int32_t> distinct;
    for (int t = 0; t < kThreads; ++t) {
        EXPECT_EQ(mismatches[t], 0) << "thread " << t;
        for (std::int32_t& handle : last_held[t]) {
            distinct.insert(handle);
            EXPECT_EQ(free_instance(handle), 0);
        }
    }
    EXPECT_EQ(distinct.size(), std::size_t{kThreads * kLive});
}

}  // namespace
