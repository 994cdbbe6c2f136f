// The wildcard rule against its literal recursive statement, on arbitrary byte strings.
// Input: name, a NUL, pattern. Both are kept short, as the literal rule is exponential.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "qq/qq.h"
#include "unit/qq/literal_pattern.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const char* text = reinterpret_cast<const char*>(data);
    const char* split = static_cast<const char*>(std::memchr(text, '\0', size));
    if (split == nullptr) return 0;
    const std::string name(text, split), pattern(split + 1, text + size);
    if (name.size() > 24 || pattern.size() > 24) return 0;
    if (qq::patternMatch(name.c_str(), pattern.c_str()) != literal_pattern_match(name.c_str(), pattern.c_str()))
        std::abort();
    return 0;
}
