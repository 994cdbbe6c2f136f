// Structure instances: create, copy, free, handles and the texts "group" and "passwd" own.
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "posix/pxf_support.h"

namespace {

using namespace pxf_test;

TEST(Instances, EveryTypeByNameInAnyCase) {
    const char* names[] = {"sigset", "SIGACTION", "utsname ", "Tms", "dirent", "STAT   trailing words",
                           "utimbuf", "flock", "termios", "group", "passwd"};
    std::int32_t handles[11] = {};
    for (std::int32_t tag = 1; tag <= 11; ++tag) {
        std::int32_t& handle = handles[tag - 1];
        ASSERT_EQ(create(names[tag - 1], handle), 0) << names[tag - 1];
#if TARVO_HANDLE_TABLES
        EXPECT_EQ(handle, tag);  // the first instances get 1, 2, 3 ...
#endif
        const auto* block = static_cast<const unsigned char*>(instance_of(handle));
        EXPECT_EQ(posix::tag_of(block), tag);
        const std::size_t size = posix::kStructTypes[tag - 1].size;
        EXPECT_EQ(std::count(block + 4, block + size, 0), static_cast<std::ptrdiff_t>(size - 4));  // zero-filled
    }
    for (std::int32_t& handle : handles) {
        EXPECT_EQ(free_instance(handle), 0);
        EXPECT_EQ(handle, 0);
    }
}

TEST(Instances, UnknownTypeNamesLeaveTheHandleAlone) {
    for (const char* name : {"", "   ", "stats", "sta", "sig set", " stat"}) {
        std::int32_t handle = 42;
        errno = 0;
        EXPECT_EQ(create(name, handle), TARVO_ENONAME) << name;
        EXPECT_EQ(handle, 42);
        EXPECT_EQ(errno, 0);
    }
    std::int32_t handle = 42, ierror = 0;
    pxfstructcreate_(nullptr, &handle, &ierror, 4);
    EXPECT_EQ(ierror, TARVO_ENONAME);
}

TEST(Instances, NoMemoryGivesEnohandle) {
    std::int32_t handle = 42;
    frame::testing::fail_allocations_after(0);
    EXPECT_EQ(create("stat", handle), TARVO_ENOHANDLE);
    frame::testing::allow_allocations();
    EXPECT_EQ(handle, 42);
}

#if TARVO_HANDLE_TABLES
TEST(Instances, HandlesAreReusedLowestFirstAndThe256thIs257) {
    std::vector<std::int32_t> handles(300);
    for (auto& h : handles) ASSERT_EQ(create("flock", h), 0);
    EXPECT_EQ(handles[254], 255);
    EXPECT_EQ(handles[255], 257);  // block 1, slot 0
    std::int32_t h7 = handles[6], h3 = handles[2];
    ASSERT_EQ(free_instance(h7), 0);
    ASSERT_EQ(free_instance(h3), 0);
    ASSERT_EQ(create("flock", handles[2]), 0);
    ASSERT_EQ(create("flock", handles[6]), 0);
    EXPECT_EQ(handles[2], 3);
    EXPECT_EQ(handles[6], 7);
    // When the chain cannot grow, the new instance gets handle 0 and is not kept.
    while (handles.size() < 510) {
        handles.emplace_back();
        ASSERT_EQ(create("flock", handles.back()), 0);
    }
    frame::testing::fail_allocations_after(1);  // the instance, not the next table block
    std::int32_t refused = 42;
    EXPECT_EQ(create("flock", refused), TARVO_ENOHANDLE);
    frame::testing::allow_allocations();
    EXPECT_EQ(refused, 0);
    for (auto& h : handles) ASSERT_EQ(free_instance(h), 0);
}
#endif

TEST(Instances, FreeingWhatIsNoInstance) {
    std::int32_t handle = 0;
    ASSERT_EQ(create("stat", handle), 0);
    std::int32_t same = handle;
    ASSERT_EQ(free_instance(same), 0);
    errno = 0;
    EXPECT_EQ(free_instance(same), TARVO_ENOHANDLE);  // the first call set it to 0
    EXPECT_EQ(errno, EINVAL);
#if TARVO_HANDLE_TABLES
    for (std::int32_t bad : {handle, 256, 77, 0x7F01}) {  // freed, no slot, never issued, no block
        errno = 0;
        EXPECT_EQ(free_instance(bad), TARVO_ENOHANDLE) << bad;
        EXPECT_EQ(errno, EINVAL);
    }
#endif
    // A directory stream's handle names no instance: it is left alone.
    posix::DirectoryStream foreign{posix::kDirectoryStreamTag, nullptr};
    std::int32_t fh = frame::get_handle_from_alloc_address(&foreign);
    errno = 0;
    EXPECT_EQ(free_instance(fh), TARVO_ENONAME);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_NE(fh, 0);
    EXPECT_EQ(instance_of(fh), &foreign);
    frame::free_alloc_handle(fh);
}

TEST(Copies, TypeAndNameMustAgree) {
    Instance stat("stat"), tms("tms"), g1("group"), g2("group");
    errno = 0;
    EXPECT_EQ(copy("stat", stat.handle, tms.handle), EINVAL);  // whatever the name says
    EXPECT_EQ(errno, EINVAL);
    errno = 0;
    EXPECT_EQ(copy("passwd", g1.handle, g2.handle), TARVO_ENONAME);
    EXPECT_EQ(copy("nothing", g1.handle, g2.handle), TARVO_ENONAME);
    EXPECT_EQ(errno, 0);
    EXPECT_EQ(copy("GROUP", g1.handle, g2.handle), 0);
    EXPECT_EQ(copy("stat", stat.handle, 0), TARVO_ENOHANDLE);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(copy("stat", 0, stat.handle), TARVO_ENOHANDLE);
}

TEST(Copies, PlainTypesCopyEveryField) {
    Instance a("termios"), b("termios");
    std::int32_t cc[NCCS], ialen = NCCS, ierror;
    for (int i = 0; i < NCCS; ++i) cc[i] = 100 + i;
    pxfaintset_(&a.handle, "c_cc", cc, &ialen, &ierror, 4);
    ASSERT_EQ(set(a.handle, "c_lflag", std::int32_t{-5}), 0);
    ASSERT_EQ(copy("termios", a.handle, b.handle), 0);
    EXPECT_EQ(std::memcmp(instance_of(a.handle), instance_of(b.handle), sizeof(posix::TermiosInstance)), 0);
}

TEST(Copies, GroupAndPasswdTextsAreCopiedDeeply) {
    Instance target_group("group"), target_passwd("passwd");
    fill_group(target_group.handle, {"old1", "old2", "old3"});  // released by the copies
    ASSERT_EQ(set_text(target_passwd.handle, "pw_dir", "/old"), 0);
    {
        Instance group("group"), passwd("passwd");
        fill_group(group.handle, {"ann", "bob"});
        ASSERT_EQ(set(group.handle, "gr_gid", std::int32_t{50}), 0);
        ASSERT_EQ(set_text(passwd.handle, "pw_name", "ann"), 0);
        ASSERT_EQ(set_text(passwd.handle, "pw_shell", "/bin/sh"), 0);
        ASSERT_EQ(set(passwd.handle, "pw_uid", std::int32_t{1000}), 0);
        ASSERT_EQ(copy("group", group.handle, target_group.handle), 0);
        ASSERT_EQ(copy("passwd", passwd.handle, target_passwd.handle), 0);
        ASSERT_EQ(copy("group", group.handle, group.handle), 0);  // onto itself: unchanged
        EXPECT_EQ(member(group.handle, 2), "bob");
    }  // the sources are gone; the copies own their texts
    std::int32_t gid = 0, nmem = 0, uid = 0;
    EXPECT_EQ(get(target_group.handle, "gr_gid", gid), 0);
    EXPECT_EQ(get(target_group.handle, "gr_nmem", nmem), 0);
    EXPECT_EQ(gid, 50);
    EXPECT_EQ(nmem, 2);
    EXPECT_EQ(text_of(target_group.handle, "gr_name"), "staff");
    EXPECT_EQ(member(target_group.handle, 1), "ann");
    EXPECT_EQ(member(target_group.handle, 2), "bob");
    EXPECT_EQ(member(target_group.handle, 3), "<125>");
    EXPECT_EQ(get(target_passwd.handle, "pw_uid", uid), 0);
    EXPECT_EQ(uid, 1000);
    EXPECT_EQ(text_of(target_passwd.handle, "pw_name"), "ann");
    EXPECT_EQ(text_of(target_passwd.handle, "pw_dir"), "");  // the source had none
    EXPECT_EQ(text_of(target_passwd.handle, "pw_shell"), "/bin/sh");
}

TEST(Copies, RunningOutOfMemoryStopsWhereItIs) {
    Instance source("passwd"), target("passwd");
    ASSERT_EQ(set_text(source.handle, "pw_name", "ann"), 0);
    ASSERT_EQ(set_text(source.handle, "pw_dir", "/home/ann"), 0);
    ASSERT_EQ(set_text(source.handle, "pw_shell", "/bin/sh"), 0);
    frame::testing::fail_allocations_after(1);
    errno = 0;
    EXPECT_EQ(copy("passwd", source.handle, target.handle), ENOMEM);
    frame::testing::allow_allocations();
    EXPECT_EQ(text_of(target.handle, "pw_name"), "ann");
    EXPECT_EQ(text_of(target.handle, "pw_dir"), "");
    EXPECT_EQ(text_of(target.handle, "pw_shell"), "");

    Instance group("group"), group_copy("group");
    fill_group(group.handle, {"a", "b", "c"});
    frame::testing::fail_allocations_after(2);  // the name, the member array, then none
    EXPECT_EQ(copy("group", group.handle, group_copy.handle), ENOMEM);
    frame::testing::allow_allocations();
    EXPECT_EQ(member(group_copy.handle, 1), "");
    EXPECT_EQ(member(group_copy.handle, 3), "");
}

}  // namespace
