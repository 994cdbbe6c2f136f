// IEEE_FLAGS and IEEE_HANDLER keywords from arbitrary bytes: never a crash, and the same
// call with the keywords in another case and blank padded gives the same result, the same
// OUT text and the same control words. The floating-point environment
// and the SIGFPE action are put back after every input, so no trap reaches the fuzzer.
// Input: two selector bytes, then action, mode and in (or action and exception) separated
// by NULs. Each keyword stays within the 20 characters whose excess ends the process.
#include <algorithm>
#include <cfenv>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include <tarvo/portlib.h>

namespace {

void ignore_trap(std::int32_t*, const std::int32_t*) {}

// The state a call may change: the environment (control and status words) and SIGFPE.
struct Saved {
    std::fenv_t env;
    struct sigaction fpe;
    Saved() {
        fegetenv(&env);
        sigaction(SIGFPE, nullptr, &fpe);
    }
    void restore() const {
        fesetenv(&env);
        sigaction(SIGFPE, &fpe, nullptr);
    }
};

std::string recased(const std::string& word) {
    std::string s = word;
    for (char& c : s)
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')) c = static_cast<char>(c ^ 0x20);
    return s;
}

// A Fortran argument: an exactly sized heap block, optionally blank padded.
struct Arg {
    char* p;
    std::size_t n;
    Arg(const std::string& s, std::size_t pad) : p(static_cast<char*>(std::malloc(s.size() + pad + 1))), n(s.size() + pad) {
        std::memcpy(p, s.data(), s.size());
        std::memset(p + s.size(), ' ', pad);
    }
    ~Arg() { std::free(p); }
};

// The x87 control word and MXCSR, the parts of the environment the keywords change.
struct Control {
    std::uint16_t x87;
    std::uint32_t mxcsr;
};
Control control() {
    Control c{};
    asm volatile("fnstcw %0" : "=m"(c.x87));
    asm volatile("stmxcsr %0" : "=m"(c.mxcsr));
    return c;
}

struct Outcome {
    std::int64_t result;
    std::string out;
    Control words;
};

Outcome flags(const std::string& action, const std::string& mode, const std::string& in, std::size_t pad) {
    const std::size_t p = [&] { std::size_t m = 20 - std::max({action.size(), mode.size(), in.size()}); return pad < m ? pad : m; }();
    const Arg a(action, p), m(mode, p), i(in, p);
    char out[24];
    Outcome o{ieee_flags_(a.p, m.p, i.p, out, a.n, m.n, i.n, sizeof out), std::string(out, sizeof out), control()};
    return o;
}

Outcome handler(const std::string& action, const std::string& exception, std::size_t pad) {
    const Arg a(action, pad), e(exception, pad);
    Outcome o{static_cast<std::int64_t>(ieee_handler_(a.p, e.p, ignore_trap, a.n, e.n)), {}, control()};
    return o;
}

bool same(const Outcome& x, const Outcome& y) {
    return x.result == y.result && x.out == y.out && x.words.x87 == y.words.x87 && x.words.mxcsr == y.words.mxcsr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 66) return 0;
    const bool use_handler = data[0] & 1;
    const std::size_t pad = data[1] % 8;
    std::string words[3];
    std::size_t k = 0;
    for (std::size_t i = 2; i < size; ++i) {
        if (data[i] == '\0' && k < 2) ++k;
        else words[k] += static_cast<char>(data[i]);
    }
    for (const std::string& w : words)
        if (w.size() > 20) return 0;
    const Saved saved;
    if (use_handler) {
        const Outcome first = handler(words[0], words[1], 0);
        saved.restore();
        const Outcome again = handler(recased(words[0]), recased(words[1]), pad);
        saved.restore();
        FUZZ_CHECK(same(first, again));
    } else {
        const Outcome first = flags(words[0], words[1], words[2], 0);
        saved.restore();
        const Outcome again = flags(recased(words[0]), recased(words[1]), recased(words[2]), pad);
        saved.restore();
        FUZZ_CHECK(same(first, again));
    }
    return 0;
}
