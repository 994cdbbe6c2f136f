// Routines that open something give it all back: 10^4 open/close cycles of each leave the
// process with the descriptors it had. (FINDFILEQQ hits and abandoned wildcard searches keep
// theirs on purpose and are not here.)
#include <dirent.h>
#include <fcntl.h>

#include <cstring>
#include <functional>

#include "support/support.h"
#include <tarvo/portlib.h>
#include <tarvo/posix.h>
#include <tarvo/qq.h>
#include <tarvo/records.h>

namespace {

using tarvo_test::FString;

int open_descriptors() {
    DIR* fds = opendir("/proc/self/fd");
    int count = 0;
    while (readdir(fds) != nullptr) ++count;
    closedir(fds);
    return count;
}

struct Cycle {
    const char* routines;
    std::function<void()> once;
};

void close_fd(std::int32_t fd) {
    std::int32_t ierror = 0;
    pxfclose_(&fd, &ierror);
}

class Descriptors : public tarvo_test::ScratchDirTest {};

TEST_F(Descriptors, OpenCloseCyclesLeaveTheCountUnchanged) {
    write_file("data", "text");
    std::int32_t dirent = 0, user = 0, status = 0;
    pxfstructcreate_("dirent", &dirent, &status, 6);
    pxfstructcreate_("passwd", &user, &status, 6);
    ASSERT_NE(dirent * user, 0);

    const Cycle cycles[] = {
        {"PXFOPEN, PXFCLOSE", [] {
             const std::int32_t length = 0, flags = O_RDONLY, mode = 0;
             std::int32_t fd = -1, ierror = 0;
             pxfopen_("data", &length, &flags, &mode, &fd, &ierror, 4);
             close_fd(fd);
         }},
        {"PXFPIPE, PXFDUP, PXFCLOSE", [] {
             std::int32_t in = -1, out = -1, copy = -1, ierror = 0;
             pxfpipe_(&in, &out, &ierror);
             pxfdup_(&in, &copy, &ierror);
             close_fd(in), close_fd(out), close_fd(copy);
         }},
        {"PXFOPENDIR, PXFREADDIR, PXFCLOSEDIR", [&] {
             std::int32_t id = 0, ierror = 0, length = 1;
             pxfopendir_(".", &length, &id, &ierror, 1);
             pxfreaddir_(&id, &dirent, &ierror);
             pxfclosedir_(&id, &ierror);
         }},
        {"GETFILEINFOQQ to the end", [] {
             tarvo_file_info info{};
             std::intptr_t handle = TARVO_FILE_FIRST;
             do getfileinfoqq_("*", &info, &handle, 1);
             while (handle >= 0);
         }},
        {"DELFILESQQ", [] { delfilesqq_("nothing-*", 9); }},
        {"PXFGETPWNAM, GETLOG", [&] {
             std::int32_t ierror = 0, length = 0;
             pxfgetpwnam_("root", &length, &user, &ierror, 4);
             FString name(64);
             getlog_(name.data(), name.size());
         }},
        {"TTYNAM, ISATTY", [] {
             FString name(64);
             const std::int32_t unit = 6;
             ttynam_(name.data(), name.size(), &unit);
             isatty_(&unit);
         }},
    };

    for (const Cycle& c : cycles) {
        c.once();  // lookups that keep a descriptor for the process open it here
        const int before = open_descriptors();
        for (int i = 0; i < 10000; ++i) c.once();
        EXPECT_EQ(open_descriptors(), before) << c.routines;
    }
    pxfstructfree_(&dirent, &status);
    pxfstructfree_(&user, &status);
}

}  // namespace
