#include "support/support.h"

#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace tarvo_test {

void ScratchDirTest::SetUp() {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/tarvo-test-XXXXXX";
    ASSERT_NE(mkdtemp(pattern.data()), nullptr) << "mkdtemp: " << std::strerror(errno);
    char real[PATH_MAX];
    ASSERT_NE(realpath(pattern.c_str(), real), nullptr);
    dir_ = real;
    ASSERT_EQ(chmod(dir_.c_str(), 0755), 0);  // reachable by a test child that drops privileges
    saved_cwd_ = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_GE(saved_cwd_, 0);
    saved_umask_ = umask(022);
    ASSERT_EQ(chdir(dir_.c_str()), 0);
}

void ScratchDirTest::TearDown() {
    if (saved_cwd_ >= 0) {
        EXPECT_EQ(fchdir(saved_cwd_), 0);
        close(saved_cwd_);
    }
    umask(saved_umask_);
    if (!dir_.empty()) remove_tree(dir_);
}

void ScratchDirTest::write_file(const std::string& name, const std::string& content, mode_t mode) const {
    std::ofstream out(path(name), std::ios::binary);
    out << content;
    out.close();
    ASSERT_EQ(chmod(path(name).c_str(), mode), 0);
}

std::string ScratchDirTest::read_file(const std::string& name) const {
    std::ifstream in(path(name), std::ios::binary);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

mode_t ScratchDirTest::mode_of(const std::string& name) const {
    struct stat st {};
    if (lstat(path(name).c_str(), &st) != 0) return static_cast<mode_t>(-1);
    return st.st_mode & 07777;
}

int run_in_child(const std::function<int()>& fn) {
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid == 0) _exit(fn());
    int status = -1;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

CapturedOutput::CapturedOutput(int fd) : fd_(fd) {
    std::fflush(nullptr);
    char name[] = "/tmp/tarvo-capture-XXXXXX";
    file_ = mkstemp(name);
    unlink(name);
    saved_ = dup(fd_);
    dup2(file_, fd_);
}

std::string CapturedOutput::text() {
    if (!done_) {
        std::fflush(nullptr);
        dup2(saved_, fd_);
        close(saved_);
        done_ = true;
    }
    std::string out;
    char buf[4096];
    ssize_t n;
    off_t at = 0;
    while ((n = pread(file_, buf, sizeof buf, at)) > 0) {
        out.append(buf, static_cast<std::size_t>(n));
        at += n;
    }
    return out;
}

CapturedOutput::~CapturedOutput() {
    text();
    close(file_);
}

void remove_tree(const std::string& path) {
    nftw(path.c_str(), [](const char* p, const struct stat*, int, FTW*) { return remove(p); }, 16,
         FTW_DEPTH | FTW_PHYS);
}

}  // namespace tarvo_test
