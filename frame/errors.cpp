#include "frame/errors.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "base/fstring.h"
#include <tarvo/frame.h>

namespace frame {
namespace {
// One cell for the whole process; the last writer wins, as callers expect.
std::atomic<std::int32_t> local_errno{0};

// Message texts by code minus TARVO_DIAG_FIRST; codes 1010 and 1011 have none.
constexpr const char* err_array[] = {
    " ",
    "Input parameters contain invalid parameter address",
    "Logical unit number is invalid or not open.",
    "An intermediate value exceeds the available range",
    "Only signal KILL (9) is supported on Windows* OS",
    "Invalid seek was performed. Check errno",
    "Output was truncated, buffer provided was too small",
    "Input value was invalid",
    "Portability function 'ALARM' can't work without 'lpthread' library",
    " ",
    nullptr,
    nullptr,
    "Unknown error",
    "Domain error",
    "Singularity error",
    "Overflow error",
    "Underflow error",
    "Total loss of precision",
    "Partial loss of precision",
};
static_assert(std::size(err_array) == TARVO_DIAG_LAST - TARVO_DIAG_FIRST + 1);

int print_diagnostic(char severity, std::int32_t code) noexcept {
    errno = code;
    // Callers pass listed codes only; the table is not range-checked beyond keeping
    // the read inside it, and a missing text prints as "(null)".
    // Unsigned arithmetic: a code far below the first never overflows on its way out.
    const std::uint32_t index = static_cast<std::uint32_t>(code) - static_cast<std::uint32_t>(TARVO_DIAG_FIRST);
    const char* text = index < std::size(err_array) ? err_array[index] : nullptr;
    return std::fprintf(stderr, "*** %c - %d - %s\n", severity, static_cast<int>(code),
                        text != nullptr ? text : "(null)");
}
// The library's own codes, whose numbers the system also uses for other errors.
struct OwnText {
    std::int32_t code;
    const char* text;
};
constexpr OwnText kOwnTexts[] = {
    {TARVO_EARRAYLEN, "An array index or array length is out of range"},
    {TARVO_ENONAME, "A name (constant, structure type or field) is not known"},
    {TARVO_ENOHANDLE, "A structure handle is not valid, or a structure could not be allocated"},
    {TARVO_EENDDIR, "End of the directory stream"},
    {TARVO_ETRUNC, "A returned string was cut to fit the caller's variable"},
    {TARVO_EEND, "End of file"},
};

// The text of an error number: the library's own texts first, then the system's.
const char* error_text(std::int32_t code, char* scratch, std::size_t size) noexcept {
    for (const OwnText& own : kOwnTexts)
        if (own.code == code) return own.text;
    const std::uint32_t index = static_cast<std::uint32_t>(code) - static_cast<std::uint32_t>(TARVO_DIAG_FIRST);
    if (index < std::size(err_array) && err_array[index] != nullptr && index != 0) return err_array[index];
    return strerror_r(code, scratch, size);  // the GNU form: returns the text it chose
}
}  // namespace

std::int32_t portlib_local_errno() noexcept { return local_errno.load(std::memory_order_relaxed); }

void set_portlib_local_errno(std::int32_t code) noexcept {
    local_errno.store(code, std::memory_order_relaxed);
}

}  // namespace frame

// INTEGER FUNCTION IERRNO()
extern "C" TARVO_API std::int32_t ierrno_() noexcept { return frame::portlib_local_errno(); }

// INTEGER FUNCTION GETLASTERROR()
extern "C" TARVO_API std::int32_t getlasterror_() noexcept { return errno; }

// INTEGER FUNCTION GETLASTERRORQQ() -- the same routine under its second name
extern "C" TARVO_API std::int32_t getlasterrorqq_() noexcept
    __attribute__((alias("getlasterror_")));

extern "C" TARVO_API std::int32_t for_getsystemerror_dummy(std::int32_t value) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) + 1u);
}

extern "C" TARVO_API int __tarvo_lib_warn(std::int32_t code) noexcept {
    return frame::print_diagnostic('W', code);
}

extern "C" TARVO_API void __tarvo_lib_err(std::int32_t code) noexcept {
    frame::print_diagnostic('E', code);
    std::exit(code);  // the status the parent sees is the code modulo 256
}

// SUBROUTINE TARVO_ERRTEXT(CODE, MESSAGE) -- the text of any number the routines report
extern "C" TARVO_API void tarvo_errtext_(const std::int32_t* code, char* message, std::size_t message_len) noexcept {
    char scratch[256];
    const char* text = code != nullptr ? frame::error_text(*code, scratch, sizeof scratch) : "";
    base::store_fortran_string(message, message_len, text);
}

// SUBROUTINE GERROR(MESSAGE) -- the text of the last error of the classic routines (IERRNO)
extern "C" TARVO_API void gerror_(char* message, std::size_t message_len) noexcept {
    const std::int32_t code = frame::portlib_local_errno();
    tarvo_errtext_(&code, message, message_len);
}

// SUBROUTINE PERROR(PREFIX) -- "PREFIX: text" of the last classic error on standard error
extern "C" TARVO_API void perror_(const char* prefix, std::size_t prefix_len) noexcept {
    char scratch[256];
    const char* text = frame::error_text(frame::portlib_local_errno(), scratch, sizeof scratch);
    const base::flen n = prefix != nullptr ? base::trimmed_length(prefix, base::signed_length(prefix_len)) : 0;
    std::fprintf(stderr, "%.*s: %s\n", static_cast<int>(n), n > 0 ? prefix : "", text);
}
