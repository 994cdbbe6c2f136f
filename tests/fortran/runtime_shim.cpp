// Gives the bridge test program the run-time's internal unit operations and a few host
// calls to set up descriptors.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <thread>

#include "runtime/cmdline.h"
#include "runtime/process.h"
#include "runtime/units.h"

extern "C" {

int tarvo_t_backend_is_gfortran() { return runtime::unit_backend() == runtime::UnitBackend::gfortran; }
int tarvo_t_gethandle(std::int32_t unit) { return runtime::__quenvatix_d_gethandle(unit, nullptr, nullptr); }
int tarvo_t_readchar(std::int32_t unit) { return runtime::__quenvatix_d_readchar(unit); }
int tarvo_t_writechar(std::int32_t unit, std::int32_t ch) { return runtime::__quenvatix_d_writechar(unit, ch); }
int tarvo_t_fseek(std::int32_t unit, std::int64_t offset, std::int32_t origin) {
    return runtime::__quenvatix_d_fseek_i8(unit, offset, origin);
}
std::int64_t tarvo_t_curpos(std::int32_t unit) { return runtime::__quenvatix_d_curpos_i8(unit); }
int tarvo_t_fdopen(int fd, std::int32_t unit, const char* access) {
    return runtime::for_fdopen(fd, unit, access, std::strlen(access));
}
std::int32_t tarvo_t_nargs() { return runtime::for_nargs(); }
std::int32_t tarvo_t_getarg(std::int32_t m, char* buf, std::int32_t len) {
    std::int32_t result = 0;
    runtime::for_getarg(&m, buf, &result, static_cast<std::size_t>(len));
    return result;
}
void tarvo_t_exit(std::int32_t status) { runtime::for_exit(&status); }
void tarvo_t_abort(const char* message) { runtime::for_abort(message, std::strlen(message)); }

int tarvo_t_open(const char* path, int write_access, int skip) {
    const int fd = open(path, write_access ? O_RDWR : O_RDONLY);
    char buf[64];
    if (fd >= 0 && skip > 0 && read(fd, buf, static_cast<std::size_t>(skip)) != skip) return -1;
    return fd;
}
int tarvo_t_open_append_only(const char* path) { return open(path, O_WRONLY); }
std::int64_t tarvo_t_size_of(int fd) {
    struct stat st {};
    return fstat(fd, &st) == 0 ? st.st_size : -1;
}
int tarvo_t_pipe_with(const char* text) {
    int p[2];
    if (pipe(p) != 0) return -1;
    const auto n = static_cast<ssize_t>(std::strlen(text));
    if (write(p[1], text, static_cast<std::size_t>(n)) != n) return -1;
    close(p[1]);
    return p[0];
}
int tarvo_t_close(int fd) { return close(fd); }
void tarvo_t_set_errno(int value) { errno = value; }
void tarvo_t_in_new_thread(void (*body)()) { std::thread(body).join(); }
}
