#include "portlib/report.h"

#include <cerrno>

#include "base/record.h"
#include "frame/errors.h"

namespace portlib {

std::int32_t report(Policy policy, std::int32_t code) noexcept {
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

}  // namespace portlib
