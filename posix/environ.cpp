// Environment and command line of the POSIX binding. Names and values are Fortran strings
// with a length beside them; a length of 0 asks for the declared length less white space
// (the private classifier's). The command line is the run-time's.
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "base/fstring.h"
#include "base/memory.h"
#include "posix/pxf.h"
#include "runtime/cmdline.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

bool white(char c) noexcept { return base::isspace(static_cast<unsigned char>(c)) != 0; }

// The first n characters of text less trailing white space and, when `leading` is set,
// less leading white space too.
struct Text {
    const char* text;
    std::size_t length;
};
Text trimmed(const char* text, base::flen n, bool leading) noexcept {
    if (text == nullptr || n < 0) n = 0;
    while (n > 0 && white(text[n - 1])) --n;
    base::flen start = 0;
    if (leading)
        while (start < n && white(text[start])) ++start;
    return {text + start, static_cast<std::size_t>(n - start)};
}

// The variable name of PXFGETENV and PXFSETENV: LENNAME characters, or with LENNAME 0 the
// whole declared name; trailing white space always goes, leading only for LENNAME 0.
Text variable_name(const char* name, std::int32_t lenname, std::size_t name_len) noexcept {
    const base::flen declared = base::signed_length(name_len);
    return trimmed(name, lenname != 0 && lenname < declared ? lenname : declared, lenname == 0);
}

// A length beside a string, widened with sign and compared unsigned: negatives fail too.
bool beyond(std::int32_t length, std::size_t declared) noexcept {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(length)) > declared;
}

// Removes the first entry of the environment list in place, as unsetenv would.
void drop_first_entry() noexcept {
    for (char** entry = ::environ; *entry != nullptr; ++entry) entry[0] = entry[1];
}

}  // namespace
}  // namespace posix

using posix::report;

// SUBROUTINE PXFGETENV(ENVNAME, LENNAME, VALUE, LENVAL, IERROR)
extern "C" TARVO_API void pxfgetenv_(const char* envname, const std::int32_t* lenname, char* value,
                                     std::int32_t* lenval, std::int32_t* ierror, std::size_t envname_len,
                                     std::size_t value_len) noexcept {
    const posix::Text name = posix::variable_name(envname, *lenname, envname_len);
    const base::Owned<char> copy = base::c_copy(name.text, name.length);
    if (!copy) {
        base::blank_fill(value, base::signed_length(value_len));
        return report(ierror, errno);
    }
    const char* found = std::getenv(copy.c_str());
    if (found == nullptr) {
        base::blank_fill(value, base::signed_length(value_len));
        return report(ierror, EINVAL, EINVAL);
    }
    posix::store_text(found, std::strlen(found), value, value_len, lenval, ierror);
    // Intended: errno tells the same as IERROR here, cleared on success.
    errno = *ierror;
}

// SUBROUTINE PXFSETENV(ENVNAME, LENNAME, NEWVALUE, LENNEW, IOVERWRITE, IERROR)
extern "C" TARVO_API void pxfsetenv_(const char* envname, const std::int32_t* lenname, const char* newvalue,
                                     const std::int32_t* lennew, const std::int32_t* ioverwrite, std::int32_t* ierror,
                                     std::size_t envname_len, std::size_t newvalue_len) noexcept {
    if (posix::beyond(*lenname, envname_len) || posix::beyond(*lennew, newvalue_len))
        return report(ierror, EINVAL, EINVAL);
    const posix::Text name = posix::variable_name(envname, *lenname, envname_len);
    const posix::Text text = posix::trimmed(newvalue, *lennew != 0 ? *lennew : base::signed_length(newvalue_len),
                                            *lennew == 0);
    const base::Owned<char> name_copy = base::c_copy(name.text, name.length);
    if (!name_copy) return report(ierror, errno);
    const base::Owned<char> value_copy = base::c_copy(text.text, text.length);
    if (!value_copy) return report(ierror, errno);
    posix::report_host(ierror, ::setenv(name_copy.c_str(), value_copy.c_str(), *ioverwrite != 0 ? 1 : 0));
}

// SUBROUTINE PXFCLEARENV(IERROR)
extern "C" TARVO_API void pxfclearenv_(std::int32_t* ierror) noexcept {
    std::size_t capacity = 100;
    auto name = base::Owned<char>::with_room_for(capacity + 1);
    if (!name) return report(ierror, ENOMEM, ENOMEM);
    // The list is read afresh after every removal, which shifts it.
    while (::environ != nullptr && ::environ[0] != nullptr) {
        char* const entry = ::environ[0];
        const std::size_t length = std::strcspn(entry, "=");
        if (length > capacity) {
            name = base::Owned<char>::with_room_for(length + 1);
            if (!name) return report(ierror, ENOMEM, ENOMEM);
            capacity = length;
        }
        std::memcpy(name.get(), entry, length);
        name.get()[length] = '\0';
        ::unsetenv(name.c_str());
        // An entry unsetenv cannot remove (no "=", or an empty name) is taken out directly,
        // so the loop always progresses.
        if (::environ != nullptr && ::environ[0] == entry) posix::drop_first_entry();
    }
    *ierror = 0;
}

// SUBROUTINE PXFGETARG(M, VALUE, ILEN, IERROR)
extern "C" TARVO_API void pxfgetarg_(const std::int32_t* m, char* value, std::int32_t* ilen, std::int32_t* ierror,
                                     std::size_t value_len) noexcept {
    std::int32_t length = -1;
    runtime::for_getarg(m, value, &length, value_len);
    if (length == -1) {
        *ilen = 0;
        return report(ierror, EINVAL, EINVAL);
    }
    *ilen = length;
    report(ierror, static_cast<std::uint32_t>(length) > value_len ? TARVO_ETRUNC : 0);
}

// INTEGER FUNCTION IPXFARGC() -- the arguments after the command name
extern "C" TARVO_API std::int32_t ipxfargc_() noexcept { return runtime::for_nargs() - 1; }
