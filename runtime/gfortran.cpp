#include "runtime/gfortran.h"

#include <dlfcn.h>

namespace runtime {
namespace {

static_assert(offsetof(GfortranOpenBlock, iostat) == (sizeof(void*) == 8 ? 40 : 24));
static_assert(offsetof(GfortranOpenBlock, file_len) == (sizeof(void*) == 8 ? 56 : 36));
static_assert(offsetof(GfortranOpenBlock, action) == (sizeof(void*) == 8 ? 160 : 88));
static_assert(offsetof(GfortranOpenBlock, newunit) == (sizeof(void*) == 8 ? 296 : 156));

template <class F>
bool bind(void* library, const char* name, F& slot) noexcept {
    slot = reinterpret_cast<F>(dlsym(library, name));
    return slot != nullptr;
}

const GfortranRuntime* look_up() noexcept {
    static GfortranRuntime entries;
    void* library = dlopen("libgfortran.so.5", RTLD_LAZY | RTLD_NOLOAD);
    if (library == nullptr) return nullptr;
    const bool complete = bind(library, "_gfortran_fnum_i4", entries.fnum_i4) &&
                          bind(library, "_gfortran_fgetc", entries.fgetc) &&
                          bind(library, "_gfortran_fputc", entries.fputc) &&
                          bind(library, "_gfortran_fseek_sub", entries.fseek_sub) &&
                          bind(library, "_gfortran_ftell", entries.ftell) &&
                          bind(library, "_gfortran_flush_i4", entries.flush_i4) &&
                          bind(library, "_gfortran_st_open", entries.st_open) &&
                          bind(library, "_gfortran_st_close", entries.st_close) &&
                          bind(library, "_gfortran_exit_i4", entries.exit_i4) &&
                          bind(library, "_gfortran_iargc", entries.iargc) &&
                          bind(library, "_gfortran_get_command_argument_i4", entries.get_command_argument_i4);
    // The process holds the run-time anyway; the extra reference from RTLD_NOLOAD stays.
    return complete ? &entries : nullptr;
}

}  // namespace

const GfortranRuntime* gfortran_runtime() noexcept {
    static const GfortranRuntime* const entries = look_up();
    return entries;
}

}  // namespace runtime
