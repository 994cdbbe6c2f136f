// The gfortran run-time's exported entry points, when the process contains that run-time.
// The library never links against it: it looks the entry points up at first use.
#pragma once

#include <cstddef>
#include <cstdint>

namespace runtime {

// gfortran's OPEN parameter block. Compiled Fortran code builds it, so its layout is part
// of that run-time's stable interface.
struct GfortranOpenBlock {
    std::int32_t flags;
    std::int32_t unit;
    const char* source_file;
    std::int32_t line;
    std::size_t iomsg_len;
    char* iomsg;
    std::int32_t* iostat;
    std::int64_t recl_in;
    std::size_t file_len;
    const char* file;
    const char* status;
    std::size_t status_len;
    std::size_t access_len;
    const char* access;
    const char* form;
    std::size_t form_len;
    std::size_t blank_len;
    const char* blank;
    const char* position;
    std::size_t position_len;
    std::size_t action_len;
    const char* action;
    const char* unused_tail[16];  // further specifiers this library never sets; kept zero
    std::int32_t* newunit;        // NEWUNIT=: where the run-time stores the unit it chose
    const char* unused_end[7];
};

enum : std::int32_t {
    kOpenHasIostat = 1 << 5,
    kOpenHasFile = 1 << 8,
    kOpenHasStatus = 1 << 9,
    kOpenHasPosition = 1 << 13,
    kOpenHasAction = 1 << 14,
    kOpenHasNewunit = 1 << 23,
    // After the call, the low two bits of the flags hold the statement's outcome: 0 is
    // success, anything else an error, end of file or end of record.
    kStatementOutcome = 3,
};

struct GfortranRuntime {
    int (*fnum_i4)(std::int32_t* unit);
    int (*fgetc)(const std::int32_t* unit, char* c, std::size_t c_len);
    int (*fputc)(const std::int32_t* unit, char* c, std::size_t c_len);
    void (*fseek_sub)(std::int32_t* unit, std::int64_t* offset, std::int32_t* whence, std::int32_t* status);
    std::int64_t (*ftell)(std::int32_t* unit);
    void (*flush_i4)(const std::int32_t* unit);  // null: every unit
    void (*st_open)(GfortranOpenBlock* block);
    void (*st_close)(void* block);
    void (*exit_i4)(std::int32_t* status);
    std::int32_t (*iargc)();
    void (*get_command_argument_i4)(std::int32_t* number, char* value, std::int32_t* length,
                                    std::int32_t* status, std::size_t value_len);
};

// The entry points, or null when the process has no gfortran run-time (or an incomplete one).
const GfortranRuntime* gfortran_runtime() noexcept;

}  // namespace runtime
