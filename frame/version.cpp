#include <algorithm>
#include <cstring>

#include "base/export.h"
#include "base/fstring.h"
#include "version_info.h"
#include <tarvo/frame.h>

namespace {
constexpr std::size_t kMarkerLength = 4;  // "@(#)", for tools that search binaries
}

// Writable: programs that patch the identification string in place keep working.
TARVO_API char for__portlib_version_string[] =
    "@(#)Tarvo Fortran portability library\t" TARVO_VERSION_TEXT "\t" TARVO_BUILD_DATE;

// INTEGER FUNCTION FOR_LODRIK_VERSION(STRING) -- the title, version and date; returns 3
extern "C" TARVO_API std::int32_t for_lodrik_version_(char* s, std::size_t len) noexcept {
    const base::flen n = base::signed_length(len);
    if (s == nullptr || n <= 0) return 3;
    base::blank_fill(s, n);
    const char* text = for__portlib_version_string + kMarkerLength;
    const std::size_t copy = std::min(std::strlen(text), static_cast<std::size_t>(n));
    std::memcpy(s, text, copy);
    return 3;
}
