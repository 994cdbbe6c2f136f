// The wildcard rule exactly as stated, recursion and all: the reference that the library's
// matcher must agree with (it is exponential on purpose-built input, so tests keep it small).
#pragma once

inline int literal_pattern_match(const char* name, const char* pattern) {
    if (*pattern == '\0') return *name == '\0' ? 0 : 1;
    while (*pattern != '\0' && *pattern != '*') {
        const bool same = *pattern == '?' ? *name != '\0' : *pattern == *name;
        if (!same) return 1;
        ++pattern;
        ++name;
    }
    if (*pattern == '\0') return *name == '\0' ? 0 : 1;
    while (*++pattern == '*' || *pattern == '?') {
        if (*name != '\0') ++name;  // a further "*" takes a character without a check
        else if (*pattern == '?') return 1;
    }
    if (*pattern == '\0') return 0;
    if (*name == '\0') return 1;
    for (; *name != '\0'; ++name)
        if (*name == *pattern && literal_pattern_match(name, pattern) == 0) return 0;
    return 1;
}
