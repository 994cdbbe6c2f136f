#include "runtime/cmdline.h"

#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include "base/memory.h"
#include "base/fstring.h"
#include "runtime/gfortran.h"

namespace runtime {
namespace {

// The command line as the kernel keeps it: words separated by NUL bytes. Read once and
// kept for the life of the process.
struct CommandLine {
    char* text = nullptr;
    std::size_t length = 0;
    std::int32_t words = 0;
};
CommandLine command_line;
pthread_once_t command_line_once = PTHREAD_ONCE_INIT;

void read_command_line() {
    const int fd = open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
    if (fd < 0) return;
    std::size_t capacity = 4096;
    char* text = static_cast<char*>(base::allocate(capacity));
    std::size_t length = 0;
    while (text != nullptr) {
        const ssize_t n = read(fd, text + length, capacity - length);
        if (n <= 0) break;
        length += static_cast<std::size_t>(n);
        if (length == capacity) {
            char* bigger = static_cast<char*>(base::allocate(capacity * 2));
            if (bigger != nullptr) std::memcpy(bigger, text, length);
            base::release(text);
            text = bigger;
            capacity *= 2;
        }
    }
    close(fd);
    if (text == nullptr) return;
    command_line.text = text;
    command_line.length = length;
    for (std::size_t i = 0; i < length; ++i)
        if (text[i] == '\0') ++command_line.words;
}

const CommandLine& native_command_line() noexcept {
    pthread_once(&command_line_once, read_command_line);
    return command_line;
}

// The gfortran run-time knows the command line when its own main program started the
// process; a process started elsewhere reports a negative count there.
const GfortranRuntime* gfortran_command_line() noexcept {
    const GfortranRuntime* rt = gfortran_runtime();
    return rt != nullptr && rt->iargc() >= 0 ? rt : nullptr;
}

const char* native_word(std::int32_t m) noexcept {
    const CommandLine& cl = native_command_line();
    if (m < 0 || m >= cl.words) return nullptr;
    const char* word = cl.text;
    for (; m > 0; --m) word += std::strlen(word) + 1;
    return word;
}

}  // namespace

std::int32_t for_nargs() noexcept {
    if (const GfortranRuntime* rt = gfortran_command_line()) return rt->iargc() + 1;
    return native_command_line().words;
}

void for_getarg(const std::int32_t* m, char* buf, std::int32_t* result, std::size_t buflen) noexcept {
    const std::int32_t number = m != nullptr ? *m : -1;
    if (number < 0 || number >= for_nargs()) {
        base::blank_fill(buf, base::signed_length(buflen));
        if (result != nullptr) *result = -1;
        return;
    }
    std::int32_t length = 0;
    if (const GfortranRuntime* rt = gfortran_command_line()) {
        std::int32_t status = 0;
        std::int32_t n = number;
        rt->get_command_argument_i4(&n, buf, &length, &status, buflen);
    } else {
        const char* word = native_word(number);
        length = static_cast<std::int32_t>(std::strlen(word));
        // A word cut to the buffer is no error here: the full length tells the caller.
        base::store(buf, base::signed_length(buflen), word, static_cast<std::size_t>(length));
    }
    if (result != nullptr) *result = length;
}

}  // namespace runtime
