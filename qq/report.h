// How the QQ routines report a failure: errno and the run-time's recorder receive the error
// number, and the routine answers with its own "no" (0, -1 or .FALSE.).
#pragma once

#include <cstdint>

#include "base/record.h"

namespace qq {

inline std::int32_t fail(int code, std::int32_t answer = 0) noexcept {
    base::record_errno(code);
    return answer;
}

}  // namespace qq
