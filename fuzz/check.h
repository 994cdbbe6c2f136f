// The fuzz targets' assertion, which names the broken invariant on standard error and then
// aborts so that libFuzzer keeps the input, and their temporary directories.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#define FUZZ_CHECK(condition)                                                                   \
    do {                                                                                        \
        if (!(condition)) {                                                                     \
            std::fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                       \
        }                                                                                       \
    } while (0)

// A new directory under $TMPDIR (or /tmp), for the targets that work on files.
inline std::string temporary_directory(const char* prefix) {
    const char* tmp = std::getenv("TMPDIR");
    std::string dir = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/" + prefix + "-XXXXXX";
    FUZZ_CHECK(mkdtemp(dir.data()) != nullptr);
    return dir;
}
