// How the classic routines report a failure. Most return the error number, keep it for IERRNO
// and hand it to the run-time's recorder; a few routines do less by design, and
// name the policy they use at the call, so the differences stay visible.
#pragma once

#include <cerrno>
#include <cstdint>

#include "base/record.h"
#include "frame/errors.h"

namespace portlib {

enum class Policy : unsigned char {
    classic,        // recorder and IERRNO cell; errno as the failing host call left it
    classic_errno,  // the same, with errno = the code: failures the routine detects itself
    cell_only,      // IERRNO cell only: CHMOD's uncopyable name, GETCWD's empty variable,
                    // every FSEEK result and failed FTELL position
    recorder_only,  // recorder only: HOSTNM, the refused SETDAT/SETTIM requests
    errno_only,     // errno and recorder, IERRNO untouched: ISATTY and TTYNAM, whose results
                    // carry no number
};

// Reports `code` by `policy` and returns it. Inline: every call names its policy, so each
// call site keeps only its own steps.
inline std::int32_t report(Policy policy, std::int32_t code) noexcept {
    switch (policy) {
        case Policy::classic_errno: errno = code; [[fallthrough]];
        case Policy::classic:
            base::for_errsns_load(0, code, 0, 0, 0);
            frame::set_portlib_local_errno(code);
            break;
        case Policy::cell_only: frame::set_portlib_local_errno(code); break;
        case Policy::recorder_only: base::for_errsns_load(0, code, 0, 0, 0); break;
        case Policy::errno_only: base::record_errno(code); break;
    }
    return code;
}

inline std::int32_t fail(std::int32_t code) noexcept { return report(Policy::classic, code); }
inline std::int32_t fail_errno(std::int32_t code) noexcept { return report(Policy::classic_errno, code); }

}  // namespace portlib
