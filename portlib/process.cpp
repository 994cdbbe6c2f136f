// Process, environment and host: shell commands, environment variables, login and host
// names, identities, signals, sleeping and ending the program.
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <unistd.h>

#include "base/export.h"
#include "portlib/report.h"
#include "base/lock.h"
#include "base/memory.h"
#include "base/fstring.h"
#include "runtime/cmdline.h"
#include "runtime/process.h"
#include "runtime/units.h"
#include <tarvo/portlib.h>

extern char** environ;

namespace {

using base::flen;

flen usable_length(const char* s, std::size_t hidden) noexcept {
    return s != nullptr ? std::max<flen>(base::signed_length(hidden), 0) : 0;
}

// Copies n bytes of text into a Fortran string, cut to its length and blank padded. These
// routines report nothing when the text is cut (HOSTNM compares the lengths itself).
void copy_cut(char* dst, std::size_t dst_len, const char* src, std::size_t n) noexcept {
    base::store(dst, usable_length(dst, dst_len), src, n);
}

void copy_cut(char* dst, std::size_t dst_len, const char* src) noexcept {
    copy_cut(dst, dst_len, src, src != nullptr ? std::strlen(src) : 0);
}

// The state of SCANENV: the pattern of the scan in progress (one byte more than the
// longest pattern, for its terminator) and the index at which the next call continues.
constexpr flen kPatternMax = 8192;
char env_template_name[kPatternMax + 1];
std::int32_t startpos = 0;
base::TableLock scan_lock;  // threads scanning at once share one position, but never tear it

bool begins_with(const char* entry, const char* pattern, flen n) noexcept {
    for (flen i = 0; i < n; ++i)
        if (entry[i] == '\0' || entry[i] != pattern[i]) return false;
    return true;
}

// True when entry startpos - 1 still exists and still begins with the pattern, i.e. the
// environment has not changed under the scan. Never walks past the end of the list.
bool scan_position_holds(char** env, const char* pattern, flen n) noexcept {
    for (std::int32_t i = 0; i < startpos - 1; ++i)
        if (env[i] == nullptr) return false;
    return env[startpos - 1] != nullptr && begins_with(env[startpos - 1], pattern, n);
}

}  // namespace

// INTEGER FUNCTION SYSTEM(COMMAND) -- the wait status system() returns
extern "C" TARVO_API std::int32_t system_(const char* command, std::size_t command_len) noexcept {
    auto text = base::c_string(command, command_len);
    if (!text) return -1;
    // The command's output must follow what the program has already written.
    runtime::flush_all_units();
    return ::system(text.c_str());
}

// SUBROUTINE GETENV(NAME, VALUE) -- the name ends at its first blank; unset gives blanks
extern "C" TARVO_API void getenv_(const char* name, char* value, std::size_t name_len,
                                  std::size_t value_len) noexcept {
    const flen length = usable_length(name, name_len);
    flen n = 0;
    while (n < length && name[n] != ' ') ++n;
    const auto key = base::c_copy(name, static_cast<std::size_t>(n));
    copy_cut(value, value_len, key ? std::getenv(key.c_str()) : nullptr);
}

// SUBROUTINE SCANENV(PATTERN, NAME, VALUE) -- the next variable whose name begins with
// PATTERN, in environment order; blanks after the last one
extern "C" TARVO_API void scanenv_(const char* pattern, char* name, char* value, std::size_t pattern_len,
                                   std::size_t name_len, std::size_t value_len) noexcept {
    base::TableGuard guard(scan_lock);
    flen end = usable_length(pattern, pattern_len);
    while (end > 0 && (pattern[end - 1] == ' ' || pattern[end - 1] == '\0')) --end;
    flen start = 0;
    while (start < end && pattern[start] == ' ') ++start;
    const char* p = pattern + start;
    const flen n = std::min(end - start, kPatternMax);
    char** env = environ;
    if (n > 0) {
        if (std::memcmp(env_template_name, p, static_cast<std::size_t>(n)) != 0) {
            startpos = 0;
            std::memcpy(env_template_name, p, static_cast<std::size_t>(n));
            env_template_name[n] = '\0';
        }
        if (env == nullptr || (startpos != 0 && !scan_position_holds(env, p, n))) startpos = 0;
        // A name never holds "=", so a pattern with one matches nothing.
        const bool can_match = std::memchr(p, '=', static_cast<std::size_t>(n)) == nullptr;
        for (std::int32_t i = startpos; can_match && env != nullptr && env[i] != nullptr; ++i) {
            const char* entry = env[i];
            if (!begins_with(entry, p, n)) continue;
            const char* equals = std::strchr(entry + n, '=');
            const auto k = static_cast<std::size_t>(equals != nullptr ? equals - entry : std::strlen(entry));
            startpos = i + 1;
            copy_cut(name, name_len, entry, k);
            copy_cut(value, value_len, equals != nullptr ? equals + 1 : "");
            return;
        }
    }
    // No pattern, or the end of the environment: the position stays where it was.
    copy_cut(name, name_len, nullptr);
    copy_cut(value, value_len, nullptr);
}

// SUBROUTINE GETLOG(NAME) -- login name of the real user; blanks if unknown
extern "C" TARVO_API void getlog_(char* name, std::size_t name_len) noexcept {
    // The reentrant lookup: threads may ask at once. An entry too large for the buffer
    // (never seen for a login name) gives blanks, as an unknown user does.
    char buffer[16384];
    passwd record{};
    passwd* entry = nullptr;
    getpwuid_r(getuid(), &record, buffer, sizeof buffer, &entry);
    copy_cut(name, name_len, entry != nullptr ? entry->pw_name : nullptr);
}

// INTEGER FUNCTION HOSTNM(NAME) -- 0, -1 when the name was cut, or an error number
extern "C" TARVO_API std::int32_t hostnm_(char* name, std::size_t name_len) noexcept {
    char host[256] = {};
    if (gethostname(host, 255) != 0) {
        const int error = errno;
        copy_cut(name, name_len, nullptr);
        return portlib::report(portlib::Policy::recorder_only, error);
    }
    const std::size_t n = std::strlen(host);
    copy_cut(name, name_len, host, n);
    return static_cast<flen>(n) > usable_length(name, name_len) ? -1 : 0;
}

// INTEGER FUNCTION HOSTNAM(NAME) -- the same routine under its second name
extern "C" TARVO_API std::int32_t hostnam_(char* name, std::size_t name_len) noexcept
    __attribute__((alias("hostnm_")));

// INTEGER FUNCTION GETPID()
extern "C" TARVO_API std::int32_t getpid_() noexcept { return ::getpid(); }

// INTEGER FUNCTION GETUID()
extern "C" TARVO_API std::int32_t getuid_() noexcept { return static_cast<std::int32_t>(::getuid()); }

// INTEGER FUNCTION GETGID()
extern "C" TARVO_API std::int32_t getgid_() noexcept { return static_cast<std::int32_t>(::getgid()); }

// INTEGER FUNCTION KILL(PID, SIGNUM) -- 0, or -1 with errno set
extern "C" TARVO_API std::int32_t kill_(const std::int32_t* pid, const std::int32_t* signum) noexcept {
    if (pid == nullptr || signum == nullptr) {
        errno = EINVAL;
        return -1;
    }
    return ::kill(*pid, *signum);
}

// SUBROUTINE SLEEP(SECONDS) -- an absent or negative count returns at once
extern "C" TARVO_API void sleep_(const std::int32_t* seconds) noexcept {
    if (seconds != nullptr && *seconds >= 0) ::sleep(static_cast<unsigned>(*seconds));
}

// SUBROUTINE ABORT([MESSAGE]) -- "abort: " and at most 240 characters of MESSAGE
extern "C" TARVO_API void abort_(const char* message, std::size_t message_len) noexcept {
    constexpr char kPrefix[] = "abort: ";
    constexpr char kDefault[] = "abort: Fortran Abort Called";
    char text[256];
    std::size_t n = sizeof kDefault - 1;
    std::memcpy(text, kDefault, n);
    // An absent message arrives as a null address; its length is then not to be trusted.
    if (message != nullptr) {
        const auto kept = static_cast<std::size_t>(std::min<flen>(usable_length(message, message_len), 240));
        std::memcpy(text + sizeof kPrefix - 1, message, kept);
        n = sizeof kPrefix - 1 + kept;
    }
    runtime::for_abort(text, n);
}

// SUBROUTINE EXIT([STATUS]) -- flushes the Fortran units and ends the program
extern "C" TARVO_API void exit_(const std::int32_t* status) noexcept { runtime::for_exit(status); }

// SUBROUTINE GETARG(N, ARG) -- word N of the command line (0: the command), blanks when
// there is none. Also defined here so that a program linked with another compiler's
// run-time, which has the same names, calls this library for all of them.
extern "C" TARVO_API void getarg_(const std::int32_t* n, char* arg, std::size_t arg_len) noexcept {
    std::int32_t length = 0;
    runtime::for_getarg(n, arg, &length, arg_len);
}

// INTEGER FUNCTION IARGC() -- the number of arguments after the command's name
extern "C" TARVO_API std::int32_t iargc_() noexcept { return runtime::for_nargs() - 1; }
