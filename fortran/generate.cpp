// Writes the parts of the interface modules that mirror C tables, so nothing is typed
// twice: the named constants (from the public headers and the host's own headers) and the
// interfaces of the accessor table. Built and run at build time, once per architecture.
// Usage: tarvo_generate <output directory>; writes tarvo_<family>_generated.inc.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <type_traits>

#include <tarvo/tarvo.h>

#include "runtime/fpcontrol.h"

namespace {

struct Constant {
    const char* family;  // the module that declares it
    const char* plain;   // the family's plain name
    const char* dollar;  // the name existing programs write, or null
    const char* kind;    // the Fortran kind of the parameter
    long long value;
};

// Error numbers in the QQ style, for the values the QQ routines record.
// A QQ constant under its plain name and the dollar-sign name derived from it.
#define TARVO_QQ_CONST(PREFIX, NAME, KIND, VALUE) {"qq", #PREFIX "_" #NAME, #PREFIX "$" #NAME, KIND, VALUE},
#define TARVO_QQ_ERRNO(NAME) TARVO_QQ_CONST(ERR, NAME, "4", E##NAME)

constexpr Constant kConstants[] = {
    {"posix", "EARRAYLEN", nullptr, "4", TARVO_EARRAYLEN},
    {"posix", "ENONAME", nullptr, "4", TARVO_ENONAME},
    {"posix", "ENOHANDLE", nullptr, "4", TARVO_ENOHANDLE},
    {"posix", "EENDDIR", nullptr, "4", TARVO_EENDDIR},
    {"posix", "ETRUNC", nullptr, "4", TARVO_ETRUNC},
    {"posix", "EEND", nullptr, "4", TARVO_EEND},
    TARVO_QQ_CONST(FILE, FIRST, "FILE_HANDLE_KIND", TARVO_FILE_FIRST)
    TARVO_QQ_CONST(FILE, LAST, "FILE_HANDLE_KIND", TARVO_FILE_LAST)
    TARVO_QQ_CONST(FILE, ERROR, "FILE_HANDLE_KIND", TARVO_FILE_ERROR)
    TARVO_QQ_CONST(FILE, READONLY, "4", TARVO_FILE_READONLY)
    TARVO_QQ_CONST(FILE, DEVICE, "4", TARVO_FILE_DEVICE)
    TARVO_QQ_CONST(FILE, DIR, "4", TARVO_FILE_DIR)
    TARVO_QQ_CONST(FILE, CURTIME, "4", TARVO_FILE_CURTIME)
    // The QQ control and status words: the x87 layout on both builds.
    TARVO_QQ_CONST(FPCW, INVALID, "2", runtime::fp::kX87Invalid)
    TARVO_QQ_CONST(FPCW, DENORMAL, "2", runtime::fp::kX87Denormal)
    TARVO_QQ_CONST(FPCW, ZERODIVIDE, "2", runtime::fp::kX87ZeroDivide)
    TARVO_QQ_CONST(FPCW, OVERFLOW, "2", runtime::fp::kX87Overflow)
    TARVO_QQ_CONST(FPCW, UNDERFLOW, "2", runtime::fp::kX87Underflow)
    TARVO_QQ_CONST(FPCW, INEXACT, "2", runtime::fp::kX87Inexact)
    TARVO_QQ_CONST(FPCW, MCW_EM, "2", runtime::fp::kX87Exceptions)
    TARVO_QQ_CONST(FPCW, MCW_PC, "2", runtime::fp::kX87PrecisionMask)
    TARVO_QQ_CONST(FPCW, 64, "2", runtime::fp::kX87Precision64)
    TARVO_QQ_CONST(FPCW, 53, "2", runtime::fp::kX87Precision53)
    TARVO_QQ_CONST(FPCW, 24, "2", 0)
    TARVO_QQ_CONST(FPCW, MCW_RC, "2", runtime::fp::kX87RoundMask)
    TARVO_QQ_CONST(FPCW, NEAR, "2", 0)
    TARVO_QQ_CONST(FPCW, DOWN, "2", runtime::fp::kX87RoundDown)
    TARVO_QQ_CONST(FPCW, UP, "2", runtime::fp::kX87RoundUp)
    TARVO_QQ_CONST(FPCW, CHOP, "2", runtime::fp::kX87RoundMask)
    TARVO_QQ_CONST(FPCW, MCW_IC, "2", runtime::fp::kX87Infinity)
    TARVO_QQ_CONST(FPCW, AFFINE, "2", runtime::fp::kX87Infinity)
    TARVO_QQ_CONST(FPCW, PROJECTIVE, "2", 0)
    TARVO_QQ_CONST(FPSW, INVALID, "2", runtime::fp::kX87Invalid)
    TARVO_QQ_CONST(FPSW, DENORMAL, "2", runtime::fp::kX87Denormal)
    TARVO_QQ_CONST(FPSW, ZERODIVIDE, "2", runtime::fp::kX87ZeroDivide)
    TARVO_QQ_CONST(FPSW, OVERFLOW, "2", runtime::fp::kX87Overflow)
    TARVO_QQ_CONST(FPSW, UNDERFLOW, "2", runtime::fp::kX87Underflow)
    TARVO_QQ_CONST(FPSW, INEXACT, "2", runtime::fp::kX87Inexact)
    TARVO_QQ_CONST(SRT, REAL4, "4", TARVO_SRT_REAL4)
    TARVO_QQ_CONST(SRT, REAL8, "4", TARVO_SRT_REAL8)
    TARVO_QQ_CONST(SRT, INTEGER1, "4", TARVO_SRT_INTEGER1)
    TARVO_QQ_CONST(SRT, INTEGER2, "4", TARVO_SRT_INTEGER2)
    TARVO_QQ_CONST(SRT, INTEGER4, "4", TARVO_SRT_INTEGER4)
    TARVO_QQ_CONST(SRT, INTEGER8, "4", TARVO_SRT_INTEGER8)
    TARVO_QQ_CONST(SRT, REAL16, "4", TARVO_SRT_REAL16)
    TARVO_QQ_CONST(SIG, INT, "4", TARVO_QQ_SIGINT)
    TARVO_QQ_CONST(SIG, ILL, "4", TARVO_QQ_SIGILL)
    TARVO_QQ_CONST(SIG, FPE, "4", TARVO_QQ_SIGFPE)
    TARVO_QQ_CONST(SIG, SEGV, "4", TARVO_QQ_SIGSEGV)
    TARVO_QQ_CONST(SIG, TERM, "4", TARVO_QQ_SIGTERM)
    TARVO_QQ_CONST(SIG, USR1, "4", TARVO_QQ_SIGUSR1)
    TARVO_QQ_CONST(SIG, USR2, "4", TARVO_QQ_SIGUSR2)
    TARVO_QQ_CONST(SIG, USR3, "4", TARVO_QQ_SIGUSR3)
    TARVO_QQ_CONST(SIG, ABORT, "4", TARVO_QQ_SIGABRT)
    TARVO_QQ_CONST(SIG, ERR, "4", TARVO_QQ_SIG_ERR)
    TARVO_QQ_CONST(FPE, INVALID, "4", TARVO_QQ_FPE_INVALID)
    TARVO_QQ_CONST(FPE, ZERODIVIDE, "4", TARVO_QQ_FPE_ZERODIVIDE)
    TARVO_QQ_CONST(FPE, OVERFLOW, "4", TARVO_QQ_FPE_OVERFLOW)
    TARVO_QQ_CONST(FPE, UNDERFLOW, "4", TARVO_QQ_FPE_UNDERFLOW)
    TARVO_QQ_CONST(FPE, INEXACT, "4", TARVO_QQ_FPE_INEXACT)
    TARVO_QQ_ERRNO(PERM) TARVO_QQ_ERRNO(NOENT) TARVO_QQ_ERRNO(SRCH) TARVO_QQ_ERRNO(INTR)
    TARVO_QQ_ERRNO(IO) TARVO_QQ_ERRNO(NXIO) TARVO_QQ_ERRNO(2BIG) TARVO_QQ_ERRNO(NOEXEC)
    TARVO_QQ_ERRNO(BADF) TARVO_QQ_ERRNO(CHILD) TARVO_QQ_ERRNO(AGAIN) TARVO_QQ_ERRNO(NOMEM)
    TARVO_QQ_ERRNO(ACCES) TARVO_QQ_ERRNO(FAULT) TARVO_QQ_ERRNO(BUSY) TARVO_QQ_ERRNO(EXIST)
    TARVO_QQ_ERRNO(XDEV) TARVO_QQ_ERRNO(NODEV) TARVO_QQ_ERRNO(NOTDIR) TARVO_QQ_ERRNO(ISDIR)
    TARVO_QQ_ERRNO(INVAL) TARVO_QQ_ERRNO(NFILE) TARVO_QQ_ERRNO(MFILE) TARVO_QQ_ERRNO(NOTTY)
    TARVO_QQ_ERRNO(FBIG) TARVO_QQ_ERRNO(NOSPC) TARVO_QQ_ERRNO(SPIPE) TARVO_QQ_ERRNO(ROFS)
    TARVO_QQ_ERRNO(MLINK) TARVO_QQ_ERRNO(PIPE) TARVO_QQ_ERRNO(DOM) TARVO_QQ_ERRNO(RANGE)
    TARVO_QQ_ERRNO(DEADLK) TARVO_QQ_ERRNO(NAMETOOLONG) TARVO_QQ_ERRNO(NOLCK) TARVO_QQ_ERRNO(NOSYS)
    TARVO_QQ_ERRNO(NOTEMPTY) TARVO_QQ_ERRNO(ILSEQ)
};
#undef TARVO_QQ_ERRNO
#undef TARVO_QQ_CONST

// The accessor forms of the C table, as Fortran dummy lists (the type of VALUE apart).
struct Form {
    const char* name;
    const char* arguments;
    const char* declarations;  // %s stands for the type of VALUE
};
constexpr Form kForms[] = {
    {"SINGLE", "value, ierror", "      %s, intent(inout) :: value\n"},
    {"ARRAY", "value, ialen, ierror",
     "      integer(4), intent(inout) :: ialen\n      %s, intent(inout) :: value(*)\n"},
    {"ELEMENT", "index, value, ierror",
     "      integer(4), intent(in) :: index\n      %s, intent(inout) :: value\n"},
    {"TEXT_ARRAY", "value, ilen, ialen, ierror",
     "      %s, intent(inout) :: value(*)\n      integer(4), intent(inout) :: ilen, ialen\n"},
    {"TEXT_ELEMENT", "index, value, ilen, ierror",
     "      integer(4), intent(in) :: index\n      %s, intent(in) :: value\n"
     "      integer(4), intent(in) :: ilen\n"},
};

const Form& form_named(const char* name) {
    for (const Form& form : kForms)
        if (std::strcmp(form.name, name) == 0) return form;
    return kForms[0];
}

// The Fortran type of VALUE: the C type, and "lgcl" in the name for LOGICAL.
template <class T>
const char* fortran_type(const char* routine) {
    if constexpr (std::is_same_v<T, float>) return "real(4)";
    if constexpr (std::is_same_v<T, double>) return "real(8)";
    if constexpr (std::is_same_v<T, std::int64_t>) return "integer(8)";
    if constexpr (std::is_same_v<T, char>) return "character(len=*)";
    return std::strstr(routine, "lgcl") != nullptr ? "logical(4)" : "integer(4)";
}

void write_accessor(std::FILE* out, const char* c_name, const char* form_name, const char* type) {
    // A CHAR_ form is the same list with a CHARACTER value.
    const char* plain_form = std::strncmp(form_name, "CHAR_", 5) == 0 ? form_name + 5 : form_name;
    const Form& form = form_named(plain_form);
    const std::string name(c_name, std::strlen(c_name) - 1);  // less the trailing underscore
    std::fprintf(out, "    subroutine %s(jhandle, compname, %s)\n", name.c_str(), form.arguments);
    std::fprintf(out, "      integer(4), intent(in) :: jhandle\n      character(len=*), intent(in) :: compname\n");
    // A SET form only reads its arguments, so a constant may be passed.
    std::string declarations(form.declarations);
    if (name.size() > 3 && name.compare(name.size() - 3, 3, "set") == 0)
        for (std::size_t at; (at = declarations.find("intent(inout)")) != std::string::npos;)
            declarations.replace(at, 13, "intent(in)");
    std::fprintf(out, declarations.c_str(), type);
    std::fprintf(out, "      integer(4), intent(out) :: ierror\n    end subroutine %s\n", name.c_str());
}

void write_constants(std::FILE* out, const char* family) {
    for (const Constant& c : kConstants) {
        if (std::strcmp(c.family, family) != 0) continue;
        std::fprintf(out, "  integer(%s), parameter :: %s = %lld\n", c.kind, c.plain, c.value);
        if (c.dollar != nullptr)
            std::fprintf(out, "  integer(%s), parameter :: %s = %s\n", c.kind, c.dollar, c.plain);
    }
}

bool write_family(const std::string& dir, const char* family, void (*interfaces)(std::FILE*)) {
    const std::string path = dir + "/tarvo_" + family + "_generated.inc";
    std::FILE* out = std::fopen(path.c_str(), "w");
    if (out == nullptr) return false;
    std::fprintf(out, "  ! Generated at build time from the library's C tables; do not edit.\n");
    write_constants(out, family);
    if (interfaces != nullptr) {
        std::fprintf(out, "  interface\n");
        interfaces(out);
        std::fprintf(out, "  end interface\n");
    }
    return std::fclose(out) == 0;
}

void posix_interfaces(std::FILE* out) {
    std::fprintf(out, "    ! Accessors of kinds no structure has: each answers IERROR = ENONAME.\n");
#define TARVO_WRITE_ACCESSOR(name, form, T) write_accessor(out, #name, #form, fortran_type<T>(#name));
    TARVO_PXF_STUB_ACCESSORS(TARVO_WRITE_ACCESSOR)
#undef TARVO_WRITE_ACCESSOR
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <output directory>\n", argv[0]);
        return 2;
    }
    const bool ok = write_family(argv[1], "portlib", nullptr) && write_family(argv[1], "posix", posix_interfaces) &&
                    write_family(argv[1], "qq", nullptr);
    if (!ok) std::perror(argv[1]);
    return ok ? 0 : 1;
}
