// Running commands, pausing, the bell, environment variables, and the two desktop routines
// that exist so that programs link.
#include <sys/select.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "base/fstring.h"
#include "base/memory.h"
#include "qq/qq.h"
#include "runtime/process.h"
#include "runtime/units.h"
#include <tarvo/qq.h>

namespace {

constexpr std::int32_t logical(bool value) { return value ? TARVO_TRUE : TARVO_FALSE; }

// Runs the command through /bin/sh with interrupt and quit ignored and child-status
// signals held in the caller, as a shell's own command runner does; the wait status, or -1
// when no child could be made or waited for.
int run_shell(const char* command) noexcept {
    struct sigaction ignore {}, old_int {}, old_quit {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    sigaction(SIGINT, &ignore, &old_int);
    sigaction(SIGQUIT, &ignore, &old_quit);
    sigset_t child, old_mask;
    sigemptyset(&child);
    sigaddset(&child, SIGCHLD);
    sigprocmask(SIG_BLOCK, &child, &old_mask);

    int status = -1;
    const pid_t pid = fork();
    if (pid == 0) {
        sigaction(SIGINT, &old_int, nullptr);
        sigaction(SIGQUIT, &old_quit, nullptr);
        sigprocmask(SIG_SETMASK, &old_mask, nullptr);
        execl("/bin/sh", "sh", "-c", command, static_cast<char*>(nullptr));
        _exit(127);
    }
    if (pid > 0) {
        while (waitpid(pid, &status, 0) < 0) {
            if (errno != EINTR) {
                status = -1;
                break;
            }
        }
    }
    sigaction(SIGINT, &old_int, nullptr);
    sigaction(SIGQUIT, &old_quit, nullptr);
    sigprocmask(SIG_SETMASK, &old_mask, nullptr);
    return status;
}

}  // namespace

// LOGICAL(4) FUNCTION SYSTEMQQ(COMMANDLINE) -- .TRUE. when the command ran, whatever its status
extern "C" TARVO_API std::int32_t systemqq_(const char* commandline, std::size_t commandline_len) noexcept {
    const auto command = base::c_string(commandline, commandline_len);
    if (!command) return TARVO_FALSE;
    runtime::flush_all_units();  // the command's output follows what the program wrote
    return logical(run_shell(command.c_str()) != -1);
}

// INTEGER(4) FUNCTION RUNQQ(FILENAME, COMMANDLINE) -- 0 when the shell reported status 0, else -1
extern "C" TARVO_API std::int32_t runqq_(const char* filename, const char* commandline, std::size_t filename_len,
                                         std::size_t commandline_len) noexcept {
    const auto program = base::c_string(filename, filename_len);
    if (!program) return qq::fail(ENOMEM, -1);
    const auto arguments = static_cast<std::size_t>(base::trimmed_length(commandline, base::signed_length(commandline_len)));
    const std::size_t program_length = std::strlen(program.c_str());
    // The program name is quoted, so it may hold blanks; the arguments go to the shell as written.
    auto text = base::Owned<char>::with_room_for(program_length + arguments + 4);
    if (!text) return qq::fail(ENOMEM, -1);
    char* out = text.get();
    *out++ = '"';
    out = static_cast<char*>(std::memcpy(out, program.c_str(), program_length)) + program_length;
    *out++ = '"';
    *out++ = ' ';
    if (arguments > 0) out = static_cast<char*>(std::memcpy(out, commandline, arguments)) + arguments;
    *out = '\0';
    runtime::flush_all_units();
    return std::system(text.c_str()) == 0 ? 0 : -1;
}

// SUBROUTINE SLEEPQQ(DURATION) -- milliseconds; a signal may end the wait early
extern "C" TARVO_API void sleepqq_(const std::int32_t* duration) noexcept {
    if (*duration < 0) return;
    const std::int64_t micros = std::int64_t{*duration} * 1000;
    timeval timeout{static_cast<time_t>(micros / 1000000), static_cast<suseconds_t>(micros % 1000000)};
    select(5, nullptr, nullptr, nullptr, &timeout);
}

// SUBROUTINE BEEPQQ() -- the bell character on standard output, buffered
extern "C" TARVO_API void beepqq_() noexcept { std::fputc('\a', stdout); }

// INTEGER(4) FUNCTION GETENVQQ(VARNAME, VALUE) -- characters stored in VALUE (cut: error 22)
extern "C" TARVO_API std::int32_t getenvqq_(const char* varname, char* value, std::size_t varname_len,
                                            std::size_t value_len) noexcept {
    const char* found;
    {
        const auto name = base::c_string(varname, varname_len);
        if (!name) return 0;
        found = std::getenv(name.c_str());
    }
    const base::flen length = base::signed_length(value_len);
    return static_cast<std::int32_t>(base::CstrToFstr(value, found != nullptr ? found : "", length, length));
}

// LOGICAL(4) FUNCTION SETENVQQ(VARNAMEVALUE) -- "NAME=value"; the last "=" ends the name
extern "C" TARVO_API std::int32_t setenvqq_(const char* varnamevalue, std::size_t varnamevalue_len) noexcept {
    const auto text = base::c_string(varnamevalue, varnamevalue_len);
    if (!text) return TARVO_FALSE;
    char* equals = std::strrchr(text.get(), '=');
    if (equals == nullptr) return qq::fail(EINVAL, TARVO_FALSE);
    *equals = '\0';
    return logical(setenv(text.c_str(), equals + 1, 1) == 0);
}

// SUBROUTINE SETERRORMODEQQ(PROMPT) -- there are no error boxes to switch: does nothing
extern "C" TARVO_API void seterrormodeqq_(const void*) noexcept {}

// LOGICAL(4) FUNCTION ESTABLISHQQ(...) -- the run-time offers no intermediate handlers: .FALSE.
extern "C" TARVO_API std::int32_t establishqq_() noexcept {
    return logical(runtime::for__intermediate_establish() != 0);
}
